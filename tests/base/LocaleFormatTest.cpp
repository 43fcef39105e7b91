// SPDX-License-Identifier: MIT
// Dates by format text and by the locale's pictures, and grouped numbers.
#include "base/LocaleFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

Date At(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
        std::int32_t minute, std::int32_t second) {
  return Date::FromCivil({year, month, day, hour, minute, second}).value();
}

LocaleFacts German() {
  LocaleFacts facts;
  facts.shortDate = u"dd.MM.yyyy";
  facts.longTime = u"HH:mm:ss";
  facts.dateSeparator = u".";
  facts.decimalSeparator = u",";
  facts.thousandsSeparator = u".";
  return facts;
}

TEST(LocaleFormatTest, AFormatTextShowsItsFields) {
  struct Case {
    TextView format;
    TextView text;
  };
  constexpr Case Cases[] = {
      {u"M/d/yyyy h:mm:ss AM/PM", u"2/3/2024 3:04:05 PM"},
      {u"M/d/yyyy H:mm:ss", u"2/3/2024 15:04:05"},
      {u"dd.MM.yyyy HH:mm:ss", u"03.02.2024 15:04:05"},
      {u"yyyy-mm-dd hh:nn:ss", u"2024-02-03 15:04:05"},
      {u"d ddd dddd m mmm mmmm y yy", u"3 Sat Saturday 2 Feb February 34 24"},
      {u"hh.mm dd/mm", u"15.04 03/02"},  // minutes only right after the hour
      {u"mm:ss m", u"04:05 2"},          // or right before the second
      {u"h:mmm", u"15:Feb"},             // a name is never minutes
      {u"h a/p H A/P", u"3 p 3 P"},
      {u"h am/pm", u"3 pm"},
      {u"\"day\" d\\d \"open", u"day 3d open"},
      {u"q-'x'", u"q-'x'"},
      {u"\\", u"\\"},
      {u"", u""},
  };
  const LocaleFacts locale;
  for (const Case& row : Cases)
    EXPECT_EQ(FormatDate(At(2024, 2, 3, 15, 4, 5), row.format, locale), row.text)
        << ToUtf8(row.format);
}

TEST(LocaleFormatTest, SeparatorsAndNamesAreTheLocales) {
  LocaleFacts locale = German();
  locale.timeSeparator = u".";
  locale.monthNames[1] = u"Februar";
  locale.dayNames[6] = u"Samstag";
  locale.pmMarker = u"nachm.";
  EXPECT_EQ(FormatDate(At(2024, 2, 3, 15, 4, 5), u"dddd d/mmmm h:nn AMPM", locale),
            u"Samstag 3.Februar 3.04 nachm.");
}

TEST(LocaleFormatTest, TwelveHoursHaveNoHourZero) {
  const LocaleFacts locale;
  EXPECT_EQ(FormatDate(At(2024, 1, 1, 0, 0, 0), u"h AM/PM", locale), u"12 AM");
  EXPECT_EQ(FormatDate(At(2024, 1, 1, 11, 0, 0), u"h AM/PM", locale), u"11 AM");
  EXPECT_EQ(FormatDate(At(2024, 1, 1, 12, 0, 0), u"h AM/PM", locale), u"12 PM");
  EXPECT_EQ(FormatDate(At(2024, 1, 1, 0, 0, 0), u"h", locale), u"0");
}

TEST(LocaleFormatTest, TheGeneralFormLeavesOutWhatIsNotThere) {
  struct Case {
    double days;
    TextView american;
    TextView german;
  };
  constexpr Case Cases[] = {
      {45000.25, u"3/15/2023 6:00:00 AM", u"15.03.2023 06:00:00"},
      {45000, u"3/15/2023", u"15.03.2023"},
      {0.75, u"6:00:00 PM", u"18:00:00"},
      {0, u"12:00:00 AM", u"00:00:00"},
      {-1.5, u"12/29/1899 12:00:00 PM", u"29.12.1899 12:00:00"},
  };
  for (const Case& row : Cases) {
    EXPECT_EQ(FormatGeneralDate(Date(row.days), LocaleFacts()), row.american);
    EXPECT_EQ(FormatGeneralDate(Date(row.days), German()), row.german);
  }
}

TEST(LocaleFormatTest, PicturesOfALocaleTellCaseAndQuotes) {
  struct Case {
    TextView shortDate;
    TextView longTime;
    TextView text;
  };
  constexpr Case Cases[] = {
      {u"d 'de' MMM 'de' yyyy", u"H'h'mm't'", u"3 de Feb de 2024 15h04t"},
      {u"ddd dd MMMM yy", u"hh'o''clock' t", u"Sat 03 February 24 03o'clock P"},
      {u"y/M''d", u"s tt", u"24/2'3 5 PM"},
      {u"yyyyy", u"HH 'open", u"2024 15 open"},
  };
  for (const Case& row : Cases) {
    LocaleFacts locale;
    locale.shortDate = row.shortDate;
    locale.longTime = row.longTime;
    EXPECT_EQ(FormatGeneralDate(At(2024, 2, 3, 15, 4, 5), locale), row.text);
  }
}

TEST(LocaleFormatTest, ADateThatIsNotValidRaisesAnError) {
  const LocaleFacts locale;
  EXPECT_THROW((void)FormatDate(Date(std::nan("")), u"d", locale), RuntimeError);
  EXPECT_THROW((void)FormatGeneralDate(Date(3e6), locale), RuntimeError);
}

TEST(LocaleFormatTest, NumbersAreGroupedByThrees) {
  struct Case {
    std::int64_t number;
    TextView text;
  };
  constexpr Case Cases[] = {
      {0, u"0"},
      {999, u"999"},
      {-999, u"-999"},
      {1000, u"1,000"},
      {-123456, u"-123,456"},
      {std::numeric_limits<std::int64_t>::min(), u"-9,223,372,036,854,775,808"}};
  for (const Case& row : Cases) EXPECT_EQ(FormatGrouped(row.number, LocaleFacts()), row.text);
  EXPECT_EQ(FormatGrouped(Currency::FromRaw(12345000), German()), u"1.234");
}

}  // namespace
}  // namespace quillmarsh
