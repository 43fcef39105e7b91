// SPDX-License-Identifier: MIT
// The options file: what stands in it byte for byte, what a hand or an accident may have put there,
// and that nothing is lost on the way there and back.
#include <gtest/gtest.h>

#include <random>

#include "base/ValueText.h"
#include "filetypes/cCommonFileTypes.h"
#include "filetypes/modCommonFileTypes.h"
#include "fsobjects/FsObjectsFixture.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"
#include "settings/optionsfile/modIniFile.h"

namespace quillmarsh {
namespace {

constexpr TextView kFolder = u"C:\\Users\\User\\AppData\\Local\\Harrow Fen\\Quillmarsh\\";
const Text kFile = Text(kFolder) + u"quillmarsh.ini";
constexpr const char* kReading = "modIniFile.ReadProgramOptionsFromIniFile";

class KeptForm final : public ProgramOptionsForm {
 public:
  void CheckMnuOptionsCheckFolderPermission(bool isChecked) override { isMenuChecked = isChecked; }
  bool isMenuChecked = false;
};

class OptionsFile : public FsObjectsFixture {
 protected:
  OptionsFile() { Forget(); }
  ~OptionsFile() override {
    gDupeSettings.reset();
    gMarkForRemovalWizardOptions.reset();
    gCommonFileTypes.reset();
    mDupesFolderPath.clear();
  }
  // As at the start of the program.
  void Forget() {
    gDupeSettings = std::make_unique<clsDupeSettings>();
    gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
    gCommonFileTypes = std::make_unique<cCommonFileTypes>();
    mDupesFolderPath.clear();
    mCheckFolderPermission = false;
  }
  void Read() {
    Forget();
    ReadProgramOptionsFromIniFile(form);
  }
  void Put(TextView text) { PutBytes(FileContents::Utf16(text)); }
  void PutBytes(const FileContents& contents) {
    if (machine.Exists(kFile)) machine.Remove(kFile);
    machine.AddFile(kFile, contents);
  }
  std::string Bytes() const { return machine.ContentsOf(kFile); }
  static clsDupeSettings& Settings() { return *gDupeSettings; }
  static clsMarkForRemovalWizard& Wizard() { return *gMarkForRemovalWizardOptions; }
  static Text MasksOf(TextView name) {
    const std::int32_t index = gCommonFileTypes->GetCommonFileTypeIndexBasedOnKey(name);
    return gCommonFileTypes->CommonFileTypes().Item(index)->FileMasksList();
  }

  KeptForm form;
};

// The four lists that the file holds are given in short form, since the long ones are data.
constexpr TextView kGolden =
    u"[Options]\r\n"
    u"DUPESFolderPath=C:\\Users\\User\\AppData\\Local\\Harrow Fen\\Quillmarsh\\DUPES\\\r\n"
    u"FolderPaths=C:\\a<:>D:\\\u0416\r\n"
    u"IncludeSubFolders=True\r\n"
    u"SearchFileTypes=1\r\n"
    u"MainFormLoadedPreviously=False\r\n"
    u"RemoveWarningShown=False\r\n"
    u"ExcludeFiles=\r\n"
    u"IncludeFiles=*.jpg<:>*.png\r\n"
    u"ExcludeFolders=\r\n"
    u"IncludeFolders=\r\n"
    u"NamesMustMatch=True\r\n"
    u"SizesMustMatch=True\r\n"
    u"CreateTimestampsMustMatch=False\r\n"
    u"LastModTimestampsMustMatch=False\r\n"
    u"ContentsMustMatch=True\r\n"
    u"IgnoreZeroByteFiles=True\r\n"
    u"IgnoreSystemFiles=True\r\n"
    u"IgnoreHiddenFiles=True\r\n"
    u"IgnoreTemporaryFiles=True\r\n"
    u"IgnoreSystemFolders=True\r\n"
    u"IgnoreHiddenFolders=True\r\n"
    u"IgnoreTemporaryFolders=True\r\n"
    u"IgnoreFilesInWindowsDir=True\r\n"
    u"RemovalMethod=MoveToDupesFolder\r\n"
    u"UserDefinedMoveFolderPath=\r\n"
    u"CheckFolderPermission=True\r\n"
    u"[Remove Wizard Options]\r\n"
    u"MarkForRemovalWizardSelection=2\r\n"
    u"DriveSpec=C\r\n"
    u"FolderSpec=\r\n"
    u"IncludeSubFolders=True\r\n"
    u"FileSize=1.5\r\n"
    u"SizeIncrement=2\r\n"
    u"LastModifiedDate=2026-11-21 10:37:20\r\n"
    u"FileMask=*.*\r\n"
    u"AllowRemovalOfAllFilesInGroup=False\r\n"
    u"[Search File Types]\r\n"
    u"Audio Files=*.mp3\r\n"
    u"Document/Spreadsheet/Presentation Files=*.doc<:>*.txt\r\n"
    u"Image Files=*.jpg\r\n"
    u"Video Files=*.avi\r\n";

TEST_F(OptionsFile, AFirstRunWritesTheWholeFileByteForByte) {
  Read();
  Settings().SetFolderPaths(u"C:\\a<:>D:\\\u0416");
  Settings().SetIncludeFiles(u"*.jpg<:>*.png");
  Settings().SetContentsMatch(true);
  Wizard().SetFileSize(Currency::FromRaw(15000));
  Wizard().SetSizeIncrement(2);
  Wizard().mLastModifiedDate = Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 20));
  const std::pair<TextView, TextView> lists[] = {
      {u"Audio Files", u"*.mp3"},
      {u"Document/Spreadsheet/Presentation Files", u"*.doc<:>*.txt"},
      {u"Image Files", u"*.jpg"},
      {u"Video Files", u"*.avi"}};
  for (const auto& [name, masks] : lists) {
    const auto index = gCommonFileTypes->GetCommonFileTypeIndexBasedOnKey(name);
    gCommonFileTypes->CommonFileTypes().Item(index)->SetFileMasksList(masks);
  }
  SaveProgramOptionsToIniFile();
  EXPECT_EQ(
      Bytes(), std::string("\xFF\xFE") + [] {
        std::string bytes;
        for (const char16_t unit : kGolden) {
          bytes += static_cast<char>(unit & 0xFF);
          bytes += static_cast<char>(unit >> 8);
        }
        return bytes;
      }());
  // What stands there is what another save would write.
  hook.ClearJournal();
  Read();
  SaveProgramOptionsToIniFile();
  EXPECT_EQ(hook.CountOf(Operation::MoveFileExW), 0U);
}

TEST_F(OptionsFile, NoFileReadsAsTheDefaultsAndMakesTheDupesFolder) {
  Read();
  EXPECT_TRUE(machine.Exists(Text(kFolder) + u"DUPES"));
  EXPECT_EQ(mDupesFolderPath, Text(kFolder) + u"DUPES\\");
  EXPECT_EQ(Settings().FileType(), 1);
  EXPECT_TRUE(Settings().IncludeSubFolders());
  EXPECT_EQ(Settings().ExcludeFiles(), u"") << "the names of a new object do not survive";
  EXPECT_EQ(Settings().IncludeFolders(), u"");
  EXPECT_EQ(Wizard().mRule, 2);
  EXPECT_EQ(Wizard().DriveSpec(), u"C");
  EXPECT_EQ(FixedDateText(Wizard().mLastModifiedDate),
            FixedDateText(Date::FromTicks(machine.Clock())));
  EXPECT_TRUE(form.isMenuChecked);
  EXPECT_TRUE(mCheckFolderPermission);
  EXPECT_EQ(gCommonFileTypes->Count(), 10);
  EXPECT_EQ(MasksOf(u"Financial Files"), u"*.qdf<:>*.qel<:>*.qph<:>*.qsd<:>*.mny<:>*.tax<:>*.qbw");
}

TEST_F(OptionsFile, AUserWithoutAFolderOfHisOwnHasTheDefaultsAndKeepsNothing) {
  machine.SetShellFolder(CSIDL_LOCAL_APPDATA, {});
  Read();
  EXPECT_EQ(Settings().FileType(), 1);
  EXPECT_EQ(gCommonFileTypes->Count(), 10);
  hook.ClearJournal();
  SaveProgramOptionsToIniFile();
  EXPECT_EQ(hook.CountOf(Operation::WriteFile), 0U);
}

TEST_F(OptionsFile, WhatAHandMayWriteIsReadAsFarAsItMakesSense) {
  Put(u"; mine\r\n[OPTIONS]\r\nincludesubfolders=\r\nNamesMustMatch=true\r\nSizesMustMatch=1\r\n"
      u"RemovalMethod=recycle\r\nSearchFileTypes = 3 \r\nFolderPaths=\"C:\\with blank \"\r\n"
      u"DUPESFolderPath=E:\\kept\r\nShowDupeDebugInfo=True\r\n"
      u"[remove wizard options]\r\nFileSize=2,5\r\nLastModifiedDate=3/4/2025\r\n"
      u"[Search File Types]\r\nEmail Files=*.eml\r\nAudio Files=*.mp3,*.ogg\r\nList=x\r\n");
  Read();
  EXPECT_TRUE(Settings().IncludeSubFolders()) << "an empty value is a missing one";
  EXPECT_FALSE(Settings().NamesMatch()) << "only the exact word is true";
  EXPECT_FALSE(Settings().SizesMatch());
  EXPECT_EQ(Settings().RemoveMethod(), RemoveMethod::MoveToDupesFolder);
  EXPECT_EQ(Settings().FileType(), 3);
  EXPECT_EQ(Settings().FolderPaths(), u"C:\\with blank ");
  EXPECT_EQ(mDupesFolderPath, u"E:\\kept\\");
  EXPECT_TRUE(gShowDupeDebugInfo);
  EXPECT_EQ(Wizard().FileSize(), Currency::FromInteger(25)) << "the locale's thousands";
  EXPECT_EQ(FixedDateText(Wizard().mLastModifiedDate), u"2025-03-04 00:00:00");
  EXPECT_EQ(MasksOf(u"Email Files"), u"*.eml");
  EXPECT_EQ(MasksOf(u"Audio Files"), u"*.mp3,*.ogg");

  SaveProgramOptionsToIniFile();
  const Text saved = [&] {
    const std::string bytes = Bytes();
    Text text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
      text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                    static_cast<unsigned char>(bytes[i + 1]) << 8);
    return text;
  }();
  for (const TextView line :
       {u"; mine\r\n[OPTIONS]\r\nincludesubfolders=True\r\n", u"RemovalMethod=MoveToDupesFolder",
        u"FolderPaths=\"C:\\with blank \"", u"Email Files=*.eml\r\n", u"List=x\r\n"})
    EXPECT_NE(saved.find(line), Text::npos) << ToUtf8(line) << "\n" << ToUtf8(saved);
  EXPECT_EQ(saved.find(u"HTML/Web Files"), Text::npos) << "never written of itself";
}

TEST_F(OptionsFile, ANumberThatIsNoneIsReportedAndEndsTheReadingThere) {
  const struct {
    const char* key;
    TextView text;
  } rows[] = {{"SearchFileTypes", u"[Options]\r\nSearchFileTypes=many\r\nSizesMustMatch=False"},
              {"too large", u"[Options]\r\nSearchFileTypes=99999999999\r\nSizesMustMatch=False"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.key);
    Put(row.text);
    Read();
    EXPECT_EQ(TakeReportedSource(), kReading);
    EXPECT_TRUE(Settings().SizesMatch()) << "what comes behind keeps the object's own value";
  }
  for (const TextView line :
       {u"MarkForRemovalWizardSelection=x", u"FileSize=big", u"SizeIncrement=KB",
        u"FileSize=922337203685477\r\nSizeIncrement=3"}) {
    SCOPED_TRACE(ToUtf8(line));
    Put(u"[Options]\r\nSizesMustMatch=False\r\n[Remove Wizard Options]\r\n" + Text(line) +
        u"\r\nAllowRemovalOfAllFilesInGroup=True\r\n");
    Read();
    EXPECT_EQ(TakeReportedSource(), kReading);
    EXPECT_FALSE(Settings().SizesMatch()) << "what was read stays";
    EXPECT_FALSE(Wizard().mAllowRemovalOfAllFilesInGroup);
  }
}

// Every option as it stands in the program's objects.
struct Everything {
  std::vector<Text> texts;
  std::vector<bool> flags;
  std::vector<std::int64_t> numbers;
  friend bool operator==(const Everything&, const Everything&) = default;

  static Everything Now() {
    const clsDupeSettings& s = *gDupeSettings;
    const clsMarkForRemovalWizard& w = *gMarkForRemovalWizardOptions;
    return {{s.FolderPaths(), s.ExcludeFiles(), s.IncludeFiles(), s.ExcludeFolders(),
             s.IncludeFolders(), s.UserDefinedMoveFolderPath(), w.DriveSpec(), w.mFolderSpec,
             w.mFileMask, FixedDateText(w.mLastModifiedDate)},
            {s.IncludeSubFolders(), s.NamesMatch(), s.SizesMatch(), s.CreateTimeStampsMatch(),
             s.LastModTimeStampsMatch(), s.ContentsMatch(), s.IgnoreZeroByteFiles(),
             s.IgnoreSystemFiles(), s.IgnoreHiddenFiles(), s.IgnoreTemporaryFiles(),
             s.IgnoreSystemFolders(), s.IgnoreHiddenFolders(), s.IgnoreTemporaryFolders(),
             s.IgnoreFilesInWindowsDir(), s.MainFormLoadedPreviously(), s.RemoveWarningShown(),
             mCheckFolderPermission, w.mIncludeSubFolders, w.mAllowRemovalOfAllFilesInGroup},
            {s.FileType(), static_cast<std::int64_t>(s.RemoveMethod()), w.mRule, w.FileSize().Raw(),
             w.SizeIncrement()}};
  }
};

void SetEverythingAtRandom(std::mt19937& random) {
  static const Text awkward[] = {u"",
                                 u" blanks ",
                                 u"\"quoted\"",
                                 u"'",
                                 u"a=b;c",
                                 u"[Options]",
                                 u"C:\\a,b",
                                 u"; comment",
                                 u"\u0416\U0001F600\uF00A",
                                 u"x<:> y<:>\"z\""};
  const auto text = [&] { return awkward[random() % std::size(awkward)]; };
  const auto flag = [&] { return random() % 2 != 0; };
  clsDupeSettings& s = *gDupeSettings;
  for (const auto set :
       {&clsDupeSettings::SetFolderPaths, &clsDupeSettings::SetExcludeFiles,
        &clsDupeSettings::SetIncludeFiles, &clsDupeSettings::SetExcludeFolders,
        &clsDupeSettings::SetIncludeFolders, &clsDupeSettings::SetUserDefinedMoveFolderPath})
    (s.*set)(text());
  for (const auto set :
       {&clsDupeSettings::SetIncludeSubFolders, &clsDupeSettings::SetNamesMatch,
        &clsDupeSettings::SetSizesMatch, &clsDupeSettings::SetCreateTimeStampsMatch,
        &clsDupeSettings::SetLastModTimeStampsMatch, &clsDupeSettings::SetContentsMatch,
        &clsDupeSettings::SetIgnoreZeroByteFiles, &clsDupeSettings::SetIgnoreSystemFiles,
        &clsDupeSettings::SetIgnoreHiddenFiles, &clsDupeSettings::SetIgnoreTemporaryFiles,
        &clsDupeSettings::SetIgnoreSystemFolders, &clsDupeSettings::SetIgnoreHiddenFolders,
        &clsDupeSettings::SetIgnoreTemporaryFolders, &clsDupeSettings::SetIgnoreFilesInWindowsDir,
        &clsDupeSettings::SetMainFormLoadedPreviously, &clsDupeSettings::SetRemoveWarningShown})
    (s.*set)(flag());
  s.SetFileType(static_cast<std::int32_t>(random() % 5));
  s.SetRemoveMethod(static_cast<RemoveMethod>(random() % 4));
  mCheckFolderPermission = flag();
  clsMarkForRemovalWizard& w = *gMarkForRemovalWizardOptions;
  w.mRule = static_cast<std::int32_t>(random() % 16);
  w.SetDriveSpec(u"D");
  w.mFolderSpec = text();
  w.mFileMask = u"*.t?t";
  w.mIncludeSubFolders = flag();
  w.mAllowRemovalOfAllFilesInGroup = flag();
  w.SetFileSize(Currency::FromRaw(static_cast<std::int64_t>(random() % 8'000'000) * 1000));
  w.SetSizeIncrement(static_cast<std::int32_t>(random() % 4));
  w.mLastModifiedDate = Date::FromWholeSeconds(static_cast<std::int64_t>(random()) * 2);
}

TEST_F(OptionsFile, EveryOptionComesBackWhateverItHolds) {
  std::mt19937 random(11);
  for (int round = 0; round < 40; ++round) {
    Forget();
    gCommonFileTypes->SetCommonFileTypesList(GetDefaultCFTList());
    SetEverythingAtRandom(random);
    const Everything before = Everything::Now();
    SaveProgramOptionsToIniFile();
    Read();
    EXPECT_EQ(Everything::Now(), before) << "round " << round;
  }
}

TEST_F(OptionsFile, A8BitFileACutFileAndNoiseReadAsWhatTheyAreAndSaveSound) {
  const std::string cut("\xFF\xFE[\0O\0p\0t\0i\0o\0n\0s\0]\0\r\0\n\0S\0i\0z\0e", 31);
  std::mt19937 random(2);
  std::string noise(300'000, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  const struct {
    const char* name;
    FileContents contents;
    bool sizesMatch;
  } rows[] = {
      {"8-bit", FileContents("[Options]\r\nSizesMustMatch=False\r\nFolderPaths=C:\\\xE9\r\n"),
       false},
      {"cut", FileContents(cut), true},
      {"noise", FileContents(noise), true},
      {"empty", FileContents(""), true},
      {"the mark alone", FileContents("\xFF\xFE"), true},
      {"marked noise", FileContents("\xFF\xFE" + noise), true},
      {"big-endian", FileContents(std::string("\xFE\xFF\0[\0O", 6)), true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    PutBytes(row.contents);
    Read();
    EXPECT_EQ(Settings().SizesMatch(), row.sizesMatch);
    if (!row.sizesMatch) {
      EXPECT_EQ(Settings().FolderPaths(), u"C:\\\u00E9");
    }
    Settings().SetFolderPaths(u"C:\\\u0416");
    SaveProgramOptionsToIniFile();
    Read();
    EXPECT_EQ(Settings().FolderPaths(), u"C:\\\u0416");
    EXPECT_EQ(Settings().SizesMatch(), row.sizesMatch);
    EXPECT_EQ(MasksOf(u"Video Files").size(), 2910U);
  }
}

TEST_F(OptionsFile, TheFilterDialogWritesItsFourKeysAloneAndTheSaveMakesTheFileUtf16) {
  SaveFilterOptionsToIniFile(u"a", u"b", u"c", u"d");
  EXPECT_EQ(Bytes(),
            "[Options]\r\nIncludeFolders=a\r\nIncludeFiles=b\r\nExcludeFolders=c\r\n"
            "ExcludeFiles=d\r\n");
  Read();
  EXPECT_EQ(Settings().ExcludeFolders(), u"c");
  SaveProgramOptionsToIniFile();
  EXPECT_TRUE(Bytes().starts_with(std::string("\xFF\xFE[\0O\0", 6)));
  Read();
  EXPECT_EQ(Settings().ExcludeFolders(), u"c");
}

TEST_F(OptionsFile, ARemovalMethodThatIsNoneKeepsTheWordInTheFile) {
  Put(u"[Options]\r\nRemovalMethod=Recycle\r\n");
  Read();
  Settings().SetRemoveMethod(static_cast<RemoveMethod>(7));
  SaveProgramOptionsToIniFile();
  Read();
  EXPECT_EQ(Settings().RemoveMethod(), RemoveMethod::Recycle);
}

TEST_F(OptionsFile, AFailingDiskIsToldOnceAndLeavesAWholeFile) {
  Put(u"[Options]\r\nFolderPaths=C:\\kept\r\n");
  Read();
  Settings().SetFolderPaths(u"C:\\new");
  const std::string before = Bytes();
  hook.Fail({.operation = Operation::WriteFile, .nth = 0}, ERROR_DISK_FULL);
  SaveProgramOptionsToIniFile();
  EXPECT_TRUE(ToUtf8(TakeBox().title).starts_with("Error Writing to INI file"));
  EXPECT_EQ(Bytes(), before);
}

}  // namespace
}  // namespace quillmarsh
