// SPDX-License-Identifier: MIT
// Numbers and dates as the program writes them, as locales write them, and what is neither.
#include "base/ValueText.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

LocaleFacts German() {
  LocaleFacts facts;
  facts.shortDate = u"dd.MM.yyyy";
  facts.dateSeparator = u".";
  facts.decimalSeparator = u",";
  facts.thousandsSeparator = u".";
  facts.monthNames[2] = u"M\u00e4rz";
  return facts;
}

std::string DateAs(TextView text, const LocaleFacts& locale) {
  const auto date = DateFromText(text, locale);
  return date ? ToUtf8(FixedDateText(*date)) : "none";
}

TEST(ValueText, NumbersAreReadAsAWholeOrNotAtAll) {
  const double none = std::numeric_limits<double>::infinity();
  const struct {
    const char16_t* text;
    double english;
    double german;
  } rows[] = {
      {u"12", 12, 12},
      {u" -7 ", -7, -7},
      {u"1.5", 1.5, 1.5},
      {u"1,5", 15, 1.5},
      {u"1,234.5", 1234.5, none},
      {u"1.234,5", none, 1234.5},
      {u".5", .5, .5},
      {u"5.", 5, 5},
      {u"1e3", 1000, 1000},
      {u"(3)", -3, -3},
      {u"4-", -4, -4},
      {u"$9", 9, 9},
      {u"9 \u20ac", 9, 9},
      {u"&H1f", 31, 31},
      {u"&HFFFFFFFF", -1, -1},
      {u"", none, none},
      {u"abc", none, none},
      {u"1x", none, none},
      {u"--1", none, none},
      {u"1e", none, none},
      {u".", none, none},
      {u"1.2.3", none, 123},
      {u"2026-11-21", none, none},
      {u"&H", none, none},
      {u"&H123456789", none, none},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(NumberFromText(row.text, {}).value_or(none), row.english) << ToUtf8(row.text);
    EXPECT_EQ(NumberFromText(row.text, German()).value_or(none), row.german) << ToUtf8(row.text);
  }
}

TEST(ValueText, ATypedNumberMeansWhatItMeansInTheLocale) {
  const struct {
    TextView typed;
    TextView english;
    TextView german;
  } rows[] = {
      {u"1.500", u"1.500", u"1500"},
      {u"1,500", u"1500", u"1.500"},
      {u"1.5", u"1.5", u"1.5"},
      {u"1,5", u"1,5", u"1.5"},
      {u"1.500,5", u"1.500,5", u"1500.5"},
      {u"12.34.567", u"12.34.567", u"12.34.567"},
      {u" 7 ", u"7", u"7"},
      {u"ten", u"ten", u"ten"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FixedFormOfTyped(row.typed, {}), row.english);
    EXPECT_EQ(FixedFormOfTyped(row.typed, German()), row.german);
  }
}

TEST(ValueText, WholeNumbersRoundToEvenAndTellWhatIsWrong) {
  EXPECT_EQ(LongFromText(u"2.5", {}), 2);
  EXPECT_EQ(LongFromText(u"3.5", {}), 4);
  EXPECT_EQ(LongFromText(u"-2147483648", {}), std::numeric_limits<std::int32_t>::min());
  const auto errorOf = [](TextView text) {
    try {
      static_cast<void>(LongFromText(text, {}));
    } catch (const RuntimeError& error) {
      return error.Number();
    }
    return 0;
  };
  EXPECT_EQ(errorOf(u"2147483648"), runtime_error::Overflow);
  EXPECT_EQ(errorOf(u"1e999"), runtime_error::Overflow);
  EXPECT_EQ(errorOf(u"one"), runtime_error::TypeMismatch);
}

TEST(ValueText, EveryCurrencyComesBackFromItsOwnText) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 2000; ++i) {
    const auto raw = static_cast<std::int64_t>(random() >> (random() % 60));
    const Currency value = Currency::FromRaw(i % 2 == 0 ? raw : -raw);
    EXPECT_EQ(CurrencyFromText(value.ToText(), German()).Raw(), value.Raw());
  }
  EXPECT_EQ(CurrencyFromText(u"-922337203685477.5808", {}).Raw(),
            std::numeric_limits<std::int64_t>::min());
  EXPECT_THROW(static_cast<void>(CurrencyFromText(u"922337203685477.5808", {})), RuntimeError);
  EXPECT_THROW(static_cast<void>(CurrencyFromText(u"ten", {})), RuntimeError);
}

TEST(ValueText, DatesAreReadInTheFixedFormAndInThatOfTheLocale) {
  const struct {
    const char16_t* text;
    const char* english;
    const char* german;
  } rows[] = {
      {u"2026-11-21 10:37:20", "2026-11-21 10:37:20", "2026-11-21 10:37:20"},
      {u"2026-11-21", "2026-11-21 00:00:00", "2026-11-21 00:00:00"},
      {u"3/4/2026 5:06 PM", "2026-03-04 17:06:00", "2026-04-03 17:06:00"},
      {u"03.04.29", "2029-03-04 00:00:00", "2029-04-03 00:00:00"},
      {u"12/31/1999 12:00:00 am", "1999-12-31 00:00:00", "none"},
      {u"31.12.99 23:59:59", "none", "1999-12-31 23:59:59"},
      {u"4 Mar 2026", "2026-03-04 00:00:00", "2026-03-04 00:00:00"},
      {u"4. M\u00c4RZ 2026", "none", "2026-03-04 00:00:00"},
      {u"2026-02-29", "none", "none"},
      {u"10:11:12", "none", "none"},
      {u"2026-11-21 24:00:00", "none", "none"},
      {u"2026-11-21 10", "none", "none"},
      {u"13/13/2026", "none", "none"},
      {u"20261121", "none", "none"},
      {u"tomorrow", "none", "none"},
      {u"", "none", "none"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(DateAs(row.text, {}), row.english) << ToUtf8(row.text);
    EXPECT_EQ(DateAs(row.text, German()), row.german) << ToUtf8(row.text);
  }
}

}  // namespace
}  // namespace quillmarsh
