// SPDX-License-Identifier: MIT
// The file is UTF-16 with CR LF; what goes out is UTF-8 with line feeds.
#include "console/HistoryCommand.h"

#include "console/StandardStreams.h"
#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "removal/history/HistoryCommands.h"
#include "removal/history/RemovalJournal.h"
#include "removal/history/cHistory.h"
#include "removal/history/cLog.h"

namespace quillmarsh {

namespace {

bool IsThere(const Text& path) {
  return TheMachine().Files().GetFileAttributesW(ToLongPath(path)) != INVALID_FILE_ATTRIBUTES;
}

// A file without an entry yet, which a full disk may leave, is as good as none.
bool HasEntries(const Text& path) {
  cFSXFile file;
  file.SetPath(path);
  constexpr std::int64_t kMarkBytes = 2;
  return IsThere(path) && file.Size() > Currency::FromInteger(kMarkBytes);
}

ExitCode Clear(const Text& path) {
  ClearHistory();
  return IsThere(path) || IsThere(JournalFileSpec()) ? ExitCode::Refused : ExitCode::Done;
}

}  // namespace

ExitCode RunHistory(const HistoryArguments& arguments) {
  const Text path = gHistory->FileSpec();
  if (arguments.clears) return Clear(path);
  if (!HasEntries(path)) {
    PrintError(ToUtf8(LoadResString(478)));
    return ExitCode::Done;
  }
  Text text = gLog->GetLogEntriesFromFile();
  if (text.empty()) {
    const Text reason = GetSystemErrorText(TheMachine().GetLastError());
    PrintError("cannot read \"" + ToUtf8(TheMachine().Drives().ShownPath(path)) +
               "\": " + ToUtf8(reason.substr(0, reason.find_first_of(u"\r\n"))));
    return ExitCode::Refused;
  }
  if (text.front() == u'\uFEFF') text.erase(0, 1);
  std::erase(text, u'\r');
  StandardOutput output(StandardOutput::AfterStop::Drop);
  output.Write(ToUtf8(text));
  return output.Finish() ? ExitCode::Done : ExitCode::Refused;
}

}  // namespace quillmarsh
