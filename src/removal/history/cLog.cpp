// SPDX-License-Identifier: MIT
// The log in use, which may be none.
#include "removal/history/cLog.h"

namespace quillmarsh {

std::unique_ptr<cLog> gLog;

void AddToLog(std::int32_t kind) {
  bool result = false;
  if (gLog != nullptr) gLog->Add(kind, {}, {}, {}, 0, {}, {}, result);
}

void AddFreeTextToLog(TextView text) {
  bool result = false;
  if (gLog != nullptr) gLog->Add(log_kind::FreeText, {}, {}, {}, 0, {}, text, result);
}

void AddChecksumErrorToLog(TextView file, std::int32_t errorNumber, TextView errorText) {
  bool result = false;
  if (gLog != nullptr) {
    gLog->Add(log_kind::CRC32Error, {}, file, {}, errorNumber, errorText, {}, result);
  }
}

void AddFolderErrorToLog(TextView folder, std::int32_t errorNumber, TextView errorText) {
  bool result = false;
  if (gLog != nullptr) {
    gLog->Add(log_kind::GetSubFoldersError, {}, folder, {}, errorNumber, errorText, {}, result);
  }
}

}  // namespace quillmarsh
