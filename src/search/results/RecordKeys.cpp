// SPDX-License-Identifier: MIT
// Fields as numbers that compare as their texts would.
#include "search/results/RecordKeys.h"

#include "base/LocaleFormat.h"
#include "base/TextEquality.h"

namespace quillmarsh {

namespace {

constexpr TextView kSeparator = u"|";
constexpr TextView kDateFormat = u"yyyy/mm/dd Hh:Nn:Ss";

void AppendDate(Text& text, std::int64_t key) {
  static const LocaleFacts facts;
  if (key != kNoDateKey) {
    // The two passes of a repeated hour differ in the lowest bit and have one text.
    text += FormatDate(Date::FromWholeSeconds(key >> 1), kDateFormat, facts);
  }
  text += kSeparator;
}

}  // namespace

std::int64_t DateKey(Date date, bool isSecondPass) {
  if (!date.IsValid()) return kNoDateKey;
  return date.WholeSeconds() * 2 + (isSecondPass ? 1 : 0);
}

RecordKey RecordKeyReader::Next(const DupeFileUDT& record) {
  RecordKey key;
  if (mCriteria.namesMatch) key.name = mNames.Get(record.Name);
  if (mCriteria.sizesMatch) key.size = record.Size.Raw();
  if (!mCriteria.createTimeStampsMatch && !mCriteria.lastModTimeStampsMatch) return key;
  SecondPasses passes;
  if (!mSecondPasses.empty()) {
    if (const auto found = mSecondPasses.find(record.Name); found != mSecondPasses.end()) {
      passes = found->second;
    }
  }
  if (mCriteria.createTimeStampsMatch) {
    key.created = DateKey(record.CreatedDate, passes.created);
    if (key.created == kNoDateKey) key.created = mLastCreated;
    mLastCreated = key.created;
  }
  if (mCriteria.lastModTimeStampsMatch) {
    key.lastModified = DateKey(record.LastModifiedDate, passes.lastModified);
    if (key.lastModified == kNoDateKey) key.lastModified = mLastLastModified;
    mLastLastModified = key.lastModified;
  }
  return key;
}

bool RecordKeyReader::AreEqual(const RecordKey& a, const RecordKey& b) const {
  if (a.size != b.size || a.created != b.created || a.lastModified != b.lastModified) return false;
  return !mCriteria.namesMatch || AreStringsEqual(a.name, b.name, true);
}

Text KeyText(const RecordKey& key, const SearchCriteria& criteria) {
  Text text;
  if (criteria.namesMatch) text.append(key.name).append(kSeparator);
  if (criteria.sizesMatch) text.append(Currency::FromRaw(key.size).ToText()).append(kSeparator);
  if (criteria.createTimeStampsMatch) AppendDate(text, key.created);
  if (criteria.lastModTimeStampsMatch) AppendDate(text, key.lastModified);
  return text;
}

}  // namespace quillmarsh
