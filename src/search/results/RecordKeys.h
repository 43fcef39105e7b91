// SPDX-License-Identifier: MIT
// What makes two records equal: the fields of the chosen criteria, in their fixed order. A date
// counts as the second that its text shows. Pure; owns nothing.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "base/DupeFileUDT.h"
#include "base/NameArena.h"

namespace quillmarsh {

// The criteria as they stood when a search began.
struct SearchCriteria {
  bool namesMatch = false;
  bool sizesMatch = false;
  bool createTimeStampsMatch = false;
  bool lastModTimeStampsMatch = false;
};

// Records of which a time lies in the second pass of an hour that the zone repeats: their local
// time alone would make them equal to a file of the first pass. By name handle, which a record
// keeps.
struct SecondPasses {
  bool created = false;
  bool lastModified = false;
};
using SecondPassMarks = std::unordered_map<NameHandle, SecondPasses>;

// A number that is equal for two dates exactly if their texts to the second are, and that ascends
// with them. A date without a text (an impossible one) has none.
inline constexpr std::int64_t kNoDateKey = INT64_MIN;
[[nodiscard]] std::int64_t DateKey(Date date, bool isSecondPass);

// The comparable fields of one record.
struct RecordKey {
  TextView name;
  std::int64_t size = 0;
  std::int64_t created = kNoDateKey;
  std::int64_t lastModified = kNoDateKey;
};

// Makes the keys of records one after another, in the order of the sorted array: an impossible date
// takes over the date of the record before it, as its text would.
class RecordKeyReader {
 public:
  RecordKeyReader(const NameArena& names, const SecondPassMarks& secondPasses,
                  const SearchCriteria& criteria)
      : mNames(names), mSecondPasses(secondPasses), mCriteria(criteria) {}

  [[nodiscard]] RecordKey Next(const DupeFileUDT& record);
  // Equal in every chosen field; names ignoring case, and only at equal length.
  [[nodiscard]] bool AreEqual(const RecordKey& a, const RecordKey& b) const;

 private:
  const NameArena& mNames;
  const SecondPassMarks& mSecondPasses;
  SearchCriteria mCriteria;
  std::int64_t mLastCreated = kNoDateKey;
  std::int64_t mLastLastModified = kNoDateKey;
};

// The key as a text, each field followed by "|": report.doc|20480|2021/03/04 17:05:09|
[[nodiscard]] Text KeyText(const RecordKey& key, const SearchCriteria& criteria);

}  // namespace quillmarsh
