// SPDX-License-Identifier: MIT
// The operations of the seam as values: what a hook and its journal call them.
#pragma once

#include <cstdint>

namespace quillmarsh {

// Every operation of the seam, under its own name.
enum class Operation : std::uint16_t {
  FindFirstFileW,
  FindNextFileW,
  FindClose,
  CreateFileW,
  GetFileInformationByHandle,
  ReadFile,
  WriteFile,
  SetFilePointerEx,
  SetEndOfFile,
  FlushFileBuffers,
  CloseHandle,
  GetFileAttributesW,
  GetCompressedFileSizeW,
  GetShortPathNameW,
  GetBinaryTypeW,
  CreateDirectoryW,
  RemoveDirectoryW,
  SetFileAttributesW,
  SetFileTime,
  DeleteFileW,
  MoveFileExW,
  CopyFileW,
  GetLogicalDriveStringsW,
  GetDriveTypeW,
  GetVolumeInformationW,
  GetDiskFreeSpaceExW,
  GetVolumeNameForVolumeMountPointW,
  SetVolumeLabelW,
  GetFileSecurityW,
  ImpersonateSelf,
  OpenThreadToken,
  RevertToSelf,
  AccessCheck,
  FileEncryptionStatusW,
  SHGetFolderPathW,
  SHGetSpecialFolderPath,
  GetTempPathW,
  SHGetFileInfoW,
  ShellExecuteW,
  GetFileVersionInfoSizeW,
  GetFileVersionInfoW,
  GetModuleFileNameW,
  LoadLibraryW,
  GetModuleHandleW,
  GetProcAddress,
  FreeLibrary,
  GetCurrentDirectoryW,
  IsWow64Process,
  Wow64DisableWow64FsRedirection,
  Wow64RevertWow64FsRedirection,
  GetVersionExW,
  GetLocaleInfoW,
  GetLocalTime,
  FileTimeToLocalFileTime,
  LocalFileTimeToFileTime,
  FormatMessageW,
  GetQueueStatus,
  RegisterClipboardFormatA,
  OpenClipboard,
  IsClipboardFormatAvailable,
  GetClipboardData,
  SetClipboardData,
  CloseClipboard,
};

[[nodiscard]] const char* NameOf(Operation operation);

}  // namespace quillmarsh
