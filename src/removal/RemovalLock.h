// SPDX-License-Identifier: MIT
// Keeps a user's removals one after the other. Two at a time, in two programs, could each take for
// the copy that stays what the other is about to remove. The lock goes with the object, and with
// its program, however that ends.
#pragma once

#include <optional>

#include "fsobjects/Handles.h"

namespace quillmarsh {

class RemovalLock {
 public:
  RemovalLock();
  // True while another removal has it. Where no lock can be had at all, as without a home, a
  // removal goes on without one.
  [[nodiscard]] bool IsHeldByAnother() const { return mIsHeldByAnother; }

 private:
  std::optional<FileHandle> mFile;
  bool mIsHeldByAnother = false;
};

}  // namespace quillmarsh
