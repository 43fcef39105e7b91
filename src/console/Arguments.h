// SPDX-License-Identifier: MIT
// The command line of the console program as plain values. Paths and masks stand here as they were
// typed; what they mean on this machine is found out by the command.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "console/ExitCodes.h"
#include "console/RuleChoice.h"
#include "removal/cRemovalRun.h"

namespace quillmarsh {

enum class OutputFormat { Plain, Json, Csv, Null };

struct SearchArguments {
  std::vector<std::string> folders;
  std::vector<std::string> match;     // name, size, created, modified, contents
  std::vector<std::string> noIgnore;  // zero, system, hidden, temporary, windows
  std::int32_t fileType = 0;          // the number of a search file type; 0 is all
  std::vector<std::string> includeFiles;
  std::vector<std::string> excludeFiles;
  std::vector<std::string> includeFolders;
  std::vector<std::string> excludeFolders;
  bool withoutSubFolders = false;
  OutputFormat format = OutputFormat::Plain;
  bool isQuiet = false;
  bool showsProgress = false;  // also where standard error is no terminal
};

struct SelectArguments {
  SearchArguments search;
  RuleArguments rule;
};

struct RemoveArguments {
  SearchArguments search;
  RuleArguments rule;
  std::string method;  // delete, recycle, dupes[=FOLDER], move=FOLDER
  bool isAgreed = false;
  bool isDryRun = false;
  RemovalOptions options;
};

struct ExportArguments {
  SearchArguments search;
  std::string output;
};

struct AnalyzeArguments {
  std::string path;
  bool recurses = false;  // into the sub-folders of a folder
};

struct HistoryArguments {
  bool clears = false;
};

// At most one of the commands.
struct ParsedCommandLine {
  std::optional<SearchArguments> search;
  std::optional<SelectArguments> select;
  std::optional<RemoveArguments> remove;
  std::optional<ExportArguments> exported;
  std::optional<AnalyzeArguments> analyze;
  std::optional<HistoryArguments> history;
  ExitCode exitCode = ExitCode::Done;  // when there is no command to run

  [[nodiscard]] bool HasCommand() const {
    return search || select || remove || exported || analyze || history;
  }
};

// Reads the command line, of which the program's name is the first argument. Help goes to standard
// output, a mistake to standard error with what is wrong.
[[nodiscard]] ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace quillmarsh
