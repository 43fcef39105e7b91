// SPDX-License-Identifier: MIT
// A number is brought to the plain form first and then read; a date is read field by field.
#include "base/ValueText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "base/CaseMapping.h"
#include "base/CheckedArithmetic.h"
#include "base/RuntimeError.h"
#include "base/TextEquality.h"

namespace quillmarsh {

namespace {

bool IsDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

bool IsCurrencySign(char16_t unit) {
  return unit == u'$' || (unit >= 0xA2 && unit <= 0xA5) || (unit >= 0x20A0 && unit <= 0x20CF);
}

// Digits, at most one point with digits at one side of it, and an exponent, in ASCII; else empty.
std::string PlainNumber(TextView text) {
  std::string plain;
  std::size_t place = 0;
  std::size_t digits = 0;
  const auto takeDigits = [&] {
    for (; place < text.size() && IsDigit(text[place]); ++place, ++digits)
      plain += static_cast<char>(text[place]);
  };
  takeDigits();
  if (place < text.size() && text[place] == u'.') {
    plain += '.';
    ++place;
    takeDigits();
  }
  if (digits == 0) return {};
  if (place < text.size() && UpperCase(text[place]) == u'E') {
    plain += 'e';
    ++place;
    if (place < text.size() && (text[place] == u'+' || text[place] == u'-'))
      plain += static_cast<char>(text[place++]);
    digits = 0;
    takeDigits();
  }
  return digits > 0 && place == text.size() ? plain : std::string();
}

// "&H1F": as a signed number of 32 bits.
std::optional<double> HexNumber(TextView text) {
  if (text.size() < 3 || text.size() > 10 || text[0] != u'&' || UpperCase(text[1]) != u'H')
    return std::nullopt;
  std::uint32_t number = 0;
  for (const char16_t unit : text.substr(2)) {
    const char16_t upper = UpperCase(unit);
    const bool isLetter = upper >= u'A' && upper <= u'F';
    if (!IsDigit(upper) && !isLetter) return std::nullopt;
    number = number * 16 + static_cast<std::uint32_t>(isLetter ? upper - u'A' + 10 : upper - u'0');
  }
  return static_cast<std::int32_t>(number);
}

// The sign, and what is left without it and without signs of currency.
struct Signed {
  bool isNegative = false;
  TextView rest;
};

Signed WithoutSigns(TextView text) {
  Signed number{false, TrimBlanks(text)};
  TextView& rest = number.rest;
  if (rest.size() > 2 && rest.front() == u'(' && rest.back() == u')') {
    number.isNegative = true;
    rest = rest.substr(1, rest.size() - 2);
  } else if (!rest.empty() && (rest.front() == u'-' || rest.front() == u'+')) {
    number.isNegative = rest.front() == u'-';
    rest.remove_prefix(1);
  } else if (!rest.empty() && rest.back() == u'-') {
    number.isNegative = true;
    rest.remove_suffix(1);
  }
  if (!rest.empty() && IsCurrencySign(rest.front())) rest.remove_prefix(1);
  if (!rest.empty() && IsCurrencySign(rest.back())) rest.remove_suffix(1);
  rest = TrimBlanks(rest);
  return number;
}

// The locale's form as the plain one: without thousands separators in front of the decimal one.
Text FromLocaleForm(TextView text, const LocaleFacts& locale) {
  Text plain;
  bool isBehindPoint = false;
  while (!text.empty()) {
    if (!isBehindPoint && !locale.decimalSeparator.empty() &&
        text.starts_with(locale.decimalSeparator)) {
      plain += u'.';
      isBehindPoint = true;
      text.remove_prefix(locale.decimalSeparator.size());
    } else if (!isBehindPoint && !plain.empty() && !locale.thousandsSeparator.empty() &&
               text.starts_with(locale.thousandsSeparator)) {
      text.remove_prefix(locale.thousandsSeparator.size());
    } else if (text.front() == u'.') {
      return {};
    } else {
      plain += text.front();
      text.remove_prefix(1);
    }
  }
  return plain;
}

// Whether each separator in front of the decimal one has three digits behind it, and one to three
// digits before the first.
bool IsGrouped(TextView text, const LocaleFacts& locale) {
  const TextView separator = locale.thousandsSeparator;
  TextView whole = text;
  if (!locale.decimalSeparator.empty()) whole = text.substr(0, text.find(locale.decimalSeparator));
  if (separator.empty() || whole.find(separator) == TextView::npos) return true;
  bool isFirst = true;
  while (true) {
    const std::size_t end = whole.find(separator);
    const std::size_t digits = end == TextView::npos ? whole.size() : end;
    if (isFirst ? digits < 1 || digits > 3 : digits != 3) return false;
    if (end == TextView::npos) return true;
    whole.remove_prefix(end + separator.size());
    isFirst = false;
  }
}

// The number without its sign in the plain form; empty for no number.
std::string DigitsOf(TextView text, const LocaleFacts& locale) {
  std::string plain = PlainNumber(text);
  return plain.empty() ? PlainNumber(FromLocaleForm(text, locale)) : plain;
}

struct TimeOfDay {
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;
};

// What a date text is made of: numbers, words, and what stands between them.
struct Piece {
  Text word;  // empty for a number
  std::int32_t number = 0;
  std::size_t digits = 0;
  Text behind;  // up to the next piece, without blanks
};

bool IsSeparator(char16_t unit) {
  return unit == u'/' || unit == u'-' || unit == u'.' || unit == u',' || unit == u':' ||
         unit == u' ';
}

// None for a number of more than four digits, which no field has.
std::optional<std::vector<Piece>> PiecesOf(TextView text) {
  std::vector<Piece> pieces;
  for (std::size_t place = 0; place < text.size();) {
    if (IsSeparator(text[place])) {
      if (pieces.empty()) return std::nullopt;
      if (text[place] != u' ') pieces.back().behind += text[place];
      ++place;
      continue;
    }
    Piece piece;
    const bool isNumber = IsDigit(text[place]);
    for (; place < text.size() && !IsSeparator(text[place]) && IsDigit(text[place]) == isNumber;
         ++place) {
      if (!isNumber) {
        piece.word += text[place];
        continue;
      }
      if (++piece.digits > 4) return std::nullopt;
      piece.number = piece.number * 10 + (text[place] - u'0');
    }
    pieces.push_back(std::move(piece));
  }
  return pieces;
}

// Takes what stands behind the three pieces of the day; false for what is no time.
bool TakeTime(std::vector<Piece>& pieces, const LocaleFacts& locale, TimeOfDay& time) {
  bool isAfternoon = false;
  bool hasMarker = false;
  if (!pieces.back().word.empty()) {
    const auto is = [&word = pieces.back().word](TextView marker) {
      return !marker.empty() && CompareIgnoringCase(word, marker) == 0;
    };
    isAfternoon = is(locale.pmMarker) || is(u"PM");
    hasMarker = isAfternoon || is(locale.amMarker) || is(u"AM");
    if (hasMarker) pieces.pop_back();
  }
  constexpr std::size_t OfDay = 3;
  const std::size_t count = pieces.size() > OfDay ? pieces.size() - OfDay : 0;
  if (count > 3 || (hasMarker && count == 0) || (!hasMarker && count == 1)) return false;
  for (std::size_t i = OfDay; i < pieces.size(); ++i) {
    if (pieces[i].digits == 0 || pieces[i].digits > 2) return false;
  }
  if (count > 0) time.hour = pieces[OfDay].number;
  if (count > 1) time.minute = pieces[OfDay + 1].number;
  if (count > 2) time.second = pieces[OfDay + 2].number;
  if (hasMarker && (time.hour < 1 || time.hour > 12)) return false;
  if (hasMarker) time.hour = time.hour % 12 + (isAfternoon ? 12 : 0);
  pieces.resize(std::min(pieces.size(), OfDay));
  return time.hour < 24 && time.minute < 60 && time.second < 60;
}

std::int32_t MonthOfName(TextView word, const LocaleFacts& locale) {
  for (std::size_t month = 0; month < locale.monthNames.size(); ++month) {
    if (CompareIgnoringCase(word, locale.monthNames[month]) == 0 ||
        CompareIgnoringCase(word, locale.shortMonthNames[month]) == 0)
      return static_cast<std::int32_t>(month) + 1;
  }
  return 0;
}

// "dmy", "mdy", "ymd": the order of the short date's fields.
std::string FieldOrder(const LocaleFacts& locale) {
  std::string order;
  bool isLiteral = false;
  for (const char16_t unit : locale.shortDate) {
    if (unit == u'\'') isLiteral = !isLiteral;
    const char field = unit == u'd' || unit == u'D'   ? 'd'
                       : unit == u'M' || unit == u'm' ? 'm'
                       : unit == u'y' || unit == u'Y' ? 'y'
                                                      : ' ';
    if (!isLiteral && field != ' ' && order.find(field) == std::string::npos) order += field;
  }
  return order.size() == 3 ? order : "mdy";
}

std::int32_t YearOf(const Piece& piece) {
  if (piece.digits > 2) return piece.number;
  return piece.number + (piece.number < 30 ? 2000 : 1900);
}

std::optional<CivilTime> DayOf(const std::vector<Piece>& pieces, const LocaleFacts& locale) {
  if (pieces.size() != 3) return std::nullopt;
  // A time alone is no day.
  if (pieces[0].behind == u":" || pieces[1].behind == u":") return std::nullopt;
  std::string order = FieldOrder(locale);
  if (pieces[0].digits > 2) order = "ymd";
  std::size_t named = 3;
  for (std::size_t i = 0; i < 3; ++i) {
    if (pieces[i].digits == 0) named = i;
  }
  // A month by its name may stand anywhere; day and year keep their order around it.
  if (named < 3 && order[named] != 'm') {
    std::erase(order, 'm');
    order.insert(named, 1, 'm');
  }
  CivilTime day;
  for (std::size_t i = 0; i < 3; ++i) {
    const Piece& piece = pieces[i];
    if (order[i] == 'y') {
      if (piece.digits == 0) return std::nullopt;
      day.year = YearOf(piece);
    } else if (order[i] == 'm') {
      day.month = piece.digits == 0 ? MonthOfName(piece.word, locale) : piece.number;
    } else {
      if (piece.digits == 0 || piece.digits > 2) return std::nullopt;
      day.day = piece.number;
    }
  }
  return day;
}

}  // namespace

std::optional<double> NumberFromText(TextView text, const LocaleFacts& locale) {
  const Signed number = WithoutSigns(text);
  if (const auto hex = HexNumber(number.rest)) return number.isNegative ? -*hex : *hex;
  const std::string digits = DigitsOf(number.rest, locale);
  if (digits.empty()) return std::nullopt;
  const double value = std::strtod(digits.c_str(), nullptr);
  return number.isNegative ? -value : value;
}

Text FixedFormOfTyped(TextView text, const LocaleFacts& locale) {
  const TextView trimmed = TrimBlanks(text);
  if (!IsGrouped(trimmed, locale)) return Text(text);
  const Text plain = FromLocaleForm(trimmed, locale);
  return PlainNumber(plain).empty() ? Text(text) : plain;
}

std::int32_t LongFromText(TextView text, const LocaleFacts& locale) {
  const auto number = NumberFromText(text, locale);
  if (!number) throw RuntimeError(runtime_error::TypeMismatch);
  const double rounded = std::nearbyint(*number);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
        rounded <= std::numeric_limits<std::int32_t>::max()))
    throw RuntimeError(runtime_error::Overflow);
  return static_cast<std::int32_t>(rounded);
}

Currency CurrencyFromText(TextView text, const LocaleFacts& locale) {
  const Signed number = WithoutSigns(text);
  const std::string digits = DigitsOf(number.rest, locale);
  const std::size_t point = digits.find('.');
  const std::size_t decimals = point == std::string::npos ? 0 : digits.size() - point - 1;
  const bool isPlain = digits.find('e') == std::string::npos && decimals <= 4;
  if (digits.empty() || !isPlain) {
    const auto value = NumberFromText(text, locale);
    if (!value) throw RuntimeError(runtime_error::TypeMismatch);
    return Currency::FromDouble(*value);
  }
  std::int64_t raw = 0;
  for (const char digit : digits + std::string(4 - decimals, '0')) {
    if (digit == '.') continue;
    const std::int64_t next = number.isNegative ? -(digit - '0') : digit - '0';
    std::int64_t tens = 0;
    if (TimesTenOverflows(raw, tens) || AddOverflows(tens, next, raw))
      throw RuntimeError(runtime_error::Overflow);
  }
  return Currency::FromRaw(raw);
}

std::optional<Date> DateFromText(TextView text, const LocaleFacts& locale) {
  auto pieces = PiecesOf(TrimBlanks(text));
  TimeOfDay time;
  if (!pieces || pieces->empty() || !TakeTime(*pieces, locale, time)) return std::nullopt;
  auto civil = DayOf(*pieces, locale);
  if (!civil) return std::nullopt;
  civil->hour = time.hour;
  civil->minute = time.minute;
  civil->second = time.second;
  return Date::FromCivil(*civil);
}

Text FixedDateText(Date date) {
  static const LocaleFacts facts;  // those of US English, whose time separator is ':'
  return FormatDate(date, u"yyyy-mm-dd Hh:Nn:Ss", facts);
}

}  // namespace quillmarsh
