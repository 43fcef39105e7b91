// SPDX-License-Identifier: MIT
// A text of one entry with a comma in it would be read as a list of two, so such an entry is stored
// twice, and shown once.
#include "filetypes/cFilterList.h"

#include <algorithm>

#include "base/TextEquality.h"
#include "filetypes/ListText.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

namespace {

bool HasComma(TextView entry) {
  return entry.find(u',') != TextView::npos;
}

// A final separator ends the last entry and begins none.
std::vector<Text> EntriesOf(TextView stored) {
  const TextView separator = SeparatorOfList(stored);
  std::vector<Text> entries;
  for (const Text& piece : SplitText(stored, separator)) entries.emplace_back(TrimBlanks(piece));
  if (stored.ends_with(separator)) entries.pop_back();
  const auto isSecond = [](const Text& a, const Text& b) { return a == b && HasComma(a); };
  entries.erase(std::unique(entries.begin(), entries.end(), isSecond), entries.end());
  return entries;
}

Text StoredTextOf(const std::vector<Text>& entries) {
  if (entries.size() == 1 && HasComma(entries.front()))
    return entries.front() + Text(kListSeparator) + entries.front();
  return JoinTexts(entries, kListSeparator);
}

}  // namespace

cFilterList::cFilterList(FilterListKind kind, TextView stored)
    : mKind(kind), mEntries(EntriesOf(stored)), mStoredText(stored) {}

cFilterList::AddResult cFilterList::Add(TextView entry) {
  const bool isAllFiles = entry == u"*.*" || entry == u"*";
  if (mKind == FilterListKind::Files && isAllFiles) return AddResult::Ignored;
  if (entry.empty()) return AddResult::Empty;
  const auto isTheSame = [&](const Text& known) { return AreStringsEqual(known, entry, true); };
  if (std::ranges::any_of(mEntries, isTheSame)) return AddResult::Ignored;
  mEntries.emplace_back(entry);
  if (mStoredText.empty()) {
    mStoredText = StoredTextOf(mEntries);
  } else {
    if (!mStoredText.ends_with(kListSeparator)) mStoredText += kListSeparator;
    mStoredText += entry;
  }
  return AddResult::Added;
}

bool cFilterList::Remove(int position) {
  if (position < 0 || position >= static_cast<int>(mEntries.size())) return false;
  mEntries.erase(mEntries.begin() + position);
  mStoredText = StoredTextOf(mEntries);
  return true;
}

}  // namespace quillmarsh
