// SPDX-License-Identifier: MIT
// The history log: one entry for each thing that a search or a removal did or could not do,
// gathered in memory and appended in batches to "history.log" beside the options file (UTF-16 with
// its mark, CR LF). Entries are never changed. A failure is reported and never comes out of a
// member; a batch that cannot be written is lost. Paths are written as they are given: callers give
// the form that a person reads.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "base/Text.h"
#include "fsobjects/clsStringAppend.h"

namespace quillmarsh {

// The kinds of entries, with the arguments of Add that each uses. Any other number writes nothing.
namespace log_kind {
inline constexpr std::int32_t BeginSearch = 0;
inline constexpr std::int32_t EndSearch = 1;
inline constexpr std::int32_t BeginRemoval = 2;
inline constexpr std::int32_t EndRemoval = 3;
inline constexpr std::int32_t FileDeleted = 4;             // file
inline constexpr std::int32_t FileSentToRecycleBin = 5;    // file
inline constexpr std::int32_t FileMovedToDupesFolder = 6;  // file, target
inline constexpr std::int32_t FileMovedToOtherFolder = 7;  // file, target
inline constexpr std::int32_t DeleteError = 8;             // file, number, text
inline constexpr std::int32_t MoveError = 9;               // file, target, number, text
inline constexpr std::int32_t CreateFolderError = 10;      // target, number, text
inline constexpr std::int32_t CRC32Error = 12;             // file, number, text
inline constexpr std::int32_t UserCancelled = 13;
inline constexpr std::int32_t GetSubFoldersError = 16;  // file (a folder), number, text
inline constexpr std::int32_t FreeText = 17;            // customText
}  // namespace log_kind

class cLog {
 public:
  cLog() = default;
  virtual ~cLog() = default;
  cLog(const cLog&) = delete;
  cLog& operator=(const cLog&) = delete;

  // These four are kept for callers and change nothing about what Add writes.
  [[nodiscard]] bool LogOnlyErrors() const { return mLogOnlyErrors; }
  void SetLogOnlyErrors(bool value) { mLogOnlyErrors = value; }
  // Whether DeleteLogFileIfMaxSizeIsExceeded may delete.
  [[nodiscard]] bool RestrictLogSize() const { return mRestrictLogSize; }
  void SetRestrictLogSize(bool value) { mRestrictLogSize = value; }
  [[nodiscard]] bool LogInfoOnlyErrors() const { return mLogInfoOnlyErrors; }
  void SetLogInfoOnlyErrors(bool value) { mLogInfoOnlyErrors = value; }
  [[nodiscard]] std::int32_t MaxLogFileSize() const { return mMaxLogFileSize; }  // bytes
  void SetMaxLogFileSize(std::int32_t bytes) { mMaxLogFileSize = bytes; }

  // Characters that came since the last reset.
  [[nodiscard]] std::int32_t CurrInMemoryLogSize() const { return mCurrInMemoryLogSize; }
  [[nodiscard]] Text LogFileSpec() const;
  // The entries that are not yet written.
  [[nodiscard]] Text InMemoryString() const;

  // Callers pass empty texts and 0 for what a kind does not use. Nothing reads `spareText`;
  // `result` stays false.
  virtual void Add(std::int32_t kind, TextView spareText, TextView fileSpec, TextView targetPath,
                   std::int32_t errorNumber, TextView errorText, TextView customText, bool& result);
  // The whole file with its mark as the first character.
  [[nodiscard]] Text GetLogEntriesFromFile() const;
  // Copies the file, if there is one, to a path where nothing is yet.
  void SaveAs(TextView path) const;
  // Appends what is in memory to the file; the memory is emptied only by ResetInMemoryLog, which
  // therefore has to follow.
  virtual void AppendInMemoryStringToLogFile();
  // Of the last batch that there was to write.
  [[nodiscard]] bool WasLastBatchWritten() const { return mWasLastBatchWritten; }
  virtual void ResetInMemoryLog();
  void DeleteLogFileIfMaxSizeIsExceeded() const;
  // A failure is told in a box.
  void DeleteLogFile() const;

  // After a batch that could not be written, with the last error as it was left.
  virtual void TellOfLostBatch() {}

 private:
  void AddToLogEntries(TextView text);
  void TellOfLostEntry();

  bool mRestrictLogSize = true;
  std::int32_t mMaxLogFileSize = 512000;
  std::int32_t mCurrInMemoryLogSize = 0;
  bool mLogOnlyErrors = false;
  bool mLogInfoOnlyErrors = true;
  clsStringAppend mLogBuffer;
  bool mIsBatchFull = false;  // while a batch is written because there is no room for more
  bool mWasLastBatchWritten = true;
  std::chrono::steady_clock::time_point mLastFlush;
};

// The one log in use, made and released with the other program-wide objects.
extern std::unique_ptr<cLog> gLog;

// Shorter ways to add the kinds of a search to gLog.
void AddToLog(std::int32_t kind);
void AddFreeTextToLog(TextView text);
void AddChecksumErrorToLog(TextView file, std::int32_t errorNumber, TextView errorText);
void AddFolderErrorToLog(TextView folder, std::int32_t errorNumber, TextView errorText);

}  // namespace quillmarsh
