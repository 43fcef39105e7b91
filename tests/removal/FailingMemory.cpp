// SPDX-License-Identifier: MIT
// The other forms of the allocation functions come down to these.
#include "removal/FailingMemory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::size_t leastBytesThatFail = SIZE_MAX;

}  // namespace

void* operator new(std::size_t size) {
  if (size >= leastBytesThatFail) throw std::bad_alloc();
  void* const memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace quillmarsh {

FailingMemory::FailingMemory(std::size_t bytes) {
  leastBytesThatFail = bytes;
}
FailingMemory::~FailingMemory() {
  leastBytesThatFail = SIZE_MAX;
}

}  // namespace quillmarsh
