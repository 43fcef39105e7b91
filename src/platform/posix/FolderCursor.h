// SPDX-License-Identifier: MIT
// One listing of one folder in progress, read in batches: one directory read and exactly one statx
// an entry. Owns the open folder. Used by one thread at a time, the one that holds the listing.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemTypes.h"
#include "platform/posix/DriveLetters.h"
#include "platform/posix/PathResolver.h"
#include "platform/posix/StatxFacts.h"
#include "platform/posix/UniqueFd.h"

namespace quillmarsh {

// Entries of one folder, ready to be handed out; their names are views into the same batch.
struct EntryBatch {
  std::vector<WIN32_FIND_DATAW> entries;
  std::vector<char16_t> names;
  std::size_t nameUnits = 0;

  void Clear();
  [[nodiscard]] std::size_t Bytes() const;
};

// What a reading thread has at hand for all its folders.
struct ReadingTools {
  std::shared_ptr<const DriveLetters> letters;
  std::shared_ptr<const PathResolver> resolver;
  // Called on the reading thread before a folder is opened, with its path; may be empty.
  std::function<void(TextView)> beforeFolder;
  std::array<std::byte, 131072> buffer;
  // Open roots, one for each letter and its mount. They keep a drive from being unmounted and are
  // let go of when the reader has been idle for a moment.
  std::map<char, std::pair<int, UniqueFd>> roots;
};

class FolderCursor {
 public:
  // `folder` in drive form with its final backslash.
  explicit FolderCursor(Text folder) : mFolder(std::move(folder)) {}

  [[nodiscard]] const Text& Folder() const { return mFolder; }

  // Reads on into an empty batch, some thousands of entries at most. 0 while there is more; 18 at
  // the end; another code when the folder cannot be opened or read on. An entry whose facts cannot
  // be read is neither handed out with made-up facts nor does it cut off the entries behind it: all
  // others are listed, and then the listing ends with that entry's code instead of 18.
  [[nodiscard]] std::uint32_t ReadOn(ReadingTools& tools, EntryBatch& batch,
                                     const std::atomic<bool>& dropped);

 private:
  [[nodiscard]] std::uint32_t Open(ReadingTools& tools, EntryBatch& batch);
  void ReadEntry(const char* name, unsigned char type, EntryBatch& batch,
                 const PathResolver& resolver);
  void Add(const struct statx& facts, EntryKind kind, std::string_view name,
           EntryBatch& batch) const;

  Text mFolder;
  UniqueFd mFd;
  std::shared_ptr<const DriveTable> mTable;
  const Drive* mDrive = nullptr;
  std::string mRelative;
  bool mMountsHere = false;  // a mount lies directly in this folder
  std::uint32_t mUnreadable = 0;
};

}  // namespace quillmarsh
