// SPDX-License-Identifier: MIT
// Dates and numbers as text by pictures and separators that the caller hands in. Nothing here asks
// the system for its locale.
#pragma once

#include <array>

#include "base/Currency.h"
#include "base/Date.h"

namespace quillmarsh {

// What the formats need to know of a locale. The defaults are those of US English.
struct LocaleFacts {
  Text shortDate =
      u"M/d/yyyy";  // a locale picture: d dd ddd dddd M MM MMM MMMM y yy yyyy 'literal'
  Text longTime = u"h:mm:ss tt";  // a locale picture: h hh H HH m mm s ss t tt 'literal'
  Text dateSeparator = u"/";
  Text timeSeparator = u":";
  Text decimalSeparator = u".";
  Text thousandsSeparator = u",";
  Text amMarker = u"AM";
  Text pmMarker = u"PM";
  std::array<Text, 12> monthNames = {u"January",   u"February", u"March",    u"April",
                                     u"May",       u"June",     u"July",     u"August",
                                     u"September", u"October",  u"November", u"December"};
  std::array<Text, 12> shortMonthNames = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                          u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
  std::array<Text, 7> dayNames = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                  u"Thursday", u"Friday", u"Saturday"};
  std::array<Text, 7> shortDayNames = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
};

// Formats a date by a format text: d dd ddd dddd, m mm mmm mmmm (minutes when the field before it
// is an hour or the field behind it a second), n nn, h hh, s ss, y (day of the year) yy yyyy, AM/PM
// and A/P in the case in which they stand or AMPM for the locale's markers (each makes h count to
// 12), "literal" and \c; letters in either case; '/' and ':' give the locale's separators; anything
// else stands as it is. A date that is not valid raises error 5.
[[nodiscard]] Text FormatDate(Date date, TextView format, const LocaleFacts& locale);

// The "General Date" form: the locale's short date and long time; without a fraction only the date,
// without whole days only the time. A date that is not valid raises error 5.
[[nodiscard]] Text FormatGeneralDate(Date date, const LocaleFacts& locale);

// A whole number with the locale's thousands separator and no decimals: 1234567 is "1,234,567".
[[nodiscard]] Text FormatGrouped(std::int64_t number, const LocaleFacts& locale);
// The same for a currency, rounded half to even to a whole number.
[[nodiscard]] Text FormatGrouped(Currency number, const LocaleFacts& locale);

}  // namespace quillmarsh
