// SPDX-License-Identifier: MIT
// gHistory knows where the history lies. The journal of removals names the same files and goes with
// it.
#include "removal/history/HistoryCommands.h"

#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"
#include "platform/Machine.h"
#include "removal/history/RemovalJournal.h"
#include "removal/history/cHistory.h"
#include "search/results/modDupe.h"

namespace quillmarsh {
namespace {

// Such a failure names the place, so that a person can see to it by hand.
void TellOfProblem(TextId message, TextId title, const Text& path) {
  ShowMessageBox({LoadResString(message) + u"\r\n\r\n" + LoadResString(480) + u": " +
                      TheMachine().Drives().ShownPath(path),
                  LoadResString(title), MessageBoxIcon::Exclamation});
}

bool DeleteFile(const Text& path) {
  if (!FSXFileExists(path)) return true;
  bool cancelled = false;
  std::int32_t errorNumber = 0;
  Text errorMessage;
  Text log;
  return FSXFSO_DeleteFSO(path, cancelled, errorNumber, errorMessage, log, true);
}

}  // namespace

void ViewHistory() {
  Guarded(u"frmFindDuplicates.ViewHistory", [] {
    const Text path = gHistory->FileSpec();
    if (!FSXFileExists(path)) {
      ShowMessageBox({LoadResString(478), LoadResString(454), MessageBoxIcon::Information});
      return;
    }
    const std::intptr_t answer = TheMachine().Desktop().ShellExecuteW(
        u"Open", u"notepad.exe", EncloseInQuotes(path), SW_SHOWNORMAL);
    if (answer <= kLastShellFailure) TellOfProblem(479, 833, path);
  });
}

void ClearHistory() {
  Guarded(u"frmFindDuplicates.ClearHistory", [] {
    for (const Text& path : {gHistory->FileSpec(), JournalFileSpec()})
      if (!DeleteFile(path)) return TellOfProblem(483, 484, path);
    ShowMessageBox({LoadResString(481), LoadResString(482), MessageBoxIcon::Information});
  });
}

}  // namespace quillmarsh
