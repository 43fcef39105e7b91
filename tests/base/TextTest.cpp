// SPDX-License-Identifier: MIT
// Conversions of text, the table of upper-case mappings, and comparison without regard to case.
#include "base/Text.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "base/CaseMapping.h"
#include "base/RuntimeError.h"
#include "base/TextEquality.h"

namespace quillmarsh {
namespace {

TEST(TextTest, Utf8OfWholeCodePointsComesBack) {
  Text text;
  for (char32_t point = 1; point <= 0x10FFFF; point += point < 0x3000 ? 1 : 251) {
    if (point >= 0xD800 && point <= 0xDFFF) continue;
    if (point >= 0x10000) {
      text += static_cast<char16_t>(0xD7C0 + (point >> 10U));
      text += static_cast<char16_t>(0xDC00 + (point & 0x3FFU));
    } else {
      text += static_cast<char16_t>(point);
    }
  }
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  EXPECT_EQ(ToUtf8(u"a\u00e9\u20ac\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(TextTest, ASurrogateWithoutItsPartnerBecomesTheReplacement) {
  const Text high(1, char16_t{0xD800});
  const Text low(1, char16_t{0xDC00});
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(ToUtf8(high), replacement);
  EXPECT_EQ(ToUtf8(low + u"x" + high + high + low),
            replacement + "x" + replacement + "\xF0\x90\x80\x80");
}

TEST(TextTest, EachByteThatIsNoUtf8BecomesOneReplacement) {
  struct Case {
    const char* name;
    std::string_view bytes;
    TextView text;
  };
  constexpr Case Cases[] = {
      {"stray tail", "a\x80z", u"a\uFFFDz"},
      {"lead at the end", "a\xE2\x82", u"a\uFFFD\uFFFD"},
      {"lead before another character", "\xE2\x82z", u"\uFFFD\uFFFDz"},
      {"longer than needed, two", "\xC0\xAF", u"\uFFFD\uFFFD"},
      {"longer than needed, three", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
      {"longer than needed, four", "\xF0\x80\x80\xAF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"beyond the last code point", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"byte that never occurs", "\xFF", u"\uFFFD"},
  };
  for (const Case& row : Cases) EXPECT_EQ(FromUtf8(row.bytes), row.text) << row.name;
}

TEST(TextTest, EveryByteOfCodePage1252ComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(ToCodePage1252(FromCodePage1252(all)), all);
  EXPECT_EQ(FromCodePage1252("\x80\x9F\xE4\x81"), u"\u20AC\u0178\u00E4\u0081");
  EXPECT_EQ(ToCodePage1252(u"\u20AC\u03A9\u0080x"), "\x80??x");
}

TEST(TextTest, DecimalTextReachesBothEnds) {
  EXPECT_EQ(DecimalText(0), u"0");
  EXPECT_EQ(DecimalText(std::numeric_limits<std::int64_t>::min()), u"-9223372036854775808");
}

TEST(TextTest, OnlyBlanksAreTrimmed) {
  EXPECT_EQ(TrimBlanks(u"  a b\t "), u"a b\t");
  EXPECT_EQ(TrimBlanks(u"   "), u"");
}

TEST(CaseMappingTest, MappingsAreSimpleAndNeverOfALocale) {
  struct Case {
    char16_t unit;
    char16_t upper;
  };
  constexpr Case Cases[] = {
      {u'a', u'A'},     {u'z', u'Z'},     {u'Z', u'Z'},     {u'_', u'_'},
      {0x00DF, 0x00DF},  // its upper case is two letters
      {0x0131, u'I'},   {u'i', u'I'},     {0x00FF, 0x0178}, {0x00F7, 0x00F7},
      {0x00B5, 0x039C}, {0x01C5, 0x01C4}, {0x017F, u'S'},   {0x03C2, 0x03A3},
      {0x0451, 0x0401}, {0x1F80, 0x1F88},  // the longer full mapping does not count
      {0x0149, 0x0149}, {0x10D0, 0x1C90}, {0xAB70, 0x13A0}, {0xFF41, 0xFF21},
      {0xD801, 0xD801}, {0xFFFF, 0xFFFF},
  };
  for (const Case& row : Cases) EXPECT_EQ(UpperCase(row.unit), row.upper) << unsigned{row.unit};
  int mapped = 0;
  for (unsigned unit = 0; unit < 65536; ++unit) {
    const char16_t upper = UpperCase(static_cast<char16_t>(unit));
    mapped += upper != unit ? 1 : 0;
    ASSERT_EQ(UpperCase(upper), upper) << unit;
  }
  EXPECT_EQ(mapped, 1190);
  EXPECT_EQ(UpperCaseText(u"stra\u00dfe.\u00e9"), u"STRA\u00dfE.\u00c9");
}

TEST(TextEqualityTest, TextsOfDifferentLengthAreNeverEqual) {
  EXPECT_FALSE(AreStringsEqual(u"stra\u00dfe", u"STRASSE", true));
  EXPECT_FALSE(AreStringsEqual(u"ab", u"abc", false));
  EXPECT_FALSE(AreStringsEqual(u"", u"a", false));
  EXPECT_TRUE(AreStringsEqual(u"", u"", false));
  EXPECT_TRUE(AreStringsEqual(u"", u"", true));
}

TEST(TextEqualityTest, OnlyTextModeIgnoresCase) {
  EXPECT_TRUE(AreStringsEqual(u"Report.DOC", u"rEPORT.doc", true));
  EXPECT_FALSE(AreStringsEqual(u"Report.DOC", u"rEPORT.doc", false));
  EXPECT_TRUE(AreStringsEqual(u"Report.DOC", u"Report.DOC", false));
}

// The comparison by words must see what a comparison unit by unit sees, at each place and length.
TEST(TextEqualityTest, ComparisonAgreesWithUpperCaseTexts) {
  constexpr TextView Units = u"aAbB\u00e4\u00c4\u0131iI._";
  std::mt19937 random(7);
  const auto sign = [](int number) { return (number > 0) - (number < 0); };
  for (int round = 0; round < 20000; ++round) {
    Text a;
    for (std::size_t i = random() % 12; i > 0; --i) a += Units[random() % Units.size()];
    Text b = a;
    for (char16_t& unit : b)
      if (random() % 6 == 0) unit = Units[random() % Units.size()];
    if (random() % 4 == 0) b = b.substr(0, random() % (b.size() + 1));
    const Text upperA = UpperCaseText(a);
    const Text upperB = UpperCaseText(b);
    ASSERT_EQ(AreStringsEqual(a, b, true), upperA == upperB) << ToUtf8(a) << " " << ToUtf8(b);
    ASSERT_EQ(sign(CompareIgnoringCase(a, b)), sign(upperA.compare(upperB)))
        << ToUtf8(a) << " " << ToUtf8(b);
    ASSERT_EQ(ContainsIgnoringCase(a, b), upperA.find(upperB) != Text::npos);
    ASSERT_EQ(StartsWithIgnoringCase(a, b), upperA.starts_with(upperB));
  }
}

TEST(TextEqualityTest, ReplacedTextIsNotReplacedAgain) {
  EXPECT_EQ(ReplaceAll(u"aaa", u"a", u"aa"), u"aaaaaa");
  EXPECT_EQ(ReplaceAll(u"aaa", u"aa", u"b"), u"ba");
  EXPECT_EQ(ReplaceAll(u"x-y-", u"-", u""), u"xy");
}

TEST(RuntimeErrorTest, AnErrorTellsNumberSourceAndDescription) {
  const RuntimeError classic(runtime_error::KeyAlreadyExists);
  EXPECT_EQ(classic.Description(),
            u"This key is already associated with an element of this collection");
  const RuntimeError own(runtime_error::OwnConditions + 2, u"Module.Function", u"No \u00e9");
  EXPECT_STREQ(own.what(), "error -2147221502: No \xC3\xA9 (Module.Function)");
  EXPECT_EQ(DescriptionOfRuntimeError(own.Number()),
            u"Application-defined or object-defined error");
}

}  // namespace
}  // namespace quillmarsh
