// SPDX-License-Identifier: MIT
// Buffered standard output, and standard error beside a line of progress.
#include "console/StandardStreams.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/Text.h"

namespace quillmarsh {

namespace {

bool hasProgressLine = false;

}  // namespace

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

void PrintProgressLine(std::string_view line) {
  if (line.empty() && !hasProgressLine) return;
  std::fputs("\r\033[K", stderr);
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
  hasProgressLine = !line.empty();
}

void PrintError(std::string_view message) {
  PrintProgressLine({});
  std::fprintf(stderr, "quillmarsh-cli: %.*s\n", static_cast<int>(message.size()), message.data());
}

std::string ShownArgument(std::string_view argument) {
  constexpr char16_t kControlPictures = 0x2400;
  constexpr char16_t kDelete = 0x7F;
  Text text = FromUtf8(argument);
  for (char16_t& unit : text) {
    if (unit < u' ') unit = static_cast<char16_t>(kControlPictures + unit);
    if (unit == kDelete) unit = u'\u2421';
  }
  return ToUtf8(text);
}

}  // namespace quillmarsh
