// SPDX-License-Identifier: MIT
// Flags and numbers of the platform's interfaces under their own names, with their own
// values. Only those that the program uses. An implementation that includes the system's own
// headers includes this file first, since those headers define some of these names as macros.
#pragma once

#include <cstdint>

#include "platform/SystemErrors.h"

namespace quillmarsh {

// File attributes.
inline constexpr std::uint32_t INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr std::uint32_t FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr std::uint32_t FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr std::uint32_t FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr std::uint32_t FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr std::uint32_t FILE_ATTRIBUTE_SPARSE_FILE = 0x200;
inline constexpr std::uint32_t FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
inline constexpr std::uint32_t FILE_ATTRIBUTE_COMPRESSED = 0x800;
inline constexpr std::uint32_t FILE_ATTRIBUTE_OFFLINE = 0x1000;
inline constexpr std::uint32_t FILE_ATTRIBUTE_NOT_CONTENT_INDEXED = 0x2000;
inline constexpr std::uint32_t FILE_ATTRIBUTE_ENCRYPTED = 0x4000;

// Reparse tags, as a find record tells them in dwReserved0.
inline constexpr std::uint32_t IO_REPARSE_TAG_MOUNT_POINT =
    0xA0000003;  // mount points and junctions
inline constexpr std::uint32_t IO_REPARSE_TAG_SYMLINK = 0xA000000C;

// Opening files.
inline constexpr std::uint32_t GENERIC_READ = 0x80000000;
inline constexpr std::uint32_t GENERIC_WRITE = 0x40000000;
inline constexpr std::uint32_t FILE_APPEND_DATA = 0x4;
inline constexpr std::uint32_t FILE_SHARE_READ = 0x1;
inline constexpr std::uint32_t FILE_SHARE_WRITE = 0x2;
inline constexpr std::uint32_t FILE_SHARE_DELETE = 0x4;
inline constexpr std::uint32_t CREATE_NEW = 1;
inline constexpr std::uint32_t CREATE_ALWAYS = 2;
inline constexpr std::uint32_t OPEN_EXISTING = 3;
inline constexpr std::uint32_t OPEN_ALWAYS = 4;
inline constexpr std::uint32_t FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;
inline constexpr std::uint32_t FILE_FLAG_BACKUP_SEMANTICS = 0x02000000;
inline constexpr std::uint32_t FILE_BEGIN = 0;
inline constexpr std::uint32_t FILE_CURRENT = 1;
inline constexpr std::uint32_t FILE_END = 2;

// Drives and volumes.
inline constexpr std::uint32_t DRIVE_UNKNOWN = 0;
inline constexpr std::uint32_t DRIVE_NO_ROOT_DIR = 1;
inline constexpr std::uint32_t DRIVE_REMOVABLE = 2;
inline constexpr std::uint32_t DRIVE_FIXED = 3;
inline constexpr std::uint32_t DRIVE_REMOTE = 4;
inline constexpr std::uint32_t DRIVE_CDROM = 5;
inline constexpr std::uint32_t DRIVE_RAMDISK = 6;
inline constexpr std::uint32_t FS_CASE_SENSITIVE = 0x1;
inline constexpr std::uint32_t FS_CASE_IS_PRESERVED = 0x2;
inline constexpr std::uint32_t FS_UNICODE_STORED_ON_DISK = 0x4;
inline constexpr std::uint32_t FS_PERSISTENT_ACLS = 0x8;
inline constexpr std::uint32_t FS_READ_ONLY_VOLUME = 0x80000;

// Access checks.
inline constexpr std::uint32_t FILE_LIST_DIRECTORY = 0x1;
inline constexpr std::uint32_t FILE_GENERIC_READ = 0x120089;
inline constexpr std::uint32_t FILE_GENERIC_WRITE = 0x120116;
inline constexpr std::uint32_t FILE_GENERIC_EXECUTE = 0x1200A0;
inline constexpr std::uint32_t FILE_ALL_ACCESS = 0x1F01FF;
inline constexpr std::uint32_t OWNER_GROUP_DACL_SECURITY_INFORMATION = 7;
inline constexpr std::uint32_t SecurityDelegation = 3;
inline constexpr std::uint32_t TOKEN_QUERY = 0x8;
inline constexpr std::uint32_t FILE_IS_ENCRYPTED = 1;
inline constexpr std::uint32_t VER_PLATFORM_WIN32_NT = 2;

// Shell folders (CSIDL).
inline constexpr std::int32_t CSIDL_PERSONAL = 0x05;
inline constexpr std::int32_t CSIDL_BITBUCKET = 0x0A;
inline constexpr std::int32_t CSIDL_DESKTOPDIRECTORY = 0x10;
inline constexpr std::int32_t CSIDL_LOCAL_APPDATA = 0x1C;
inline constexpr std::int32_t CSIDL_WINDOWS = 0x24;
inline constexpr std::int32_t CSIDL_SYSTEM = 0x25;
inline constexpr std::int32_t CSIDL_PROFILE = 0x28;

// Locale.
inline constexpr std::uint32_t LOCALE_USER_DEFAULT = 0x400;
inline constexpr std::uint32_t LOCALE_SDECIMAL = 14;
inline constexpr std::uint32_t LOCALE_STHOUSAND = 15;
inline constexpr std::uint32_t LOCALE_SDATE = 29;
inline constexpr std::uint32_t LOCALE_STIME = 30;
inline constexpr std::uint32_t LOCALE_SSHORTDATE = 31;
inline constexpr std::uint32_t LOCALE_S1159 = 40;
inline constexpr std::uint32_t LOCALE_S2359 = 41;
inline constexpr std::uint32_t LOCALE_SDAYNAME1 = 42;          // to 48, Monday first
inline constexpr std::uint32_t LOCALE_SABBREVDAYNAME1 = 49;    // to 55, Monday first
inline constexpr std::uint32_t LOCALE_SMONTHNAME1 = 56;        // to 67
inline constexpr std::uint32_t LOCALE_SABBREVMONTHNAME1 = 68;  // to 79
inline constexpr std::uint32_t LOCALE_STIMEFORMAT = 4099;

// GetBinaryTypeW.
inline constexpr std::uint32_t SCS_32BIT_BINARY = 0;
inline constexpr std::uint32_t SCS_DOS_BINARY = 1;
inline constexpr std::uint32_t SCS_WOW_BINARY = 2;
inline constexpr std::uint32_t SCS_64BIT_BINARY = 6;

// GetQueueStatus: input, paint and hot key, which is all that a pump is worth.
inline constexpr std::uint32_t QS_KEY = 0x1;
inline constexpr std::uint32_t QS_MOUSEBUTTON = 0x4;
inline constexpr std::uint32_t QS_PAINT = 0x20;
inline constexpr std::uint32_t QS_HOTKEY = 0x80;

}  // namespace quillmarsh
