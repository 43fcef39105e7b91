// SPDX-License-Identifier: MIT
// Where bytes go that are written piece by piece.
#pragma once

#include <string_view>

namespace quillmarsh {

class ByteOutput {
 public:
  virtual ~ByteOutput() = default;
  // Does nothing after a failure.
  virtual void Write(std::string_view bytes) = 0;
  [[nodiscard]] virtual bool HasFailed() const = 0;
};

}  // namespace quillmarsh
