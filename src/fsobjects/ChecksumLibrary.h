// SPDX-License-Identifier: MIT
// The loadable checksum library, which lies beside the program: loaded once at start, lent the
// program's own way to files, and asked for one checksum at a time. It opens no file by itself.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// Loads the module from gAppPath and lends it its callbacks. A failure raises error 0x80040000 with
// the source "modQuillmarsh.Main", which names the file.
void LoadChecksumLibrary();
// Takes the callbacks back and frees the module until it is gone; out of an event during a
// checksum, as soon as that has given up.
void FreeChecksumLibrary();

struct LibraryChecksum {
  std::int32_t value = 0;
  std::int32_t errorNumber = 0;  // a system error number, 0 for success
  Text errorText;
};

// The CRC-32 of a file of which the path has no character above U+00FF. Lets events run meanwhile,
// and gives up with 995 when gStopCRC is set. Raises error 53 while no library is loaded.
[[nodiscard]] LibraryChecksum AskLibraryForCRC32(TextView path);

}  // namespace quillmarsh
