// SPDX-License-Identifier: MIT
// Numbers and dates out of text that a person may have written: in the fixed form in which the
// program itself writes them, which goes first, or in the form of the user's locale.
#pragma once

#include <optional>

#include "base/Currency.h"
#include "base/Date.h"
#include "base/LocaleFormat.h"

namespace quillmarsh {

// The text as a whole is one number: digits with a decimal point, also 1e5 and &H1F; and with the
// locale's separators, a currency sign, a trailing minus or parentheses for minus. Blanks around it
// do not count. None for anything else, dates among it.
[[nodiscard]] std::optional<double> NumberFromText(TextView text, const LocaleFacts& locale);

// What a person has typed into a field, in the fixed form that the others read: where the locale's
// separators stand in groups of three digits, as in "1.500,5", they are taken for what they mean
// there. The text itself where they do not.
[[nodiscard]] Text FixedFormOfTyped(TextView text, const LocaleFacts& locale);

// Rounded half to even. Error 13 for a text that is no number, 6 out of range.
[[nodiscard]] std::int32_t LongFromText(TextView text, const LocaleFacts& locale);
// Exact for plain decimals. The same errors.
[[nodiscard]] Currency CurrencyFromText(TextView text, const LocaleFacts& locale);

// "2026-11-21 10:37:20", or without the time; or day, month and year in the order of the locale's
// short date, with month names too, and a time with seconds and AM or PM if there are any. A year
// of two digits lies from 1930 to 2029. None for what is no date.
[[nodiscard]] std::optional<Date> DateFromText(TextView text, const LocaleFacts& locale);
// The fixed form; a date that is not valid raises error 5.
[[nodiscard]] Text FixedDateText(Date date);

}  // namespace quillmarsh
