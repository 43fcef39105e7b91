// SPDX-License-Identifier: MIT
// Keys live in an open-addressing table of their own, paths in a container that never moves them.
// The probing by 7 is between keys; the table's own probing never shows.
#include "fsobjects/cFSXFolderPathsList.h"

#include <span>

#include "frame/ErrorReporting.h"
#include "platform/TextOperations.h"

namespace quillmarsh {

std::unique_ptr<cFSXFolderPathsList> gFolderPathsList;

namespace {

const Text kNoFolder;
constexpr std::size_t kFirstSlots = 1024;

constexpr std::int32_t NextProbe(std::int32_t key) {
  constexpr std::int64_t Lowest = -2147483647;
  do {
    const std::int64_t next = std::int64_t{key} - 7;
    key = next < Lowest ? 2147483647 : static_cast<std::int32_t>(next);
  } while (key == 0 || key == -1);
  return key;
}

}  // namespace

cFSXFolderPathsList::cFSXFolderPathsList(Hash hash) : mHash(hash), mSlots(kFirstSlots) {}

void cFSXFolderPathsList::NewList() {
  mFolders.clear();
  mSlots.assign(kFirstSlots, Slot());
}

std::int32_t cFSXFolderPathsList::Count() const {
  return static_cast<std::int32_t>(mFolders.size());
}

std::int32_t cFSXFolderPathsList::AddFolder(TextView folder) {
  std::int32_t key = HashString_Shlwapi(folder);
  Guarded(u"cFSXFolderPathsList.AddFolder", [&] { key = KeyFor(folder, key); });
  return key;
}

// Two texts are one folder only when they are equal to the last character. Where two folders that
// differ in case meet under one key, taking them for one would give the files of the second the
// path of the first, on a volume that tells cases apart: another file would be shown and removed.
std::int32_t cFSXFolderPathsList::KeyFor(TextView folder, std::int32_t key) {
  for (;; key = NextProbe(key)) {
    const std::size_t slot = SlotOf(key);
    if (mSlots[slot].place == NoPlace) {
      AddNew(slot, key, folder);
      return key;
    }
    if (mFolders[mSlots[slot].place] == folder) return key;
  }
}

const Text& cFSXFolderPathsList::GetFolderByIndex(std::int32_t key) const {
  if (key == 0) return kNoFolder;
  const std::uint32_t place = mSlots[SlotOf(key)].place;
  return place == NoPlace ? kNoFolder : mFolders[place];
}

const Text& cFSXFolderPathsList::GetFolderByPosition(std::int32_t position) const {
  if (position < 1 || position > Count()) return kNoFolder;
  return mFolders[static_cast<std::size_t>(position) - 1];
}

bool cFSXFolderPathsList::AddStringAndReportCollisions(TextView text) {
  return AddFolder(text) != HashString_Shlwapi(text);
}

std::int32_t cFSXFolderPathsList::HashString_Shlwapi(TextView text) const {
  if (text.empty()) return 0;
  return mHash != nullptr ? mHash(text) : HashData(std::as_bytes(std::span(text)));
}

// The slot that holds the key, or the free one where it belongs.
std::size_t cFSXFolderPathsList::SlotOf(std::int32_t key) const {
  constexpr std::uint32_t Spread = 0x9E3779B1;  // keys that probing made lie 7 apart
  const std::size_t mask = mSlots.size() - 1;
  std::size_t slot = ((static_cast<std::uint32_t>(key) * Spread) >> 3U) & mask;
  while (mSlots[slot].place != NoPlace && mSlots[slot].key != key) slot = (slot + 1) & mask;
  return slot;
}

void cFSXFolderPathsList::AddNew(std::size_t slot, std::int32_t key, TextView folder) {
  mFolders.emplace_back(folder);
  mSlots[slot] = {key, static_cast<std::uint32_t>(mFolders.size() - 1)};
  if (mFolders.size() * 2 > mSlots.size()) Grow();
}

void cFSXFolderPathsList::Grow() {
  std::vector<Slot> larger(mSlots.size() * 2);
  mSlots.swap(larger);
  for (const Slot& old : larger) {
    if (old.place != NoPlace) mSlots[SlotOf(old.key)] = old;
  }
}

}  // namespace quillmarsh
