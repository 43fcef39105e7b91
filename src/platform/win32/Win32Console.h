// SPDX-License-Identifier: MIT
// What a console program needs of the system before anything else: its arguments in UTF-8, and
// standard streams that carry bytes.
#pragma once

#include <string>
#include <vector>

namespace quillmarsh {

// The command line as the system holds it, whatever the code page; a half of a surrogate pair
// becomes three bytes. The program's name comes first.
[[nodiscard]] std::vector<std::string> ProgramArguments();

// While it lives, what is written to a console is read as UTF-8, and what goes to a file or a pipe
// arrives as it is.
class Utf8Console {
 public:
  Utf8Console();
  ~Utf8Console();
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;

 private:
  unsigned mInputCodePage;
  unsigned mOutputCodePage;
};

}  // namespace quillmarsh
