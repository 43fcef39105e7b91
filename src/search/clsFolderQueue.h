// SPDX-License-Identifier: MIT
// The folders of a location that are still to be visited, first in, first out: folder keys, each
// with the attributes that the listing of its parent told. It never shrinks; a queue that has run
// dry is of no further use until it is reset.
#pragma once

#include <cstdint>
#include <vector>

namespace quillmarsh {

class clsFolderQueue {
 public:
  static constexpr std::int32_t NoFolder = -1;

  [[nodiscard]] std::int32_t FolderCount() const {
    return static_cast<std::int32_t>(mFolders.size());
  }
  void AddFolder(std::int32_t idx, std::uint32_t attributes);
  // The next folder key, or -1. The pointer goes on past the end at each call.
  [[nodiscard]] std::int32_t GetNextFolder();
  // The attributes of the folder that GetNextFolder gave last.
  [[nodiscard]] std::uint32_t AttributesOfLast() const;
  void ResetQueue();

  struct Entry {
    std::int32_t idx;
    std::uint32_t attributes;
  };
  // The entry that is `ahead` places behind the next one, or none.
  [[nodiscard]] const Entry* PeekAhead(std::int32_t ahead) const;

 private:
  std::vector<Entry> mFolders;
  std::int32_t mNext = 0;
};

}  // namespace quillmarsh
