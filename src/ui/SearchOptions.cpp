// SPDX-License-Identifier: MIT
// One table of the options that are on or off; the file type by itself.
#include "ui/SearchOptions.h"

#include <algorithm>
#include <array>

#include "base/TextEquality.h"
#include "filetypes/SearchFileTypeFilters.h"
#include "filetypes/modCommonFileTypes.h"
#include "filetypes/modSearchFileTypes.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/modAccessCheck.h"

namespace quillmarsh {

using Settings = clsDupeSettings;

// What a change of an option takes with it.
enum class FlagOptionKind { Plain, Criterion, Ignore };

struct FlagOption {
  TextView row;
  TextView menu;
  FlagOptionKind kind;
  bool (Settings::*get)() const;
  void (Settings::*set)(bool);
  void (Settings::*setFolders)(bool) = nullptr;  // of an option that stands for files and folders
  bool SearchOptions::Guards::*guard = &SearchOptions::Guards::mSettingOther;
  std::array<int, 2> warning = {};  // the first two of its lines, 0 for none
};

namespace {

using enum FlagOptionKind;
using Guards = SearchOptions::Guards;

constexpr FlagOption kFlags[] = {
    {u"INCLUDE_SUBFOLDERS_KEY", u"mnuOptionsIncludeSubfolders", Plain, &Settings::IncludeSubFolders,
     &Settings::SetIncludeSubFolders},
    {u"NAMES_MATCH_KEY", u"mnuOptionsDupeCriteriaOption(0)", Criterion, &Settings::NamesMatch,
     &Settings::SetNamesMatch},
    {u"SIZES_MATCH_KEY", u"mnuOptionsDupeCriteriaOption(1)", Criterion, &Settings::SizesMatch,
     &Settings::SetSizesMatch},
    {u"CREATEDATES_MATCH_KEY", u"mnuOptionsDupeCriteriaOption(2)", Criterion,
     &Settings::CreateTimeStampsMatch, &Settings::SetCreateTimeStampsMatch},
    {u"LASTMODDATES_MATCH_KEY", u"mnuOptionsDupeCriteriaOption(3)", Criterion,
     &Settings::LastModTimeStampsMatch, &Settings::SetLastModTimeStampsMatch},
    {u"CONTENTS_MATCH_KEY", u"mnuOptionsDupeCriteriaOption(4)", Criterion, &Settings::ContentsMatch,
     &Settings::SetContentsMatch},
    {u"IGNORE_ZEROBYTE_FILES_KEY", u"mnuOptionsIgnoreZeroByteFiles", Ignore,
     &Settings::IgnoreZeroByteFiles, &Settings::SetIgnoreZeroByteFiles},
    {u"IGNORE_SYSTEMFILES_KEY",
     u"mnuOptionsIgnoreSystemFiles",
     Ignore,
     &Settings::IgnoreSystemFiles,
     &Settings::SetIgnoreSystemFiles,
     &Settings::SetIgnoreSystemFolders,
     &Guards::mSettingIgnoreSystem,
     {467, 468}},
    {u"IGNORE_HIDDENFILES_KEY",
     u"mnuOptionsIgnoreHiddenFiles",
     Ignore,
     &Settings::IgnoreHiddenFiles,
     &Settings::SetIgnoreHiddenFiles,
     &Settings::SetIgnoreHiddenFolders,
     &Guards::mSettingIgnoreHidden,
     {472, 473}},
    {u"IGNORE_TEMPORARYFILES_KEY", u"mnuOptionsIgnoreTemporaryFiles", Ignore,
     &Settings::IgnoreTemporaryFiles, &Settings::SetIgnoreTemporaryFiles,
     &Settings::SetIgnoreTemporaryFolders, &Guards::mSettingIgnoreTemporary},
    {u"IGNORE_WINDOWSFILES_KEY",
     u"mnuOptionsIgnoreFilesInWinDir",
     Ignore,
     &Settings::IgnoreFilesInWindowsDir,
     &Settings::SetIgnoreFilesInWindowsDir,
     nullptr,
     &Guards::mSettingIgnoreWinDir,
     {474, 475}},
};

constexpr TextView kFileTypeRow = u"FILE_TYPE_KEY";
constexpr TextView kRecycleBinRow = u"IGNORE_RECYCLEBINFILES_KEY";
constexpr TextView kRecycleBinMenu = u"mnuOptionsIgnoreFilesInRecycleBin";
constexpr TextView kCheckFolderPermission = u"mnuOptionsCheckFolderPermission";
constexpr std::int32_t kFileTypes = 5;
constexpr std::int32_t kRemovalMethods = 4;

Text Indexed(TextView name, std::int32_t index) {
  return Text(name) + u"(" + DecimalText(index) + u")";
}

// Only a warning: the option goes off in any case.
void WarnBeforeSwitchingOff(const FlagOption& option) {
  if (option.warning[0] == 0) return;
  const Text lineBreak = u"\r\n";
  ShowMessageBox({LoadResStringAt(option.warning[0]) + lineBreak + lineBreak +
                      LoadResStringAt(option.warning[1]) + lineBreak + LoadResString(469) +
                      lineBreak + LoadResString(470) + lineBreak,
                  LoadResString(471), MessageBoxIcon::Exclamation});
}

// Set for as long as it lives.
struct GuardScope {
  explicit GuardScope(bool& guard) : flag(guard) { flag = true; }
  ~GuardScope() { flag = false; }
  GuardScope(const GuardScope&) = delete;
  GuardScope& operator=(const GuardScope&) = delete;
  bool& flag;
};

}  // namespace

void SearchOptions::ShowSettings() {
  for (const FlagOption& option : kFlags) {
    const GuardScope guard(mGuards.*option.guard);
    const bool value = (mSettings.*option.get)();
    mView.CheckMenuEntry(option.menu, value);
    mView.SetOptionRow(option.row, BoolToText(value));
  }
  CheckFileType(mSettings.FileType());
  mView.SetOptionRow(kFileTypeRow, SFTNameFromEnum(mSettings.FileType()));
  // What lies in the Recycle Bin is always left out.
  mView.CheckMenuEntry(kRecycleBinMenu, true);
  mView.EnableMenuEntry(kRecycleBinMenu, false);
  mView.SetOptionRow(kRecycleBinRow, BoolToText(true));
  mView.EnableOptionRow(kRecycleBinRow, false);
  for (std::int32_t method = 0; method < kRemovalMethods; ++method) {
    mView.CheckMenuEntry(Indexed(u"mnuRemovalOptions", method),
                         static_cast<std::int32_t>(mSettings.RemoveMethod()) == method);
  }
}

void SearchOptions::OptionListChanged(TextView rowKey, TextView property, TextView text) {
  if (mLoadingForm || property != LoadResString(466)) return;
  if (CompareIgnoringCase(rowKey, kFileTypeRow) == 0) return FileTypeChangedInList(text);
  for (const FlagOption& option : kFlags) {
    if (CompareIgnoringCase(rowKey, option.row) == 0)
      return FlagChangedInList(option, TextToBool(text));
  }
}

bool SearchOptions::MenuEntryChosen(TextView name) {
  for (const FlagOption& option : kFlags) {
    if (name != option.menu) continue;
    FlagToggledInMenu(option);
    return true;
  }
  for (std::int32_t number = 0; number < kFileTypes; ++number) {
    if (name != Indexed(u"mnuOptionsFileType", number)) continue;
    FileTypeChosenInMenu(number);
    return true;
  }
  if (name == u"mnuOptionsRestoreDefaultFileTypes") return RestoreDefaultFileTypes(), true;
  if (name == kCheckFolderPermission) return ToggleCheckFolderPermission(), true;
  return false;
}

void SearchOptions::FlagChangedInList(const FlagOption& option, bool value) {
  if (mGuards.*option.guard) return;
  if ((mSettings.*option.get)() && !value) WarnBeforeSwitchingOff(option);
  mView.CheckMenuEntry(option.menu, value);
  SetFlag(option, value);
  if (option.kind == Plain) return;
  mView.SetStatusForNewSearch();
  if (option.kind == Criterion) mView.SetGroupsCaption(FirstColumnCaption());
}

void SearchOptions::FlagToggledInMenu(const FlagOption& option) {
  const GuardScope guard(mGuards.*option.guard);
  const bool value = !(mSettings.*option.get)();
  if (!value) WarnBeforeSwitchingOff(option);
  mView.CheckMenuEntry(option.menu, value);
  mView.SetOptionRow(option.row, BoolToText(value));
  SetFlag(option, value);
  if (option.kind == Plain) return;
  mView.SetStatusForNewSearch();
  // Of the other list than a change in the option list takes; people know it so.
  if (option.kind == Criterion) mView.SetDetailsCaption(FirstColumnCaption());
}

void SearchOptions::SetFlag(const FlagOption& option, bool value) {
  (mSettings.*option.set)(value);
  if (option.setFolders != nullptr) (mSettings.*option.setFolders)(value);
}

Text SearchOptions::FirstColumnCaption() const {
  return mSettings.NamesMatch() ? LoadResString(347) : LoadResString(364);
}

void SearchOptions::CheckFileType(std::int32_t number) {
  for (std::int32_t type = 0; type < kFileTypes; ++type)
    mView.CheckMenuEntry(Indexed(u"mnuOptionsFileType", type), type == number);
}

void SearchOptions::FileTypeChangedInList(TextView text) {
  if (mGuards.mSettingOther) return;
  const std::int32_t number = SFTEnumFromName(text);
  CheckFileType(number);
  mSettings.SetFileType(number);
  PopulateIncludeExcludeFiltersBasedOnSearchFileType(number);
}

void SearchOptions::FileTypeChosenInMenu(std::int32_t number) {
  const GuardScope guard(mGuards.mSettingOther);
  CheckFileType(number);
  mView.SetOptionRow(kFileTypeRow, SFTNameFromEnum(number));
  mSettings.SetFileType(number);
  PopulateIncludeExcludeFiltersBasedOnSearchFileType(number);
}

void SearchOptions::RestoreDefaultFileTypes() {
  const bool isRestored = RestoreDefaultFileTypeMasks();
  ShowMessageBox({isRestored ? LoadResString(1056) : LoadResString(1057), LoadResString(1030),
                  isRestored ? MessageBoxIcon::Information : MessageBoxIcon::Exclamation});
  if (isRestored) PopulateIncludeExcludeFiltersBasedOnSearchFileType(mSettings.FileType());
}

void SearchOptions::ToggleCheckFolderPermission() {
  mCheckFolderPermission = !mCheckFolderPermission;
  mView.CheckMenuEntry(kCheckFolderPermission, mCheckFolderPermission);
}

}  // namespace quillmarsh
