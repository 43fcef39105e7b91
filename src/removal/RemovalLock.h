// SPDX-License-Identifier: MIT
// Keeps the removals of one user one after the other, since they write to the same history and
// journal. What keeps two removals from the same files, of whichever user, are the locks on the
// files. The lock is released with the object, and with its program, however that ends.
#pragma once

#include "fsobjects/Handles.h"

namespace quillmarsh {

class RemovalLock {
 public:
  RemovalLock();
  // True while another removal has it. Where there is no home there is nothing to lock.
  [[nodiscard]] bool IsHeldByAnother() const { return mIsHeldByAnother; }

 private:
  const FileHandle mLocked;
  const bool mIsHeldByAnother;
};

}  // namespace quillmarsh
