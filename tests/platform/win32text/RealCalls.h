// SPDX-License-Identifier: MIT
// What the tests against the system's own calls have in common: inputs made from a seed, texts
// shown so that a failure can be copied into a test, and whether the system is Wine, which differs
// from Windows in places that each test names.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <span>
#include <string>

#include "base/Text.h"
#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

[[nodiscard]] inline bool IsWine() {
  return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

// One case's choices. The same seed makes the same case on every system.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : mRandom(seed) {}

  [[nodiscard]] std::size_t Below(std::size_t limit) { return mRandom() % limit; }
  [[nodiscard]] bool OneIn(std::size_t count) { return Below(count) == 0; }
  [[nodiscard]] std::uint64_t Bits() {
    const std::uint64_t high = mRandom();
    return high << 32U | mRandom();
  }
  template <typename Choices>
  [[nodiscard]] auto Of(const Choices& choices) {
    return choices[Below(std::size(choices))];
  }
  // Up to `most` units of the alphabet.
  [[nodiscard]] Text Word(TextView alphabet, std::size_t most) {
    Text word;
    for (std::size_t size = Below(most + 1); size > 0; --size) word += Of(alphabet);
    return word;
  }

 private:
  std::mt19937 mRandom;
};

// As it would stand in a source.
[[nodiscard]] inline std::string Shown(TextView text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string shown = "\"";
  for (const char16_t unit : text) {
    if (unit >= u' ' && unit <= u'~') {
      if (unit == u'"' || unit == u'\\') shown += '\\';
      shown += static_cast<char>(unit);
      continue;
    }
    shown += "\\u";
    for (unsigned shift = 16; shift > 0; shift -= 4) shown += digits[unit >> (shift - 4) & 15U];
  }
  return shown + '"';
}

// Stops a loop over cases soon after the first failures, which mostly have one reason.
class FewFailures {
 public:
  [[nodiscard]] bool Enough() const { return mCount >= kMost; }
  void Count() { ++mCount; }

 private:
  static constexpr int kMost = 20;
  int mCount = 0;
};

}  // namespace quillmarsh
