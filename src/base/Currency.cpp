// SPDX-License-Identifier: MIT
// Checked arithmetic on the scaled whole number. Nothing here wraps or saturates.
#include "base/Currency.h"

#include <cmath>
#include <limits>

#include "base/CheckedArithmetic.h"
#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t Largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Smallest = std::numeric_limits<std::int64_t>::min();

[[noreturn]] void RaiseOverflow() {
  throw RuntimeError(runtime_error::Overflow);
}

std::int64_t CheckedSum(std::int64_t a, std::int64_t b) {
  if (b > 0 ? a > Largest - b : a < Smallest - b) RaiseOverflow();
  return a + b;
}

}  // namespace

Currency Currency::FromInteger(std::int64_t number) {
  if (number > Largest / Scale || number < Smallest / Scale) RaiseOverflow();
  return FromRaw(number * Scale);
}

Currency Currency::FromDouble(double number) {
  // The product and its exact error together are the true value, so that a half is told from what
  // the multiplication has rounded to a half.
  const double product = number * static_cast<double>(Scale);
  const double floored = std::floor(product);
  if (!(floored >= -0x1p63 && floored < 0x1p63)) RaiseOverflow();  // also NaN
  const double error = std::fma(number, static_cast<double>(Scale), -product);
  const double fraction = product - floored;
  // A product that is not whole is below 2^53 and its error smaller than its distance to the next
  // whole number; a whole one may be large, and then its error is more than 1.
  const double wholeOfError = fraction == 0 ? std::floor(error) : 0;
  const double beyondHalf = fraction == 0 ? (error - wholeOfError) - 0.5 : (fraction - 0.5) + error;
  const std::int64_t lower =
      CheckedSum(static_cast<std::int64_t>(floored), static_cast<std::int64_t>(wholeOfError));
  const bool up = beyondHalf > 0 || (beyondHalf == 0 && lower % 2 != 0);
  return FromRaw(up ? CheckedSum(lower, 1) : lower);
}

double Currency::ToDouble() const {
  const std::int64_t whole = mRaw / Scale;  // below 2^50, so exact as a float
  return static_cast<double>(whole) +
         static_cast<double>(mRaw % Scale) / static_cast<double>(Scale);
}

std::int64_t Currency::ToInteger() const {
  const std::int64_t whole = mRaw / Scale;
  const std::int64_t rest = mRaw % Scale;
  const std::int64_t distance = rest < 0 ? -rest : rest;
  const bool away = distance > Scale / 2 || (distance == Scale / 2 && whole % 2 != 0);
  if (!away) return whole;
  return rest < 0 ? whole - 1 : whole + 1;
}

Text Currency::ToText() const {
  const std::int64_t rest = mRaw % Scale;
  Text text = DecimalText(mRaw / Scale);
  if (mRaw < 0 && mRaw > -Scale) text.insert(text.begin(), u'-');
  if (rest == 0) return text;
  // One digit in front keeps the zeros of the fraction.
  Text decimals = DecimalText(Scale + (rest < 0 ? -rest : rest));
  decimals.front() = u'.';
  while (decimals.back() == u'0') decimals.pop_back();
  return text + decimals;
}

Currency Currency::SaturatingSum(Currency a, Currency b) {
  std::int64_t raw = 0;
  if (AddOverflows(a.mRaw, b.mRaw, raw)) {
    raw = a.mRaw < 0 ? std::numeric_limits<std::int64_t>::min()
                     : std::numeric_limits<std::int64_t>::max();
  }
  return FromRaw(raw);
}

Currency Currency::Sum(Currency a, Currency b) {
  return FromRaw(CheckedSum(a.mRaw, b.mRaw));
}

Currency Currency::Difference(Currency a, Currency b) {
  if (b.mRaw < 0 ? a.mRaw > Largest + b.mRaw : a.mRaw < Smallest + b.mRaw) RaiseOverflow();
  return FromRaw(a.mRaw - b.mRaw);
}

Currency Currency::Product(Currency a, std::int64_t factor) {
  const std::int64_t raw = a.mRaw;
  if (raw == 0 || factor == 0) return Currency();
  if (factor == -1) return Difference(Currency(), a);
  // The limit on the side where the product lies, brought over to the side of `raw`.
  const std::int64_t most = ((raw > 0) == (factor > 0) ? Largest : Smallest) / factor;
  if (raw > 0 ? raw > most : raw < most) RaiseOverflow();
  return FromRaw(raw * factor);
}

}  // namespace quillmarsh
