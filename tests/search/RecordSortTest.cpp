// SPDX-License-Identifier: MIT
// The sort against a plain stable sort over a plain comparison.
#include "search/results/RecordSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "base/TextEquality.h"

namespace quillmarsh {
namespace {

struct Forest {
  NameArena names;
  SecondPassMarks marks;
  UnreadableMarks unreadable;
  std::vector<DupeFileUDT> records;
};

// Names with long common beginnings, cases, prefixes of one another and letters beyond ASCII.
Text RandomName(std::mt19937& random) {
  static const TextView stems[] = {u"a",
                                   u"photo_2026_holiday_",
                                   u"Photo_2026_Holiday_",
                                   u"\u00e9t\u00e9",
                                   u"\u00c9T\u00c9",
                                   u"\U0001F600",
                                   u"exactly8",
                                   u"EXACTLY8exactly8"};
  Text name(stems[random() % std::size(stems)]);
  if (random() % 3 != 0) name += DecimalText(random() % 40);
  if (random() % 2 != 0) name += random() % 2 != 0 ? u".jpg" : u".JPG";
  return name;
}

void Fill(Forest& forest, std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
  for (std::size_t i = 0; i < count; ++i) {
    DupeFileUDT record;
    record.Name = forest.names.Add(RandomName(random));
    record.Size = Currency::FromInteger((std::int64_t{1} << (random() % 45)) + random() % 3);
    record.CreatedDate = Date(45000.0 + below(3) + below(4) / 86400.0 / 2.0);
    record.LastModifiedDate = random() % 20 == 0 ? Date(1e9) : Date(-2.0 - below(3) / 4.0);
    record.ParentFolderIdx = static_cast<std::int32_t>(i);  // tells the records apart
    if (random() % 10 == 0) forest.marks[record.Name] = {random() % 2 != 0, true};
    record.CRC32 = below(4) - 2;
    if (random() % 8 == 0) forest.unreadable.insert(record.Name);
    forest.records.push_back(record);
  }
}

bool ComesBefore(const Forest& forest, const SearchCriteria& criteria, const DupeFileUDT& a,
                 const DupeFileUDT& b) {
  const auto passes = [&forest](const DupeFileUDT& record) {
    const auto found = forest.marks.find(record.Name);
    return found == forest.marks.end() ? SecondPasses{} : found->second;
  };
  if (criteria.namesMatch) {
    const int order = CompareIgnoringCase(forest.names.Get(a.Name), forest.names.Get(b.Name));
    if (order != 0) return order < 0;
  }
  if (criteria.sizesMatch && a.Size != b.Size) return a.Size < b.Size;
  if (criteria.createTimeStampsMatch) {
    const auto x = DateKey(a.CreatedDate, passes(a).created);
    const auto y = DateKey(b.CreatedDate, passes(b).created);
    if (x != y) return x < y;
  }
  if (criteria.lastModTimeStampsMatch) {
    const auto x = DateKey(a.LastModifiedDate, passes(a).lastModified);
    const auto y = DateKey(b.LastModifiedDate, passes(b).lastModified);
    if (x != y) return x < y;
  }
  if (!criteria.contentsMatch) return false;
  // Files that nobody could read stand behind the others, each by itself.
  const bool isAUnreadable = forest.unreadable.contains(a.Name);
  const bool isBUnreadable = forest.unreadable.contains(b.Name);
  if (isAUnreadable || isBUnreadable)
    return isAUnreadable && isBUnreadable ? a.Name < b.Name : isBUnreadable;
  if (a.CRC32 != b.CRC32) return a.CRC32 < b.CRC32;
  return a.Size < b.Size;
}

TEST(RecordSort, OrdersLikeAPlainStableSortUnderEveryChoiceOfCriteria) {
  const std::atomic<bool> stop = false;
  for (unsigned choice = 0; choice < 32; ++choice) {
    // The largest takes the way of two threads.
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{2},
                                    std::size_t{700}, std::size_t{choice == 7 ? 120000U : 3000U}}) {
      const SearchCriteria criteria{(choice & 1) != 0, (choice & 2) != 0, (choice & 4) != 0,
                                    (choice & 8) != 0, (choice & 16) != 0};
      Forest forest;
      Fill(forest, count, choice * 7 + static_cast<unsigned>(count));
      std::vector<DupeFileUDT> expected = forest.records;
      std::stable_sort(expected.begin(), expected.end(),
                       [&](const DupeFileUDT& a, const DupeFileUDT& b) {
                         return ComesBefore(forest, criteria, a, b);
                       });
      ASSERT_TRUE(SortRecords(forest.records, {forest.names, forest.marks, forest.unreadable},
                              criteria, stop));
      const auto sameRecord = [](const DupeFileUDT& a, const DupeFileUDT& b) {
        return a.ParentFolderIdx == b.ParentFolderIdx && a.Name == b.Name && a.Size == b.Size;
      };
      ASSERT_TRUE(std::equal(forest.records.begin(), forest.records.end(), expected.begin(),
                             expected.end(), sameRecord))
          << "criteria " << choice << ", " << count << " records";
    }
  }
}

TEST(RecordSort, AStoppedSortLeavesTheRecordsAsTheyWere) {
  Forest forest;
  Fill(forest, 60000, 3);
  const std::vector<DupeFileUDT> before = forest.records;
  const std::atomic<bool> stop = true;
  EXPECT_FALSE(SortRecords(forest.records, {forest.names, forest.marks, forest.unreadable},
                           {true, true, false, false}, stop));
  EXPECT_TRUE(std::equal(before.begin(), before.end(), forest.records.begin(),
                         [](const DupeFileUDT& a, const DupeFileUDT& b) {
                           return a.ParentFolderIdx == b.ParentFolderIdx;
                         }));
}

}  // namespace
}  // namespace quillmarsh
