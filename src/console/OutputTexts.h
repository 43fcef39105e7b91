// SPDX-License-Identifier: MIT
// Pieces of the forms of output that other programs read. Pure but for the machine's native paths.
#pragma once

#include <string>

#include "base/Text.h"

namespace quillmarsh {

// The real bytes of a path; of a drive that has gone meanwhile the path as the program knows it.
[[nodiscard]] std::string NativeOrShownPath(TextView path);

// A JSON text in its quotation marks; bytes that are no UTF-8 become the replacement character.
[[nodiscard]] std::string JsonText(const std::string& bytes);
// "path":"..." and, where the bytes are no UTF-8, ,"pathBytes":"(base64)" behind it.
[[nodiscard]] std::string JsonPath(const std::string& key, const std::string& path);

// In quotation marks where it has to be.
[[nodiscard]] std::string CsvField(const std::string& bytes);

}  // namespace quillmarsh
