// SPDX-License-Identifier: MIT
// A flat array and a place in it.
#include "search/clsFolderQueue.h"

namespace quillmarsh {

void clsFolderQueue::AddFolder(std::int32_t idx, std::uint32_t attributes) {
  mFolders.push_back({idx, attributes});
}

std::int32_t clsFolderQueue::GetNextFolder() {
  mNext += 1;
  if (mNext > FolderCount()) return NoFolder;
  return mFolders[static_cast<std::size_t>(mNext) - 1].idx;
}

std::uint32_t clsFolderQueue::AttributesOfLast() const {
  if (mNext < 1 || mNext > FolderCount()) return 0;
  return mFolders[static_cast<std::size_t>(mNext) - 1].attributes;
}

const clsFolderQueue::Entry* clsFolderQueue::PeekAhead(std::int32_t ahead) const {
  const std::int32_t place = mNext + ahead;
  if (place < 0 || place >= FolderCount()) return nullptr;
  return &mFolders[static_cast<std::size_t>(place)];
}

void clsFolderQueue::ResetQueue() {
  mFolders.clear();
  mNext = 0;
}

}  // namespace quillmarsh
