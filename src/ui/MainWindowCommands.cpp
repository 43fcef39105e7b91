// SPDX-License-Identifier: MIT
// Which routine stands behind a menu entry or the key of a tool bar: one table.
#include <QDesktopServices>
#include <QUrl>

#include "filetypes/SearchFileTypeFilters.h"
#include "frame/CommandScope.h"
#include "frame/ProgramFlags.h"
#include "frame/RunCommand.h"
#include "frame/TextTable.h"
#include "platform/Machine.h"
#include "removal/DuplicatesExport.h"
#include "removal/RemovalRecovery.h"
#include "removal/cRemovalRun.h"
#include "removal/history/HistoryCommands.h"
#include "removal/history/cLog.h"
#include "settings/OptionsFolder.h"
#include "ui/Dialogs.h"
#include "ui/ExcludeListCommands.h"
#include "ui/Help.h"
#include "ui/MainWindowParts.h"
#include "ui/QtText.h"
#include "ui/frmGetFSObjectProperties.h"
#include "ui/frmMediaInfo.h"

namespace quillmarsh {

using Parts = frmFindDuplicates::Parts;

namespace {

constexpr TextView kWebPage = u"https://quillmarsh.example/";
constexpr TextView kSalesAddress = u"sales@quillmarsh.example";

void FindDuplicates(Parts& parts) {
  RecoverInterruptedRemovals();
  parts.lastSearch = parts.session.FindDuplicateFiles();
}

void RemoveMarkedFiles(Parts& parts) {
  cRemovalRun(parts.results, *gDupeSettings, parts.views, parts.session.FilesSearched())
      .RemoveMarkedFilesAllGroups(false);
}

void Export(Parts& parts) {
  mnuFileExport_Click({parts.results, *gDupeSettings, parts.session.SearchedFolders()});
}

void ExcludeFile(Parts& parts) {
  RunCommand(u"frmFindDuplicates.mnuFileAddFileToExcludeList_Click", [&] {
    mnuFileAddFileToExcludeList_Click(parts.files.GetSelectedFileName(), *gDupeSettings);
  });
}

void ExcludeExtension(Parts& parts) {
  RunCommand(u"frmFindDuplicates.mnuFileAddFileExtensionToExcludeList_Click", [&] {
    mnuFileAddFileExtensionToExcludeList_Click(parts.files.GetSelectedFileName(), *gDupeSettings);
  });
}

template <std::int32_t method>
void ChooseRemoveMethod(Parts& parts) {
  mnuRemovalOptions_Click(method, parts.views);
}

template <void (*command)()>
void RunPlain(Parts& /*parts*/) {
  RunCommand(u"frmFindDuplicates", command);
}

void ChooseDupesFolder(Parts& /*parts*/) {
  mnuOptionsDupesFolderLocation_Click();
}

void FilterFilesAndFolders(Parts& parts) {
  RunCommand(u"frmFindDuplicates.mnuOptionsFilter_Click",
             [&] { ShowIncludeExcludeDialog(&parts.window); });
}

template <int topic>
void ShowHelp(Parts& parts) {
  RunCommand(u"modHelp.ShowHelpTopic", [&parts] { ShowHelpTopic(&parts.window, topic); });
}

// The filters follow the masks of the chosen type. Where those have not changed, applying them
// would do no more than drop what a person has excluded.
void EditFileTypes(Parts& parts) {
  RunCommand(u"frmFindDuplicates.mnuOptionsEditFileTypes_Click", [&] {
    const std::int32_t chosen = gDupeSettings->FileType();
    const auto masks = [chosen] {
      return chosen >= 1 && chosen <= 4 ? MasksOfSearchFileType(chosen) : Text();
    };
    const Text before = masks();
    ShowEditCFTListDialog(&parts.window);
    if (!parts.isUnloaded && masks() != before)
      PopulateIncludeExcludeFiltersBasedOnSearchFileType(chosen);
  });
}

// A person can go there by hand.
void TellUnopened(const Text& problem, const Text& place, TextId title) {
  ShowMessageBox(
      {problem + u"\r\n\r\n" + place, LoadResString(title), MessageBoxIcon::Exclamation});
}

void OpenConfigFolder() {
  const Text folder = GetIniFileFolder();
  if (TheMachine().Desktop().ShellExecuteW(u"Open", folder, {}, SW_SHOWNORMAL) <= kLastShellFailure)
    TellUnopened(u"There is no program that shows folders.",
                 TheMachine().Drives().ShownPath(folder), 432);
}

void OpenWebPage() {
  if (!QDesktopServices::openUrl(QUrl(ToQString(kWebPage))))
    TellUnopened(u"There is no program that shows pages of the web.", Text(kWebPage), 434);
}

void OpenMail() {
  if (!QDesktopServices::openUrl(QUrl(QStringLiteral("mailto:") + ToQString(kSalesAddress))))
    TellUnopened(u"There is no program that writes mails.", Text(kSalesAddress), 435);
}

template <void (cSelectionCommands::*command)()>
void Select(Parts& parts) {
  (parts.selection.*command)();
}

template <void (cFileCommands::*command)()>
void OnFile(Parts& parts) {
  (parts.files.*command)();
}

void ViewMediaProperties(Parts& parts) {
  mnuFileViewSelectedMediaFileProperties_Click(parts.files.GetSelectedFileSpec(), &parts.window);
}

void Analyze(Parts& parts) {
  frmGetFSObjectProperties(&parts.window).exec();
}

void DropDownRemovalOptions(Parts& parts) {
  parts.menus->Menu(QStringLiteral("mnuOptionsRemoval"))
      ->popup(parts.smtSearchResultsToolbar->PlaceBelow(QStringLiteral("OPTIONS_KEY")));
}

void DropDownSelectMultiple(Parts& parts) {
  parts.menus->Menu(QStringLiteral("mnuPopupSelectMultipleFiles"))
      ->popup(parts.suRemovalToolbar->PlaceBelow(QStringLiteral("QUICKSELECT_KEY")));
}

struct Command {
  const char* name;
  void (*run)(Parts& parts);
};

using Selecting = cSelectionCommands;
using OfFile = cFileCommands;

constexpr Command kCommands[] = {
    {"mnuFileFindDupes", FindDuplicates},
    {"mnuFileViewSelected", OnFile<&OfFile::mnuFileViewSelected_Click>},
    {"mnuFileOpenInContainingFolder", OnFile<&OfFile::mnuFileOpenInContainingFolder_Click>},
    {"mnuFileRenameFile", OnFile<&OfFile::mnuFileRenameFile_Click>},
    {"mnuFileMark", Select<&Selecting::mnuFileMark_Click>},
    {"mnuFileUnmark", Select<&Selecting::mnuFileUnmark_Click>},
    {"mnuFileKeepNewest", Select<&Selecting::mnuFileKeepNewest_Click>},
    {"mnuFileKeepOldest", Select<&Selecting::mnuFileKeepOldest_Click>},
    {"mnuFileSelectDupesInFolder", Select<&Selecting::mnuFileSelectDupesInFolder_Click>},
    {"mnuFileSelectDupesNotInFolder", Select<&Selecting::mnuFileSelectDupesNotInFolder_Click>},
    {"mnuFileSelectDupesInDrive", Select<&Selecting::mnuFileSelectDupesInDrive_Click>},
    {"mnuFileSelectDupesNotInDrive", Select<&Selecting::mnuFileSelectDupesNotInDrive_Click>},
    {"mnuFileRemovedMarkedFiles", RemoveMarkedFiles},
    {"mnuFileAddFileToExcludeList", ExcludeFile},
    {"mnuFileAddFileExtensionToExcludeList", ExcludeExtension},
    {"mnuFileViewSelectedFileProperties", OnFile<&OfFile::mnuFileViewSelectedFileProperties_Click>},
    {"mnuFileViewSelectedMediaFileProperties", ViewMediaProperties},
    {"mnuFileExport", Export},
    {"mnuFileExit", [](Parts& parts) { parts.window.close(); }},
    {"mnuRemovalOptions(0)", ChooseRemoveMethod<0>},
    {"mnuRemovalOptions(1)", ChooseRemoveMethod<1>},
    {"mnuRemovalOptions(2)", ChooseRemoveMethod<2>},
    {"mnuRemovalOptions(3)", ChooseRemoveMethod<3>},
    {"mnuOptionsEditFileTypes", EditFileTypes},
    {"mnuOptionsFilter", FilterFilesAndFolders},
    {"mnuOptionsDupesFolderLocation", ChooseDupesFolder},
    {"mnuNavigationSearchWindow", [](Parts& parts) { parts.views.ShowSearchView(); }},
    {"mnuNavigationResultsWindow", [](Parts& parts) { parts.views.ShowResultsView(); }},
    {"mnuHistoryView", RunPlain<ViewHistory>},
    {"mnuHistoryClear", RunPlain<ClearHistory>},
    {"mnuHelpTroubleshootingAnalyzeFSO", Analyze},
    {"mnuHelpContents", ShowHelp<help_topic::Contents>},
    {"mnuHelpTroubeshootingGeneral", ShowHelp<help_topic::Troubleshooting>},
    {"mnuHelpTroubleshootingConfigFolder", RunPlain<OpenConfigFolder>},
    {"mnuHelpTroubleshootingWebSite", RunPlain<OpenWebPage>},
    {"mnuHelpContactUs", RunPlain<OpenMail>},
    {"mnuHelpAbout", [](Parts& parts) { ShowAboutDialog(&parts.window); }},
    {"WIZARD_KEY", Select<&Selecting::ShowSelectionAssistant>},
    {"UNDO_KEY", Select<&Selecting::UndoMarks>},
    {"OPTIONS_KEY", DropDownRemovalOptions},
    {"QUICKSELECT_KEY", DropDownSelectMultiple},
};

// Entries of the pop-up menu and keys of tool bars that stand for an entry of the menu bar.
struct Twin {
  const char* name;
  const char* entry;
};

constexpr Twin kTwins[] = {
    {"mnuPopupViewFile", "mnuFileViewSelected"},
    {"mnuPopupOpenInContainingFolder", "mnuFileOpenInContainingFolder"},
    {"mnuPopupRenameFile", "mnuFileRenameFile"},
    {"mnuPopupMarkFile", "mnuFileMark"},
    {"mnuPopupUnmarkFile", "mnuFileUnmark"},
    {"mnuPopupKeepNewest", "mnuFileKeepNewest"},
    {"mnuPopupKeepOldest", "mnuFileKeepOldest"},
    {"mnuPopupSelectDupesInFolder", "mnuFileSelectDupesInFolder"},
    {"mnuPopupSelectDupesNotInFolder", "mnuFileSelectDupesNotInFolder"},
    {"mnuPopupSelectDupesInDrive", "mnuFileSelectDupesInDrive"},
    {"mnuPopupSelectDupesNotInDrive", "mnuFileSelectDupesNotInDrive"},
    {"mnuPopupRemoveMarkedFiles", "mnuFileRemovedMarkedFiles"},
    {"mnuPopupAddFileToExcludeList", "mnuFileAddFileToExcludeList"},
    {"mnuPopupAddFileExtensionToExcludeList", "mnuFileAddFileExtensionToExcludeList"},
    {"mnuPopupProperties", "mnuFileViewSelectedFileProperties"},
    {"mnuPopupMediaProperties", "mnuFileViewSelectedMediaFileProperties"},
    {"START_SEARCH_KEY", "mnuFileFindDupes"},
    {"FILTER_KEY", "mnuOptionsFilter"},
    {"HISTORY_KEY", "mnuHistoryView"},
    {"RESULTSVIEW_KEY", "mnuNavigationResultsWindow"},
    {"REMOVE_KEY", "mnuFileRemovedMarkedFiles"},
    {"SEARCHVIEW_KEY", "mnuNavigationSearchWindow"},
    {"VIEW_KEY", "mnuFileViewSelected"},
    {"PROPERTIES_KEY", "mnuFileViewSelectedFileProperties"},
    {"MEDIAINFO_KEY", "mnuFileViewSelectedMediaFileProperties"},
    {"SELECT_KEY", "mnuFileMark"},
    {"UNSELECT_KEY", "mnuFileUnmark"},
};

QLatin1String EntryOf(const QString& nameOrKey, const QByteArray& latin) {
  for (const Twin& twin : kTwins) {
    if (nameOrKey == QLatin1String(twin.name)) return QLatin1String(twin.entry);
  }
  return QLatin1String(latin);
}

void PressStop() {
  if (!gUserAbort) return RequestStop();
  ShowMessageBox({LoadResString(476), {}, MessageBoxIcon::Information});
}

}  // namespace

void RequestStop() {
  gUserAbort = true;
  if (gDupeSettings->ContentsMatch()) gStopCRC = true;
}

void PerformCommand(Parts& parts, const QString& nameOrKey) {
  if (nameOrKey == QLatin1String("STOP_KEY")) return PressStop();
  if (CommandScope::IsRunning() || parts.isUnloaded) return;
  bool isOption = false;
  RunCommand(u"frmFindDuplicates.mnuOptions_Click",
             [&] { isOption = parts.options.MenuEntryChosen(FromQString(nameOrKey)); });
  if (isOption) return;
  const QByteArray latin = nameOrKey.toLatin1();
  const QLatin1String entry = EntryOf(nameOrKey, latin);
  for (const Command& command : kCommands) {
    if (entry == QLatin1String(command.name)) return command.run(parts);
  }
}

}  // namespace quillmarsh
