// SPDX-License-Identifier: MIT
// Sets everything that the logic expects around it, and takes it down again.
#include "search/ProgramFixture.h"

#include "frame/ProgramFlags.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"
#include "support/ChecksumModule.h"

namespace quillmarsh {

ScriptedMessages::~ScriptedMessages() {
  EXPECT_TRUE(mAnswers.empty()) << mAnswers.size() << " expected message boxes never came";
}

MessageBoxResult ScriptedMessages::Show(const MessageBoxRequest& request) {
  shown.push_back(request);
  if (mAnswers.empty()) {
    ADD_FAILURE() << "unexpected message box: " << ToUtf8(request.text);
    return MessageBoxResult::Cancel;
  }
  const MessageBoxResult answer = mAnswers.front();
  mAnswers.pop_front();
  return answer;
}

void KeptLog::Add(std::int32_t kind, TextView, TextView fileSpec, TextView,
                  std::int32_t errorNumber, TextView errorText, TextView customText, bool& result) {
  EXPECT_FALSE(result);
  std::string line = std::to_string(kind);
  if (!fileSpec.empty()) {
    line += " " + ToUtf8(fileSpec) + " " + std::to_string(errorNumber) + " " + ToUtf8(errorText);
  }
  if (!customText.empty()) line += " " + ToUtf8(customText);
  while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
  lines.push_back(line);
}

ProgramFixture::ProgramFixture() {
  gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
  gDupeSettings = std::make_unique<clsDupeSettings>();
  gDupeSettings->SetExcludeFiles({});
  gDupeSettings->SetIncludeFolders({});
  gDupeSettings->SetIncludeFiles({});
  gDupeSettings->SetIncludeSubFolders(true);
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  auto kept = std::make_unique<KeptLog>();
  log = kept.get();
  gLog = std::move(kept);
  gViews = {&messages, &status, &pump};
  gUserAbort = gStopCRC = false;
  PutChecksumModule(machine);
  LoadChecksumLibrary();
  machine.SetShellFolder(CSIDL_LOCAL_APPDATA, u"C:\\Users\\me\\AppData\\Local");
  machine.SetShellFolder(CSIDL_WINDOWS, u"C:\\Windows");
  ResetLocaleFacts();
}

ProgramFixture::~ProgramFixture() {
  FreeChecksumLibrary();
  gViews = {};
  gLog.reset();
  gFileSpecParser.reset();
  gMarkForRemovalWizardOptions.reset();
  gDupeSettings.reset();
  gFolderPathsList.reset();
  mDupesFolderPath.clear();
  gUserAbort = false;
  ResetLocaleFacts();
}

SearchOutcome ProgramFixture::Search(std::vector<Text> locations) {
  view.locations = std::move(locations);
  return cSearchSession(results, *gDupeSettings, view).FindDuplicateFiles();
}

std::vector<std::vector<std::string>> ProgramFixture::Groups() const {
  std::vector<std::vector<std::string>> groups;
  for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
    groups.emplace_back();
    for (const std::int32_t member : results.MembersOf(group)) {
      groups.back().push_back(ToUtf8(results.FullPathOf(results.Record(member))));
    }
  }
  return groups;
}

void ProgramFixture::Make(TextView path, std::uint64_t size, std::int64_t moment,
                          std::uint32_t attributes) {
  const std::int64_t ticks = TicksOf(2026, 11, 1) + moment * 10'000'000;
  machine.AddFile(path, FileContents::Recipe(1, size), {attributes, ticks, ticks, ticks});
}

}  // namespace quillmarsh
