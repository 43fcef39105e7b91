// SPDX-License-Identifier: MIT
// The one exception of the program: an unexpected failure with a number, the raiser's source text
// and a description. Expected failures are return values with a code and never come this way.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "base/Text.h"

namespace quillmarsh {

// The classic numbers of run-time errors that the program raises or tells apart.
namespace runtime_error {
inline constexpr std::int32_t InvalidProcedureCall = 5;
inline constexpr std::int32_t Overflow = 6;
inline constexpr std::int32_t OutOfMemory = 7;
inline constexpr std::int32_t SubscriptOutOfRange = 9;
inline constexpr std::int32_t TypeMismatch = 13;
inline constexpr std::int32_t BadFileName = 52;
inline constexpr std::int32_t FileNotFound = 53;
inline constexpr std::int32_t DeviceError = 57;
inline constexpr std::int32_t PermissionDenied = 70;
inline constexpr std::int32_t KeyAlreadyExists = 457;
// The program's own conditions are numbered from here upward (0x80040000 read as signed).
inline constexpr std::int32_t OwnConditions = static_cast<std::int32_t>(0x80040000U);
}  // namespace runtime_error

class RuntimeError : public std::exception {
 public:
  // A classic error with its usual English description.
  explicit RuntimeError(std::int32_t number);
  RuntimeError(std::int32_t number, TextView source, TextView description);

  [[nodiscard]] std::int32_t Number() const { return mNumber; }
  [[nodiscard]] const Text& Source() const { return mSource; }
  [[nodiscard]] const Text& Description() const { return mDescription; }
  [[nodiscard]] const char* what() const noexcept override { return mWhat.c_str(); }

 private:
  std::int32_t mNumber;
  Text mSource;
  Text mDescription;
  std::string mWhat;
};

// The usual English description of a classic number; "Application-defined or object-defined error"
// for any other.
[[nodiscard]] TextView DescriptionOfRuntimeError(std::int32_t number);

}  // namespace quillmarsh
