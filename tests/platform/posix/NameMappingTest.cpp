// SPDX-License-Identifier: MIT
// Names between the disk and the program.
#include "platform/posix/NameMapping.h"

#include <gtest/gtest.h>

#include <random>

namespace quillmarsh {
namespace {

struct NameCase {
  const char* what;
  std::string bytes;
  Text text;
  Text shown;
};

class NamedCases : public testing::TestWithParam<NameCase> {};

TEST_P(NamedCases, GoThereAndBackAndAreShownSafely) {
  const NameCase& row = GetParam();
  Text text;
  AppendMappedName(row.bytes, text);
  EXPECT_EQ(text, row.text);
  std::string back;
  EXPECT_TRUE(AppendNameBytes(text, back));
  EXPECT_EQ(back, row.bytes);
  EXPECT_EQ(ShownText(row.bytes), row.shown);
}

INSTANTIATE_TEST_SUITE_P(
    Names, NamedCases,
    testing::Values(
        NameCase{"Plain", "report (1).txt", u"report (1).txt", u"report (1).txt"},
        NameCase{"Accents", "h\xC3\xA9llo", u"h\u00E9llo", u"h\u00E9llo"},
        NameCase{"AbovePlaneZero", "\xF0\x9F\x98\x80", u"\U0001F600", u"\U0001F600"},
        NameCase{"Forbidden", "a:b\\c?", u"a\uF03Ab\uF05Cc\uF03F", u"a:b\\c?"},
        NameCase{"LineBreak", "a\nb\x7F", u"a\uF00Ab\x7F", u"a\u240Ab\u2421"},
        NameCase{"Latin1Byte", "caf\xE9", u"caf\xDCE9", u"caf\uFFFD"},
        NameCase{"CutSequence", "\xE2\x82", u"\xDCE2\xDC82", u"\uFFFD\uFFFD"},
        NameCase{"EncodedSurrogate", "\xED\xB3\xA9", u"\xDCED\xDCB3\xDCA9", u"\uFFFD\uFFFD\uFFFD"},
        NameCase{"OverlongSlash", "\xC0\xAF", u"\xDCC0\xDCAF", u"\uFFFD\uFFFD"},
        NameCase{"RealPrivateUse", "\xEF\x80\xBA", u"\xDCEF\xDC80\xDCBA", u"\uF03A"},
        NameCase{"FreePrivateUse", "\xEF\x81\x81", u"\uF041", u"\uF041"},
        NameCase{"LineSeparators", "a\xE2\x80\xA8\xC2\x85", u"a\u2028\u0085", u"a\uFFFD\uFFFD"}),
    [](const auto& row) { return std::string(row.param.what); });

TEST(NameMapping, IsOneToOneOverRandomBytes) {
  // Bytes from the corners where sequences begin, go on and break off.
  const std::string alphabet = "a.:\\\x01\x7F\x80\xA9\xBA\xBF\xC3\xE2\xED\xEF\xF0\xF4\xFF\xC0\xF8";
  std::mt19937 random(20261121);
  for (int round = 0; round < 200000; ++round) {
    std::string bytes;
    for (std::size_t length = random() % 9; length > 0; --length)
      bytes += random() % 4 == 0 ? static_cast<char>(1 + random() % 255)
                                 : alphabet[random() % alphabet.size()];
    if (bytes.find('/') != std::string::npos) continue;
    Text text;
    AppendMappedName(bytes, text);
    ASSERT_EQ(text.find_first_of(u"\\:*?\"<>|/"), Text::npos);
    std::string back;
    ASSERT_TRUE(AppendNameBytes(text, back));
    ASSERT_EQ(back, bytes);
  }
}

TEST(NameMapping, RefusesTextsThatAreTheImageOfNoName) {
  const Text refused[] = {u"a*b",     u"a/b",         Text(u"a\0b", 3), u"\xD800",
                          u"\xDC01x", u"\xDCC3\xDCA9" /* would be a second name for U+00E9 */};
  for (const Text& text : refused) {
    std::string bytes = "kept";
    EXPECT_FALSE(AppendNameBytes(text, bytes));
    EXPECT_EQ(bytes, "kept");
  }
}

}  // namespace
}  // namespace quillmarsh
