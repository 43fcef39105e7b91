// SPDX-License-Identifier: MIT
// The history log as the rest of the program sees it: entries by kind, gathered in memory and
// flushed in batches. Adding an entry never fails a search or a removal.
#pragma once

#include <cstdint>
#include <memory>

#include "base/Text.h"

namespace quillmarsh {

// The kinds of entries that a search writes.
namespace log_kind {
inline constexpr std::int32_t BeginSearch = 0;
inline constexpr std::int32_t EndSearch = 1;
inline constexpr std::int32_t CRC32Error = 12;  // file, number, text
inline constexpr std::int32_t UserCancelled = 13;
inline constexpr std::int32_t GetSubFoldersError = 16;  // file (a folder), number, text
inline constexpr std::int32_t FreeText = 17;            // customText
}  // namespace log_kind

class cLog {
 public:
  virtual ~cLog() = default;

  // Callers pass empty texts and 0 for what a kind does not use. Nothing reads `spareText`;
  // `result` stays false.
  virtual void Add(std::int32_t kind, TextView spareText, TextView fileSpec, TextView targetPath,
                   std::int32_t errorNumber, TextView errorText, TextView customText,
                   bool& result) = 0;
  // Appends what is in memory to the log's file; the memory is emptied only by ResetInMemoryLog.
  virtual void AppendInMemoryStringToLogFile() = 0;
  virtual void ResetInMemoryLog() = 0;
};

// The one log in use, made and released with the other program-wide objects.
extern std::unique_ptr<cLog> gLog;

// Shorter ways to add the kinds of a search to gLog.
void AddToLog(std::int32_t kind);
void AddFreeTextToLog(TextView text);
void AddChecksumErrorToLog(TextView file, std::int32_t errorNumber, TextView errorText);
void AddFolderErrorToLog(TextView folder, std::int32_t errorNumber, TextView errorText);

}  // namespace quillmarsh
