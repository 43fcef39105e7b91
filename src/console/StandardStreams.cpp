// SPDX-License-Identifier: MIT
// Buffered standard output, and standard error beside a line of progress.
#include "console/StandardStreams.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/Text.h"
#include "console/ConsoleViews.h"
#include "frame/ErrorReporting.h"

namespace quillmarsh {

namespace {

// What a pipe takes whole or not at all. A larger write that waits for a reader would have been
// begun when a signal comes, and would then go on behind it.
constexpr std::size_t kPieceBytes = 4096;

bool hasProgressLine = false;

}  // namespace

StandardOutput::StandardOutput(AfterStop afterStop) : mAfterStop(afterStop) {
  std::setvbuf(stdout, nullptr, _IONBF, 0);
}

void StandardOutput::Write(std::string_view bytes) {
  if (mHasFailed) return;
  mBuffer.append(bytes);
  if (mBuffer.size() >= kBufferBytes) Flush();
}

void StandardOutput::Flush() {
  std::string_view rest = mBuffer;
  while (!rest.empty() && !mHasFailed) {
    errno = 0;
    std::clearerr(stdout);
    const std::size_t wanted = std::min(rest.size(), kPieceBytes);
    const std::size_t written = std::fwrite(rest.data(), 1, wanted, stdout);
    rest.remove_prefix(written);
    if (written == wanted) continue;
    // A write that a signal broke off goes on, unless the signal was a stop.
    mHasFailed =
        errno != EINTR || (mAfterStop == AfterStop::Drop && ConsolePump::IsStopRequested());
    if (errno != EINTR)
      PrintError(std::string("writing the results failed: ") + std::strerror(errno));
  }
  mBuffer.clear();
}

bool StandardOutput::Finish() {
  Flush();
  return !mHasFailed;
}

bool StandardOutput::CanBeWritten() {
  Modules& process = TheMachine().Process();
  if (mHasFailed || process.CanTakeOutput(StandardStream::Output)) return !mHasFailed;
  mHasFailed = true;
  PrintError("the results cannot be written: " +
             ToUtf8(SystemErrorReason(TheMachine().GetLastError())));
  return false;
}

void PrintProgressLine(std::string_view line) {
  if (line.empty() && !hasProgressLine) return;
  const std::string whole = "\r\033[K" + std::string(line);
  std::fwrite(whole.data(), 1, whole.size(), stderr);
  std::fflush(stderr);
  hasProgressLine = !line.empty();
}

void PrintError(std::string_view message) {
  PrintProgressLine({});
  // In one piece, since a console may take a write for whole characters.
  const std::string line = "quillmarsh-cli: " + std::string(message) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
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
