// SPDX-License-Identifier: MIT
// How an unexpected failure reaches the user: one message box, and where a caller gives detail one
// entry in ERR_DETAIL.TXT. A procedure that reports is wrapped once, at its edge, by Guarded, and
// goes on at its clean-up. Expected failures never come this way.
#pragma once

#include <functional>
#include <new>

#include "base/RuntimeError.h"

namespace quillmarsh {

// The program-wide error state, set by whoever caught a failure and read by ReportError.
struct PendingError {
  std::int32_t number = 0;
  Text description;
  std::uint32_t lastSystemError = 0;  // of the platform call that failed, 0 for none
  std::int32_t line = 0;              // 0 when not known
};
extern PendingError gPendingError;

// Shows the pending error under its source text ("Module.Function"). `detail` may be empty; if not,
// it goes to ERR_DETAIL.TXT. Never raises and clears nothing.
void ReportError(TextView source, TextView detail);

// The text of a system error number as the system gives it, or a sentence with the number.
[[nodiscard]] Text GetSystemErrorText(std::uint32_t number);
// The same to go on with in a line: without the line break at its end.
[[nodiscard]] Text SystemErrorReason(std::uint32_t number);

// Where ERR_DETAIL.TXT lies: a folder with its final backslash. Set at start by the room that knows
// the folder of the options file.
void SetErrorDetailFolder(std::function<Text()> folder);

// Fills the pending error from the exception that is being handled.
void TakePendingErrorFromException();

// Runs the body; an exception out of it is reported under `source` with the detail. True when the
// body ended by itself.
template <typename Body>
bool Guarded(TextView source, Body&& body, const std::function<Text()>& detail = {}) {
  try {
    body();
    return true;
  } catch (...) {
    TakePendingErrorFromException();
  }
  ReportError(source, detail ? detail() : Text());
  return false;
}

}  // namespace quillmarsh
