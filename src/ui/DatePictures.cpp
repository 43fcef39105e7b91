// SPDX-License-Identifier: MIT
// The toolkit's pictures mean the same as the locale's, but for years and the marker of the half of
// the day.
#include "ui/DatePictures.h"

#include "ui/QtText.h"

namespace quillmarsh {

namespace {

QString ToolkitPicture(TextView picture) {
  QString text;
  bool isLiteral = false;
  for (std::size_t at = 0; at < picture.size();) {
    const char16_t letter = picture[at];
    const std::size_t end = std::min(picture.find_first_not_of(letter, at), picture.size());
    const TextView run = picture.substr(at, letter == u'\'' ? 1 : end - at);
    at += run.size();
    if (letter == u'\'') isLiteral = !isLiteral;
    if (!isLiteral && letter == u'y') {
      text += QStringLiteral("yyyy");
    } else if (!isLiteral && letter == u't') {
      text += QStringLiteral("AP");
    } else if (isLiteral || letter != u'g') {  // an era cannot be chosen
      text += ToQString(run);
    }
  }
  return text;
}

}  // namespace

QDateTime ToPicker(Date date) {
  const CivilTime civil = Date::FromWholeSeconds(date.WholeSeconds()).ToCivil();
  return QDateTime(QDate(civil.year, civil.month, civil.day),
                   QTime(civil.hour, civil.minute, civil.second), Qt::UTC);
}

Date FromPicker(const QDateTime& shown) {
  const QDate day = shown.date();
  const QTime time = shown.time();
  CivilTime civil;
  civil.year = day.year();
  civil.month = day.month();
  civil.day = day.day();
  civil.hour = time.hour();
  civil.minute = time.minute();
  civil.second = time.second();
  return Date::FromCivil(civil).value_or(Date());
}

QString PickerFormat(const LocaleFacts& locale) {
  return ToolkitPicture(locale.shortDate) + QLatin1Char(' ') + ToolkitPicture(locale.longTime);
}

}  // namespace quillmarsh
