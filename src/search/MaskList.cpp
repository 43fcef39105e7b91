// SPDX-License-Identifier: MIT
#include "search/MaskList.h"

#include <algorithm>

#include "base/CaseMapping.h"
#include "platform/TextOperations.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

namespace {

bool IsWildcard(char16_t unit) {
  return unit == u'*' || unit == u'?';
}

bool HasWildcard(TextView text) {
  return text.find_first_of(u"*?") != TextView::npos;
}

std::uint32_t PairOf(char16_t first, char16_t second) {
  return (static_cast<std::uint32_t>(first) << 16U) | second;
}

std::size_t BitOf(std::uint32_t pair) {
  return ((pair >> 16U) * 61U + (pair & 0xFFFFU)) % 4096U;
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

std::vector<Text> SplitListText(TextView list) {
  std::vector<Text> pieces;
  if (list.empty()) return pieces;
  const TextView separator = list.find(kListSeparator) != TextView::npos ? kListSeparator : u",";
  for (;;) {
    const std::size_t end = list.find(separator);
    pieces.emplace_back(list.substr(0, end));
    if (end == TextView::npos) return pieces;
    list.remove_prefix(end + separator.size());
  }
}

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
  AddByPair(upper);
}

// Of all pairs that the mask's plain letters hold, the one that fewest masks are filed under yet.
void MaskList::AddByPair(const Text& mask) {
  bool isFound = false;
  std::uint32_t best = 0;
  std::size_t fewest = 0;
  for (std::size_t i = 1; i < mask.size(); ++i) {
    if (IsWildcard(mask[i - 1]) || IsWildcard(mask[i])) continue;
    const std::uint32_t pair = PairOf(mask[i - 1], mask[i]);
    const auto filed = mByPair.find(pair);
    const std::size_t count = filed == mByPair.end() ? 0 : filed->second.size();
    if (!isFound || count < fewest) {
      isFound = true;
      best = pair;
      fewest = count;
    }
  }
  if (!isFound) {
    mOthers.push_back(mask);
    return;
  }
  mByPair[best].push_back(mask);
  mPairs.set(BitOf(best));
}

bool MaskList::DoesFileMatchAnyMask(TextView name) const {
  if (mMatchesAll) return true;
  const UpperName upper(name);
  if (HasListedExtension(upper.View()) || MatchesByPairs(upper.View())) return true;
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

bool MaskList::MatchesByPairs(TextView upperName) const {
  if (mByPair.empty()) return false;
  for (std::size_t i = 1; i < upperName.size(); ++i) {
    const std::uint32_t pair = PairOf(upperName[i - 1], upperName[i]);
    if (!mPairs.test(BitOf(pair))) continue;
    const auto filed = mByPair.find(pair);
    if (filed == mByPair.end()) continue;
    for (const Text& mask : filed->second) {
      if (PathMatchSpecW(upperName, mask)) return true;
    }
  }
  return false;
}

}  // namespace quillmarsh
