// SPDX-License-Identifier: MIT
// The files directly in one folder, in the order in which the system delivered them: packed names
// and flat facts, no objects. An object is made when a caller asks for an entry; the search reads
// the facts in place and makes its records from them.
#pragma once

#include <memory>
#include <vector>

#include "base/DupeFileUDT.h"
#include "base/NameArena.h"
#include "base/Text.h"

namespace quillmarsh {

class cFSXFile;

// One entry, read in place: the name lives as long as the collection is not changed.
struct cFSXFileFacts {
  TextView name;
  Currency size;                // bytes
  Currency createdAsCurr;       // local ticks
  Currency lastModifiedAsCurr;  // local ticks
  std::uint32_t attributes = 0;

  [[nodiscard]] bool IsSystem() const;
  [[nodiscard]] bool IsHidden() const;
  // Also every file with the extension TMP, whatever its attribute says.
  [[nodiscard]] bool IsTemporary() const;
};

class cFSXFiles {
 public:
  [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(mEntries.size()); }
  [[nodiscard]] Text ParentFolderPath() const;
  void SetParentFolderPath(TextView path);
  // The folder's key; -1 before a path was set.
  [[nodiscard]] std::int32_t ParentFolderIdx() const { return mParentFolderIdx; }

  // Always false.
  bool Add(TextView name, Currency size, Currency createdAsCurr, Currency lastModifiedAsCurr,
           std::uint32_t attributes);
  // A new object at each call, which already knows what is known here; no object outside 1 to
  // Count.
  [[nodiscard]] std::unique_ptr<cFSXFile> Item(std::int32_t index) const;
  // `index` must be 1 to Count; error 9 if not.
  [[nodiscard]] cFSXFileFacts Facts(std::int32_t index) const;
  // Whether an entry has exactly this name.
  [[nodiscard]] bool Contains(TextView name) const;

 private:
  struct Entry {
    Currency size;
    Currency createdAsCurr;
    Currency lastModifiedAsCurr;
    std::size_t nameEnd;  // in mNames; the name begins where that of the entry before ends
    std::uint32_t attributes;
  };

  std::int32_t mParentFolderIdx = -1;
  Text mNames;
  std::vector<Entry> mEntries;
};

// Fills the search's record of an entry just as cFSXFile.DupeFileUDT does, without an object: its
// name goes into `names`, its dates are in whole seconds. False when something unexpected was
// reported and the record is not whole (the arena may be full): it must not be used then.
[[nodiscard]] bool MakeDupeFileUDT(const cFSXFileFacts& facts, std::int32_t parentFolderIdx,
                                   NameArena& names, DupeFileUDT& record);

}  // namespace quillmarsh
