// SPDX-License-Identifier: MIT
// The border between the program's text and the toolkit's: both are UTF-16, so nothing is lost.
#pragma once

#include <QString>

#include "base/Text.h"

namespace quillmarsh {

[[nodiscard]] inline QString ToQString(TextView text) {
  return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}
[[nodiscard]] inline Text FromQString(const QString& text) {
  return text.toStdU16String();
}

}  // namespace quillmarsh
