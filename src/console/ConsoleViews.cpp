// SPDX-License-Identifier: MIT
// Signals, the line of progress, and message boxes as lines on standard error.
#include "console/ConsoleViews.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "console/ExitCodes.h"
#include "console/StandardStreams.h"
#include "frame/ProgramFlags.h"

namespace quillmarsh {

namespace {

constexpr auto kTerminalInterval = std::chrono::milliseconds(100);
constexpr auto kFileInterval = std::chrono::seconds(1);
constexpr std::size_t kWidestLine = 79;  // characters; a longer line would wrap in some terminals

volatile std::sig_atomic_t stopRequested = 0;

constexpr std::sig_atomic_t kSignalsToEnd = 2;
volatile std::sig_atomic_t signalsToEnd = kSignalsToEnd;
bool isWaitTold = false;

void OnStop() {
  const std::sig_atomic_t signals = stopRequested + 1;
  stopRequested = signals;
  if (signals >= signalsToEnd) std::_Exit(static_cast<int>(ExitCode::Stopped));
}

extern "C" void OnStopSignal(int) {
  OnStop();
}

// Cut in the middle, where a path has least to say.
Text Shortened(const Text& text, std::size_t width) {
  if (text.size() <= width) return text;
  const std::size_t head = (width - 1) / 2;
  return text.substr(0, head) + u"\u2026" + text.substr(text.size() - (width - 1 - head));
}

}  // namespace

MessageBoxResult ConsoleMessages::Show(const MessageBoxRequest& request) {
  mCount += 1;
  // Lines behind the first are indented; empty ones are for the box only.
  std::string text;
  TextView rest = request.text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(u'\n'), rest.size());
    TextView line = rest.substr(0, end);
    if (line.ends_with(u'\r')) line.remove_suffix(1);
    if (!line.empty()) text += (text.empty() ? "" : "\n  ") + ToUtf8(line);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  PrintError(ToUtf8(request.title) + ": " + text);
  return CarefulAnswer(request.buttons);
}

ConsolePump::ConsolePump(Machine& machine) : mMachine(machine) {
  if (!mMachine.Process().SetConsoleCtrlHandler(OnStop)) {
    std::signal(SIGINT, OnStopSignal);
    std::signal(SIGTERM, OnStopSignal);
  }
#ifdef SIGPIPE
  std::signal(SIGPIPE, SIG_IGN);  // a reader that has gone is an error of the write
#endif
}

ConsolePump::~ConsolePump() {
  if (mMachine.Process().SetConsoleCtrlHandler(nullptr)) return;
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

ConsolePump::FinishingTouch::FinishingTouch() {
  signalsToEnd = kSignalsToEnd + 1;
}

ConsolePump::FinishingTouch::~FinishingTouch() {
  signalsToEnd = kSignalsToEnd;
}

bool ConsolePump::IsStopRequested() {
  return stopRequested != 0;
}

void ConsolePump::PumpEvents() {
  if (stopRequested == 0) return;
  if (signalsToEnd > kSignalsToEnd && !std::exchange(isWaitTold, true))
    PrintError("stopping behind the file that is under way");
  gUserAbort = true;
  gStopCRC = true;
}

void ConsoleProgress::SetPanel(TextView key, TextView text) {
  if (key == PANEL1) mMessage = text;
  if (key == PANEL2) mDetail = text;
  if (key == FILES_SEARCHED) mFiles = text;
  ShowIfDue();
}

void ConsoleProgress::SetPanelToolTip(TextView key, TextView text) {
  if (key == PANEL1 && !text.empty()) mDetail = text;
}

void ConsoleProgress::ShowIfDue() {
  const auto now = std::chrono::steady_clock::now();
  if (now < mNextDue) return;
  mNextDue = now + (mIsTerminal ? kTerminalInterval : std::chrono::milliseconds(kFileInterval));
  Show();
}

void ConsoleProgress::Show() {
  Text line = mFiles;
  if (!mMessage.empty()) line += u"  " + mMessage;
  if (!mDetail.empty()) line += u"  " + mDetail;
  const std::string bytes = ToUtf8(mIsTerminal ? Shortened(line, kWidestLine) : line);
  if (mIsTerminal) return PrintProgressLine(bytes);
  std::fprintf(stderr, "%s\n", bytes.c_str());
}

ConsoleProgress::~ConsoleProgress() {
  if (!mIsTerminal) Show();
  PrintProgressLine({});
}

}  // namespace quillmarsh
