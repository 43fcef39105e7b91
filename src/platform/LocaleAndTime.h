// SPDX-License-Identifier: MIT
// The user's locale, the clock and the zone, and the system's texts of error numbers.
#pragma once

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

class LocaleAndTime : public Role {
 public:
  using Role::Role;

  // A locale fact by its LOCALE_... number, for LOCALE_USER_DEFAULT; empty on failure.
  [[nodiscard]] Text GetLocaleInfoW(std::uint32_t type) {
    return Run(Operation::GetLocaleInfoW, {}, Text(), [&] { return DoGetLocaleInfo(type); });
  }
  // The present local time.
  [[nodiscard]] FILETIME GetLocalTime() {
    return Run(Operation::GetLocalTime, {}, FILETIME(), [&] { return DoGetLocalTime(); });
  }
  // False leaves `local` alone. Where the zone repeats an hour the two passes give local times that
  // differ below a microsecond, so that the way back finds the right one.
  [[nodiscard]] bool FileTimeToLocalFileTime(const FILETIME& utc, FILETIME& local) {
    return Run(Operation::FileTimeToLocalFileTime, {}, false,
               [&] { return DoToLocal(utc, local); });
  }
  [[nodiscard]] bool LocalFileTimeToFileTime(const FILETIME& local, FILETIME& utc) {
    return Run(Operation::LocalFileTimeToFileTime, {}, false, [&] { return DoToUtc(local, utc); });
  }
  // Whether a local time that FileTimeToLocalFileTime gave stands for the second pass of an hour
  // that the zone repeats (the clock set back). Never true where the system's conversion knows one
  // fixed offset only.
  [[nodiscard]] bool IsSecondPass(const FILETIME& local) { return DoIsSecondPass(local); }
  // The system's text of an error number, with its final line break; empty when it has none.
  [[nodiscard]] Text FormatMessageW(std::uint32_t code) {
    return Run(Operation::FormatMessageW, {}, Text(), [&] { return DoFormatMessage(code); });
  }

 private:
  virtual Text DoGetLocaleInfo(std::uint32_t type) = 0;
  virtual FILETIME DoGetLocalTime() = 0;
  virtual bool DoToLocal(const FILETIME& utc, FILETIME& local) = 0;
  virtual bool DoToUtc(const FILETIME& local, FILETIME& utc) = 0;
  virtual bool DoIsSecondPass(const FILETIME& local) = 0;
  virtual Text DoFormatMessage(std::uint32_t code) = 0;
};

// Pure calendar conversions on the ticks since 1601. False for a time that no calendar has.
[[nodiscard]] bool SystemTimeToFileTime(const SYSTEMTIME& system, FILETIME& file);
[[nodiscard]] bool FileTimeToSystemTime(const FILETIME& file, SYSTEMTIME& system);

// The usual English text of a system error number with its line break (CR LF), empty for a number
// that is not in the table. Used where the system has no such texts of its own.
[[nodiscard]] TextView EnglishSystemErrorText(std::uint32_t code);

}  // namespace quillmarsh
