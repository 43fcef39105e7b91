// SPDX-License-Identifier: MIT
// Of all entries of the history, those that a person at a console has to know at once.
#include "console/ConsoleLog.h"

#include <utility>

#include "console/StandardStreams.h"
#include "frame/ErrorReporting.h"
#include "platform/Machine.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

namespace {

// The system's texts end in a line break.
TextView WithoutLineBreak(TextView text) {
  while (!text.empty() && (text.back() == u'\n' || text.back() == u'\r')) text.remove_suffix(1);
  return text;
}

}  // namespace

void ConsoleLog::Add(std::int32_t kind, TextView spareText, TextView fileSpec, TextView targetPath,
                     std::int32_t errorNumber, TextView errorText, TextView customText,
                     bool& result) {
  cLog::Add(kind, spareText, fileSpec, targetPath, errorNumber, errorText, customText, result);
  const bool isFolder = kind == log_kind::GetSubFoldersError;
  if (!isFolder && kind != log_kind::CRC32Error) return;
  mErrorCount += 1;
  const TextView reason = WithoutLineBreak(errorText);
  PrintError((isFolder ? "could not read all of \"" : "could not read \"") + ToUtf8(fileSpec) +
             "\": " + (reason.empty() ? "unknown reason" : ToUtf8(reason)) + " (" +
             std::to_string(errorNumber) + ")");
}

void ConsoleLog::TellOfLostBatch() {
  const std::uint32_t code = TheMachine().GetLastError();
  // A user without a home has no place for one.
  if (GetIniFileFolder().empty() || std::exchange(mIsHistoryLost, true)) return;
  PrintError("the history could not be written: " +
             ToUtf8(SystemErrorReason(code)));
}

}  // namespace quillmarsh
