// SPDX-License-Identifier: MIT
// Thin where the platform has the operation; the conversions of sizes and times do their own
// arithmetic, checked by the currency type.
#include "fsobjects/modShlWAPI.h"

#include "frame/ErrorReporting.h"
#include "fsobjects/LocaleFormats.h"
#include "platform/Machine.h"
#include "platform/TextOperations.h"

namespace quillmarsh {

Text StripToRoot(TextView path) {
  return PathStripToRootW(path);
}

bool MatchesSpec(TextView path, TextView spec) {
  return PathMatchSpecW(path, spec);
}

Text FormatByteSize(Currency bytes) {
  return StrFormatByteSizeW(bytes.ToInteger(), GetLocaleFacts().decimalSeparator);
}

Currency HiLoToCurr(std::int32_t high, std::int32_t low) {
  constexpr std::int64_t TwoTo32 = std::int64_t{1} << 32;
  const std::int64_t lowPart = low < 0 ? low + TwoTo32 : low;
  return Currency::FromInteger(high > 0 ? high * TwoTo32 + lowPart : lowPart);
}

// The minute is left out: 10:37:20 becomes 10:00:20. The date setters of the file object rely on
// it: what they lay down as the raw time is compared with the disk's time when changes are saved,
// and the true date, minutes included, is then written from the date itself.
Currency DateToFileTimeCurr(Date date) {
  const CivilTime civil = date.ToCivil();
  SYSTEMTIME system;
  system.wYear = static_cast<std::uint16_t>(civil.year);
  system.wMonth = static_cast<std::uint16_t>(civil.month);
  system.wDay = static_cast<std::uint16_t>(civil.day);
  system.wHour = static_cast<std::uint16_t>(civil.hour);
  system.wSecond = static_cast<std::uint16_t>(civil.second);
  FILETIME file;
  return SystemTimeToFileTime(system, file) ? Currency::FromRaw(file.Ticks()) : Currency();
}

Text FormatSystemErrorMessage(std::uint32_t code) {
  return GetSystemErrorText(code);
}

}  // namespace quillmarsh
