// SPDX-License-Identifier: MIT
// Letters by which menus and buttons are reached from the keyboard. Captions come without marks, so
// each is given one here.
#pragma once

#include <QString>

namespace quillmarsh {

// The caption with the mark '&' before its first letter that is not `taken` yet (lower case), the
// beginnings of words first; the letter is then taken. Without a free letter, unmarked. An
// ampersand of the caption stays one.
[[nodiscard]] QString WithAccessKey(const QString& caption, QString& taken);

}  // namespace quillmarsh
