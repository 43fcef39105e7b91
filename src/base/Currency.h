// SPDX-License-Identifier: MIT
// A 64-bit whole number scaled by 10,000. It holds byte counts as numbers (-1 for unknown), and
// through the raw view the 64 bits of a file time, where the raw number is the tick count. All
// arithmetic is checked: what does not fit raises run-time error 6. Rounding is half to even.
#pragma once

#include <compare>
#include <cstdint>

#include "base/Text.h"

namespace quillmarsh {

class Currency {
 public:
  static constexpr std::int64_t Scale = 10000;

  constexpr Currency() = default;

  [[nodiscard]] static constexpr Currency FromRaw(std::int64_t raw) {
    Currency value;
    value.mRaw = raw;
    return value;
  }
  // Error 6 when the number is beyond +-922,337,203,685,477.
  [[nodiscard]] static Currency FromInteger(std::int64_t number);
  // Rounded half to even to four decimals; error 6 out of range and for NaN.
  [[nodiscard]] static Currency FromDouble(double number);

  [[nodiscard]] constexpr std::int64_t Raw() const { return mRaw; }
  [[nodiscard]] double ToDouble() const;
  // The nearest whole number, half to even.
  [[nodiscard]] std::int64_t ToInteger() const;
  // Plain decimal text without grouping: "20480", "-1", "1.5".
  [[nodiscard]] Text ToText() const;

  [[nodiscard]] friend Currency operator+(Currency a, Currency b) { return Sum(a, b); }
  [[nodiscard]] friend Currency operator-(Currency a, Currency b) { return Difference(a, b); }
  Currency& operator+=(Currency other) { return *this = Sum(*this, other); }
  Currency& operator-=(Currency other) { return *this = Difference(*this, other); }
  [[nodiscard]] friend Currency operator*(Currency a, std::int64_t factor) {
    return Product(a, factor);
  }
  // For totals that are only shown: what does not fit stays at the largest number.
  [[nodiscard]] static Currency SaturatingSum(Currency a, Currency b);
  friend constexpr auto operator<=>(Currency, Currency) = default;

 private:
  [[nodiscard]] static Currency Sum(Currency a, Currency b);
  [[nodiscard]] static Currency Difference(Currency a, Currency b);
  [[nodiscard]] static Currency Product(Currency a, std::int64_t factor);

  std::int64_t mRaw = 0;
};

static_assert(sizeof(Currency) == 8);

}  // namespace quillmarsh
