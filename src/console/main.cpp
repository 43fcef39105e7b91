// SPDX-License-Identifier: MIT
// Entry of the console program.
#include <exception>

#include "console/Arguments.h"
#include "console/HistoryCommand.h"
#include "console/MakeMachine.h"
#include "console/ProgramObjects.h"
#include "console/SearchCommand.h"
#include "console/StandardStreams.h"

int main(int argc, char** argv) {
  using namespace quillmarsh;
  try {
    const ParsedCommandLine commandLine = ParseCommandLine(argc, argv);
    if (!commandLine.search && !commandLine.history) return static_cast<int>(commandLine.exitCode);
    const std::unique_ptr<Machine> machine = MakeMachine();
    ProgramObjects objects(*machine);
    if (!objects.IsUsable()) return static_cast<int>(ExitCode::Refused);
    if (commandLine.history) return static_cast<int>(RunHistory(*commandLine.history));
    return static_cast<int>(RunSearch(*commandLine.search, objects));
  } catch (const std::exception& error) {
    PrintError(error.what());
    return static_cast<int>(ExitCode::Refused);
  }
}
