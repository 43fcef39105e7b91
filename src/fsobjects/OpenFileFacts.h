// SPDX-License-Identifier: MIT
// What shows that an open file is still what it was: its size and its write time.
#pragma once

#include <optional>

#include "platform/Machine.h"

namespace quillmarsh {

struct OpenFileFacts {
  std::int64_t size = 0;  // bytes
  FILETIME written;       // UTC
  friend bool operator==(const OpenFileFacts&, const OpenFileFacts&) = default;
};

// None, and the last error set, when they cannot be told.
[[nodiscard]] inline std::optional<OpenFileFacts> FactsOfOpenFile(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION information;
  if (!TheMachine().Files().GetFileInformationByHandle(file, information)) return std::nullopt;
  const std::uint64_t high = information.nFileSizeHigh;
  return OpenFileFacts{static_cast<std::int64_t>(high << 32U | information.nFileSizeLow),
                       information.ftLastWriteTime};
}

}  // namespace quillmarsh
