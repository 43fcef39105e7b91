// SPDX-License-Identifier: MIT
// What stands between the results and the list or file that they become.
#include "console/SearchCommand.h"

#include "console/ChosenRule.h"
#include "console/ExportFile.h"
#include "console/ResultsWriters.h"
#include "console/StandardStreams.h"

namespace quillmarsh {

ExitCode ListResults(ConsoleSearch& search, const SearchArguments& arguments, bool showsMarks) {
  StandardOutput output(StandardOutput::AfterStop::Drop);
  const WriteOptions options{arguments.format, !arguments.isQuiet, showsMarks};
  const bool isWhole = WriteResults(search.Results(), search.FilesSearched(), options, output);
  const bool isWritten = output.Finish();
  // A stop behind the last byte changes nothing: the list is whole, and said to be.
  if (!isWhole || (!isWritten && ConsolePump::IsStopRequested())) {
    PrintError("stopped; the list is not whole");
    return ExitCode::Stopped;
  }
  if (!isWritten) return ExitCode::Refused;
  search.TellPlacesNotEntered();
  return search.EndCode();
}

ExitCode RunSearch(const SearchArguments& arguments, ProgramObjects& objects) {
  ConsoleSearch search(objects);
  if (const auto ended = search.Run(arguments)) return *ended;
  return ListResults(search, arguments, false);
}

ExitCode RunSelect(const SelectArguments& arguments, ProgramObjects& objects) {
  ChosenRule rule(objects);
  if (!rule.Take(arguments.rule)) return ExitCode::Refused;
  ConsoleSearch search(objects);
  if (const auto ended = search.Run(arguments.search)) return *ended;
  if (!rule.Mark(search.Results())) return ExitCode::Refused;
  return ListResults(search, arguments.search, true);
}

ExitCode RunExport(const ExportArguments& arguments, ProgramObjects& objects) {
  ExportFile file;
  if (!file.Take(arguments.output)) return ExitCode::Refused;
  ConsoleSearch search(objects);
  if (const auto ended = search.Run(arguments.search)) return *ended;
  const ExitCode written = file.Write(search, arguments.search.format);
  if (written != ExitCode::Done) return written;
  search.TellPlacesNotEntered();
  return search.EndCode();
}

}  // namespace quillmarsh
