// SPDX-License-Identifier: MIT
// Two small languages of pictures: the format text of the program, where letters ignore case, m
// means month or minute by its neighbours and AM/PM switches to twelve hours; and the locale's own
// pictures, where case tells month from minute and 12 from 24 hours.
#include "base/LocaleFormat.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/RuntimeError.h"
#include "base/TextEquality.h"

namespace quillmarsh {
namespace {

// What one piece of either language puts out.
enum class Field {
  Literal,
  Day,
  Month,
  MonthOrMinute,  // of the format text, until its neighbours are known
  YearOfCentury,
  Year,
  Hour12,
  Hour24,
  Minute,
  Second,
  DayOfYear,
  Marker,
  DateSeparator,
  TimeSeparator,
};

struct Piece {
  Field field = Field::Literal;
  std::size_t width = 1;  // letters: 3 and 4 give names for Day and Month
  Text text;              // of a literal
  Text am, pm;            // of a marker
};
using Pieces = std::vector<Piece>;

void AppendLiteral(Pieces& pieces, TextView text) {
  if (pieces.empty() || pieces.back().field != Field::Literal) pieces.emplace_back();
  pieces.back().text += text;
}

void AppendField(Pieces& pieces, Field field, std::size_t width) {
  Piece piece;
  piece.field = field;
  piece.width = width;
  pieces.push_back(std::move(piece));
}

void AppendMarker(Pieces& pieces, TextView am, TextView pm) {
  AppendField(pieces, Field::Marker, 1);
  pieces.back().am = am;
  pieces.back().pm = pm;
}

std::size_t RunLength(TextView text) {
  const std::size_t end = text.find_first_not_of(text.front());
  return end == TextView::npos ? text.size() : end;
}

Text Padded(std::int32_t number, std::size_t width) {
  Text digits = DecimalText(number);
  if (digits.size() < width) digits.insert(0, width - digits.size(), u'0');
  return digits;
}

Text TextOfField(const Piece& piece, const CivilTime& civil, std::int64_t dayOfYear,
                 const LocaleFacts& locale) {
  const auto index = [](std::int32_t number) { return static_cast<std::size_t>(number); };
  const std::size_t width = piece.width;
  switch (piece.field) {
    case Field::Literal:
      return piece.text;
    case Field::Day:
      if (width == 3) return locale.shortDayNames[index(civil.weekday)];
      if (width == 4) return locale.dayNames[index(civil.weekday)];
      return Padded(civil.day, width);
    case Field::MonthOrMinute:
    case Field::Month:
      if (width == 3) return locale.shortMonthNames[index(civil.month - 1)];
      if (width == 4) return locale.monthNames[index(civil.month - 1)];
      return Padded(civil.month, width);
    case Field::YearOfCentury:
      return Padded(civil.year % 100, width);
    case Field::Year:
      return Padded(civil.year, width);
    case Field::Hour12:
      return Padded((civil.hour + 11) % 12 + 1, width);
    case Field::Hour24:
      return Padded(civil.hour, width);
    case Field::Minute:
      return Padded(civil.minute, width);
    case Field::Second:
      return Padded(civil.second, width);
    case Field::DayOfYear:
      return DecimalText(dayOfYear);
    case Field::Marker:
      return civil.hour < 12 ? piece.am : piece.pm;
    case Field::DateSeparator:
      return locale.dateSeparator;
    case Field::TimeSeparator:
      return locale.timeSeparator;
  }
  return {};
}

Text Render(const Pieces& pieces, Date date, const LocaleFacts& locale) {
  const CivilTime civil = date.ToCivil();
  CivilTime newYear = civil;
  newYear.month = newYear.day = 1;
  newYear.hour = newYear.minute = newYear.second = 0;
  const std::int64_t dayOfYear =
      (date.WholeSeconds() - Date::FromCivil(newYear).value_or(date).WholeSeconds()) / 86400 + 1;
  Text text;
  for (const Piece& piece : pieces) text += TextOfField(piece, civil, dayOfYear, locale);
  return text;
}

// ---- the program's format text

struct LetterRule {
  char16_t letter;
  std::size_t longest;
  Field field;
};

constexpr LetterRule FormatLetters[] = {
    {u'd', 4, Field::Day},    {u'm', 4, Field::MonthOrMinute}, {u'n', 2, Field::Minute},
    {u'h', 2, Field::Hour24}, {u's', 2, Field::Second},        {u'y', 4, Field::Year},
};

constexpr char16_t LowerAscii(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

// The length of an AM/PM mark at the front of the text, which it adds; 0 when there is none. The
// marks are put out in the case in which they stand; only AMPM gives the locale's own.
std::size_t TakeMarker(TextView text, const LocaleFacts& locale, Pieces& pieces) {
  if (StartsWithIgnoringCase(text, u"AM/PM")) {
    AppendMarker(pieces, text.substr(0, 2), text.substr(3, 2));
    return 5;
  }
  if (StartsWithIgnoringCase(text, u"A/P")) {
    AppendMarker(pieces, text.substr(0, 1), text.substr(2, 1));
    return 3;
  }
  if (StartsWithIgnoringCase(text, u"AMPM")) {
    AppendMarker(pieces, locale.amMarker, locale.pmMarker);
    return 4;
  }
  return 0;
}

// The length of the letters of one field at the front of the text; 0 when no field begins there.
std::size_t TakeField(TextView text, Pieces& pieces) {
  const char16_t letter = LowerAscii(text.front());
  const auto* const rule =
      std::find_if(std::begin(FormatLetters), std::end(FormatLetters),
                   [letter](const LetterRule& row) { return row.letter == letter; });
  if (rule == std::end(FormatLetters)) return 0;
  std::size_t width = 1;
  while (width < rule->longest && width < text.size() && LowerAscii(text[width]) == letter) ++width;
  Field field = rule->field;
  if (letter == u'y') {
    if (width == 3) width = 2;
    if (width == 2) field = Field::YearOfCentury;
    if (width == 1) field = Field::DayOfYear;
  }
  AppendField(pieces, field, width);
  return width;
}

// The length of what is no field at the front of the text.
std::size_t TakeLiteral(TextView text, Pieces& pieces) {
  const char16_t unit = text.front();
  if (unit == u'/' || unit == u':') {
    AppendField(pieces, unit == u'/' ? Field::DateSeparator : Field::TimeSeparator, 1);
    return 1;
  }
  if (unit == u'\\' && text.size() > 1) {
    AppendLiteral(pieces, text.substr(1, 1));
    return 2;
  }
  if (unit == u'"') {
    const std::size_t close = std::min(text.find(u'"', 1), text.size());
    AppendLiteral(pieces, text.substr(1, close - 1));
    return std::min(close + 1, text.size());
  }
  AppendLiteral(pieces, text.substr(0, 1));
  return 1;
}

bool IsDateField(Field field) {
  return field != Field::Literal && field != Field::DateSeparator && field != Field::TimeSeparator;
}

bool IsHour(Field field) {
  return field == Field::Hour12 || field == Field::Hour24;
}

// Decides for each m or mm by the fields before and behind it, whatever stands between, and turns
// hours to twelve where a marker is anywhere in the text.
void ResolveNeighbours(Pieces& pieces) {
  const bool twelve = std::any_of(pieces.begin(), pieces.end(),
                                  [](const Piece& piece) { return piece.field == Field::Marker; });
  std::vector<Piece*> fields;
  for (Piece& piece : pieces)
    if (IsDateField(piece.field)) fields.push_back(&piece);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    Piece& piece = *fields[i];
    if (piece.field == Field::Hour24 && twelve) piece.field = Field::Hour12;
    if (piece.field != Field::MonthOrMinute || piece.width > 2) continue;
    const bool behindHour = i > 0 && IsHour(fields[i - 1]->field);
    const bool beforeSecond = i + 1 < fields.size() && fields[i + 1]->field == Field::Second;
    piece.field = behindHour || beforeSecond ? Field::Minute : Field::Month;
  }
}

// ---- the locale's pictures

// The length of a quoted stretch at the front of a picture; two quotes stand for one, inside and
// outside. A missing end is the end of the picture.
std::size_t TakeQuoted(TextView text, Pieces& pieces) {
  if (text.size() > 1 && text[1] == u'\'') {
    AppendLiteral(pieces, u"'");
    return 2;
  }
  std::size_t place = 1;
  while (place < text.size()) {
    if (text[place] == u'\'') {
      if (place + 1 >= text.size() || text[place + 1] != u'\'') return place + 1;
      ++place;
    }
    AppendLiteral(pieces, text.substr(place++, 1));
  }
  return place;
}

void AppendPictureField(char16_t letter, std::size_t run, const LocaleFacts& locale,
                        Pieces& pieces) {
  switch (letter) {
    case u'd':
      return AppendField(pieces, Field::Day, std::min<std::size_t>(run, 4));
    case u'M':
      return AppendField(pieces, Field::Month, std::min<std::size_t>(run, 4));
    case u'y':
      if (run <= 2) return AppendField(pieces, Field::YearOfCentury, run);
      return AppendField(pieces, Field::Year, 4);
    case u'h':
      return AppendField(pieces, Field::Hour12, std::min<std::size_t>(run, 2));
    case u'H':
      return AppendField(pieces, Field::Hour24, std::min<std::size_t>(run, 2));
    case u'm':
      return AppendField(pieces, Field::Minute, std::min<std::size_t>(run, 2));
    case u's':
      return AppendField(pieces, Field::Second, std::min<std::size_t>(run, 2));
    case u't':
      if (run > 1) return AppendMarker(pieces, locale.amMarker, locale.pmMarker);
      return AppendMarker(pieces, TextView(locale.amMarker).substr(0, 1),
                          TextView(locale.pmMarker).substr(0, 1));
    default:
      return AppendLiteral(pieces, Text(run, letter));
  }
}

Pieces PiecesOfPicture(TextView picture, const LocaleFacts& locale) {
  Pieces pieces;
  pieces.reserve(picture.size());  // lists are made of millions of dates
  while (!picture.empty()) {
    std::size_t taken = 0;
    if (picture.front() == u'\'') {
      taken = TakeQuoted(picture, pieces);
    } else {
      taken = RunLength(picture);
      AppendPictureField(picture.front(), taken, locale, pieces);
    }
    picture.remove_prefix(taken);
  }
  return pieces;
}

}  // namespace

Text FormatDate(Date date, TextView format, const LocaleFacts& locale) {
  Pieces pieces;
  while (!format.empty()) {
    std::size_t taken = TakeMarker(format, locale, pieces);
    if (taken == 0) taken = TakeField(format, pieces);
    if (taken == 0) taken = TakeLiteral(format, pieces);
    format.remove_prefix(taken);
  }
  ResolveNeighbours(pieces);
  return Render(pieces, date, locale);
}

Text FormatGeneralDate(Date date, const LocaleFacts& locale) {
  if (!date.IsValid()) throw RuntimeError(runtime_error::InvalidProcedureCall);
  const std::int64_t seconds = date.WholeSeconds();
  const bool hasDay = seconds < 0 || seconds >= 86400;
  const bool hasTime = !hasDay || seconds % 86400 != 0;
  Text text;
  if (hasDay) text = Render(PiecesOfPicture(locale.shortDate, locale), date, locale);
  if (hasDay && hasTime) text += u' ';
  if (hasTime) text += Render(PiecesOfPicture(locale.longTime, locale), date, locale);
  return text;
}

Text FormatGrouped(std::int64_t number, const LocaleFacts& locale) {
  Text digits = DecimalText(number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t place = digits.size(); place > first + 3;) {
    place -= 3;
    digits.insert(place, locale.thousandsSeparator);
  }
  return digits;
}

Text FormatGrouped(Currency number, const LocaleFacts& locale) {
  return FormatGrouped(number.ToInteger(), locale);
}

}  // namespace quillmarsh
