// SPDX-License-Identifier: MIT
// From the C library's locale to the texts that the program asks for.
#include "platform/posix/LocalePictures.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <string>
#include <utility>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

struct Field {
  char letter;
  std::u16string_view picture;
};

constexpr Field Fields[] = {
    {'d', u"dd"},         {'e', u"d"},        {'m', u"MM"},    {'b', u"MMM"},  {'h', u"MMM"},
    {'B', u"MMMM"},       {'a', u"ddd"},      {'A', u"dddd"},  {'y', u"yyyy"}, {'Y', u"yyyy"},
    {'G', u"yyyy"},       {'H', u"HH"},       {'k', u"H"},     {'I', u"hh"},   {'l', u"h"},
    {'M', u"mm"},         {'S', u"ss"},       {'p', u"tt"},    {'P', u"tt"},   {'F', u"yyyy-MM-dd"},
    {'D', u"MM/dd/yyyy"}, {'T', u"HH:mm:ss"}, {'R', u"HH:mm"}, {'Z', u""},     {'z', u""},
    {'n', u" "},          {'t', u" "},
};

bool IsLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// The first thing between two fields: the separator.
Text SeparatorOf(const Text& picture, TextView otherwise) {
  std::size_t place = 0;
  while (place < picture.size() && IsLetter(picture[place])) ++place;
  std::size_t end = place;
  while (end < picture.size() && !IsLetter(picture[end])) ++end;
  const Text separator = picture.substr(place, end - place);
  return separator.empty() || end == picture.size() ? Text(otherwise) : separator;
}

class UserLocale {
 public:
  UserLocale() : mLocale(::newlocale(LC_ALL_MASK, "", nullptr)) {
    if (mLocale == nullptr) mLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    mCodeset = ::nl_langinfo_l(CODESET, mLocale);
  }
  ~UserLocale() { ::freelocale(mLocale); }
  UserLocale(const UserLocale&) = delete;
  UserLocale& operator=(const UserLocale&) = delete;

  [[nodiscard]] std::string Bytes(nl_item item) const {
    std::string bytes = ::nl_langinfo_l(item, mLocale);
    if (mCodeset == "UTF-8" || mCodeset.starts_with("ANSI")) return bytes;
    const iconv_t converter = ::iconv_open("UTF-8", mCodeset.c_str());
    if (reinterpret_cast<std::intptr_t>(converter) == -1) return bytes;
    std::string converted(bytes.size() * 4 + 4, '\0');
    char* from = bytes.data();
    char* to = converted.data();
    std::size_t left = bytes.size();
    std::size_t room = converted.size();
    ::iconv(converter, &from, &left, &to, &room);
    ::iconv_close(converter);
    converted.resize(converted.size() - room);
    return converted;
  }

 private:
  locale_t mLocale;
  std::string mCodeset;
};

}  // namespace

Text PictureOf(std::string_view format, std::string_view amPm) {
  Text picture;
  Text literal;
  const auto flush = [&] {
    bool quote = false;
    for (const char16_t unit : literal) quote = quote || IsLetter(unit) || unit == u'\'';
    if (quote) picture += u'\'';
    for (const char16_t unit : literal) picture += unit == u'\'' ? Text(u"''") : Text(1, unit);
    if (quote) picture += u'\'';
    literal.clear();
  };
  const Text units = FromUtf8(format);
  for (std::size_t place = 0; place < units.size(); ++place) {
    if (units[place] != u'%') {
      literal += units[place];
      continue;
    }
    // Flags and modifiers ("%-d", "%Ey", "%02d") choose a form, not another field.
    const std::size_t begin = ++place;
    while (place < units.size() &&
           TextView(u"-_0^#EO123456789").find(units[place]) != TextView::npos)
      ++place;
    if (place == units.size()) break;
    const bool unpadded = units.substr(begin, place - begin).find(u'-') != Text::npos;
    if (units[place] == u'%') {
      literal += u'%';
    } else if (units[place] == u'r' && !amPm.empty()) {
      flush();
      picture += PictureOf(amPm, {});
    } else {
      for (const Field& field : Fields) {
        if (static_cast<char16_t>(field.letter) != units[place]) continue;
        flush();
        const bool isShort = unpadded && field.picture.size() == 2;
        picture += isShort ? field.picture.substr(1) : field.picture;
      }
    }
  }
  flush();
  // What stood before a zone that was dropped.
  return Text(TrimBlanks(picture));
}

std::map<std::uint32_t, Text> ReadLocaleTexts() {
  const UserLocale locale;
  const auto text = [&](nl_item item) { return FromUtf8(locale.Bytes(item)); };
  const std::string amPm = locale.Bytes(T_FMT_AMPM);
  const auto orElse = [](const Text& value, TextView otherwise) {
    return value.empty() ? Text(otherwise) : value;
  };
  std::map<std::uint32_t, Text> texts;
  texts[LOCALE_SSHORTDATE] = orElse(PictureOf(locale.Bytes(D_FMT), {}), u"yyyy-MM-dd");
  texts[LOCALE_STIMEFORMAT] = orElse(PictureOf(locale.Bytes(T_FMT), amPm), u"HH:mm:ss");
  texts[LOCALE_SDATE] = SeparatorOf(texts[LOCALE_SSHORTDATE], u"/");
  texts[LOCALE_STIME] = SeparatorOf(texts[LOCALE_STIMEFORMAT], u":");
  texts[LOCALE_SDECIMAL] = orElse(text(RADIXCHAR), u".");
  texts[LOCALE_STHOUSAND] = text(THOUSEP);
  texts[LOCALE_S1159] = text(AM_STR);
  texts[LOCALE_S2359] = text(PM_STR);
  for (std::uint32_t index = 0; index < 7; ++index) {
    const auto day =
        static_cast<nl_item>((index + 1) % 7);  // Monday first; the library's is Sunday
    texts[LOCALE_SDAYNAME1 + index] = text(DAY_1 + day);
    texts[LOCALE_SABBREVDAYNAME1 + index] = text(ABDAY_1 + day);
  }
  for (std::uint32_t index = 0; index < 12; ++index) {
    texts[LOCALE_SMONTHNAME1 + index] = text(MON_1 + static_cast<nl_item>(index));
    texts[LOCALE_SABBREVMONTHNAME1 + index] = text(ABMON_1 + static_cast<nl_item>(index));
  }
  return texts;
}

}  // namespace quillmarsh
