// SPDX-License-Identifier: MIT
// Dates of the program for the toolkit's date picker. A date knows no zone, so the picker's has
// none either: it is in UTC, where no hour is missing.
#pragma once

#include <QDateTime>

#include "base/LocaleFormat.h"

namespace quillmarsh {

// The date must be valid; its fraction of a second is cut off.
[[nodiscard]] QDateTime ToPicker(Date date);
[[nodiscard]] Date FromPicker(const QDateTime& shown);

// The locale's short date and long time as the toolkit writes pictures, with years of four digits,
// since one of two cannot be told from another century's.
[[nodiscard]] QString PickerFormat(const LocaleFacts& locale);

}  // namespace quillmarsh
