// SPDX-License-Identifier: MIT
// The one way to ask whether something is there. A look that failed for any other reason than a
// missing entry says nothing about it: what is unknown is never taken for gone.
#pragma once

#include "base/Text.h"
#include "platform/Pinning.h"

namespace quillmarsh {

struct EntryLook {
  enum class Is : std::uint8_t { Present, Absent, Unknown };
  Is is = Is::Unknown;
  std::uint32_t code = 0;  // of a look that failed
  FileState state;         // of what is present; links are not followed

  [[nodiscard]] bool IsPresent() const { return is == Is::Present; }
  [[nodiscard]] bool IsAbsent() const { return is == Is::Absent; }
  [[nodiscard]] bool IsUnknown() const { return is == Is::Unknown; }
  [[nodiscard]] bool IsFolder() const { return IsPresent() && state.isFolder; }
  [[nodiscard]] bool IsFile() const { return IsPresent() && !state.isFolder; }
};

[[nodiscard]] EntryLook LookAtEntry(TextView path);
// The same for a folder whose path may end in a backslash.
[[nodiscard]] EntryLook LookAtFolder(TextView path);

// Only these two codes say that something is gone.
[[nodiscard]] bool SaysAbsent(std::uint32_t code);

}  // namespace quillmarsh
