// SPDX-License-Identifier: MIT
// Masks, roots and byte sizes against the calls of the system's own library.
#include <gtest/gtest.h>

#include "RealCalls.h"
#include "base/CaseMapping.h"
#include "platform/TextOperations.h"

// Behind ours, as the system's headers stand everywhere.
#include <shlwapi.h>

namespace quillmarsh {
namespace {

using win32::Narrow;
using win32::Wide;

bool RealMatch(TextView text, TextView masks) {
  return ::PathMatchSpecW(Wide(text).c_str(), Wide(masks).c_str()) != FALSE;
}

// What an empty mask matches is documented nowhere, and only the empty text tells it apart.
bool IsOpenQuestion(TextView text, TextView masks) {
  if (!text.empty() || masks == u"*.*") return false;
  for (std::size_t begin = 0; begin <= masks.size();) {
    const std::size_t end = std::min(masks.find(u';', begin), masks.size());
    if (masks.substr(begin, end - begin).find_first_not_of(u' ') == TextView::npos) return true;
    begin = end + 1;
  }
  return false;
}

TEST(RealMaskTest, MasksMatchAsTheSystemSays) {
  constexpr TextView letters[] = {u"ab.", u"aAb.B \u00E9\u00C9\u0436\u0416"};
  constexpr TextView signs[] = {u"aA.b*? ;", u"aAb.B*?; \u00E9\u00C9\u0436\u0416"};
  constexpr TextView whole[] = {u"*.*", u"*", u"*.*;a", u" *.*", u"*.* "};
  FewFailures failures;
  int matching = 0;
  for (std::uint32_t seed = 1; seed <= 200000 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    const Text text = dice.Word(dice.Of(letters), 7);
    const Text masks = dice.OneIn(20) ? Text(dice.Of(whole)) : dice.Word(dice.Of(signs), 9);
    if (IsOpenQuestion(text, masks)) continue;
    const bool real = RealMatch(text, masks);
    matching += real ? 1 : 0;
    if (PathMatchSpecW(text, masks) == real) continue;
    failures.Count();
    ADD_FAILURE() << "seed " << seed << ": " << Shown(text) << " against " << Shown(masks) << " is "
                  << real;
  }
  EXPECT_GT(matching, 10000);
}

char16_t RealLowerCase(char16_t unit) {
  auto lower = static_cast<wchar_t>(unit);
  ::CharLowerBuffW(&lower, 1);
  return static_cast<char16_t>(lower);
}

// Our table knows more than the system's, which leaves alone what does not come back: the dotless
// i, the long s, the end sigma and their like.
TEST(RealMaskTest, EveryUnitMatchesItsOtherCase) {
  FewFailures failures;
  int alone = 0;
  for (unsigned number = 1; number < 0x10000 && !failures.Enough(); ++number) {
    const auto unit = static_cast<char16_t>(number);
    const char16_t upper = UpperCase(unit);
    if (TextView(u"*?; ").find(unit) != TextView::npos) continue;
    if (upper != unit && RealLowerCase(upper) != unit) {
      ++alone;
      continue;
    }
    const Text text(1, unit);
    for (const char16_t other : {upper, RealLowerCase(unit)}) {
      const Text mask(1, other);
      const bool real = RealMatch(text, mask);
      if (PathMatchSpecW(text, mask) == real) continue;
      failures.Count();
      ADD_FAILURE() << Shown(text) << " against " << Shown(mask) << " is " << real;
    }
  }
  if (IsWine()) {
    EXPECT_LE(alone, 30);
  }
}

// What is left in the buffer. The answer of the call says only whether it found a root that it
// knows.
Text RealRoot(TextView path) {
  std::wstring buffer = Wide(path);
  buffer.resize(buffer.size() + 300);
  ::PathStripToRootW(buffer.data());
  return Narrow(buffer.c_str());
}

bool IsDrive(TextView text) {
  return text.size() > 1 && text[1] == u':' && UpperCase(text[0]) >= u'A' &&
         UpperCase(text[0]) <= u'Z';
}

// Wine takes any unit before a colon, wherever it stands, for a drive. It keeps the backslash
// behind a server without a share, and knows of what begins with "\\\\?\\" the drives alone:
// neither shares nor volumes.
bool IsReadOtherwiseByWine(TextView path) {
  constexpr TextView Long = u"\\\\?\\";
  constexpr TextView Device = u"\\\\.\\";
  constexpr TextView Share = u"\\\\";
  const bool isLong = path.starts_with(Long);
  if (isLong) path.remove_prefix(Long.size());
  const bool hasDrive = IsDrive(path);
  if (path.substr(hasDrive ? 2 : 0).find(u':') != TextView::npos) return true;
  if (isLong) return !hasDrive || !path.substr(2).starts_with(u'\\');
  if (path.starts_with(Device)) return true;
  if (!path.starts_with(Share)) return false;
  path.remove_prefix(Share.size());
  const std::size_t end = path.find(u'\\');
  const bool hasShare = end != TextView::npos && end > 0 && end + 1 < path.size();
  return end != TextView::npos && (!hasShare || path[end + 1] == u'\\');
}

TEST(RealRootTest, RootsAreWhatTheSystemLeaves) {
  constexpr TextView beginnings[] = {u"Q:",
                                     u"c:",
                                     u"1:",
                                     u"\\",
                                     u"\\\\",
                                     u"\\\\server\\",
                                     u"\\\\?\\",
                                     u"\\\\?\\Q:\\",
                                     u"\\\\?\\UNC\\",
                                     u"\\\\?\\Volume{1-2}\\",
                                     u"\\\\.\\",
                                     u"/",
                                     u"",
                                     u"a"};
  constexpr TextView pieces[] = {u"\\", u"\\", u"\\\\", u"/",  u"a",   u"server", u".",
                                 u"..", u" ",  u"?",    u"c:", u"UNC", u"{}"};
  FewFailures failures;
  int compared = 0;
  for (std::uint32_t seed = 1; seed <= 100000 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    Text path(dice.Of(beginnings));
    for (std::size_t count = dice.Below(6); count > 0; --count) path += dice.Of(pieces);
    if (IsWine() && IsReadOtherwiseByWine(path)) continue;
    ++compared;
    const Text real = RealRoot(path);
    const Text ours = PathStripToRootW(path);
    if (ours == real) continue;
    failures.Count();
    ADD_FAILURE() << "seed " << seed << ": " << Shown(path) << " has " << Shown(real) << " and not "
                  << Shown(ours);
  }
  EXPECT_GT(compared, 40000);
}

std::vector<std::int64_t> InterestingSizes() {
  std::vector<std::int64_t> sizes;
  const auto addAround = [&sizes](std::uint64_t size) {
    for (std::uint64_t i = 0; i <= 24; ++i)
      sizes.push_back(static_cast<std::int64_t>(size + i - 12));
  };
  for (unsigned shift = 0; shift < 64; ++shift) {
    addAround(std::uint64_t{1} << shift);
    for (const std::uint64_t factor : {10, 100, 999, 1000, 1023}) addAround(factor << shift);
  }
  for (std::uint64_t power = 1; power < 1'000'000'000'000'000'000; power *= 10) addAround(power);
  for (std::uint32_t seed = 1; seed <= 100000; ++seed) {
    Dice dice(seed);
    const std::uint64_t bits = dice.Bits();
    sizes.push_back(static_cast<std::int64_t>(bits >> dice.Below(64)));
    sizes.push_back(-static_cast<std::int64_t>(bits >> (33 + dice.Below(31))));
  }
  return sizes;
}

TEST(RealByteSizeTest, SizesReadAsTheSystemWritesThem) {
  wchar_t separator[8] = {};
  ASSERT_GT(::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator, 8), 0);
  FewFailures failures;
  for (const std::int64_t size : InterestingSizes()) {
    // Wine tells only the low half of a number below zero.
    if (failures.Enough() || (IsWine() && size < INT32_MIN)) continue;
    wchar_t buffer[64] = {};
    ASSERT_NE(::StrFormatByteSizeW(size, buffer, 64), nullptr);
    const Text ours = StrFormatByteSizeW(size, Narrow(separator));
    if (Narrow(buffer) == ours) continue;
    failures.Count();
    ADD_FAILURE() << size << " is " << Shown(Narrow(buffer)) << " and not " << Shown(ours);
  }
}

}  // namespace
}  // namespace quillmarsh
