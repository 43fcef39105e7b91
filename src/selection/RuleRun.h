// SPDX-License-Identifier: MIT
// One run of a rule over all groups: the two frames that the rules share, and the searches for the
// one file of a group. It belongs to the rules alone and lives for one run. Groups are walked
// without memory for each; the window is kept alive by a pump every few thousand files.
#pragma once

#include <span>
#include <vector>

#include "search/results/cSearchResults.h"

namespace quillmarsh {

class RuleRun {
 public:
  static constexpr std::int32_t NoFile = -1;
  using Members = std::span<const std::int32_t>;

  enum class DateOrder { Newest, Oldest };
  enum class SizeOrder { Smallest, Largest };
  enum class Marks { TheFound, AllOthers };

  // The present moment is taken once, here.
  explicit RuleRun(cSearchResults& results);

  // Error 9 where the group has a member without a record. Valid until the next group.
  [[nodiscard]] Members MembersOf(std::int32_t group);

  // Marks the file that `find` answers for the members of a group, or all others; with NoFile none
  // or all.
  template <typename Finder>
  void MarkByOneFile(Marks marks, Finder&& find) {
    for (std::int32_t group = 1; group <= mResults.mGroupCount; ++group) {
      const Members members = MembersOf(group);
      const std::int32_t found = find(members);
      for (const std::int32_t member : members)
        SetMark(member, (member == found) == (marks == Marks::TheFound));
    }
  }

  // Marks the files whose record fulfils the condition. Where all of a group do and not all of them
  // may go, the one that was modified last is kept. Unlike with the rules for the newest file its
  // creation date does not count.
  template <typename Condition>
  void MarkWhere(bool mayMarkWholeGroups, Condition&& condition) {
    for (std::int32_t group = 1; group <= mResults.mGroupCount; ++group) {
      const Members members = MembersOf(group);
      std::size_t marked = 0;
      LastModified newest = TooOld();
      for (const std::int32_t member : members) {
        const bool isMarked = condition(mResults.Record(member));
        SetMark(member, isMarked);
        if (isMarked) ++marked;
        newest.Offer(member, mResults.Record(member).LastModifiedDate);
      }
      const bool isWhole = marked == members.size() && newest.index != NoFile;
      if (isWhole && !mayMarkWholeGroups) SetMark(newest.index, false);
    }
  }

  // None where no file is better than the bar: 30 years back for the newest, a year ahead for the
  // oldest.
  [[nodiscard]] std::int32_t FindByDate(Members members, DateOrder order);
  // The newest of all, however old. NoFile only where there are no members.
  [[nodiscard]] std::int32_t FindNewestOfAnyAge(Members members);
  [[nodiscard]] std::int32_t FindBySize(Members members, SizeOrder order);

 private:
  // The file found so far and the dates by which it was, in milliseconds.
  struct DatedFile {
    std::int32_t index = NoFile;
    Currency modified;
    Currency created;
  };
  struct LastModified {
    std::int32_t index = NoFile;
    Currency milliseconds;
    void Offer(std::int32_t member, Date modified);
  };

  [[nodiscard]] std::int32_t FindBeyond(DatedFile best, Members members, DateOrder order);
  [[nodiscard]] LastModified TooOld() const { return {NoFile, mThirtyYearsAgo}; }
  void SetMark(std::int32_t index, bool isMarked);
  void Step();

  cSearchResults& mResults;
  std::vector<std::int32_t> mMembers;
  std::uint32_t mSteps = 0;
  Currency mThirtyYearsAgo;  // in milliseconds, as the next
  Currency mNextYear;
};

}  // namespace quillmarsh
