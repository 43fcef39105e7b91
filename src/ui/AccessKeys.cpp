// SPDX-License-Identifier: MIT
#include "ui/AccessKeys.h"

namespace quillmarsh {

QString WithAccessKey(const QString& caption, QString& taken) {
  const auto escaped = [](QStringView part) {
    return part.toString().replace(u'&', QStringLiteral("&&"));
  };
  for (const bool isForBeginnings : {true, false}) {
    for (qsizetype place = 0; place < caption.size(); ++place) {
      const bool isBeginning = place == 0 || !caption[place - 1].isLetterOrNumber();
      const QChar letter = caption[place].toLower();
      if (isBeginning != isForBeginnings || !letter.isLetterOrNumber() || taken.contains(letter))
        continue;
      taken += letter;
      return escaped(QStringView(caption).first(place)) + u'&' +
             escaped(QStringView(caption).sliced(place));
    }
  }
  return escaped(caption);
}

}  // namespace quillmarsh
