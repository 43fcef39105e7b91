// SPDX-License-Identifier: MIT
// Method and rule are taken before the search, so that a mistake costs no time; then search, marks,
// and the list or the removal.
#include "console/RemoveCommand.h"

#include <optional>

#include "console/ChosenRule.h"
#include "console/RemovalReport.h"
#include "console/SearchCommand.h"
#include "console/SearchRequest.h"
#include "frame/Pump.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "removal/RemovalPlan.h"
#include "removal/RemovalRecovery.h"
#include "selection/MarkedFiles.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

bool Refuse(const std::string& method, const std::string& reason) {
  PrintError("cannot use the method \"" + ShownArgument(method) + "\": " + reason);
  return false;
}

// The drive form of the folder that files are to be moved to, which need not be there yet.
std::optional<Text> FolderFrom(const std::string& method, const std::string& native) {
  const CanonicalLocation location = TheMachine().Drives().NewLocationFromNative(native);
  if (location.error != 0) {
    static_cast<void>(Refuse(method, ReasonOf(location.error)));
    return std::nullopt;
  }
  const std::uint32_t attributes =
      TheMachine().Files().GetFileAttributesW(ToLongPath(location.path));
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    static_cast<void>(Refuse(method, "it is a file, not a folder"));
    return std::nullopt;
  }
  return AddBackslash(location.path);
}

// A folder that takes files is not searched itself, or they would be found there again.
void LeaveOutOfSearch(const std::string& native, SearchArguments& search) {
  if (TheMachine().Drives().LocationFromNative(native).error == 0)
    search.excludeFolders.push_back(native);
}

// False when it was refused, which has been told.
bool TakeMethod(RemoveArguments& arguments) {
  const std::size_t equals = arguments.method.find('=');
  const std::string name = arguments.method.substr(0, equals);
  const std::string value =
      equals == std::string::npos ? std::string() : arguments.method.substr(equals + 1);
  clsDupeSettings& settings = *gDupeSettings;
  if (equals != std::string::npos && value.empty())
    return Refuse(arguments.method, "no folder is named");
  if (name == "move") {
    if (value.empty()) return Refuse(arguments.method, "write it as move=FOLDER");
    const auto folder = FolderFrom(arguments.method, value);
    if (!folder) return false;
    settings.SetRemoveMethod(RemoveMethod::MoveToOtherFolder);
    settings.SetUserDefinedMoveFolderPath(*folder);
    LeaveOutOfSearch(value, arguments.search);
    return true;
  }
  if (name == "dupes") {
    settings.SetRemoveMethod(RemoveMethod::MoveToDupesFolder);
    if (value.empty()) return true;
    const auto folder = FolderFrom(arguments.method, value);
    if (folder) mDupesFolderPath = *folder;
    return folder.has_value();
  }
  if (name != "delete" && name != "recycle")
    return Refuse(arguments.method, "there are delete, recycle, dupes[=FOLDER] and move=FOLDER");
  if (!value.empty()) return Refuse(arguments.method, "it takes nothing behind its name");
  settings.SetRemoveMethod(name == "delete" ? RemoveMethod::Delete : RemoveMethod::Recycle);
  return true;
}

// What lies in the DUPES folder is never found, so a search in it would come to nothing.
bool IsDupesFolderSearched(const std::vector<Text>& locations) {
  for (const Text& location : locations) {
    if (mDupesFolderPath.empty() || !AddBackslash(location).starts_with(mDupesFolderPath)) continue;
    PrintError("cannot remove from \"" + ToUtf8(TheMachine().Drives().ShownPath(location)) +
               "\": it lies in the DUPES folder or is it");
    return true;
  }
  return false;
}

// No copy of a group goes as the last one by a rule that just came out that way.
bool LeavesACopyOfEach(const cSearchResults& results, bool allowsAll) {
  const std::int32_t groups = WhollyMarkedGroupCount(results);
  if (groups == 0 || allowsAll) return true;
  PrintError((groups == 1 ? std::string("1 group would be")
                          : std::to_string(groups) + " groups would be") +
             " left without a copy, so nothing was removed; --allow-all lets this happen");
  return false;
}

// With a redirected input the output may still be a terminal, and somebody before it.
bool IsPersonThere() {
  Modules& process = TheMachine().Process();
  return process.IsConsole(StandardStream::Input) || process.IsConsole(StandardStream::Output);
}

ExitCode ShowPlan(ConsoleSearch& search, const RemoveArguments& arguments) {
  StandardOutput output(StandardOutput::AfterStop::Drop);
  RemovalReport report(arguments.search.format, arguments.search.isQuiet, output);
  const StoppablePart stoppable;
  const bool isWhole = report.WritePlan(PlanRemoval(search.Results(), *gDupeSettings),
                                        arguments.options.deletesWithoutBin);
  if (!output.Finish()) return ExitCode::Refused;
  if (!isWhole) {
    PrintError("stopped; nothing was removed");
    return ExitCode::Stopped;
  }
  PrintError(arguments.isDryRun ? "dry run: nothing was removed"
                                : "nothing was removed; --yes removes these files");
  if (!LeavesACopyOfEach(search.Results(), arguments.rule.allowsAll)) return ExitCode::Refused;
  search.TellPlacesNotEntered();
  return search.EndCode();
}

ExitCode Remove(ConsoleSearch& search, const RemoveArguments& arguments,
                const ProgramObjects& objects) {
  StandardOutput output(StandardOutput::AfterStop::Finish);
  RemovalReport report(arguments.search.format, arguments.search.isQuiet, output);
  if (!report.Start()) {
    PrintError("nothing was removed, since it could not be reported");
    return ExitCode::Refused;
  }
  QuietRemovalView view;
  cRemovalRun run(search.Results(), *gDupeSettings, view, search.FilesSearched());
  const ConsolePump::FinishingTouch finishing;
  const cRemovalRun::Outcome outcome = run.RemoveWithoutAsking(
      arguments.options, [&report](const RemovalEntry& entry) { report.Add(entry); });
  report.End(outcome);
  const bool isReported = output.Finish();
  if (outcome.isRefused) {
    PrintError(ToUtf8(outcome.problem) + " Nothing was removed." +
               (outcome.isHistoryMissing ? " Use --no-history to remove without it." : ""));
    return ExitCode::Refused;
  }
  if (!isReported) {
    PrintError("nothing more was removed, since it could not be reported; see the history");
    return ExitCode::Refused;
  }
  if (outcome.isStopped) {
    PrintError("stopped; the other files were not touched");
    return ExitCode::Stopped;
  }
  if (!outcome.problem.empty()) PrintError(ToUtf8(outcome.problem));
  if (outcome.isFailed) return ExitCode::Refused;
  search.TellPlacesNotEntered();
  const bool isHistoryLost = arguments.options.keepsHistory && objects.IsHistoryLost();
  const bool isAllDone = outcome.failedCount == 0 && outcome.problem.empty() && !isHistoryLost;
  return isAllDone ? search.EndCode() : ExitCode::SomeFilesFailed;
}

}  // namespace

ExitCode RunRemove(RemoveArguments arguments, ProgramObjects& objects) {
  ChosenRule rule(objects);
  {
    const StoppablePart stoppable;
    if (!TakeMethod(arguments) || !rule.Take(arguments.rule)) return ExitCode::Refused;
  }
  RecoverInterruptedRemovals();
  ConsoleSearch search(objects);
  if (const auto ended = search.Run(arguments.search)) return *ended;
  const bool toDupes = gDupeSettings->RemoveMethod() == RemoveMethod::MoveToDupesFolder;
  if (toDupes && IsDupesFolderSearched(search.Locations())) return ExitCode::Refused;
  if (!rule.Mark(search.Results())) return ExitCode::Refused;
  if (ConsolePump::IsStopRequested()) {
    PrintError("stopped; nothing was removed");
    return ExitCode::Stopped;
  }
  const bool asksFirst = !arguments.isAgreed && IsPersonThere();
  if (!arguments.search.isQuiet && !search.Results().mCriteria.contentsMatch &&
      search.Results().mGroupCount > 0)
    PrintError("contents were not compared; add them to --match for files that are alike for sure");
  if (arguments.isDryRun || asksFirst) return ShowPlan(search, arguments);
  if (!LeavesACopyOfEach(search.Results(), arguments.rule.allowsAll)) return ExitCode::Refused;
  return Remove(search, arguments, objects);
}

}  // namespace quillmarsh
