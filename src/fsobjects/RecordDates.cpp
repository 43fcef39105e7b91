// SPDX-License-Identifier: MIT
// From ticks to whole seconds by integers, so that no rounding of a float decides to which second a
// file belongs.
#include "fsobjects/RecordDates.h"

#include "frame/ErrorReporting.h"
#include "fsobjects/LocaleFormats.h"
#include "platform/Machine.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kSecondsFrom1601To1899 = std::int64_t{109205} * 86400;

Date Reported(Currency raw, const PathOfFile& path) {
  Guarded(
      u"cFSXFile.ConvertDateTimeCurrToVBDateTime",
      [] { throw RuntimeError(runtime_error::Overflow); },
      [&] {
        return u"DateTime value = " + FormatGrouped(raw, GetLocaleFacts()) + u"\r\nFile = " +
               path();
      });
  return {};
}

}  // namespace

Date DateOfRawTime(Currency raw, const PathOfFile& path) {
  const Date date = Date::FromTicks(raw.Raw());
  return date.IsValid() ? date : Reported(raw, path);
}

Date WholeSecondDateOfRawTime(Currency raw, const PathOfFile& path) {
  std::int64_t seconds = raw.Raw() / kTicksPerSecond;
  if (raw.Raw() % kTicksPerSecond < 0) --seconds;
  const Date date = Date::FromWholeSeconds(seconds - kSecondsFrom1601To1899);
  return date.IsValid() ? date : Reported(raw, path);
}

std::int64_t UtcTicksNow() {
  LocaleAndTime& clock = TheMachine().Locale();
  FILETIME now;
  static_cast<void>(clock.LocalFileTimeToFileTime(clock.GetLocalTime(), now));
  return now.Ticks();
}

}  // namespace quillmarsh
