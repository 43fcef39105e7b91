// SPDX-License-Identifier: MIT
// The CRC-32 of bytes behind those that gave `crc` (0 at the beginning), by the fastest library
// that the build has.
#pragma once

#ifdef QUILLMARSH_WITH_LIBDEFLATE
#include <libdeflate.h>
#else
#include <zlib.h>
#endif

#include <cstddef>
#include <cstdint>

inline std::uint32_t Crc32(std::uint32_t crc, const std::byte* bytes, std::size_t count) {
#ifdef QUILLMARSH_WITH_LIBDEFLATE
  return libdeflate_crc32(crc, bytes, count);
#else
  return static_cast<std::uint32_t>(crc32_z(crc, reinterpret_cast<const Bytef*>(bytes), count));
#endif
}
