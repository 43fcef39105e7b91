// SPDX-License-Identifier: MIT
// The results of a search: its records, their names, the marks, and the groups as rows across
// parallel arrays. They live from one search to the next. Groups and records are counted from 1, as
// the users of these arrays do; an index beyond what is there answers nothing and touches nothing.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "base/NameArena.h"
#include "search/results/RecordKeys.h"
#include "search/results/cResultsList.h"

namespace quillmarsh {

class cSearchResults {
 public:
  cSearchResults();

  // The records that passed the filters, in the order of the last sort.
  std::vector<DupeFileUDT> mDupeFiles;
  // The number of records as the last complete walk left it. After a stopped walk it may be that of
  // an earlier search, so loops are bounded by RecordCount.
  std::int32_t mFileCount = 0;
  std::int32_t mFilesSearched = 0;  // that the walk looked at, whether they passed or not
  std::vector<bool> mFileMarked;    // marked for removal, by record, from 0

  std::vector<Currency> mGroupTotalSize;      // by group, from 0
  std::vector<std::int32_t> mGroupFileCount;  // by group, from 0

  std::int32_t mDupeFileCount = 0;  // files in all groups, the first of each included
  std::int32_t mGroupCount = 0;
  Currency mDupeTotalSize;
  std::int32_t mCurrentGroup = 0;  // the group shown in the details list

  NameArena mNames;
  SecondPassMarks mSecondPasses;
  UnreadableMarks mUnreadable;
  // Whether the files that have a partner have been read, so that records have their checksums.
  bool mAreContentsKnown = false;
  SearchCriteria mCriteria;  // of the search that made the groups

  cResultsList ulvwDupeGroups;
  cResultsList ulvwDupeDetails;

  // What both mFileCount and the array hold.
  [[nodiscard]] std::int32_t RecordCount() const;
  // The record of an index from 1; the index must be within RecordCount.
  [[nodiscard]] const DupeFileUDT& Record(std::int32_t index) const {
    return mDupeFiles[static_cast<std::size_t>(index) - 1];
  }
  [[nodiscard]] RecordFacts Facts() const { return {mNames, mSecondPasses, mUnreadable}; }
  [[nodiscard]] TextView NameOf(const DupeFileUDT& record) const { return mNames.Get(record.Name); }
  [[nodiscard]] Text FullPathOf(const DupeFileUDT& record) const;
  // The file of a record (from 1) has another name now. What is known of its dates and contents
  // stays with it. A full arena raises error 7 and changes nothing.
  void SetName(std::int32_t index, TextView name);

  // Groups. A new one has as members the records from `firstRecord` on, `count` of them; what is
  // said of one below that answers nothing for a group that is not there.
  void AddGroup(std::int32_t firstRecord, std::int32_t count, Currency totalSize);
  // The members of a group (from 1) as decimal record indexes joined by ",". Once files were taken
  // out, what the cuts left of that text: it can name files that are not in the group, so only
  // MembersOf says what is.
  [[nodiscard]] Text mGroupFileIndexes(std::int32_t group) const;
  // The records that the grouping put there and nobody has taken out since; none for a group that
  // was emptied.
  [[nodiscard]] std::vector<std::int32_t> MembersOf(std::int32_t group) const;
  // A file that is not where the search found it any more leaves its group, of which at least two
  // others must be left: its index is cut from the group's text, where it first occurs.
  void TakeOut(std::int32_t group, std::int32_t record);
  // The whole group leaves the results, together with the file that is gone.
  void EmptyGroup(std::int32_t group, std::int32_t record);
  // What the two did, for every record; the others of an emptied group are not taken out.
  [[nodiscard]] bool IsTakenOut(std::int32_t record) const;
  // Gives up the records that were taken out, so that a second grouping does not find them. Groups
  // and marks must be made anew afterwards.
  void DropTakenOutRecords();

  // The same into an array of the caller's, so that a walk over all groups needs no memory for
  // each. What it held goes.
  void ReadMembers(std::int32_t group, std::vector<std::int32_t>& members) const;
  // The key that the members of a group share.
  [[nodiscard]] Text KeyTextOf(std::int32_t group) const;

  // Fills the details list with the members of a group and makes it the current one; an emptied
  // group shows one line that says so and does not become it. Without `force` a group that is shown
  // already is left alone. Whether a file is marked is no part of the list: a view asks mFileMarked
  // when it draws a row.
  void DisplayDupeGroupDetails(std::int32_t group, bool force);

  void ClearGroups();
  // mDupeFiles, the group arrays and the marks, as a new search wants them. The memory goes back.
  void ResetModuleLevelArraysForNewSearch();

 private:
  [[nodiscard]] Text GroupCell(std::int32_t group, int column) const;
  [[nodiscard]] bool HasGroup(std::int32_t group) const;
  void MarkAsTakenOut(std::int32_t record);
  [[nodiscard]] Text DetailCell(std::int32_t index, int column) const;

  // The members of a group as they were found: neighbours in the sorted array.
  struct MemberRange {
    std::int32_t first = 0;
    std::int32_t count = 0;
  };
  std::vector<MemberRange> mGroupMembers;
  std::vector<bool> mIsTakenOut;  // by record, from 0; empty until the first one is
  // By group, in the order of the cuts. The text is made of them only when it is asked for, since
  // a cut costs as much as the text is long.
  std::unordered_map<std::int32_t, std::vector<std::int32_t>> mCuts;
};

}  // namespace quillmarsh
