// SPDX-License-Identifier: MIT
// The texts of the user's locale in the form in which the program asks for them: date and time
// pictures, separators, markers and names. Reads the locale once; never changes that of the
// process.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>

#include "base/Text.h"

namespace quillmarsh {

// LOCALE_... number to text.
[[nodiscard]] std::map<std::uint32_t, Text> ReadLocaleTexts();

// A strftime format as a locale picture: "%d.%m.%y" is "dd.MM.yyyy". Letters that are no part of a
// field are quoted; a zone is dropped; the year always has its four digits, since a file may be
// older than a century. `amPm` stands for the format's own 12-hour form.
[[nodiscard]] Text PictureOf(std::string_view format, std::string_view amPm);

}  // namespace quillmarsh
