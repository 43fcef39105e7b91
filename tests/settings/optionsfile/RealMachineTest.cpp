// SPDX-License-Identifier: MIT
// The options file as the real Windows machine writes it, held against the simulated one: the same
// bytes after the same steps, but for where it lies.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "filetypes/cCommonFileTypes.h"
#include "platform/AtomicFiles.h"
#include "platform/simulated/SimulatedMachine.h"
#include "platform/win32/Win32Machine.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"
#include "settings/optionsfile/modIniFile.h"

namespace quillmarsh {
namespace {

class NoForm final : public ProgramOptionsForm {
 public:
  void CheckMnuOptionsCheckFolderPermission(bool) override {}
};

// As at the start of a program.
void ReadAnew() {
  gDupeSettings = std::make_unique<clsDupeSettings>();
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  gCommonFileTypes = std::make_unique<cCommonFileTypes>();
  mDupesFolderPath.clear();
  NoForm form;
  ReadProgramOptionsFromIniFile(form);
  gMarkForRemovalWizardOptions->mLastModifiedDate = Date(46000.25);  // else the present moment
}

// From the first character that differs; empty when none does.
std::string Difference(const Text& expected, const Text& found) {
  const auto [one, other] = std::ranges::mismatch(expected, found);
  if (one == expected.end() && other == found.end()) return {};
  constexpr std::size_t shown = 60;
  const auto place = static_cast<std::size_t>(one - expected.begin());
  return ToUtf8(TextView(expected).substr(place, shown)) + " became " +
         ToUtf8(TextView(found).substr(std::min(place, found.size()), shown));
}

// The file's text after each of some steps of a user, without the folder in which all of it lies.
std::vector<Text> TextsOfOneUser(Machine& machine, const Text& localData) {
  UseMachine(&machine);
  std::vector<Text> texts;
  const auto look = [&] {
    std::string bytes;
    EXPECT_TRUE(ReadFileContents(machine, GetIniFileSpec(), FILE_SHARE_READ, bytes));
    Text text(bytes.size() / 2, u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    for (std::size_t at = text.find(localData); at != Text::npos; at = text.find(localData))
      text.replace(at, localData.size(), u"*");
    texts.push_back(std::move(text));
  };
  ReadAnew();
  SaveProgramOptionsToIniFile();
  look();
  gDupeSettings->SetFolderPaths(u"C:\\a b<:>\\\\server\\share\\\u00DC\u20AC");
  gDupeSettings->SetIncludeFiles(u" *.jpg<:>\"quoted\"<:>;x ");
  gMarkForRemovalWizardOptions->SetFileSize(Currency::FromRaw(-15001));
  SaveProgramOptionsToIniFile();
  look();
  EXPECT_TRUE(
      ReplaceFileContents(machine, GetIniFileSpec(),
                          "; by hand\r\n[options]\nIncludeSubFolders = False\n\n[Other]\nx=\xE9"));
  ReadAnew();
  EXPECT_FALSE(gDupeSettings->IncludeSubFolders());
  SaveFilterOptionsToIniFile(u"in", u"*.png", u"C:\\out", u"");
  look();
  SaveProgramOptionsToIniFile();
  look();
  gDupeSettings.reset();
  gMarkForRemovalWizardOptions.reset();
  gCommonFileTypes.reset();
  mDupesFolderPath.clear();
  UseMachine(nullptr);
  return texts;
}

TEST(OptionsFileOnWindows, HasTheSameBytesAsOnTheSimulatedMachine) {
  SimulatedMachine simulated;
  SimulatedDrive drive;
  drive.root = u"C:\\";
  simulated.AddDrive(drive);
  simulated.AddFolder(u"C:\\local data");
  simulated.SetShellFolder(CSIDL_LOCAL_APPDATA, u"C:\\local data");
  const std::vector<Text> expected = TextsOfOneUser(simulated, u"C:\\local data");

  const auto folder = std::filesystem::temp_directory_path() / L"quillmarsh options \u00FC";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  Win32Options options;
  options.localData = folder.u16string();
  Win32Machine real(options);
  const std::vector<Text> found = TextsOfOneUser(real, *options.localData);
  std::filesystem::remove_all(folder);
  ASSERT_EQ(expected.size(), 4U);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_GT(expected[i].size(), 50U);
    EXPECT_EQ(Difference(expected[i], found[i]), "") << "after step " << i;
  }
}

}  // namespace
}  // namespace quillmarsh
