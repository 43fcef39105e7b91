// SPDX-License-Identifier: MIT
// Memory that runs short: while one of these lives, every allocation of `bytes` and more fails.
// Linking it replaces the allocation functions of the whole test program.
#pragma once

#include <cstddef>

namespace quillmarsh {

class FailingMemory {
 public:
  explicit FailingMemory(std::size_t bytes);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
};

}  // namespace quillmarsh
