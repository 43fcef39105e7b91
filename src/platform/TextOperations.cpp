// SPDX-License-Identifier: MIT
// Masks, roots, byte sizes and the hash of folder paths.
#include "platform/TextOperations.h"

#include <algorithm>
#include <array>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "base/CaseMapping.h"
#include "base/TextEquality.h"

namespace quillmarsh {
namespace {

// After a mismatch only the last '*' is tried again one unit farther, which is enough, since what
// an earlier one took was the least possible.
bool MatchesMask(TextView text, TextView mask) {
  std::size_t inText = 0;
  std::size_t inMask = 0;
  std::size_t behindStar = TextView::npos;
  std::size_t resumeText = 0;
  while (inText < text.size()) {
    if (inMask < mask.size() && mask[inMask] == u'*') {
      behindStar = ++inMask;
      resumeText = inText;
    } else if (inMask < mask.size() &&
               (mask[inMask] == u'?' || UpperCase(mask[inMask]) == UpperCase(text[inText]))) {
      ++inMask;
      ++inText;
    } else if (behindStar != TextView::npos) {
      inMask = behindStar;
      inText = ++resumeText;
    } else {
      return false;
    }
  }
  return mask.find_first_not_of(u'*', inMask) == TextView::npos;
}

bool IsDriveLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

// The length of "Q:\" or "Q:" at the front, 0 without a drive.
std::size_t DriveRootLength(TextView path) {
  if (path.size() < 2 || !IsDriveLetter(path[0]) || path[1] != u':') return 0;
  return path.size() > 2 && path[2] == u'\\' ? 3 : 2;
}

// The length of "server\share" at the front, without a final backslash; of "server" alone where no
// share follows.
std::size_t ServerAndShareLength(TextView path) {
  const std::size_t server = std::min(path.find(u'\\'), path.size());
  if (server == 0 || server == path.size()) return server;
  const std::size_t share = std::min(path.find(u'\\', server + 1), path.size());
  return share == server + 1 || server + 1 == path.size() ? server : share;
}

}  // namespace

bool PathMatchSpecW(TextView text, TextView masks) {
  if (masks == u"*.*") return true;
  while (!masks.empty()) {
    const std::size_t end = std::min(masks.find(u';'), masks.size());
    TextView mask = masks.substr(0, end);
    mask.remove_prefix(std::min(mask.find_first_not_of(u' '), mask.size()));
    if (!mask.empty() && MatchesMask(text, mask)) return true;
    masks.remove_prefix(std::min(end + 1, masks.size()));
  }
  return false;
}

Text PathStripToRootW(TextView path) {
  constexpr TextView LongShare = u"\\\\?\\UNC\\";
  constexpr TextView LongVolume = u"\\\\?\\Volume{";
  constexpr TextView Long = u"\\\\?\\";
  constexpr TextView Share = u"\\\\";
  const auto front = [path](std::size_t length) { return Text(path.substr(0, length)); };
  const auto behind = [path](TextView prefix) { return path.substr(prefix.size()); };

  if (StartsWithIgnoringCase(path, LongShare))
    return front(LongShare.size() + ServerAndShareLength(behind(LongShare)));
  if (StartsWithIgnoringCase(path, LongVolume)) {
    const std::size_t end = path.find(u'\\', LongVolume.size());
    return end == TextView::npos ? Text(path) : front(end + 1);
  }
  if (path.starts_with(Long)) {
    const std::size_t root = DriveRootLength(behind(Long));
    return root == 0 ? Text() : front(Long.size() + root);
  }
  if (path.starts_with(Share)) return front(Share.size() + ServerAndShareLength(behind(Share)));
  if (path.starts_with(u'\\')) return front(1);
  return front(DriveRootLength(path));
}

Text StrFormatByteSizeW(std::int64_t bytes, TextView decimalSeparator) {
  static constexpr std::array<TextView, 6> Units = {u" KB", u" MB", u" GB", u" TB", u" PB", u" EB"};
  if (bytes < 1024) return DecimalText(bytes) + u" bytes";
  std::size_t unit = 0;
  unsigned shift = 10;
  while (unit + 1 < Units.size() && (bytes >> shift) >= 1000) {
    ++unit;
    shift += 10;
  }
  const std::int64_t whole = bytes >> shift;
  Text text = DecimalText(whole);
  const std::size_t decimals = whole < 10 ? 2 : whole < 100 ? 1 : 0;
  if (decimals > 0) text += decimalSeparator;
  auto rest = static_cast<std::uint64_t>(bytes - (whole << shift));  // below 2^60: ten fit 64 bits
  for (std::size_t i = 0; i < decimals; ++i) {
    text += static_cast<char16_t>(u'0' + (rest * 10 >> shift));
    rest = rest * 10 & ((std::uint64_t{1} << shift) - 1);
  }
  return text.append(Units[unit]);
}

std::int32_t HashData(std::span<const std::byte> bytes) {
  // Stand in for the two values that mean something else to whoever keeps the hash.
  constexpr std::int32_t InsteadOfZero = 1;
  constexpr std::int32_t InsteadOfMinusOne = 2;
  const auto hash = static_cast<std::int32_t>(XXH32(bytes.data(), bytes.size(), 0));
  if (hash == 0) return InsteadOfZero;
  return hash == -1 ? InsteadOfMinusOne : hash;
}

}  // namespace quillmarsh
