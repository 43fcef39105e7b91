// SPDX-License-Identifier: MIT
// How far a long checksum has come, as a person reads it: "1.2 of 4.0 GB (30 %), 512 MB/s". Also
// used by the program where it computes a checksum without the module.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace pbcrc32 {

// Binary units with their usual names, one decimal below 100 and none above.
inline std::string AmountText(double bytes, double unitOf, bool withUnit) {
  static constexpr const char* Units[] = {"bytes", "KB", "MB", "GB", "TB", "PB", "EB"};
  std::size_t unit = 0;
  for (; unitOf >= 1000 && unit + 1 < std::size(Units); ++unit) {
    unitOf /= 1024;
    bytes /= 1024;
  }
  char text[64];
  const int decimals = unit > 0 && bytes < 100 ? 1 : 0;
  std::snprintf(text, sizeof text, "%.*f%s%s", decimals, bytes, withUnit ? " " : "",
                withUnit ? Units[unit] : "");
  return text;
}

inline std::string ProgressText(std::int64_t done, std::int64_t total, double seconds) {
  const auto doneBytes = static_cast<double>(done);
  const auto totalBytes = static_cast<double>(std::max(done, total));
  std::string text =
      AmountText(doneBytes, totalBytes, false) + " of " + AmountText(totalBytes, totalBytes, true);
  if (totalBytes > 0) {
    const int share = static_cast<int>(doneBytes * 100 / totalBytes);
    text += " (" + std::to_string(share) + " %)";
  }
  if (seconds > 0 && done > 0) {
    const double rate = doneBytes / seconds;
    text += ", " + AmountText(rate, rate, true) + "/s";
  }
  return text;
}

// Says when the next text is due: a few times a second, and never for a short file.
class ProgressClock {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds Interval{250};

  [[nodiscard]] bool IsDue() {
    const Clock::time_point now = Clock::now();
    if (now < mNext) return false;
    mNext = now + Interval;
    return true;
  }
  [[nodiscard]] double Seconds() const {
    return std::chrono::duration<double>(Clock::now() - mStart).count();
  }

 private:
  const Clock::time_point mStart = Clock::now();
  Clock::time_point mNext = mStart + Interval;
};

}  // namespace pbcrc32
