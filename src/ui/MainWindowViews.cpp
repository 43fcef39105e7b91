// SPDX-License-Identifier: MIT
// Everything that long work locks is locked in one place.
#include "ui/MainWindowViews.h"

#include "selection/RuleTexts.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "ui/Dialogs.h"
#include "ui/MainWindowParts.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

const auto kStopKey = QStringLiteral("STOP_KEY");

struct RuleItems {
  std::int32_t rule;
  const char* name;  // behind "mnuFile" and "mnuPopup"
};

constexpr RuleItems kRuleItems[] = {
    {selection_rule::KeepNewest, "KeepNewest"},
    {selection_rule::KeepOldest, "KeepOldest"},
    {selection_rule::InDrive, "SelectDupesInDrive"},
    {selection_rule::NotInDrive, "SelectDupesNotInDrive"},
    {selection_rule::InFolder, "SelectDupesInFolder"},
    {selection_rule::NotInFolder, "SelectDupesNotInFolder"},
};

void CheckItems(MainMenus& menus, const RuleItems& items, bool isChecked) {
  menus.SetChecked(QStringLiteral("mnuFile") + QLatin1String(items.name), isChecked);
  menus.SetChecked(QStringLiteral("mnuPopup") + QLatin1String(items.name), isChecked);
}

}  // namespace

void MainWindowViews::ShowSearchView() {
  mParts.pctSearchContainer->setEnabled(true);
  mParts.pctSearchContainer->show();
  mParts.pctResultsContainer->hide();
  mParts.ucBrowseForFolder->setFocus();
}

void MainWindowViews::ShowResultsView() {
  mParts.pctResultsContainer->setEnabled(true);
  mParts.pctResultsContainer->show();
  mParts.pctSearchContainer->hide();
  mParts.ulvwDupeGroups->setFocus();
}

std::vector<Text> MainWindowViews::GetSelectedFolderPaths() {
  return mParts.folders.Folders();
}

void MainWindowViews::SetLocked(bool isLocked) {
  mParts.menus->SetLocked(isLocked);
  mParts.smtSearchToolbar->SetAllEnabled(!isLocked, kStopKey);
  mParts.smtSearchResultsToolbar->SetAllEnabled(!isLocked);
  mParts.suRemovalToolbar->SetAllEnabled(!isLocked);
  QWidget* const searchControls[] = {mParts.ucBrowseForFolder, mParts.ulstFoldersToSearch,
                                     mParts.mb_cmdAddFolder, mParts.mb_cmdRemoveFolder,
                                     mParts.smtSearchOptions};
  for (QWidget* const control : searchControls) control->setEnabled(!isLocked);
}

void MainWindowViews::DisableUIForSearch() {
  // First the Stop button, so that the keyboard has a place to go to.
  mParts.smtSearchToolbar->SetButtonEnabled(kStopKey, true);
  SetLocked(true);
}

void MainWindowViews::EnableUIAfterSearch() {
  SetLocked(false);
  mParts.smtSearchToolbar->SetButtonEnabled(kStopKey, false);
  StopAnimation();
}

void MainWindowViews::SetGroupColumnCaption(TextView caption) {
  mParts.ulvwDupeGroups->Model().SetCaption(caption);
}

void MainWindowViews::StartAnimation() {
  mParts.aniSearchProgress->Start();
}

void MainWindowViews::StopAnimation() {
  mParts.aniSearchProgress->Stop();
}

void MainWindowViews::CheckKeepNewestRule(bool clearOthers) {
  if (clearOthers) ClearChosenMultiSelectRule();
  CheckRuleItems(selection_rule::KeepNewest);
}

// A window that was closed meanwhile shows nothing more.
void MainWindowViews::ShowSearchSummary(const SearchSummary& summary) {
  if (!mParts.isUnloaded) ShowSearchSummaryDialog(&mParts.window, summary);
}

void MainWindowViews::ClearChosenMultiSelectRule() {
  for (const RuleItems& items : kRuleItems) CheckItems(*mParts.menus, items, false);
}

void MainWindowViews::CheckRuleItems(std::int32_t rule) {
  for (const RuleItems& items : kRuleItems) {
    if (items.rule == rule) CheckItems(*mParts.menus, items, true);
  }
}

void MainWindowViews::MarksChanged() {
  mParts.ulvwDupeGroups->Model().MarksChanged();
  mParts.ulvwDupeDetails->Model().MarksChanged();
}

void MainWindowViews::ShowMarkForRemovalWizard() {
  if (mParts.isUnloaded) {
    gMarkForRemovalWizardOptions->mCancelled = true;
  } else {
    ShowMarkForRemovalWizardDialog(&mParts.window);
  }
}

void MainWindowViews::ShowSelectSummary(const SelectSummary& summary) {
  if (!mParts.isUnloaded) ShowSelectSummaryDialog(&mParts.window, summary);
}

void MainWindowViews::DisableUIForRemoval() {
  SetLocked(true);
}

void MainWindowViews::EnableUIAfterRemoval() {
  SetLocked(false);
}

std::int32_t MainWindowViews::ShowRemovalWarning() {
  return mParts.isUnloaded ? kRemovalWarningCancel : ShowRemovalWarningDialog(&mParts.window);
}

void MainWindowViews::CheckRemovalOption(std::int32_t index, bool isChecked) {
  mParts.menus->SetChecked(QStringLiteral("mnuRemovalOptions(%1)").arg(index), isChecked);
}

void MainWindowViews::CheckMnuOptionsCheckFolderPermission(bool isChecked) {
  mParts.menus->SetChecked(QStringLiteral("mnuOptionsCheckFolderPermission"), isChecked);
}

void MainWindowViews::CheckMenuEntry(TextView name, bool isChecked) {
  mParts.menus->SetChecked(ToQString(name), isChecked);
}

void MainWindowViews::EnableMenuEntry(TextView name, bool isEnabled) {
  mParts.menus->SetEnabled(ToQString(name), isEnabled);
}

void MainWindowViews::SetOptionRow(TextView key, TextView text) {
  mParts.smtSearchOptions->SetRowText(ToQString(key), ToQString(text));
}

void MainWindowViews::EnableOptionRow(TextView key, bool isEnabled) {
  mParts.smtSearchOptions->SetRowEnabled(ToQString(key), isEnabled);
}

void MainWindowViews::SetGroupsCaption(TextView caption) {
  SetGroupColumnCaption(caption);
}

void MainWindowViews::SetDetailsCaption(TextView caption) {
  mParts.ulvwDupeDetails->Model().SetCaption(caption);
}

// What was found last is not asked for any more, and the empty lists are not to say that it was
// nothing.
void MainWindowViews::SetStatusForNewSearch() {
  mParts.lastSearch.reset();
  mParts.session.SetStatusForNewSearch();
}

void MainWindowViews::ShowFolders(const std::vector<Text>& shownPaths, int selected) {
  QStringList texts;
  for (const Text& path : shownPaths) texts.append(ToQString(path));
  mParts.ulstFoldersToSearch->ShowTexts(texts, selected);
}

}  // namespace quillmarsh
