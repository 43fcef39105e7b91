// SPDX-License-Identifier: MIT
// Entry of the console program.
#include <exception>

#include "console/AnalyzeCommand.h"
#include "console/Arguments.h"
#include "console/Entry.h"
#include "console/HistoryCommand.h"
#include "console/ProgramObjects.h"
#include "console/RemoveCommand.h"
#include "console/SearchCommand.h"
#include "console/StandardStreams.h"

namespace {

using namespace quillmarsh;

ExitCode RunCommand(const ParsedCommandLine& commandLine, ProgramObjects& objects) {
  if (commandLine.analyze) return RunAnalyze(*commandLine.analyze, objects);
  if (commandLine.history) return RunHistory(*commandLine.history);
  if (commandLine.select) return RunSelect(*commandLine.select, objects);
  if (commandLine.remove) return RunRemove(*commandLine.remove, objects);
  if (commandLine.exported) return RunExport(*commandLine.exported, objects);
  return RunSearch(*commandLine.search, objects);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Entry entry(argc, argv);
    const ParsedCommandLine commandLine = ParseCommandLine(entry.Arguments());
    if (!commandLine.HasCommand()) return static_cast<int>(commandLine.exitCode);
    ProgramObjects objects(entry.GetMachine());
    if (!objects.IsUsable()) return static_cast<int>(ExitCode::Refused);
    return static_cast<int>(RunCommand(commandLine, objects));
  } catch (const std::exception& error) {
    PrintError(error.what());
    return static_cast<int>(ExitCode::Refused);
  }
}
