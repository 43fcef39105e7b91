// SPDX-License-Identifier: MIT
// What lies at the path says which of the two reports it is.
#include "console/AnalyzeCommand.h"

#include "console/SearchRequest.h"
#include "console/StandardStreams.h"
#include "frame/ProgramFlags.h"
#include "fsobjects/FSObjectReport.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

constexpr const char* kNoDrive =
    "It lies on a file system without a drive letter: one of a kind that does not hold a\n"
    "  person's files, or none of the letters that drives.ini remembers is free.";

ExitCode Refuse(const std::string& path, const std::string& reason) {
  if (gUserAbort) return ExitCode::Stopped;
  PrintError("cannot analyze \"" + ShownArgument(path) + "\": " + reason);
  return ExitCode::Refused;
}

ExitCode RefuseFor(const std::string& path, std::uint32_t code) {
  return Refuse(path, code == ERROR_INVALID_DRIVE ? kNoDrive : ReasonOf(code));
}

bool WriteOut(Text text) {
  std::erase(text, u'\r');
  StandardOutput output(StandardOutput::AfterStop::Drop);
  output.Write(ToUtf8(text));
  return output.Finish();
}

}  // namespace

ExitCode RunAnalyze(const AnalyzeArguments& arguments, const ProgramObjects& objects) {
  const AnalysisScope analysis;
  const CanonicalLocation location = LocateForReport(arguments.path);
  if (location.error != ERROR_SUCCESS) return RefuseFor(arguments.path, location.error);
  const std::uint32_t attributes =
      TheMachine().Files().GetFileAttributesW(ToLongPath(location.path));
  const bool isTold = attributes != INVALID_FILE_ATTRIBUTES;
  const std::uint32_t code = isTold ? ERROR_SUCCESS : TheMachine().GetLastError();
  // These two are there, and their report says what cannot be known of them.
  const bool isThere = isTold || code == ERROR_ACCESS_DENIED || code == ERROR_SHARING_VIOLATION;
  if (!isThere) return RefuseFor(arguments.path, code);
  const bool isFolder = isTold && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const FSObjectReport report =
      isFolder ? ReportOnFolder(location.path, [&] { return arguments.recurses; })
               : ReportOnFile(location.path);
  if (report.isStopped) return ExitCode::Stopped;
  if (!report.isThere) return Refuse(arguments.path, ToUtf8(report.text));
  if (!WriteOut(report.text)) return gUserAbort ? ExitCode::Stopped : ExitCode::Refused;
  if (!report.failedPath.empty())
    PrintError("the counts are not whole, since this folder could not be read: \"" +
               ToUtf8(TheMachine().Drives().ShownPath(report.failedPath)) + "\"");
  return report.failedPath.empty() && objects.ErrorCount() == 0 ? ExitCode::Done
                                                                : ExitCode::SomeFilesFailed;
}

}  // namespace quillmarsh
