// SPDX-License-Identifier: MIT
// Keeps removals one after the other: those of a user, and on each drive those of all users. Two at
// a time, in two programs, could each take for the copy that stays what the other is about to
// remove. The locks go with the object, and with its program, however that ends.
#pragma once

#include <deque>

#include "fsobjects/Handles.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

class RemovalLock {
 public:
  explicit RemovalLock(const cSearchResults& results);
  // True while another removal has one of them. What cannot be locked at all, as where there is no
  // home, or where folders know no locks, goes unlocked.
  [[nodiscard]] bool IsHeldByAnother() const { return mIsHeldByAnother; }

 private:
  void Lock(TextView path, std::uint32_t access, std::uint32_t disposition, std::uint32_t flags);

  std::deque<FileHandle> mLocked;
  bool mIsHeldByAnother = false;
};

}  // namespace quillmarsh
