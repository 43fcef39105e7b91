// SPDX-License-Identifier: MIT
// What makes two records equal: the fields of the chosen criteria, in their fixed order. A date
// counts as the second that its text shows. Pure; owns nothing.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

#include "base/DupeFileUDT.h"
#include "base/NameArena.h"

namespace quillmarsh {

// The criteria as they stood when a search began.
struct SearchCriteria {
  bool namesMatch = false;
  bool sizesMatch = false;
  bool createTimeStampsMatch = false;
  bool lastModTimeStampsMatch = false;
  bool contentsMatch = false;

  // What the files must agree on before any of them is read.
  [[nodiscard]] SearchCriteria WithoutContents() const {
    SearchCriteria others = *this;
    others.contentsMatch = false;
    return others;
  }
};

// Records of which a time lies in the second pass of an hour that the zone repeats: their local
// time alone would make them equal to a file of the first pass. By name handle, which a record
// keeps.
struct SecondPasses {
  bool created = false;
  bool lastModified = false;
};
using SecondPassMarks = std::unordered_map<NameHandle, SecondPasses>;

// Records of which the contents could not be read, by name handle. Nobody knows what is in such a
// file, so it equals no other, whatever number stands for its checksum.
using UnreadableMarks = std::unordered_set<NameHandle>;

// What the readers of keys need beside the record.
struct RecordFacts {
  const NameArena& names;
  const SecondPassMarks& secondPasses;
  const UnreadableMarks& unreadable;

  [[nodiscard]] SecondPasses SecondPassesOf(const DupeFileUDT& record) const;
};

// Equal for two records exactly if their contents count as equal; ascends with the signed checksum.
[[nodiscard]] std::int64_t ContentsKey(const DupeFileUDT& record,
                                       const UnreadableMarks& unreadable);

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
  std::int64_t contents = 0;
};

// Makes the keys of records one after another, in the order of the sorted array: an impossible date
// takes over the date of the record before it, as its text would.
class RecordKeyReader {
 public:
  RecordKeyReader(const RecordFacts& facts, const SearchCriteria& criteria)
      : mFacts(facts), mCriteria(criteria) {}

  [[nodiscard]] RecordKey Next(const DupeFileUDT& record);
  // Equal in every chosen field; names ignoring case, and only at equal length.
  [[nodiscard]] bool AreEqual(const RecordKey& a, const RecordKey& b) const;

 private:
  RecordFacts mFacts;
  SearchCriteria mCriteria;
  std::int64_t mLastCreated = kNoDateKey;
  std::int64_t mLastLastModified = kNoDateKey;
};

// The key as a text, each field followed by "|": report.doc|20480|2021/03/04 17:05:09|, and with
// contents their checksum in upper-case hexadecimal: report.doc|20480|CBF43926|
[[nodiscard]] Text KeyText(const RecordKey& key, const SearchCriteria& criteria);

}  // namespace quillmarsh
