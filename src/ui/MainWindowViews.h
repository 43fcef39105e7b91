// SPDX-License-Identifier: MIT
// What the rooms below ask of the main window, each interface in a few lines over its controls.
#pragma once

#include "removal/DupesFolder.h"
#include "removal/RemovalView.h"
#include "search/SearchView.h"
#include "selection/SelectionView.h"
#include "settings/optionsfile/modIniFile.h"
#include "ui/FolderListCommands.h"
#include "ui/SearchOptions.h"
#include "ui/frmFindDuplicates.h"

namespace quillmarsh {

class MainWindowViews final : public SearchView,
                              public SelectionView,
                              public RemovalView,
                              public RemovalOptionsView,
                              public ProgramOptionsForm,
                              public SearchOptionsView,
                              public FolderListView {
 public:
  explicit MainWindowViews(frmFindDuplicates::Parts& parts) : mParts(parts) {}

  // Of the window itself.
  void ShowSearchView();

  std::vector<Text> GetSelectedFolderPaths() override;
  void DisableUIForSearch() override;
  void EnableUIAfterSearch() override;
  void SetGroupColumnCaption(TextView caption) override;
  void StartAnimation() override;
  void StopAnimation() override;
  void CheckKeepNewestRule(bool clearOthers) override;
  void ShowResultsView() override;
  void ShowSearchSummary(const SearchSummary& summary) override;

  void ClearChosenMultiSelectRule() override;
  void CheckRuleItems(std::int32_t rule) override;
  void MarksChanged() override;
  void ShowMarkForRemovalWizard() override;
  void ShowSelectSummary(const SelectSummary& summary) override;

  void DisableUIForRemoval() override;
  void EnableUIAfterRemoval() override;
  std::int32_t ShowRemovalWarning() override;

  void CheckRemovalOption(std::int32_t index, bool isChecked) override;
  void CheckMnuOptionsCheckFolderPermission(bool isChecked) override;

  void CheckMenuEntry(TextView name, bool isChecked) override;
  void EnableMenuEntry(TextView name, bool isEnabled) override;
  void SetOptionRow(TextView key, TextView text) override;
  void EnableOptionRow(TextView key, bool isEnabled) override;
  void SetGroupsCaption(TextView caption) override;
  void SetDetailsCaption(TextView caption) override;
  void SetStatusForNewSearch() override;

  void ShowFolders(const std::vector<Text>& shownPaths, int selected) override;

 private:
  void SetLocked(bool isLocked);

  frmFindDuplicates::Parts& mParts;
};

}  // namespace quillmarsh
