// SPDX-License-Identifier: MIT
// The order matters at the end: the list of file types goes last.
#include "frame/startup/GlobalObjects.h"

#include "filetypes/cCommonFileTypes.h"
#include "filetypes/modCommonFileTypes.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "removal/history/cHistory.h"
#include "removal/history/cLog.h"
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

GlobalObjects::GlobalObjects(Machine& machine) {
  UseMachine(&machine);
  machine.SetPatience(&mPatience);
  SetErrorDetailFolder(GetIniFileFolder);
  gAppPath = FolderOfProgram(machine);
  gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
  gDupeSettings = std::make_unique<clsDupeSettings>();
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  gLog = std::make_unique<cLog>();
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  gHistory = std::make_unique<cHistory>();
  gCommonFileTypes = std::make_unique<cCommonFileTypes>();
  gIsWow64 = machine.Process().IsWow64Process();
}

bool GlobalObjects::LoadModule() {
  return Guarded(u"modQuillmarsh.Main", LoadChecksumLibrary);
}

GlobalObjects::~GlobalObjects() {
  gHistory.reset();
  gFileSpecParser.reset();
  gLog.reset();
  gMarkForRemovalWizardOptions.reset();
  gDupeSettings.reset();
  gFolderPathsList.reset();
  gCommonFileTypes.reset();
  FreeChecksumLibrary();
  SetErrorDetailFolder({});
  TheMachine().SetPatience(nullptr);
  UseMachine(nullptr);
}

}  // namespace quillmarsh
