// SPDX-License-Identifier: MIT
#include "console/StandardStreams.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace quillmarsh {

void StandardOutput::Write(std::string_view bytes) {
  if (mHasFailed) return;
  mBuffer.append(bytes);
  if (mBuffer.size() >= kBufferBytes) Flush();
}

void StandardOutput::Flush() {
  if (mBuffer.empty() || mHasFailed) return;
  errno = 0;
  const bool isWritten = std::fwrite(mBuffer.data(), 1, mBuffer.size(), stdout) == mBuffer.size() &&
                         std::fflush(stdout) == 0;
  mBuffer.clear();
  if (isWritten) return;
  mHasFailed = true;
  PrintError(std::string("writing the results failed: ") + std::strerror(errno));
}

bool StandardOutput::Finish() {
  Flush();
  return !mHasFailed;
}

void PrintError(std::string_view message) {
  std::fprintf(stderr, "quillmarsh-cli: %.*s\n", static_cast<int>(message.size()), message.data());
}

}  // namespace quillmarsh
