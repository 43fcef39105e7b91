// SPDX-License-Identifier: MIT
// The names of the operations, in the order of their enumeration.
#include "platform/CallHook.h"

#include <array>

namespace quillmarsh {
namespace {

constexpr std::array Names = {
    "FindFirstFileW",
    "FindNextFileW",
    "FindClose",
    "CreateFileW",
    "GetFileInformationByHandle",
    "ReadFile",
    "WriteFile",
    "SetFilePointerEx",
    "SetEndOfFile",
    "FlushFileBuffers",
    "LockFileEx",
    "CloseHandle",
    "GetFileAttributesW",
    "GetCompressedFileSizeW",
    "GetShortPathNameW",
    "GetBinaryTypeW",
    "CreateDirectoryW",
    "RemoveDirectoryW",
    "SetFileAttributesW",
    "SetFileTime",
    "DeleteFileW",
    "MoveFileExW",
    "MoveFileW",
    "CopyFileW",
    "GetLogicalDriveStringsW",
    "GetDriveTypeW",
    "GetVolumeInformationW",
    "GetDiskFreeSpaceExW",
    "GetVolumeNameForVolumeMountPointW",
    "SetVolumeLabelW",
    "GetFileSecurityW",
    "ImpersonateSelf",
    "OpenThreadToken",
    "RevertToSelf",
    "AccessCheck",
    "FileEncryptionStatusW",
    "SHGetFolderPathW",
    "SHGetSpecialFolderPath",
    "GetTempPathW",
    "SHGetFileInfoW",
    "ShellExecuteW",
    "ShellExecuteExW",
    "SHFileOperationW",
    "GetFileVersionInfoSizeW",
    "GetFileVersionInfoW",
    "GetModuleFileNameW",
    "LoadLibraryW",
    "LoadLibraryExW",
    "GetModuleHandleW",
    "GetProcAddress",
    "FreeLibrary",
    "GetCurrentDirectoryW",
    "IsWow64Process",
    "Wow64DisableWow64FsRedirection",
    "Wow64RevertWow64FsRedirection",
    "GetVersionExW",
    "GetLocaleInfoW",
    "GetLocalTime",
    "FileTimeToLocalFileTime",
    "LocalFileTimeToFileTime",
    "FormatMessageW",
    "GetQueueStatus",
    "RegisterClipboardFormatA",
    "OpenClipboard",
    "IsClipboardFormatAvailable",
    "GetClipboardData",
    "SetClipboardData",
    "CloseClipboard",
    "GetFileInformationByName",
    "GetFileInformationByHandleEx",
    "SetFileInformationByHandle",
    "SHQueryRecycleBinW",
};
static_assert(Names.size() == static_cast<std::size_t>(Operation::SHQueryRecycleBinW) + 1);

}  // namespace

const char* NameOf(Operation operation) {
  return Names.at(static_cast<std::size_t>(operation));
}

}  // namespace quillmarsh
