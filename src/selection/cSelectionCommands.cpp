// SPDX-License-Identifier: MIT
// Each command: what it needs, what it sets, the rule or the mark, and what is shown behind it.
#include "selection/cSelectionCommands.h"

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "frame/RunCommand.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "selection/RuleOptions.h"
#include "selection/RuleTexts.h"
#include "selection/cGroupSelection.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {

namespace {

Text HandlerSource(TextView handler) {
  return u"frmFindDupes." + Text(handler);
}

void TellNoGroups() {
  ShowMessageBox({LoadResString(318), LoadResString(485), MessageBoxIcon::Exclamation});
}

void TellNoFileSelected(const Text& title) {
  ShowMessageBox({LoadResString(359), title, MessageBoxIcon::Information});
}

}  // namespace

void cSelectionCommands::mnuFileKeepNewest_Click() {
  KeepByDate(u"mnuFileKeepNewest_Click", selection_rule::KeepNewest);
}
void cSelectionCommands::mnuFileKeepOldest_Click() {
  KeepByDate(u"mnuFileKeepOldest_Click", selection_rule::KeepOldest);
}
void cSelectionCommands::mnuFileSelectDupesInDrive_Click() {
  SelectByDrive(u"mnuFileSelectDupesInDrive_Click", selection_rule::InDrive);
}
void cSelectionCommands::mnuFileSelectDupesNotInDrive_Click() {
  SelectByDrive(u"mnuFileSelectDupesNotInDrive_Click", selection_rule::NotInDrive);
}
void cSelectionCommands::mnuFileSelectDupesInFolder_Click() {
  SelectByFolder(u"mnuFileSelectDupesInFolder_Click", selection_rule::InFolder);
}
void cSelectionCommands::mnuFileSelectDupesNotInFolder_Click() {
  SelectByFolder(u"mnuFileSelectDupesNotInFolder_Click", selection_rule::NotInFolder);
}

void cSelectionCommands::KeepByDate(TextView handler, std::int32_t rule) {
  RunCommand(HandlerSource(handler), [&] {
    if (mResults.ulvwDupeGroups.Count() == 0) return TellNoGroups();
    ApplyMenuRule(rule);
  });
}

void cSelectionCommands::SelectByDrive(TextView handler, std::int32_t rule) {
  RunCommand(HandlerSource(handler), [&] {
    const auto path = PathOfSelectedFile();
    if (!path) return TellNoFileSelected(LoadResString(360));
    const Text root = GetDriveRootOf(*path);
    if (root.empty()) return;
    gMarkForRemovalWizardOptions->SetDriveSpec(root);
    ApplyMenuRule(rule);
  });
}

void cSelectionCommands::SelectByFolder(TextView handler, std::int32_t rule) {
  RunCommand(HandlerSource(handler), [&] {
    const auto path = PathOfSelectedFile();
    if (!path) return TellNoFileSelected(LoadResString(360));
    const Text folder = GetFolderPartOf(*path);
    if (folder.empty()) return;
    const Text answer = InputBoxText(GetRuleMenuTitle(rule), LoadResString(1115),
                                     TheMachine().Drives().ShownPath(folder));
    if (answer.empty()) return;
    gMarkForRemovalWizardOptions->mFolderSpec = FolderSpecFromTyped(answer, folder);
    gMarkForRemovalWizardOptions->mIncludeSubFolders = true;
    ApplyMenuRule(rule);
  });
}

void cSelectionCommands::ShowSelectionAssistant() {
  RunCommand(u"frmFindDuplicates.ShowSelectionAssistant", [&] {
    if (mResults.ulvwDupeGroups.Count() == 0) return TellNoGroups();
    gMarkForRemovalWizardOptions->mCancelled = false;
    mView.ShowMarkForRemovalWizard();
    if (!gMarkForRemovalWizardOptions->mCancelled) ApplyRule();
  });
}

void cSelectionCommands::ApplyMenuRule(std::int32_t rule) {
  CheckMarkChosenMultiSelectRule(rule);
  gMarkForRemovalWizardOptions->mRule = rule;
  gMarkForRemovalWizardOptions->mAllowRemovalOfAllFilesInGroup = true;
  ApplyRule();
}

void cSelectionCommands::ApplyRule() {
  cGroupSelection(mResults).MarkFilesBasedOnWizardOptions();
  mResults.DisplayDupeGroupDetails(mResults.mCurrentGroup, true);
  mView.MarksChanged();
  const MarkedTotal total = GetTotalMarkedCountAndSize(mResults);
  ShowSelectedCountAndSizeInStatusBar(total);
  mView.ShowSelectSummary({total.count, total.size});
}

void cSelectionCommands::CheckMarkChosenMultiSelectRule(std::int32_t rule) {
  Guarded(u"frmFindDuplicates.CheckMarkChosenMultiSelectRule", [&] {
    if (GetRuleMenuTitle(rule).empty()) {
      ShowMessageBox(
          {u"Oops.  Unexpected Case in frmFindDupes.CheckMarkChosenMultiSelectRule", {}});
      return;
    }
    mView.ClearChosenMultiSelectRule();
    mView.CheckRuleItems(rule);
  });
}

void cSelectionCommands::mnuFileMark_Click() {
  RunCommand(HandlerSource(u"mnuFileMark_Click"), [&] {
    MarkFile(mResults.ulvwDupeDetails.SelectedPosition());
    ShowTotal();
  });
}

void cSelectionCommands::mnuFileUnmark_Click() {
  RunCommand(HandlerSource(u"mnuFileUnmark_Click"), [&] {
    UnmarkFile(mResults.ulvwDupeDetails.SelectedPosition());
    ShowTotal();
  });
}

void cSelectionCommands::DetailCheckBoxChanged(std::int32_t position, bool isChecked) {
  RunCommand(u"frmFindDuplicates.ulvwDupeDetails_ItemStateImageChanged", [&] {
    const auto index = RecordAt(position);
    if (!index) return;
    SetMark(*index, isChecked);
    ShowTotal();
  });
}

void cSelectionCommands::UndoMarks() {
  RunCommand(u"frmFindDuplicates.UnMarkAll", [&] {
    cGroupSelection(mResults).UnMarkAll();
    mView.MarksChanged();
  });
}

void cSelectionCommands::MarkFile(std::int32_t position) {
  Guarded(u"frmFindDuplicates.MarkFile", [&] {
    const auto index = RecordAt(position);
    if (!index) return TellNoFileSelected(LoadResString(360));
    if (IsMarked(mResults, *index)) return;
    SetMark(*index, true);
    DoEvents();
    if (!gMarkForRemovalWizardOptions->mAllowRemovalOfAllFilesInGroup) WarnIfWholeGroupIsMarked();
  });
}

void cSelectionCommands::UnmarkFile(std::int32_t position) {
  Guarded(u"frmFindDuplicates.UnmarkFile", [&] {
    const auto index = RecordAt(position);
    if (!index) return TellNoFileSelected({});
    if (!IsMarked(mResults, *index)) return;
    SetMark(*index, false);
    DoEvents();
  });
}

// A warning and no refusal: the file stays marked.
void cSelectionCommands::WarnIfWholeGroupIsMarked() {
  const cResultsList& details = mResults.ulvwDupeDetails;
  for (std::int32_t position = 0; position < details.Count(); ++position) {
    if (!IsMarked(mResults, details.ItemData(position))) return;
  }
  ShowMessageBox({LoadResString(439) + u"\r\n" + LoadResString(440), LoadResString(441),
                  MessageBoxIcon::Exclamation});
}

void cSelectionCommands::SetMark(std::int32_t index, bool isMarked) {
  mResults.mFileMarked[static_cast<std::size_t>(index) - 1] = isMarked;
  mView.MarksChanged();
}

void cSelectionCommands::ShowTotal() {
  ShowSelectedCountAndSizeInStatusBar(GetTotalMarkedCountAndSize(mResults));
}

std::optional<std::int32_t> cSelectionCommands::RecordAt(std::int32_t position) const {
  const std::int32_t index = mResults.ulvwDupeDetails.ItemData(position);
  const bool hasRecord = index >= 1 && index <= mResults.RecordCount() &&
                         static_cast<std::size_t>(index) <= mResults.mFileMarked.size();
  return hasRecord ? std::optional(index) : std::nullopt;
}

// The path itself, since the text that the row shows may have another form.
std::optional<Text> cSelectionCommands::PathOfSelectedFile() const {
  const auto index = RecordAt(mResults.ulvwDupeDetails.SelectedPosition());
  if (!index) return std::nullopt;
  return mResults.FullPathOf(mResults.Record(*index));
}

}  // namespace quillmarsh
