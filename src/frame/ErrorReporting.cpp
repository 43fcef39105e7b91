// SPDX-License-Identifier: MIT
// The message and the entry of the detail file, and the reporter's own handler.
#include "frame/ErrorReporting.h"

#include <array>
#include <span>

#include "base/LocaleFormat.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "platform/Machine.h"

namespace quillmarsh {

PendingError gPendingError;

namespace {

constexpr TextView kLineBreak = u"\r\n";
constexpr TextView kDetailFileName = u"ERR_DETAIL.TXT";

std::function<Text()> detailFolder;

Text Line(TextId label, TextView value) {
  return LoadResString(label) + u": " + Text(value) + Text(kLineBreak);
}

Text MessageOf(const PendingError& error, TextView source) {
  Text message;
  if (error.lastSystemError != 0) {
    message += Line(643, GetSystemErrorText(error.lastSystemError));
  }
  message += Line(640, error.description);
  message += Line(641, source);
  message += Line(642, error.lastSystemError != 0 ? DecimalText(error.lastSystemError)
                                                  : DecimalText(error.number));
  if (error.line != 0) message += Line(898, DecimalText(error.line));
  return message;
}

// The present date and time in the default format of the user's locale.
Text PresentMoment() {
  LocaleAndTime& locale = TheMachine().Locale();
  LocaleFacts facts;
  facts.shortDate = locale.GetLocaleInfoW(LOCALE_SSHORTDATE);
  facts.longTime = locale.GetLocaleInfoW(LOCALE_STIMEFORMAT);
  facts.dateSeparator = locale.GetLocaleInfoW(LOCALE_SDATE);
  facts.timeSeparator = locale.GetLocaleInfoW(LOCALE_STIME);
  facts.amMarker = locale.GetLocaleInfoW(LOCALE_S1159);
  facts.pmMarker = locale.GetLocaleInfoW(LOCALE_S2359);
  return FormatGeneralDate(Date::FromTicks(locale.GetLocalTime().Ticks()), facts);
}

[[noreturn]] void RaiseFileError(std::uint32_t code) {
  const std::int32_t number = code == ERROR_PATH_NOT_FOUND  ? 76
                              : code == ERROR_DISK_FULL     ? 61
                              : code == ERROR_ACCESS_DENIED ? runtime_error::PermissionDenied
                                                            : runtime_error::DeviceError;
  throw RuntimeError(number);
}

// The folder may have to be made, which may fail and be reported in its turn; that report would ask
// for the folder again, without end. What fails there shows when the file is opened.
bool isAskingForFolder = false;
Text AskForDetailFolder() {
  struct Scope {
    Scope() { isAskingForFolder = true; }
    ~Scope() { isAskingForFolder = false; }
  } const scope;
  return detailFolder();
}

void AppendToDetailFile(const Text& entry) {
  if (!detailFolder) throw RuntimeError(runtime_error::BadFileName);
  FileInputOutput& files = TheMachine().Files();
  const Text path = AskForDetailFolder() + Text(kDetailFileName);
  const HANDLE file = files.CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ, OPEN_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL);
  if (file == INVALID_HANDLE) RaiseFileError(TheMachine().GetLastError());
  const std::string bytes = ToCodePage1252(entry);
  std::uint32_t done = 0;
  const bool written = files.WriteFile(file, std::as_bytes(std::span(bytes)), done);
  const std::uint32_t code = TheMachine().GetLastError();
  files.CloseHandle(file);
  if (!written) RaiseFileError(code);
}

void Report(const PendingError& error, TextView source, TextView detail) {
  const Text lineBreak(kLineBreak);
  Text message = MessageOf(error, source);
  if (!TrimBlanks(detail).empty()) {
    AppendToDetailFile(lineBreak + PresentMoment() + lineBreak + message + lineBreak + u"- " +
                       LoadResString(644) + u" - " + lineBreak + Text(detail) + lineBreak);
  }
  if (!detail.empty()) message += lineBreak + LoadResString(645) + lineBreak;
  message +=
      lineBreak + u"* " + LoadResString(646) + lineBreak + u"  (" + LoadResString(647) + u")";
  ShowMessageBox({message, LoadResString(648) + u": " + Text(source), MessageBoxIcon::Exclamation});
}

}  // namespace

Text GetSystemErrorText(std::uint32_t number) {
  Text text = TheMachine().Locale().FormatMessageW(number);
  if (!text.empty()) return text;
  return u"(" + DecimalText(number) + u") - " + u"Error number not defined in system.";
}

Text SystemErrorReason(std::uint32_t number) {
  Text text = GetSystemErrorText(number);
  while (text.ends_with(u'\n') || text.ends_with(u'\r')) text.pop_back();
  return text;
}

void SetErrorDetailFolder(std::function<Text()> folder) {
  detailFolder = std::move(folder);
}

void TakePendingErrorFromException() {
  // The number of the last platform call belongs to the failure only where the raiser says so.
  gPendingError = {};
  try {
    throw;
  } catch (const RuntimeError& error) {
    gPendingError.number = error.Number();
    gPendingError.description = error.Description();
  } catch (const std::bad_alloc&) {
    gPendingError.number = runtime_error::OutOfMemory;
    gPendingError.description = Text(DescriptionOfRuntimeError(runtime_error::OutOfMemory));
  } catch (const std::exception& error) {
    gPendingError.number = runtime_error::InvalidProcedureCall;
    gPendingError.description = FromUtf8(error.what());
  } catch (...) {
    gPendingError.number = runtime_error::InvalidProcedureCall;
    gPendingError.description =
        Text(DescriptionOfRuntimeError(runtime_error::InvalidProcedureCall));
  }
}

void ReportError(TextView source, TextView detail) {
  if (isAskingForFolder) return;
  const PendingError error = gPendingError;
  try {
    Report(error, source, detail);
  } catch (...) {
    // A failure inside the reporter must not come out of it either.
    try {
      TakePendingErrorFromException();
      ShowMessageBox({Text(u"An error has occured in the error handler.") + Text(kLineBreak) +
                          DecimalText(gPendingError.number) + Text(kLineBreak) +
                          gPendingError.description,
                      u"Error in Error Handler", MessageBoxIcon::Exclamation});
    } catch (...) {
    }
    gPendingError = error;
  }
}

}  // namespace quillmarsh
