// SPDX-License-Identifier: MIT
// The profile calls ("INI" files), written once over the roles of a machine and so the same
// everywhere. A file with the UTF-16 little-endian mark is read and written as UTF-16, any other as
// code page 1252. Each call reads the file anew; each write is atomic, and one that changes nothing
// writes nothing. A file name without a folder means the system's own folder.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/Text.h"
#include "platform/ProfileText.h"

namespace quillmarsh {

class Machine;

// Puts the value, without one pair of quotes around it, into the buffer and a NUL behind it, and
// answers its characters without that; what is longer than the buffer is cut. Of a missing file,
// section or key, and of one that cannot be read, the default without its trailing blanks.
std::uint32_t GetPrivateProfileStringW(Machine& machine, TextView section, TextView key,
                                       TextView defaultText, std::span<char16_t> buffer,
                                       TextView fileName);

// The number that the value begins with, in decimal, or behind "0x", "0o" or "0b" in base 16, 8 or
// 2, its low 32 bits; 0 where it begins with none. The default where the value is missing or empty.
[[nodiscard]] std::int32_t GetPrivateProfileIntW(Machine& machine, TextView section, TextView key,
                                                 std::int32_t defaultValue, TextView fileName);

// Without a value the key is deleted, without a key the whole section. Deleting what is not there
// succeeds. A missing file is made, in the 8-bit code page. False sets the last error: 3 for a
// missing folder, 5 for an empty file name.
[[nodiscard]] bool WritePrivateProfileStringW(Machine& machine, TextView section,
                                              std::optional<TextView> key,
                                              std::optional<TextView> value, TextView fileName);

// Replaces the keys of a section by "key=value" texts that a NUL each ends; an empty one ends the
// list. A missing section is made.
[[nodiscard]] bool WritePrivateProfileSectionW(Machine& machine, TextView section, TextView entries,
                                               TextView fileName);

// Many values of one file in one go: read once, changed in memory, and written once, so that the
// file on the disk is the whole old one or the whole new one.
class ProfileBatch {
 public:
  // As the file is, or as UTF-16 whatever it is.
  enum class Encoding { AsItIs, Utf16 };
  ProfileBatch(Machine& machine, TextView fileName, Encoding encoding);

  // As the two calls of the like names.
  std::uint32_t GetString(TextView section, TextView key, TextView defaultText,
                          std::span<char16_t> buffer) const;
  void SetString(TextView section, TextView key, TextView value);
  // Writes what was changed; true, and nothing written, when that is nothing. False sets the last
  // error; a file that could not be read is left alone.
  [[nodiscard]] bool Commit();

 private:
  Machine& mMachine;
  const Text mPath;
  std::string mBytes;
  std::uint32_t mReadError = 0;
  ProfileText mText;
};

}  // namespace quillmarsh
