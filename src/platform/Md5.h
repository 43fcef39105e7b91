// SPDX-License-Identifier: MIT
// The MD5 digest of bytes that come piece by piece, by a library of the system.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "base/Text.h"

namespace quillmarsh {

class Md5 {
 public:
  Md5();
  ~Md5();
  Md5(const Md5&) = delete;
  Md5& operator=(const Md5&) = delete;

  void Add(std::span<const std::byte> bytes);
  // 32 lower-case hexadecimal digits; none when the library failed. Nothing may be added after it.
  [[nodiscard]] std::optional<Text> Finish();

 private:
  struct State;
  std::unique_ptr<State> mState;
};

}  // namespace quillmarsh
