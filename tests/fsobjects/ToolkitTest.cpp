// SPDX-License-Identifier: MIT
// Numbers, bits, times, encodings and the locale's time stamp format.
#include "FsObjectsFixture.h"
#include "fsobjects/AttributeLetters.h"
#include "fsobjects/modBitManipulation.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

class Toolkit : public FsObjectsFixture {};

std::span<const std::byte> Bytes(std::string_view text) {
  return std::as_bytes(std::span(text));
}

TEST_F(Toolkit, MakesSizesOfTwoSignedWords) {
  const struct {
    std::int32_t high, low;
    std::int64_t bytes;
  } rows[] = {{0, 0, 0},          {0, -1, 4294967295}, {-1, 1, 1},
              {1, 0, 4294967296}, {1, -1, 8589934591}, {-5, -1, 4294967295}};
  for (const auto& row : rows)
    EXPECT_EQ(HiLoToCurr(row.high, row.low), Currency::FromInteger(row.bytes)) << row.high;
  try {
    static_cast<void>(HiLoToCurr(2147483647, 0));
    ADD_FAILURE() << "does not fit";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), runtime_error::Overflow);
  }
}

// Required as it is: the date setters of the file object rely on it.
TEST_F(Toolkit, RawTimeOfADateHasNoMinutes) {
  const Date date = Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 20));
  EXPECT_EQ(DateToFileTimeCurr(date).Raw(), TicksOf(2026, 11, 21, 10, 0, 20));
  const Date early = *Date::FromCivil({.year = 1500, .month = 1, .day = 1});
  EXPECT_EQ(DateToFileTimeCurr(early).Raw(), 0);
}

TEST_F(Toolkit, ByteSizesUseTheUsersDecimalSeparator) {
  EXPECT_EQ(FormatByteSize(Currency::FromInteger(1340)), u"1.30 KB");
  LocaleFacts german;
  german.decimalSeparator = u",";
  machine.SetLocale(german);
  ResetLocaleFacts();
  EXPECT_EQ(FormatByteSize(Currency::FromInteger(1340)), u"1,30 KB");
}

TEST_F(Toolkit, BitNumbersAbove31ShowABoxAndWrapBy31) {
  EXPECT_EQ(SetBitInLong(30, 1), 0x40000001);
  EXPECT_EQ(ClearBitInLong(0, 3), 2);
  EXPECT_TRUE(IsBitSetInLong(1, 2));
  EXPECT_FALSE(IsBitSetInLong(0, 2));
  EXPECT_EQ(SetBitInLong(32, 0), 2);
  EXPECT_EQ(TakeBox().text,
            u"Oops.  Too many values being stored in this one LONG bitfield variable");
  EXPECT_EQ(SetBitInLong(62, 0), 1);
  TakeBox();
  EXPECT_THROW(static_cast<void>(SetBitInLong(31, 0)), RuntimeError);
}

TEST_F(Toolkit, AttributeLettersStandInAFixedOrder) {
  EXPECT_EQ(AttributeLetters(0x27), u"RHSA");
  EXPECT_EQ(AttributeLetters(0x4D10), u"DTCEL");
  EXPECT_EQ(AttributeLetters(FILE_ATTRIBUTE_NORMAL), u"");
}

TEST_F(Toolkit, CharactersBelow0x100AreNoUnicodeChars) {
  EXPECT_FALSE(ContainsUnicodeChars(u""));
  EXPECT_FALSE(ContainsUnicodeChars(u"caf\u00E9 \u00FF"));
  EXPECT_TRUE(ContainsUnicodeChars(u"\u0100"));
}

TEST_F(Toolkit, KnowsByteOrderMarksOnlyOfFourBytesOrMore) {
  const struct {
    std::string_view bytes;
    TextEncoding encoding;
  } rows[] = {{"\xEF\xBB\xBFx", TextEncoding::Utf8},
              {std::string_view("\xFF\xFEx\0", 4), TextEncoding::Utf16LittleEndian},
              {"\xFF\xFEx", TextEncoding::None},
              {"\xFF\xFE", TextEncoding::None},
              {"\xEF\xBB\xBF", TextEncoding::None},
              {"\xFE\xFFxy", TextEncoding::None},
              {"", TextEncoding::None}};
  for (const auto& row : rows) EXPECT_EQ(DetectBOM(Bytes(row.bytes)), row.encoding) << row.bytes;
}

TEST_F(Toolkit, EncodingOfAFileNeedsThreeBytesAndTheFileForItself) {
  machine.AddFile(u"C:\\three", "\xEF\xBB\xBF");
  machine.AddFile(u"C:\\utf16", FileContents::Utf16(u"a"));
  machine.AddFile(u"C:\\two", "\xFF\xFE");
  machine.AddFile(u"C:\\busy", FileContents::Utf16(u"a"));
  const HANDLE held = machine.HoldOpen(u"C:\\busy", FILE_SHARE_READ);
  EXPECT_EQ(GetEncodingOfFile(u"C:\\three"), TextEncoding::Utf8);
  EXPECT_EQ(GetEncodingOfFile(u"C:\\utf16"), TextEncoding::Utf16LittleEndian);
  EXPECT_EQ(GetEncodingOfFile(u"C:\\two"), TextEncoding::None);
  EXPECT_EQ(GetEncodingOfFile(u"C:\\busy"), TextEncoding::None);
  EXPECT_EQ(GetEncodingOfFile(u"C:\\missing"), TextEncoding::None);
  machine.LetGo(held);
}

// Required as it is: a decoder that knows more lead bytes is a repair.
TEST_F(Toolkit, Utf8DecoderKnowsFiveLeadBytesAndTakesAllElseAs8BitText) {
  const struct {
    std::string_view bytes;
    TextView text;
  } rows[] = {
      {"plain", u"plain"},
      {"\xC3\xA9t\xC3\xA9", u"\u00E9t\u00E9"},
      {"\xC6\x92!", u"\u0192!"},
      {"\xE1\xBA\xBF!", u"\u1EBF!"},
      {"\xC2\xA9", u"\u00C2\u00A9"},
      {"\xE2\x82\xAC", u"\u00E2\u201A\u00AC"},
      {"\xC7\x8D", u"\u00C7\u008D"},
      {"x\xC3", u"x\u00C3"},
      {"x\xE1\xBA", u"x\u00E1\u00BA"},
      {"a", u""},
      {"", u""},
  };
  for (const auto& row : rows) EXPECT_EQ(UTF8BytesToString(Bytes(row.bytes)), row.text);
}

TEST_F(Toolkit, TimeStampFormatDropsLiteralsOfTheDateAndNamesTheMarker) {
  const struct {
    TextView shortDate, longTime, format;
  } rows[] = {
      {u"M/d/yyyy", u"h:mm:ss tt", u"M/d/yyyy h:mm:ss AM/PM"},
      {u"dd.MM.yyyy", u"HH:mm:ss", u"dd.MM.yyyy HH:mm:ss"},
      {u"d MMM yyyy 'r.'", u"H:mm:ss", u"d MMM yyyy H:mm:ss"},
      {u"d'de'M'de'yyyy", u"h:mm t", u"dMyyyy h:mm A/P"},
      {u"yyyy'M", u"HH:mm", u"yyyyM HH:mm"},  // a lone quote must not hang
  };
  for (const auto& row : rows) {
    machine.SetLocaleText(LOCALE_SSHORTDATE, row.shortDate);
    machine.SetLocaleText(LOCALE_STIMEFORMAT, row.longTime);
    ResetLocaleFacts();
    EXPECT_EQ(GetDateTimeFormat(), row.format);
  }
}

TEST_F(Toolkit, LocaleFactsAreAskedOnceAndBeginTheWeekOnSunday) {
  machine.SetLocaleText(LOCALE_SDAYNAME1, u"Montag");
  machine.SetLocaleText(LOCALE_SDAYNAME1 + 6, u"Sonntag");
  machine.SetLocaleText(LOCALE_SMONTHNAME1, u"Januar");
  machine.SetLocaleText(LOCALE_SDECIMAL, u"");
  EXPECT_EQ(GetLocaleFacts().dayNames[0], u"Sonntag");
  EXPECT_EQ(GetLocaleFacts().dayNames[1], u"Montag");
  EXPECT_EQ(GetLocaleFacts().monthNames[0], u"Januar");
  EXPECT_EQ(GetLocaleFacts().decimalSeparator, u".");
  const std::size_t calls = Calls(Operation::GetLocaleInfoW);
  static_cast<void>(GetLocaleFacts());
  EXPECT_EQ(Calls(Operation::GetLocaleInfoW), calls);
}

TEST_F(Toolkit, SystemMessagesComeWithTheirLineBreakOrTellTheNumber) {
  EXPECT_TRUE(FormatSystemErrorMessage(ERROR_ACCESS_DENIED).ends_with(u"\r\n"));
  EXPECT_EQ(FormatSystemErrorMessage(99999), u"(99999) - Error number not defined in system.");
}

TEST_F(Toolkit, TextsAreCutAtTheirFirstNul) {
  EXPECT_EQ(TrimAtNull(TextView(u"ab\0cd", 5)), u"ab");
  EXPECT_EQ(TrimAtNull(u"ab"), u"ab");
  EXPECT_EQ(GetStringFromPointer(u"ab"), u"ab");
  EXPECT_EQ(GetStringFromPointer(nullptr), u"");
}

}  // namespace
}  // namespace quillmarsh
