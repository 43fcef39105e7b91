// SPDX-License-Identifier: MIT
// The history in use, which may be none.
#include "removal/history/cHistory.h"

#include "settings/OptionsFolder.h"

namespace quillmarsh {

std::unique_ptr<cHistory> gHistory;

Text cHistory::FileSpec() const {
  return GetIniFileFolder() + u"history.log";
}

}  // namespace quillmarsh
