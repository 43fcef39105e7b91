// SPDX-License-Identifier: MIT
// Owns the text of each folder of a session once and gives it a 32-bit key, so that millions of
// records hold a number and no path. The key is a hash of the text, moved on by 7 where two folders
// share one. It tells folders apart exactly, case included, and never gives the key 0 (no folder)
// to a folder, nor -1 (not yet known).
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

class cFSXFolderPathsList {
 public:
  using Hash = std::int32_t (*)(TextView folder);

  // `hash` stands in for the hash of the text, so that a test can make folders collide.
  explicit cFSXFolderPathsList(Hash hash = nullptr);

  void NewList();
  [[nodiscard]] std::int32_t Count() const;
  // The key of a folder, which is added when it is new. The empty text has the key 0.
  std::int32_t AddFolder(TextView folder);
  // Empty for 0 and for a key that is not in the list. Valid until NewList.
  [[nodiscard]] const Text& GetFolderByIndex(std::int32_t key) const;
  // By order of coming, from 1; empty below 1 and beyond Count. Valid until NewList.
  [[nodiscard]] const Text& GetFolderByPosition(std::int32_t position) const;
  // Adds a text; true when another text has its hash already.
  bool AddStringAndReportCollisions(TextView text);

 private:
  static constexpr std::uint32_t NoPlace = 0xFFFFFFFF;
  struct Slot {
    std::int32_t key = 0;
    std::uint32_t place = NoPlace;  // in mFolders
  };

  [[nodiscard]] std::int32_t HashString_Shlwapi(TextView text) const;
  [[nodiscard]] std::size_t SlotOf(std::int32_t key) const;
  [[nodiscard]] std::int32_t KeyFor(TextView folder, std::int32_t key);
  void AddNew(std::size_t slot, std::int32_t key, TextView folder);
  void Grow();

  Hash mHash;
  std::deque<Text> mFolders;  // in order of coming; never moves what it holds
  std::vector<Slot> mSlots;   // a power of two, at most half full
};

// The session's one list, made at start, emptied at the start of a search, released at the end.
extern std::unique_ptr<cFSXFolderPathsList> gFolderPathsList;

}  // namespace quillmarsh
