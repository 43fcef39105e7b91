// SPDX-License-Identifier: MIT
// Error codes as GetLastError gives them, under their own names, with their own values. Only those
// that the program uses. An implementation that includes the system's own headers includes this
// file first, since those headers define the names as macros.
#pragma once

#include <cstdint>

namespace quillmarsh {

inline constexpr std::uint32_t ERROR_SUCCESS = 0;
inline constexpr std::uint32_t ERROR_INVALID_FUNCTION = 1;
inline constexpr std::uint32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::uint32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr std::uint32_t ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr std::uint32_t ERROR_ACCESS_DENIED = 5;
inline constexpr std::uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::uint32_t ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr std::uint32_t ERROR_INVALID_DATA = 13;
inline constexpr std::uint32_t ERROR_INVALID_DRIVE = 15;
inline constexpr std::uint32_t ERROR_NOT_SAME_DEVICE = 17;
inline constexpr std::uint32_t ERROR_NO_MORE_FILES = 18;
inline constexpr std::uint32_t ERROR_WRITE_PROTECT = 19;
inline constexpr std::uint32_t ERROR_NOT_READY = 21;
inline constexpr std::uint32_t ERROR_SEEK = 25;
inline constexpr std::uint32_t ERROR_SHARING_VIOLATION = 32;
inline constexpr std::uint32_t ERROR_LOCK_VIOLATION = 33;
inline constexpr std::uint32_t ERROR_HANDLE_EOF = 38;
inline constexpr std::uint32_t ERROR_NOT_SUPPORTED = 50;
inline constexpr std::uint32_t ERROR_BAD_NETPATH = 53;
inline constexpr std::uint32_t ERROR_FILE_EXISTS = 80;
inline constexpr std::uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr std::uint32_t ERROR_DISK_FULL = 112;
inline constexpr std::uint32_t ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr std::uint32_t ERROR_INVALID_NAME = 123;
inline constexpr std::uint32_t ERROR_MOD_NOT_FOUND = 126;
inline constexpr std::uint32_t ERROR_PROC_NOT_FOUND = 127;
inline constexpr std::uint32_t ERROR_NEGATIVE_SEEK = 131;
inline constexpr std::uint32_t ERROR_DIR_NOT_EMPTY = 145;
inline constexpr std::uint32_t ERROR_BAD_PATHNAME = 161;
inline constexpr std::uint32_t ERROR_ALREADY_EXISTS = 183;
inline constexpr std::uint32_t ERROR_BAD_EXE_FORMAT = 193;
inline constexpr std::uint32_t ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr std::uint32_t ERROR_FILE_TOO_LARGE = 223;
inline constexpr std::uint32_t ERROR_DIRECTORY = 267;
inline constexpr std::uint32_t ERROR_ARITHMETIC_OVERFLOW = 534;
inline constexpr std::uint32_t ERROR_OPERATION_ABORTED = 995;
inline constexpr std::uint32_t ERROR_FILE_INVALID = 1006;
inline constexpr std::uint32_t ERROR_IO_DEVICE = 1117;
inline constexpr std::uint32_t ERROR_NO_ASSOCIATION = 1155;
inline constexpr std::uint32_t ERROR_CLIPBOARD_NOT_OPEN = 1418;
inline constexpr std::uint32_t ERROR_RESOURCE_DATA_NOT_FOUND = 1812;
inline constexpr std::uint32_t ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
inline constexpr std::uint32_t ERROR_NOT_A_REPARSE_POINT = 4390;

}  // namespace quillmarsh
