// SPDX-License-Identifier: MIT
// What the file object asks of the content comparison: the checksum of one file. Until that part of
// the program is there the pointer is null, and a checksum reads as 0.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

struct ChecksumAnswer {
  std::int32_t value = 0;        // -1 may be a true value
  std::int32_t errorNumber = 0;  // 0 for success
};

class ContentChecksum {
 public:
  virtual ~ContentChecksum() = default;
  virtual ChecksumAnswer GetFileCRC32(TextView path) = 0;
};

extern ContentChecksum* gContentChecksum;  // not owned

}  // namespace quillmarsh
