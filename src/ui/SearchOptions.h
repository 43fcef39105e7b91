// SPDX-License-Identifier: MIT
// How changes in the option list and in the menus reach the settings, and each other: the warnings,
// what clears the results, and the headings that follow the criteria. It knows no toolkit; the
// window shows what it is told.
#pragma once

#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// The window, as far as options are concerned. Names and keys are those of menus and list.
class SearchOptionsView {
 public:
  virtual ~SearchOptionsView() = default;
  virtual void CheckMenuEntry(TextView name, bool isChecked) = 0;
  virtual void EnableMenuEntry(TextView name, bool isEnabled) = 0;
  virtual void SetOptionRow(TextView key, TextView text) = 0;
  virtual void EnableOptionRow(TextView key, bool isEnabled) = 0;
  // The heading of the first column of a list.
  virtual void SetGroupsCaption(TextView caption) = 0;
  virtual void SetDetailsCaption(TextView caption) = 0;
  // Empties the lists and the status of the last search; pumps.
  virtual void SetStatusForNewSearch() = 0;
};

class SearchOptions {
 public:
  // Each is set while a change from the menu is written into the list, so that the list's own
  // event does not run the change once more.
  struct Guards {
    bool mSettingIgnoreSystem = false;
    bool mSettingIgnoreHidden = false;
    bool mSettingIgnoreTemporary = false;
    bool mSettingIgnoreWinDir = false;
    bool mSettingOther = false;
  };

  SearchOptions(clsDupeSettings& settings, SearchOptionsView& view)
      : mSettings(settings), mView(view) {}

  // While the window is loaded, changes of the list mean nothing.
  void SetLoadingForm(bool isLoading) { mLoadingForm = isLoading; }
  // Menu and list as the settings are.
  void ShowSettings();

  // The list reports a changed property of a row; only that of its value counts. The key is
  // compared without regard to case.
  void OptionListChanged(TextView rowKey, TextView property, TextView text);
  // A menu entry. False where it is none of these options.
  bool MenuEntryChosen(TextView name);

 private:
  void FlagChangedInList(const struct FlagOption& option, bool value);
  void FlagToggledInMenu(const struct FlagOption& option);
  void FileTypeChangedInList(TextView text);
  void FileTypeChosenInMenu(std::int32_t number);
  void CheckFileType(std::int32_t number);
  void RestoreDefaultFileTypes();
  void ToggleCheckFolderPermission();
  void SetFlag(const struct FlagOption& option, bool value);
  [[nodiscard]] Text FirstColumnCaption() const;

  clsDupeSettings& mSettings;
  SearchOptionsView& mView;
  bool mLoadingForm = false;
  Guards mGuards;
};

}  // namespace quillmarsh
