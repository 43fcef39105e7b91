// SPDX-License-Identifier: MIT
// One entry in the log, the status, and whatever still runs for the search.
#include "search/Cancellation.h"

#include "frame/ProgramFlags.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "removal/history/cLog.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

void ReportSearchCancelled(SearchView& view) {
  AddToLog(log_kind::UserCancelled);
  SetPanel(PANEL1, LoadResString(305));
  SetPanel(PANEL2, {});
  view.StopAnimation();
  if (gDupeSettings != nullptr && gDupeSettings->ContentsMatch()) gStopCRC = true;
}

}  // namespace quillmarsh
