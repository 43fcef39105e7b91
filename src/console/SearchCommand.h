// SPDX-License-Identifier: MIT
// The commands that change nothing but the one file that they are told to write: `search` lists the
// groups, `select` the same with the marks of a rule, and `export` writes them into a file.
#pragma once

#include "console/ConsoleSearch.h"

namespace quillmarsh {

[[nodiscard]] ExitCode RunSearch(const SearchArguments& arguments, ProgramObjects& objects);
[[nodiscard]] ExitCode RunSelect(const SelectArguments& arguments, ProgramObjects& objects);
[[nodiscard]] ExitCode RunExport(const ExportArguments& arguments, ProgramObjects& objects);

// Writes the groups to standard output, ends the command and answers its exit code.
[[nodiscard]] ExitCode ListResults(ConsoleSearch& search, const SearchArguments& arguments,
                                   bool showsMarks);

}  // namespace quillmarsh
