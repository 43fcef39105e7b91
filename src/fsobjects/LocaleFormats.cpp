// SPDX-License-Identifier: MIT
// Asks the machine for each fact by a table of types and fields.
#include "fsobjects/LocaleFormats.h"

#include <optional>

#include "base/TextEquality.h"
#include "platform/Machine.h"

namespace quillmarsh {
namespace {

struct TextFact {
  std::uint32_t type;
  Text LocaleFacts::*field;
};
constexpr TextFact kTextFacts[] = {
    {LOCALE_SSHORTDATE, &LocaleFacts::shortDate},
    {LOCALE_STIMEFORMAT, &LocaleFacts::longTime},
    {LOCALE_SDATE, &LocaleFacts::dateSeparator},
    {LOCALE_STIME, &LocaleFacts::timeSeparator},
    {LOCALE_SDECIMAL, &LocaleFacts::decimalSeparator},
    {LOCALE_STHOUSAND, &LocaleFacts::thousandsSeparator},
    {LOCALE_S1159, &LocaleFacts::amMarker},
    {LOCALE_S2359, &LocaleFacts::pmMarker},
};

void Take(std::uint32_t type, Text& field) {
  Text value = GetLocaleString(type);
  if (!value.empty()) field = std::move(value);
}

template <std::size_t Count>
void TakeNames(std::uint32_t firstType, std::size_t firstPlace, std::array<Text, Count>& names) {
  for (std::uint32_t step = 0; step < Count; ++step)
    Take(firstType + step, names[(firstPlace + step) % Count]);
}

LocaleFacts AskMachine() {
  LocaleFacts facts;
  for (const TextFact& fact : kTextFacts) Take(fact.type, facts.*fact.field);
  TakeNames(LOCALE_SMONTHNAME1, 0, facts.monthNames);
  TakeNames(LOCALE_SABBREVMONTHNAME1, 0, facts.shortMonthNames);
  // The system counts its days from Monday, the formats from Sunday.
  TakeNames(LOCALE_SDAYNAME1, 1, facts.dayNames);
  TakeNames(LOCALE_SABBREVDAYNAME1, 1, facts.shortDayNames);
  return facts;
}

std::optional<LocaleFacts> known;

// A date picture without its quoted stretches. A quote without a partner goes too, or the loop
// would never end.
Text WithoutLiterals(Text picture) {
  for (std::size_t first = picture.find(u'\''); first != Text::npos; first = picture.find(u'\'')) {
    const std::size_t second = picture.find(u'\'', first + 1);
    const std::size_t length = second == Text::npos ? 1 : second - first + 1;
    picture = Text(TrimBlanks(ReplaceAll(picture, picture.substr(first, length), u"")));
  }
  return picture;
}

}  // namespace

Text GetLocaleString(std::uint32_t type) {
  return TheMachine().Locale().GetLocaleInfoW(type);
}

const LocaleFacts& GetLocaleFacts() {
  if (!known) known = AskMachine();
  return *known;
}

void ResetLocaleFacts() {
  known.reset();
}

Text GetDateTimeFormat() {
  const LocaleFacts& facts = GetLocaleFacts();
  const Text time = facts.longTime.find(u"tt") != Text::npos
                        ? ReplaceAll(facts.longTime, u"tt", u"AM/PM")
                        : ReplaceAll(facts.longTime, u"t", u"A/P");
  return WithoutLiterals(facts.shortDate) + u" " + time;
}

}  // namespace quillmarsh
