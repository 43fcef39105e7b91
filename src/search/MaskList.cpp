// SPDX-License-Identifier: MIT
// Plain endings are looked up; any other mask is asked only about names that hold three letters of
// it.
#include "search/MaskList.h"

#include <algorithm>

#include "base/CaseMapping.h"
#include "platform/TextOperations.h"

namespace quillmarsh {

namespace {

bool HasWildcard(TextView text) {
  return text.find_first_of(u"*?") != TextView::npos;
}

constexpr std::size_t kGramLength = 3;

// Three neighbouring letters as one number.
std::uint64_t GramAt(TextView text, std::size_t place) {
  return (std::uint64_t{text[place]} << 32U) | (std::uint64_t{text[place + 1]} << 16U) |
         text[place + 2];
}

std::size_t BitOf(std::uint64_t gram) {
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15ULL;  // 2^64 over the golden ratio
  return (gram * kSpread) >> 50U;
}

// A name in upper case, in a buffer on the stack as long as it is no longer than most.
class UpperName {
 public:
  explicit UpperName(TextView name) {
    char16_t* to = mShort;
    if (name.size() > kShortLength) {
      mLong.resize(name.size());
      to = mLong.data();
    }
    for (std::size_t i = 0; i < name.size(); ++i) to[i] = UpperCase(name[i]);
    mView = TextView(to, name.size());
  }
  [[nodiscard]] TextView View() const { return mView; }

 private:
  static constexpr std::size_t kShortLength = 256;
  char16_t mShort[kShortLength];
  Text mLong;
  TextView mView;
};

}  // namespace

MaskList::MaskList(const std::vector<Text>& masks) {
  for (const Text& entry : masks) {
    // "*.*" stands for everything only where it is not one of a list.
    if (entry == u"*.*") mMatchesAll = true;
    TextView rest = entry;
    for (;;) {
      const std::size_t end = rest.find(u';');
      Add(rest.substr(0, end));
      if (end == TextView::npos) break;
      rest.remove_prefix(end + 1);
    }
  }
  mIsEmpty = masks.empty();
}

void MaskList::Add(TextView mask) {
  while (!mask.empty() && mask.front() == u' ') mask.remove_prefix(1);
  if (mask.empty()) return;
  if (mask == u"*") {
    mMatchesAll = true;
    return;
  }
  if (mask == u"*.*") {
    // As one of a list it wants a dot; with the separator behind it it stays one of a list.
    mOthers.emplace_back(u"*.*;");
    return;
  }
  const Text upper = UpperCaseText(mask);
  const TextView behindStar = TextView(upper).substr(1);
  const bool isPlainExtension = upper.starts_with(u"*.") && behindStar.size() > 1 &&
                                !HasWildcard(behindStar) && behindStar.rfind(u'.') == 0;
  if (isPlainExtension) {
    mExtensions.emplace(behindStar.substr(1));
    mLongestExtension = std::max(mLongestExtension, behindStar.size() - 1);
    return;
  }
  AddByGram(upper);
}

// Of all that the mask's plain letters hold, the one that fewest masks are filed under yet.
void MaskList::AddByGram(const Text& mask) {
  bool isFound = false;
  std::uint64_t best = 0;
  std::size_t fewest = 0;
  for (std::size_t i = 0; i + kGramLength <= mask.size(); ++i) {
    if (HasWildcard(TextView(mask).substr(i, kGramLength))) continue;
    const std::uint64_t gram = GramAt(mask, i);
    const auto filed = mByGram.find(gram);
    const std::size_t count = filed == mByGram.end() ? 0 : filed->second.size();
    if (!isFound || count < fewest) {
      isFound = true;
      best = gram;
      fewest = count;
    }
  }
  if (!isFound) {
    mOthers.push_back(mask);
    return;
  }
  mByGram[best].push_back(mask);
  mGrams.set(BitOf(best));
}

bool MaskList::DoesFileMatchAnyMask(TextView name) const {
  if (mMatchesAll) return true;
  const UpperName upper(name);
  if (HasListedExtension(upper.View()) || MatchesByGrams(upper.View())) return true;
  for (const Text& mask : mOthers) {
    if (PathMatchSpecW(upper.View(), mask)) return true;
  }
  return false;
}

bool MaskList::HasListedExtension(TextView upperName) const {
  if (mExtensions.empty()) return false;
  const std::size_t dot = upperName.rfind(u'.');
  if (dot == TextView::npos || upperName.size() - dot - 1 > mLongestExtension) return false;
  return mExtensions.contains(Text(upperName.substr(dot + 1)));
}

bool MaskList::MatchesByGrams(TextView upperName) const {
  if (mByGram.empty()) return false;
  for (std::size_t i = 0; i + kGramLength <= upperName.size(); ++i) {
    const std::uint64_t gram = GramAt(upperName, i);
    if (!mGrams.test(BitOf(gram))) continue;
    const auto filed = mByGram.find(gram);
    if (filed == mByGram.end()) continue;
    for (const Text& mask : filed->second) {
      if (PathMatchSpecW(upperName, mask)) return true;
    }
  }
  return false;
}

}  // namespace quillmarsh
