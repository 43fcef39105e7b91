// SPDX-License-Identifier: MIT
// Whole text files in one go. Texts are UTF-16; a file is 8-bit, UTF-8 or UTF-16 little-endian,
// told by the mark at its head. Files are opened without sharing: where another program has one
// open a routine answers false. Nothing raises; what is unexpected is reported.
#pragma once

#include "base/Text.h"
#include "fsobjects/modUnicode.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

// Adds the text's UTF-16 form, whatever the encoding, which only chooses the mark that a new or
// empty file gets first: right for Utf16LittleEndian, and callers use it so. An empty text is a
// success that makes no file. Later leaves it to the system when the text reaches the disk: for one
// of many, of which a next one is written at once.
enum class FlushToDisk { Now, Later };
[[nodiscard]] bool AppendStringToFile(TextView fileSpec, TextView text, TextEncoding encoding,
                                      FlushToDisk flush = FlushToDisk::Now);

// Makes the file, with its mark, anew. False, with nothing done, for a file that is there and not
// to be overwritten. An empty text deletes the file; a failure of that is told in a box and the
// answer is still true. UTF-8 is cut at two bytes for each character of the text (see there).
[[nodiscard]] bool WriteStringToFile(TextView fileSpec, TextView text, bool overwrite,
                                     TextEncoding encoding);

// The whole file, decoded by its mark; of UTF-16 the mark stays as the first character. Empty for a
// file that is missing, empty or cannot be read. A file of 2 GiB and more is told in a box.
[[nodiscard]] Text ReadStringFromFile(TextView fileSpec);

// Rewrites an 8-bit file as UTF-16 with its mark; a missing file is made. The file is whole at any
// moment: on failure its old contents stand.
[[nodiscard]] bool ConvertASCIIFileToUTF16(TextView fileSpec);

[[nodiscard]] bool IsFileUTF16(TextView fileSpec);

// Writes the mark of an encoding at the file's position: nothing for None. False for an encoding
// that is none of the three and for a handle that is not valid.
[[nodiscard]] bool WriteBOM(HANDLE file, TextEncoding encoding);

// The size in bytes below 2 GiB. Above that it is no size: the low word, as signed, less the high
// word. 0 for a file that is not found.
[[nodiscard]] std::int32_t GetFileSizeLong(TextView fileSpec);

}  // namespace quillmarsh
