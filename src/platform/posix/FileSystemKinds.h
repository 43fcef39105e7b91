// SPDX-License-Identifier: MIT
// What is known of a type of file system by its name: whether people store files on it (only then
// it gets a drive letter), whether it can be relied on to answer, and whether it folds case.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillmarsh {

struct FileSystemKind {
  bool holdsFiles = false;  // gets a drive letter
  bool answers = false;     // local: calls return without waiting for another process or machine
  bool foldsCase = false;   // a.txt and A.TXT are one entry
  std::uint32_t driveType = 0;  // DRIVE_..., before the device is asked whether it is removable
  // The file numbers are its own: not made up, and not those of another file system below it.
  bool hasOwnNumbers = false;
};

[[nodiscard]] FileSystemKind KindOfFileSystem(std::string_view type);

}  // namespace quillmarsh
