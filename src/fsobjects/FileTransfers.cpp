// SPDX-License-Identifier: MIT
// A call that moves nothing ends the loop, so that neither waits for ever.
#include "fsobjects/FileTransfers.h"

namespace quillmarsh {

bool ReadFully(HANDLE file, std::span<std::byte> buffer, std::size_t& done) {
  for (done = 0; done < buffer.size();) {
    std::uint32_t got = 0;
    if (!TheMachine().Files().ReadFile(file, buffer.subspan(done), got)) return false;
    if (got == 0) break;
    done += got;
  }
  return true;
}

bool WriteFully(HANDLE file, std::span<const std::byte> bytes, std::size_t& done) {
  for (done = 0; done < bytes.size();) {
    std::uint32_t put = 0;
    if (!TheMachine().Files().WriteFile(file, bytes.subspan(done), put) || put == 0) return false;
    done += put;
  }
  return true;
}

}  // namespace quillmarsh
