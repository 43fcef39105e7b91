// SPDX-License-Identifier: MIT
// The options of each command, told to the parser, and its help as a person reads it.
#include "console/Arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>

#include "console/StandardStreams.h"

namespace quillmarsh {

namespace {

constexpr const char* kFooter = R"(
Examples:
  quillmarsh-cli search ~/Pictures ~/Backup
      files of the same name and size below either folder
  quillmarsh-cli search --match size,modified --no-ignore hidden --format json ~ > groups.json
  quillmarsh-cli search --include-file '*.jpg' --include-file '*.png' --format null ~/Pictures
  quillmarsh-cli search --match size,contents --type video ~/Videos /mnt/disk

A folder is walked once, whatever it is called: links to folders are not entered, and other file
systems below a folder only when they are named themselves.

Exit codes: 0 done; 1 done, but something could not be read; 2 bad usage, a refused request or a
failure; 130 stopped (Ctrl+C). After 2 and 130 what was written is not a whole list.)";

// Names an option's kind of value and nothing more; what may stand there is told in the text.
class PlainFormatter final : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string type = option->get_type_name();
    return type.empty() ? "" : " " + type;
  }
};

const std::map<std::string, OutputFormat> kFormats = {{"text", OutputFormat::Text},
                                                      {"json", OutputFormat::Json},
                                                      {"csv", OutputFormat::Csv},
                                                      {"null", OutputFormat::Null}};

const std::map<std::string, std::int32_t> kFileTypes = {
    {"all", 0}, {"audio", 1}, {"document", 2}, {"image", 3}, {"video", 4}};

template <typename Value>
std::vector<std::string> NamesOf(const std::map<std::string, Value>& values) {
  std::vector<std::string> names;
  for (const auto& [name, value] : values) names.push_back(name);
  return names;
}

// A list option: values separated by commas, from a fixed set of words.
void AddWordList(CLI::App& app, const std::string& name, std::vector<std::string>& into,
                 const std::vector<std::string>& words, const std::string& help) {
  app.add_option(name, into, help)
      ->delimiter(',')
      ->check(CLI::IsMember(words).description(""))
      ->type_name("LIST")
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void AddRepeatable(CLI::App& app, const std::string& name, std::vector<std::string>& into,
                   const std::string& type, const std::string& help) {
  app.add_option(name, into, help)
      ->type_name(type)
      ->check([](const std::string& value) {
        const bool isBlank = value.find_first_not_of(' ') == std::string::npos;
        return isBlank ? std::string("an empty text chooses nothing") : std::string();
      })
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void AddSearchOptions(CLI::App& app, SearchArguments& search) {
  app.add_option("FOLDER", search.folders, "Folders to search")->required()->type_name("");
  AddWordList(
      app, "--match", search.match, {"name", "size", "created", "modified", "contents"},
      "When files are duplicates: name,size,created,modified,contents (default\nname,size);\n"
      "name or size must be among them");
  app.add_flag("--no-subfolders", search.withoutSubFolders, "Search the named folders only");
  app.add_option_function<std::string>(
         "--type", [&search](const std::string& name) { search.fileType = kFileTypes.at(name); },
         "Only files of a type, by their endings: all (default), audio, document, image,\nvideo")
      ->check(CLI::IsMember(NamesOf(kFileTypes)).description(""))
      ->type_name("T");
  AddRepeatable(app, "--include-file", search.includeFiles, "MASK",
                "Only files whose name matches, such as '*.jpg' or '*.jpg;*.png' (repeatable)");
  AddRepeatable(app, "--exclude-file", search.excludeFiles, "MASK",
                "No files whose name matches (repeatable)");
  AddRepeatable(app, "--include-folder", search.includeFolders, "TEXT",
                "Only subfolders whose path holds this text; one that does not hold it is not\n"
                "passed on the way to others (repeatable)");
  AddRepeatable(app, "--exclude-folder", search.excludeFolders, "PATH",
                "Not this subfolder, nor what is below it (repeatable)");
  AddWordList(app, "--no-ignore", search.noIgnore,
              {"zero", "system", "hidden", "temporary", "windows"},
              "What not to leave out, of zero,system,hidden,temporary,windows: empty files,\n"
              "system, hidden and temporary files and folders, and the system's own folder\n"
              "(C:\\Windows, /usr); all are left out by default");
  app.add_option_function<std::string>(
         "--format", [&search](const std::string& name) { search.format = kFormats.at(name); },
         "Output: text (default), json, csv, null (paths ended by NUL, groups by an\nextra NUL)")
      ->check(CLI::IsMember(NamesOf(kFormats)).description(""))
      ->type_name("F");
  auto* quiet = app.add_flag(
      "--quiet", search.isQuiet,
      "The list alone: no summary, no progress, no word of other file systems\nbelow a folder");
  app.add_flag("--progress", search.showsProgress,
               "Progress on standard error, also where that is no terminal")
      ->excludes(quiet);
}

// The parser takes a folder such as "[old]" for a list; "./[old]" is the same folder and a plain
// text.
std::vector<std::string> WithPlainFolders(const CLI::App& search, int argc,
                                          const char* const* argv) {
  std::vector<std::string> arguments;
  bool isValue = false;
  bool areAllFolders = false;
  for (int i = 1; i < argc; ++i) {
    std::string argument = argv[i];
    if (argument.starts_with("--") && !areAllFolders && !isValue) {
      areAllFolders = argument == "--";
      const CLI::Option* option = search.get_option_no_throw(argument);
      isValue = option != nullptr && option->get_type_size() > 0;
    } else {
      if (argument.starts_with('[') && !isValue) argument.insert(0, "./");
      isValue = false;
    }
    arguments.push_back(std::move(argument));
  }
  return arguments;
}

// The parser's own words may repeat what was typed.
void PrintShown(std::ostream& stream, const std::string& text) {
  std::string shown;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    shown += ShownArgument(rest.substr(0, end));
    if (end < rest.size()) shown += '\n';
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  stream << shown;
}

}  // namespace

ParsedCommandLine ParseCommandLine(int argc, const char* const* argv) {
  CLI::App app("Finds duplicate files.", "quillmarsh-cli");
  app.formatter(std::make_shared<PlainFormatter>());
  app.footer("\nquillmarsh-cli search --help tells the options of a search.");
  app.set_version_flag("--version", std::string("quillmarsh-cli ") + QUILLMARSH_VERSION);
  app.require_subcommand(1);
  SearchArguments search;
  CLI::App* searchCommand = app.add_subcommand(
      "search", "Find and list groups of duplicate files; none of them is changed");
  AddSearchOptions(*searchCommand, search);
  searchCommand->footer(kFooter);
  HistoryArguments history;
  CLI::App* historyCommand =
      app.add_subcommand("history", "Show the record of all searches and removals, or clear it");
  historyCommand->add_flag("--clear", history.clears, "Delete the record for good");
  historyCommand->footer("");
  ParsedCommandLine parsed;
  try {
    std::vector<std::string> arguments = WithPlainFolders(*searchCommand, argc, argv);
    std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
    app.parse(std::move(arguments));
    if (searchCommand->parsed()) parsed.search = std::move(search);
    if (historyCommand->parsed()) parsed.history = history;
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream mistakes;
    parsed.exitCode = app.exit(error, out, mistakes) == 0 ? ExitCode::Done : ExitCode::Refused;
    std::cout << out.str() << std::flush;
    PrintShown(std::cerr, mistakes.str());
  }
  return parsed;
}

}  // namespace quillmarsh
