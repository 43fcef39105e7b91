// SPDX-License-Identifier: MIT
// The keys stand in tables in the order in which they are written.
#include "settings/optionsfile/modIniFile.h"

#include "base/ValueText.h"
#include "filetypes/SFT_CFT_Interface.h"
#include "filetypes/cCommonFileTypes.h"
#include "filetypes/modCommonFileTypes.h"
#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modAccessCheck.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/CIniFile.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

bool gShowDupeDebugInfo = false;

namespace {

constexpr TextView kFileName = u"quillmarsh.ini";
constexpr TextView kOptions = u"Options";
constexpr TextView kWizardOptions = u"Remove Wizard Options";
constexpr TextView kFileTypes = u"Search File Types";
constexpr TextView kTrue = u"True";
constexpr TextView kFalse = u"False";

using Settings = clsDupeSettings;
using Wizard = clsMarkForRemovalWizard;

template <typename Owner, typename Value, typename Given>
struct Property {
  TextView key;
  Value (Owner::*get)() const;
  void (Owner::*set)(Given);
  TextView defaultText;
};
using TextProperty = Property<Settings, const Text&, TextView>;
using FlagProperty = Property<Settings, bool, bool>;

constexpr TextProperty kFolderPaths{
    u"FolderPaths", &Settings::FolderPaths, &Settings::SetFolderPaths, {}};
constexpr TextProperty kExcludeFiles{
    u"ExcludeFiles", &Settings::ExcludeFiles, &Settings::SetExcludeFiles, {}};
constexpr TextProperty kIncludeFiles{
    u"IncludeFiles", &Settings::IncludeFiles, &Settings::SetIncludeFiles, {}};
constexpr TextProperty kExcludeFolders{
    u"ExcludeFolders", &Settings::ExcludeFolders, &Settings::SetExcludeFolders, {}};
constexpr TextProperty kIncludeFolders{
    u"IncludeFolders", &Settings::IncludeFolders, &Settings::SetIncludeFolders, {}};
constexpr TextProperty kUserDefinedMoveFolderPath{u"UserDefinedMoveFolderPath",
                                                  &Settings::UserDefinedMoveFolderPath,
                                                  &Settings::SetUserDefinedMoveFolderPath,
                                                  {}};
constexpr FlagProperty kIncludeSubFolders{u"IncludeSubFolders", &Settings::IncludeSubFolders,
                                          &Settings::SetIncludeSubFolders, kTrue};
constexpr FlagProperty kMainFormLoadedPreviously{u"MainFormLoadedPreviously",
                                                 &Settings::MainFormLoadedPreviously,
                                                 &Settings::SetMainFormLoadedPreviously, kFalse};
constexpr FlagProperty kRemoveWarningShown{u"RemoveWarningShown", &Settings::RemoveWarningShown,
                                           &Settings::SetRemoveWarningShown, kFalse};
// The criteria and what is ignored, as they follow one another in the file.
constexpr FlagProperty kFlags[] = {
    {u"NamesMustMatch", &Settings::NamesMatch, &Settings::SetNamesMatch, kTrue},
    {u"SizesMustMatch", &Settings::SizesMatch, &Settings::SetSizesMatch, kTrue},
    {u"CreateTimestampsMustMatch", &Settings::CreateTimeStampsMatch,
     &Settings::SetCreateTimeStampsMatch, kFalse},
    {u"LastModTimestampsMustMatch", &Settings::LastModTimeStampsMatch,
     &Settings::SetLastModTimeStampsMatch, kFalse},
    {u"ContentsMustMatch", &Settings::ContentsMatch, &Settings::SetContentsMatch, kFalse},
    {u"IgnoreZeroByteFiles", &Settings::IgnoreZeroByteFiles, &Settings::SetIgnoreZeroByteFiles,
     kTrue},
    {u"IgnoreSystemFiles", &Settings::IgnoreSystemFiles, &Settings::SetIgnoreSystemFiles, kTrue},
    {u"IgnoreHiddenFiles", &Settings::IgnoreHiddenFiles, &Settings::SetIgnoreHiddenFiles, kTrue},
    {u"IgnoreTemporaryFiles", &Settings::IgnoreTemporaryFiles, &Settings::SetIgnoreTemporaryFiles,
     kTrue},
    {u"IgnoreSystemFolders", &Settings::IgnoreSystemFolders, &Settings::SetIgnoreSystemFolders,
     kTrue},
    {u"IgnoreHiddenFolders", &Settings::IgnoreHiddenFolders, &Settings::SetIgnoreHiddenFolders,
     kTrue},
    {u"IgnoreTemporaryFolders", &Settings::IgnoreTemporaryFolders,
     &Settings::SetIgnoreTemporaryFolders, kTrue},
    {u"IgnoreFilesInWindowsDir", &Settings::IgnoreFilesInWindowsDir,
     &Settings::SetIgnoreFilesInWindowsDir, kTrue},
};
// By the number of the method.
constexpr TextView kRemovalMethods[] = {u"Delete", u"Recycle", u"MoveToDupesFolder",
                                        u"MoveToOtherFolder"};

// Reading strips blanks and one pair of quotation marks from around a value; a pair of them keeps
// what would otherwise be lost.
Text AsStored(TextView value) {
  constexpr TextView kStripped = u" \t\v\"'";
  const bool isAtRisk = !value.empty() && (kStripped.find(value.front()) != TextView::npos ||
                                           kStripped.find(value.back()) != TextView::npos);
  return isAtRisk ? u"\"" + Text(value) + u"\"" : Text(value);
}

// One open section of the file; what is written and read is text. The file is read once, and what
// was written goes to the disk all together with Save. A user without a folder for it has no file:
// everything is as by default, and nothing is kept.
class Section {
 public:
  explicit Section(ProfileBatch::Encoding encoding) : mFolder(GetIniFileFolder()) {
    mFile.SetPath(mFolder);
    mFile.SetName(GetIniFileName());
    if (!mFolder.empty()) mFile.BeginBatch(encoding);
  }
  void Save() { mFile.EndBatch(); }

  void Begin(TextView name) { mFile.SetSection(name); }

  [[nodiscard]] Text Read(TextView key, TextView defaultText = {}) {
    mFile.SetKey(key);
    return mFolder.empty() ? Text(defaultText) : mFile.GetStringValue(defaultText);
  }
  // Only the exact word is true, whatever the default.
  [[nodiscard]] bool ReadFlag(TextView key, TextView defaultText) {
    return Read(key, defaultText) == kTrue;
  }
  [[nodiscard]] std::int32_t ReadNumber(TextView key, TextView defaultText) {
    return LongFromText(Read(key, defaultText), GetLocaleFacts());
  }
  void Read(Settings& settings, const TextProperty& property) {
    (settings.*property.set)(Read(property.key, property.defaultText));
  }
  void Read(Settings& settings, const FlagProperty& property) {
    (settings.*property.set)(ReadFlag(property.key, property.defaultText));
  }

  void Write(TextView key, TextView value) {
    mFile.SetKey(key);
    if (!mFolder.empty()) mFile.SetStringValue(AsStored(value));
  }
  void WriteFlag(TextView key, bool value) { Write(key, value ? kTrue : kFalse); }
  void Write(const Settings& settings, const TextProperty& property) {
    Write(property.key, (settings.*property.get)());
  }
  void Write(const Settings& settings, const FlagProperty& property) {
    WriteFlag(property.key, (settings.*property.get)());
  }

 private:
  const Text mFolder;
  CIniFile mFile;
};

// The accessor makes the folder, and decides where it lies when the file does not say.
void ReadDupesFolderPath(Section& section) {
  Text stored = section.Read(u"DUPESFolderPath");
  // By hand a path is written as the machine's own programs write it.
  const bool isNative = stored.starts_with(u'/');
  if (isNative) stored = TheMachine().Drives().NewLocationFromNative(ToUtf8(stored)).path;
  mDupesFolderPath = AddBackslash(stored);
  static_cast<void>(GetDupesFolderPath());
}

void ReadRemovalMethod(Section& section, Settings& settings) {
  const Text word = section.Read(u"RemovalMethod", u"MoveToDupesFolder");
  for (std::size_t number = 0; number < std::size(kRemovalMethods); ++number) {
    if (word == kRemovalMethods[number])
      settings.SetRemoveMethod(static_cast<RemoveMethod>(number));
  }
}

void ReadOptions(Section& section, Settings& settings, ProgramOptionsForm& form) {
  section.Begin(kOptions);
  ReadDupesFolderPath(section);
  gShowDupeDebugInfo = section.ReadFlag(u"ShowDupeDebugInfo", kFalse);
  section.Read(settings, kFolderPaths);
  section.Read(settings, kIncludeSubFolders);
  settings.SetFileType(section.ReadNumber(u"SearchFileTypes", u"1"));
  section.Read(settings, kMainFormLoadedPreviously);
  section.Read(settings, kRemoveWarningShown);
  section.Read(settings, kIncludeFiles);
  // An empty default whether or not the program ran before: the names that a new settings object
  // leaves out do not survive the first reading.
  section.Read(settings, kExcludeFiles);
  section.Read(settings, kIncludeFolders);
  section.Read(settings, kExcludeFolders);
  for (const FlagProperty& flag : kFlags) section.Read(settings, flag);
  ReadRemovalMethod(section, settings);
  section.Read(settings, kUserDefinedMoveFolderPath);
  mCheckFolderPermission = section.ReadFlag(u"CheckFolderPermission", kTrue);
  form.CheckMnuOptionsCheckFolderPermission(mCheckFolderPermission);
}

Date PresentMoment() {
  return Date::FromTicks(TheMachine().Locale().GetLocalTime().Ticks());
}

void ReadWizardOptions(Section& section, Wizard& wizard) {
  section.Begin(kWizardOptions);
  wizard.mRule = section.ReadNumber(u"MarkForRemovalWizardSelection", u"2");
  wizard.SetDriveSpec(section.Read(u"DriveSpec", u"C"));
  wizard.mFolderSpec = section.Read(u"FolderSpec");
  wizard.mIncludeSubFolders = section.ReadFlag(u"IncludeSubFolders", kTrue);
  wizard.SetFileSize(CurrencyFromText(section.Read(u"FileSize", u"0"), GetLocaleFacts()));
  wizard.SetSizeIncrement(section.ReadNumber(u"SizeIncrement", u"0"));
  wizard.mLastModifiedDate =
      DateFromText(section.Read(u"LastModifiedDate"), GetLocaleFacts()).value_or(PresentMoment());
  wizard.mFileMask = section.Read(u"FileMask", u"*.*");
  wizard.mAllowRemovalOfAllFilesInGroup =
      section.ReadFlag(u"AllowRemovalOfAllFilesInGroup", kFalse);
}

void ReadFileTypes(Section& section, cCommonFileTypes& types) {
  section.Begin(kFileTypes);
  types.SetCommonFileTypesList(GetDefaultCFTList());
  for (std::int32_t i = 1; i <= types.Count(); ++i) {
    cCommonFileType& type = *types.CommonFileTypes().Item(i);
    Text masks = section.Read(type.Name());
    if (masks.empty()) masks = GetDefaultFileMasksFromCFTName(type.Name(), kListSeparator);
    type.SetFileMasksList(masks);
  }
}

void WriteOptions(Section& section, const Settings& settings) {
  section.Begin(kOptions);
  section.Write(u"DUPESFolderPath", GetDupesFolderPath());
  section.Write(settings, kFolderPaths);
  section.Write(settings, kIncludeSubFolders);
  section.Write(u"SearchFileTypes", DecimalText(settings.FileType()));
  section.Write(settings, kMainFormLoadedPreviously);
  section.Write(settings, kRemoveWarningShown);
  section.Write(settings, kExcludeFiles);
  section.Write(settings, kIncludeFiles);
  section.Write(settings, kExcludeFolders);
  section.Write(settings, kIncludeFolders);
  for (const FlagProperty& flag : kFlags) section.Write(settings, flag);
  // Any other number leaves the word that stands in the file.
  const auto method = static_cast<std::size_t>(settings.RemoveMethod());
  if (method < std::size(kRemovalMethods)) section.Write(u"RemovalMethod", kRemovalMethods[method]);
  section.Write(settings, kUserDefinedMoveFolderPath);
  section.WriteFlag(u"CheckFolderPermission", mCheckFolderPermission);
}

void WriteWizardOptions(Section& section, const Wizard& wizard) {
  section.Begin(kWizardOptions);
  section.Write(u"MarkForRemovalWizardSelection", DecimalText(wizard.mRule));
  section.Write(u"DriveSpec", wizard.DriveSpec());
  section.Write(u"FolderSpec", wizard.mFolderSpec);
  section.WriteFlag(u"IncludeSubFolders", wizard.mIncludeSubFolders);
  section.Write(u"FileSize", wizard.FileSize().ToText());
  section.Write(u"SizeIncrement", DecimalText(wizard.SizeIncrement()));
  section.Write(u"LastModifiedDate", FixedDateText(wizard.mLastModifiedDate));
  section.Write(u"FileMask", wizard.mFileMask);
  section.WriteFlag(u"AllowRemovalOfAllFilesInGroup", wizard.mAllowRemovalOfAllFilesInGroup);
}

// Only the types that a search can be limited to. A key for one of the others is a person's own: it
// is honoured at each start and never updated.
void WriteFileTypes(Section& section, const cCommonFileTypes& types) {
  constexpr std::int32_t kLastSearchFileType = 4;
  section.Begin(kFileTypes);
  for (std::int32_t number = 0; number <= kLastSearchFileType; ++number) {
    const Text name = CFTNameFromEnum(CFTEnumFromSFTEnum(number));
    const std::int32_t index = types.GetCommonFileTypeIndexBasedOnKey(name);
    if (name.empty() || index < 1) continue;
    section.Write(name, types.CommonFileTypes().Item(index)->FileMasksList());
  }
}

// What was written before an error is saved all the same.
template <typename Body>
void WriteAndSave(TextView source, ProfileBatch::Encoding encoding, Body&& body) {
  Guarded(source, [&] {
    Section section(encoding);
    Guarded(source, [&] { body(section); });
    section.Save();
  });
}

}  // namespace

Text GetIniFileName() {
  return Text(kFileName);
}

Text GetIniFileSpec() {
  return AddBackslash(GetIniFileFolder()) + GetIniFileName();
}

void ReadProgramOptionsFromIniFile(ProgramOptionsForm& form) {
  Guarded(u"modIniFile.ReadProgramOptionsFromIniFile", [&form] {
    Section section(ProfileBatch::Encoding::AsItIs);
    ReadOptions(section, *gDupeSettings, form);
    ReadWizardOptions(section, *gMarkForRemovalWizardOptions);
    ReadFileTypes(section, *gCommonFileTypes);
  });
}

void ReadDupesFolderPathFromIniFile() {
  Guarded(u"modIniFile.ReadProgramOptionsFromIniFile", [] {
    Section section(ProfileBatch::Encoding::AsItIs);
    section.Begin(kOptions);
    ReadDupesFolderPath(section);
  });
}

void SaveProgramOptionsToIniFile() {
  // UTF-16 whatever it was, so that every path can stand in it.
  WriteAndSave(u"modIniFile.SaveProgramOptionsToIniFile", ProfileBatch::Encoding::Utf16,
               [](Section& section) {
                 WriteOptions(section, *gDupeSettings);
                 WriteWizardOptions(section, *gMarkForRemovalWizardOptions);
                 WriteFileTypes(section, *gCommonFileTypes);
               });
}

void SaveFilterOptionsToIniFile(TextView IncludeFolders, TextView IncludeFiles,
                                TextView ExcludeFolders, TextView ExcludeFiles) {
  WriteAndSave(u"modIniFile.SaveFilterOptionsToIniFile", ProfileBatch::Encoding::AsItIs,
               [&](Section& section) {
                 section.Begin(kOptions);
                 section.Write(kIncludeFolders.key, IncludeFolders);
                 section.Write(kIncludeFiles.key, IncludeFiles);
                 section.Write(kExcludeFolders.key, ExcludeFolders);
                 section.Write(kExcludeFiles.key, ExcludeFiles);
               });
}

}  // namespace quillmarsh
