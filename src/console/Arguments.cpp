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

constexpr const char* kSelectFooter = R"(
Rules (the default is keep-newest; --rule takes one):
  newest, oldest, smallest, largest
      one file of each group is selected
  keep-newest, keep-oldest, keep-smallest, keep-largest
      all but one file of each group are selected; the newest is the one that was changed last, of
      several the one that was created last, of several the first of the group
  drive=D, not-drive=D
      the files on a drive, by its letter or any path on it
  folder=P, not-folder=P
      the files in a folder and below it
  larger-than=SIZE
      the files of more than this size: 4096, 300K, 1.5M, 2G
  older-than=DATE
      the files last changed before this moment: 2024-01-31, "2024-01-31 18:30:00"
  mask=M, not-mask=M
      the files by their names: '*.bak', '*.bak;*.old'
A rule that would select every file of a group leaves the newest one, unless --allow-all is given.

The text output has [x] before a file that is selected and [ ] before one that stays. With
--format null only the selected files are written.)";

constexpr const char* kRemoveFooter = R"(
Methods:
  delete              for good
  recycle             into the desktop's trash
  dupes[=FOLDER]      into the DUPES folder, below the path that they came from
  move=FOLDER         into a folder, under a new name where theirs is taken

Without --yes nothing is removed on a terminal (standard input or output is one). It shows what would be
removed instead, as with --dry-run. Rules are those of "quillmarsh-cli select --help".

From the last look at a file to its removal, the file and a copy to keep are open and locked; with contents
among --match their bytes are compared. What has changed or is in use is kept and reported.

  quillmarsh-cli remove --rule keep-oldest --method recycle --dry-run ~/Pictures ~/Backup
  quillmarsh-cli remove --match size,contents --method dupes --yes ~/Pictures

One removal runs at a time. What is done is written to the history once a second and at the end.

Exit codes: 0 all of it was removed, or only listed; 1 some files were left or could not be read;
2 bad usage, a refused request or a failure; 130 stopped (Ctrl+C), behind the file under way.)";

constexpr const char* kAnalyzeFooter = R"(
A link to a folder is told of itself; a link to a file stands for the file.

Exit codes: 0 done; 1 done, but a folder could not be counted wholly; 2 bad usage, nothing of that
name, or a failure; 130 stopped (Ctrl+C).)";

// Names an option's kind of value and nothing more; what may stand there is told in the text.
class PlainFormatter final : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string type = option->get_type_name();
    return type.empty() ? "" : " " + type;
  }
};

const std::map<std::string, OutputFormat> kFormats = {{"text", OutputFormat::Plain},
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

void AddRuleOptions(CLI::App& app, RuleArguments& rule) {
  app.add_option("--rule", rule.rule, "Which files of each group are selected; see below")
      ->type_name("RULE");
  app.add_flag("--allow-all", rule.allowsAll, "Let the rule select every file of a group");
}

void AddRemovalOptions(CLI::App& app, RemoveArguments& remove) {
  app.add_option("--method", remove.method, "How to remove the selected files; see below")
      ->type_name("METHOD")
      ->required();
  auto* yes = app.add_flag("--yes", remove.isAgreed, "Remove them, even from a terminal");
  app.add_flag("--dry-run", remove.isDryRun, "List what would be removed, and remove nothing")
      ->excludes(yes);
  app.add_flag(
      "--no-verify", [&remove](std::int64_t) { remove.options.comparesContents = false; },
      "Do not compare the contents once more before a file is removed");
  app.add_flag("--allow-permanent", remove.options.deletesWithoutBin,
               "With recycle, delete files on drives that have no trash; they are kept otherwise");
  app.add_flag("--allow-volatile", remove.options.trustsMemory,
               "Let a copy in memory (tmpfs) be the one to keep of a file on a disk");
  app.add_flag(
      "--no-history", [&remove](std::int64_t) { remove.options.keepsHistory = false; },
      "Remove even if the history cannot be written");
}

void AddAnalyzeOptions(CLI::App& app, AnalyzeArguments& analyze) {
  app.add_option("PATH", analyze.path, "A file or a folder")->required()->type_name("");
  app.add_flag("--recurse", analyze.recurses,
               "Of a folder, count what is in all folders below it too");
  app.footer(kAnalyzeFooter);
}

// The parser takes a folder such as "[old]" for a list; "./[old]" is the same folder and a plain
// text.
std::vector<std::string> WithPlainFolders(const CLI::App& app,
                                          const std::vector<std::string>& given) {
  const auto commands = app.get_subcommands(
      [&](const CLI::App* command) { return given.size() > 1 && command->check_name(given[1]); });
  const CLI::App* const command = commands.empty() ? nullptr : commands.front();
  std::vector<std::string> arguments;
  bool isValue = false;
  bool areAllFolders = false;
  for (std::size_t i = 1; i < given.size(); ++i) {
    std::string argument = given[i];
    if (argument.starts_with("--") && !areAllFolders && !isValue) {
      areAllFolders = argument == "--";
      const CLI::Option* option =
          command == nullptr ? nullptr : command->get_option_no_throw(argument);
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

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Finds duplicate files and helps to get rid of them.", "quillmarsh-cli");
  app.formatter(std::make_shared<PlainFormatter>());
  app.footer("\nquillmarsh-cli COMMAND --help tells the options of a command.");
  app.set_version_flag("--version", std::string("quillmarsh-cli ") + QUILLMARSH_VERSION);
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // "/folder" is a path on every system

  SearchArguments search;
  CLI::App* searchCommand = app.add_subcommand(
      "search", "Find and list groups of duplicate files; none of them is changed");
  AddSearchOptions(*searchCommand, search);
  searchCommand->footer(kFooter);

  SelectArguments select;
  CLI::App* selectCommand = app.add_subcommand(
      "select", "The same, with the files that a rule selects; none of them is changed");
  AddRuleOptions(*selectCommand, select.rule);
  AddSearchOptions(*selectCommand, select.search);
  selectCommand->footer(kSelectFooter);

  RemoveArguments remove;
  CLI::App* removeCommand =
      app.add_subcommand("remove", "Remove the files that a rule selects, or list them");
  AddRuleOptions(*removeCommand, remove.rule);
  AddRemovalOptions(*removeCommand, remove);
  AddSearchOptions(*removeCommand, remove.search);
  removeCommand->footer(kRemoveFooter);

  ExportArguments exported;
  CLI::App* exportCommand =
      app.add_subcommand("export", "Write the groups into a file, as a text report by default");
  exportCommand
      ->add_option("--output", exported.output,
                   "The file; one of the name is replaced once the new one is whole")
      ->type_name("FILE")
      ->required();
  AddSearchOptions(*exportCommand, exported.search);
  exportCommand->footer("");

  AnalyzeArguments analyze;
  CLI::App* analyzeCommand =
      app.add_subcommand("analyze", "Tell what is known of one file or folder; it is not changed");
  AddAnalyzeOptions(*analyzeCommand, analyze);

  HistoryArguments history;
  CLI::App* historyCommand =
      app.add_subcommand("history", "Show the record of all searches and removals, or clear it");
  historyCommand->add_flag("--clear", history.clears, "Delete the record for good");
  historyCommand->footer("");

  ParsedCommandLine parsed;
  try {
    std::vector<std::string> plain = WithPlainFolders(app, arguments);
    std::reverse(plain.begin(), plain.end());  // as the parser wants them
    app.parse(std::move(plain));
    if (searchCommand->parsed()) parsed.search = std::move(search);
    if (selectCommand->parsed()) parsed.select = std::move(select);
    if (removeCommand->parsed()) parsed.remove = std::move(remove);
    if (exportCommand->parsed()) parsed.exported = std::move(exported);
    if (analyzeCommand->parsed()) parsed.analyze = std::move(analyze);
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
