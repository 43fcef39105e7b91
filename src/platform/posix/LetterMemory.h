// SPDX-License-Identifier: MIT
// The file that remembers drive letters: read, extended and replaced as a whole under a lock, so
// that two programs that start together agree. Never leaves a half-written file.
#pragma once

#include <functional>
#include <map>
#include <string>

namespace quillmarsh {

// Reads the file into `letters` (letter to identity; entries that are there already stay), calls
// `change`, and writes the file when `change` answers true. A file that cannot be read or written
// is left alone: `change` has run and its letters hold for this program only. An empty path means
// no file at all.
void ChangeLetterMemory(const std::string& path, std::map<char, std::string>& letters,
                        const std::function<bool()>& change);

}  // namespace quillmarsh
