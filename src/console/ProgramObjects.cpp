// SPDX-License-Identifier: MIT
// Making and releasing, in one order and its reverse.
#include "console/ProgramObjects.h"

#include "filetypes/cCommonFileTypes.h"
#include "filetypes/modCommonFileTypes.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "removal/history/cHistory.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

namespace {

Text FolderOfProgram(Machine& machine) {
  const Text program = machine.Process().GetModuleFileNameW();
  return program.substr(0, program.rfind(u'\\') + 1);
}

}  // namespace

ProgramObjects::ProgramObjects(Machine& machine) : mPump(machine) {
  UseMachine(&machine);
  machine.SetPatience(&mPatience);
  gViews = {&mMessages, nullptr, &mPump};
  gAppPath = FolderOfProgram(machine);
  gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
  gDupeSettings = std::make_unique<clsDupeSettings>();
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  auto log = std::make_unique<ConsoleLog>();
  mLog = log.get();
  gLog = std::move(log);
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  gHistory = std::make_unique<cHistory>();
  gCommonFileTypes = std::make_unique<cCommonFileTypes>();
  gCommonFileTypes->SetCommonFileTypesList(GetDefaultCFTList());
  static_cast<void>(RestoreDefaultFileTypeMasks());
  SetErrorDetailFolder(GetIniFileFolder);
  mIsUsable = Guarded(u"modQuillmarsh.Main", LoadChecksumLibrary);
  gIsWow64 = machine.Process().IsWow64Process();
}

ProgramObjects::~ProgramObjects() {
  EndProgress();
  gLog->AppendInMemoryStringToLogFile();
  FreeChecksumLibrary();
  SetErrorDetailFolder({});
  gCommonFileTypes.reset();
  gHistory.reset();
  gFileSpecParser.reset();
  gLog.reset();
  gMarkForRemovalWizardOptions.reset();
  gDupeSettings.reset();
  gFolderPathsList.reset();
  gViews = {};
  TheMachine().SetPatience(nullptr);
  UseMachine(nullptr);
}

void ProgramObjects::BeginProgress(bool isTerminal) {
  mProgress = std::make_unique<ConsoleProgress>(isTerminal);
  gViews.status = mProgress.get();
}

void ProgramObjects::EndProgress() {
  gViews.status = nullptr;
  mProgress.reset();
}

}  // namespace quillmarsh
