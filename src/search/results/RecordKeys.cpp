// SPDX-License-Identifier: MIT
// Fields as numbers that compare as their texts would.
#include "search/results/RecordKeys.h"

#include "base/LocaleFormat.h"
#include "base/TextEquality.h"

namespace quillmarsh {

namespace {

constexpr TextView kSeparator = u"|";
constexpr TextView kDateFormat = u"yyyy/mm/dd Hh:Nn:Ss";

Text HexText(std::uint32_t number) {
  constexpr TextView Digits = u"0123456789ABCDEF";
  Text text;
  do {
    text.insert(text.begin(), Digits[number & 15U]);
    number >>= 4U;
  } while (number != 0);
  return text;
}

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

SecondPasses RecordFacts::SecondPassesOf(const DupeFileUDT& record) const {
  if (secondPasses.empty()) return {};
  const auto found = secondPasses.find(record.Name);
  return found != secondPasses.end() ? found->second : SecondPasses{};
}

std::int64_t ContentsKey(const DupeFileUDT& record, const UnreadableMarks& unreadable) {
  if (unreadable.empty() || !unreadable.contains(record.Name)) return record.CRC32;
  constexpr std::int64_t BehindAllChecksums = std::int64_t{1} << 33U;
  return BehindAllChecksums + static_cast<std::int64_t>(record.Name);
}

RecordKey RecordKeyReader::Next(const DupeFileUDT& record) {
  RecordKey key;
  if (mCriteria.namesMatch) key.name = mFacts.names.Get(record.Name);
  // Files of different size cannot have the same contents, whatever their checksums say.
  if (mCriteria.sizesMatch || mCriteria.contentsMatch) key.size = record.Size.Raw();
  if (mCriteria.contentsMatch) key.contents = ContentsKey(record, mFacts.unreadable);
  if (!mCriteria.createTimeStampsMatch && !mCriteria.lastModTimeStampsMatch) return key;
  const SecondPasses passes = mFacts.SecondPassesOf(record);
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
  if (a.size != b.size || a.created != b.created || a.lastModified != b.lastModified ||
      a.contents != b.contents)
    return false;
  return !mCriteria.namesMatch || AreStringsEqual(a.name, b.name, true);
}

Text KeyText(const RecordKey& key, const SearchCriteria& criteria) {
  Text text;
  if (criteria.namesMatch) text.append(key.name).append(kSeparator);
  if (criteria.sizesMatch) text.append(Currency::FromRaw(key.size).ToText()).append(kSeparator);
  if (criteria.createTimeStampsMatch) AppendDate(text, key.created);
  if (criteria.lastModTimeStampsMatch) AppendDate(text, key.lastModified);
  if (criteria.contentsMatch)
    text.append(HexText(static_cast<std::uint32_t>(key.contents))).append(kSeparator);
  return text;
}

}  // namespace quillmarsh
