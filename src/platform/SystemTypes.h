// SPDX-License-Identifier: MIT
// Structures of the platform's interfaces under their own names and field names. Plain values.
#pragma once

#include <cstdint>

#include "base/Text.h"

namespace quillmarsh {

// A handle of the platform. It is released by the operation that belongs to what it stands for.
enum class HANDLE : std::intptr_t {};
inline constexpr HANDLE NULL_HANDLE{0};
// The name of the system's own constant is a macro, so this one bears another.
inline constexpr HANDLE INVALID_HANDLE{-1};

// 100-nanosecond ticks since 1601-01-01, in two halves.
struct FILETIME {
  std::uint32_t dwLowDateTime = 0;
  std::uint32_t dwHighDateTime = 0;

  [[nodiscard]] static constexpr FILETIME FromTicks(std::int64_t ticks) {
    const auto bits = static_cast<std::uint64_t>(ticks);
    return {static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bits >> 32U)};
  }
  [[nodiscard]] constexpr std::int64_t Ticks() const {
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(dwHighDateTime) << 32U) |
                                     dwLowDateTime);
  }
  friend constexpr bool operator==(const FILETIME&, const FILETIME&) = default;
};

struct SYSTEMTIME {
  std::uint16_t wYear = 0;
  std::uint16_t wMonth = 0;
  std::uint16_t wDayOfWeek = 0;
  std::uint16_t wDay = 0;
  std::uint16_t wHour = 0;
  std::uint16_t wMinute = 0;
  std::uint16_t wSecond = 0;
  std::uint16_t wMilliseconds = 0;
};

// One entry of a listing. The name is a view that lives until the next call on the same handle.
struct WIN32_FIND_DATAW {
  std::uint32_t dwFileAttributes = 0;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  std::uint32_t nFileSizeHigh = 0;
  std::uint32_t nFileSizeLow = 0;
  std::uint32_t dwReserved0 = 0;  // the reparse tag, valid only with the reparse attribute
  TextView cFileName;
};

struct BY_HANDLE_FILE_INFORMATION {
  std::uint32_t dwFileAttributes = 0;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  std::uint32_t dwVolumeSerialNumber = 0;
  std::uint32_t nFileSizeHigh = 0;
  std::uint32_t nFileSizeLow = 0;
  std::uint32_t nNumberOfLinks = 0;
  std::uint32_t nFileIndexHigh = 0;
  std::uint32_t nFileIndexLow = 0;
};

// The answer of GetVolumeInformationW.
struct VolumeInformation {
  Text label;
  std::uint32_t serialNumber = 0;
  std::uint32_t maximumComponentLength = 0;
  std::uint32_t fileSystemFlags = 0;
  Text fileSystemName;
};

// The answer of GetDiskFreeSpaceExW, in bytes.
struct DiskSpace {
  std::uint64_t freeBytesAvailableToCaller = 0;
  std::uint64_t totalNumberOfBytes = 0;
  std::uint64_t totalNumberOfFreeBytes = 0;
};

struct GENERIC_MAPPING {
  std::uint32_t GenericRead = 0;
  std::uint32_t GenericWrite = 0;
  std::uint32_t GenericExecute = 0;
  std::uint32_t GenericAll = 0;
};

// The root block of a version resource.
struct VS_FIXEDFILEINFO {
  std::uint32_t dwSignature = 0;
  std::uint32_t dwStrucVersion = 0;
  std::uint32_t dwFileVersionMS = 0;
  std::uint32_t dwFileVersionLS = 0;
  std::uint32_t dwProductVersionMS = 0;
  std::uint32_t dwProductVersionLS = 0;
  std::uint32_t dwFileFlagsMask = 0;
  std::uint32_t dwFileFlags = 0;
};

inline constexpr std::uint32_t VS_FF_PATCHED = 4;

}  // namespace quillmarsh
