// SPDX-License-Identifier: MIT
// The layouts of the entries as one table, and when what is in memory goes to the file.
#include "removal/history/cLog.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/LocaleFormat.h"
#include "base/TextEquality.h"
#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/Handles.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modAPIReadWriteFile.h"
#include "search/results/modDupe.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {

std::unique_ptr<cLog> gLog;

namespace {

constexpr TextView kLogFileName = u"history.log";
constexpr TextView kLineBreak = u"\r\n";
// With so many characters in memory they go to the file.
constexpr std::int32_t kFlushSize = 102401;
constexpr auto kFlushInterval = std::chrono::seconds(1);

// A layout is the entry itself but for the marks: %d the stamp, %l the label, %f the file, %q the
// file in quotation marks, %t the target, %n the error number, %e the error text, %c the free text.
// An asterisk behind the tab tells an error, a blank anything else.
struct EntryLayout {
  std::int32_t kind;
  std::optional<TextId> label;
  TextView layout;
};
constexpr EntryLayout kLayouts[] = {
    {log_kind::BeginSearch, TextId(144), u"\r\n%d <%l>\r\n"},
    {log_kind::EndSearch, TextId(145), u"%d <%l>\r\n"},
    {log_kind::BeginRemoval, TextId(146), u"\r\n%d <%l>\r\n"},
    {log_kind::EndRemoval, TextId(147), u"%d <%l>\r\n"},
    {log_kind::FileDeleted, TextId(148), u"\t %l: %f\r\n"},
    {log_kind::FileSentToRecycleBin, TextId(149), u"\t %l: %f\r\n"},
    {log_kind::FileMovedToDupesFolder, TextId(150), u"\t %l: %f --> %t\r\n"},
    {log_kind::FileMovedToOtherFolder, TextId(150), u"\t %l: %f --> %t\r\n"},
    {log_kind::DeleteError, TextId(151), u"\t*%l: %n %e %f\r\n"},
    {log_kind::MoveError, TextId(152), u"\t*%l: %n %e %f --> %t\r\n"},
    {log_kind::CreateFolderError, TextId(884), u"\t*%l: %n %e %t\r\n"},
    // No blank between number and text: whoever reads logs by a pattern knows these entries so.
    {log_kind::CRC32Error, TextId(155), u"\t*%l: %n%e %q\r\n"},
    {log_kind::UserCancelled, TextId(153), u"\r\n\t*%l\r\n"},
    {log_kind::GetSubFoldersError, TextId(154), u"\t*%l: %n %e %q\r\n"},
    {log_kind::FreeText, std::nullopt, u"\t%c\r\n"},
};

struct EntryFacts {
  TextView fileSpec = {};
  TextView targetPath = {};
  std::int32_t errorNumber = 0;
  TextView errorText = {};
  TextView customText = {};
};

Text Stamp() {
  const Date now = Date::FromTicks(TheMachine().Locale().GetLocalTime().Ticks());
  return FormatDate(now, GetDateTimeFormat(), GetLocaleFacts());
}

Text PieceOf(char16_t mark, const EntryLayout& layout, const EntryFacts& facts) {
  switch (mark) {
    case u'd':
      return Stamp();
    case u'l':
      return LoadResString(layout.label.value());
    case u'f':
      return Text(facts.fileSpec);
    case u'q':
      return EncloseInQuotes(facts.fileSpec);
    case u't':
      return Text(facts.targetPath);
    case u'n':
      return DecimalText(facts.errorNumber);
    case u'e':
      // The system's texts end in a line break; an entry is to stay one line.
      return ReplaceAll(facts.errorText, kLineBreak, u"  ");
    default:
      return Text(facts.customText);
  }
}

// Empty for a kind that has no entry.
Text EntryText(std::int32_t kind, const EntryFacts& facts) {
  const auto* const layout = std::ranges::find(kLayouts, kind, &EntryLayout::kind);
  if (layout == std::end(kLayouts)) return {};
  Text entry;
  for (TextView rest = layout->layout; !rest.empty();) {
    const std::size_t mark = std::min(rest.find(u'%'), rest.size());
    entry += rest.substr(0, mark);
    rest.remove_prefix(mark);
    if (rest.empty()) break;
    entry += PieceOf(rest[1], *layout, facts);
    rest.remove_prefix(2);
  }
  return entry;
}

void TellThatLogCannotBeDeleted(std::uint32_t code) {
  const Text lineBreak(kLineBreak);
  Text reason = GetSystemErrorText(code);
  if (reason.ends_with(kLineBreak)) reason.resize(reason.size() - kLineBreak.size());
  Text message = LoadResString(156) + lineBreak + lineBreak;
  message += LoadResString(157) + u": " + DecimalText(code) + lineBreak;
  message += LoadResString(158) + u": " + reason + lineBreak + lineBreak;
  message += LoadResString(159);
  ShowMessageBox({message, LoadResString(160), MessageBoxIcon::Exclamation});
}

void AddToLogInUse(std::int32_t kind, const EntryFacts& facts) {
  bool result = false;
  if (gLog == nullptr) return;
  gLog->Add(kind, {}, facts.fileSpec, facts.targetPath, facts.errorNumber, facts.errorText,
            facts.customText, result);
}

}  // namespace

Text cLog::LogFileSpec() const {
  return GetIniFileFolder() + Text(kLogFileName);
}

Text cLog::InMemoryString() const {
  Text text;
  Guarded(u"cLog.InMemoryString", [&] { text = mLogBuffer.CurrentString(); });
  return text;
}

void cLog::Add(std::int32_t kind, TextView /*spareText*/, TextView fileSpec, TextView targetPath,
               std::int32_t errorNumber, TextView errorText, TextView customText,
               bool& /*result*/) {
  Guarded(u"cLog.Add", [&] {
    AddToLogEntries(EntryText(kind, {fileSpec, targetPath, errorNumber, errorText, customText}));
  });
}

void cLog::AddToLogEntries(TextView text) {
  if (text.empty()) return;
  Guarded(u"cLog.AddToLogEntries", [&] {
    const std::int32_t before = mLogBuffer.Length();
    mLogBuffer.Append(text);
    // The builder reports a failure itself and is then as it was.
    if (mLogBuffer.Length() == before) TellOfLostEntry();
    // A lost text counts too: where memory is short the next flush comes sooner.
    mCurrInMemoryLogSize += static_cast<std::int32_t>(text.size());
    if (mCurrInMemoryLogSize < kFlushSize) return;
    mIsBatchFull = true;
    AppendInMemoryStringToLogFile();
    mIsBatchFull = false;
    ResetInMemoryLog();
  });
}

// The entries so far are saved to make room. The word about the loss goes straight in: if there is
// no room even for that, telling of it again would never end.
void cLog::TellOfLostEntry() {
  AppendInMemoryStringToLogFile();
  ResetInMemoryLog();
  const Text note = LoadResString(161);
  const Text entry = EntryText(log_kind::FreeText, {.customText = note});
  mLogBuffer.Append(entry);
  mCurrInMemoryLogSize += static_cast<std::int32_t>(entry.size());
}

Text cLog::GetLogEntriesFromFile() const {
  Text text;
  Guarded(u"cLog.GetLogEntriesFromFile", [&] { text = ReadStringFromFile(LogFileSpec()); });
  return text;
}

void cLog::SaveAs(TextView path) const {
  Guarded(u"cLog.SaveAs", [&] {
    const Text log = LogFileSpec();
    if (!FSXFileExists(log)) return;
    const RedirectionOff redirection;
    // That the target was there already is no error of the log.
    static_cast<void>(TheMachine().Disk().CopyFileW(ToLongPath(log), ToLongPath(path), true));
  });
}

void cLog::AppendInMemoryStringToLogFile() {
  Guarded(u"cLog.AppendInMemoryStringToLogFile", [&] {
    if (mCurrInMemoryLogSize == 0) return;
    // Of the batches of one long removal, which come many times a second, one a second waits for
    // the disk. The last one always does.
    const auto now = std::chrono::steady_clock::now();
    const bool mayWait = mIsBatchFull && now - mLastFlush < kFlushInterval;
    if (!mayWait) mLastFlush = now;
    // No copy is made, since this is also what makes room when memory is short.
    mWasLastBatchWritten = AppendStringToFile(LogFileSpec(), mLogBuffer.CurrentString(),
                                              TextEncoding::Utf16LittleEndian,
                                              mayWait ? FlushToDisk::Later : FlushToDisk::Now);
    if (!mWasLastBatchWritten) TellOfLostBatch();
  });
}

void cLog::ResetInMemoryLog() {
  mCurrInMemoryLogSize = 0;
  mLogBuffer = clsStringAppend();
}

void cLog::DeleteLogFileIfMaxSizeIsExceeded() const {
  Guarded(u"cLog.DeleteLogFileIfMaxSizeIsExceeded", [&] {
    const Text log = LogFileSpec();
    if (!FSXFileExists(log)) return;
    cFSXFile file;
    file.SetPath(log);
    if (mRestrictLogSize && file.Size() >= Currency::FromInteger(mMaxLogFileSize)) DeleteLogFile();
  });
}

void cLog::DeleteLogFile() const {
  Guarded(u"cLog.DeleteLogFile", [&] {
    const Text log = LogFileSpec();
    if (!FSXFileExists(log)) return;
    const RedirectionOff redirection;
    if (TheMachine().Disk().DeleteFileW(ToLongPath(log))) return;
    TellThatLogCannotBeDeleted(TheMachine().GetLastError());
  });
}

void AddToLog(std::int32_t kind) {
  AddToLogInUse(kind, {});
}

void AddFreeTextToLog(TextView text) {
  AddToLogInUse(log_kind::FreeText, {.customText = text});
}

void AddChecksumErrorToLog(TextView file, std::int32_t errorNumber, TextView errorText) {
  AddToLogInUse(log_kind::CRC32Error,
                {.fileSpec = file, .errorNumber = errorNumber, .errorText = errorText});
}

void AddFolderErrorToLog(TextView folder, std::int32_t errorNumber, TextView errorText) {
  AddToLogInUse(log_kind::GetSubFoldersError,
                {.fileSpec = folder, .errorNumber = errorNumber, .errorText = errorText});
}

}  // namespace quillmarsh
