// SPDX-License-Identifier: MIT
// Text for labels that wrap lines: a path or another long word may also be broken, where it reads
// best. Only for showing; the marks between the letters (U+200B) are no part of the text.
#pragma once

#include <QString>

namespace quillmarsh {

[[nodiscard]] inline QString BreakableText(const QString& text) {
  constexpr int kLongWord = 40;  // characters; shorter words are left whole
  QString marked;
  int inWord = 0;
  for (qsizetype at = 0; at < text.size();) {
    const qsizetype end = text.indexOf(QLatin1Char(' '), at);
    const QStringView word = QStringView(text).sliced(at, (end < 0 ? text.size() : end + 1) - at);
    inWord = 0;
    for (const QChar letter : word) {
      marked += letter;
      inWord = letter == QLatin1Char('\n') ? 0 : inWord + 1;
      const bool isBorder = letter == QLatin1Char('/') || letter == QLatin1Char('\\');
      const bool isFull = inWord % kLongWord == 0 && inWord > 0 && !letter.isHighSurrogate();
      if (word.size() > kLongWord && (isBorder || isFull)) marked += QChar(0x200B);
    }
    at += word.size();
  }
  return marked;
}

}  // namespace quillmarsh
