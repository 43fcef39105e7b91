// SPDX-License-Identifier: MIT
// Calls that change folders and entries.
#include "platform/win32/Win32Disk.h"

#include "platform/win32/WholeCopies.h"

namespace quillmarsh {

namespace {

// A move that waits for the next start of the system is none of ours.
constexpr std::uint32_t kKnownMoveFlags =
    MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;

}  // namespace

using win32::ForwardPath;

bool Win32Disk::DoDeleteFile(TextView path) {
  return ForwardPath(mCalls, path, false,
                     [](const wchar_t* name) { return ::DeleteFileW(name) != FALSE; });
}

bool Win32Disk::DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) {
  if ((flags & ~kKnownMoveFlags) != 0) return Fail(ERROR_INVALID_PARAMETER, false);
  const win32::PathArgument target(newPath);
  if (const std::uint32_t code = target.Refusal()) return Fail(code, false);
  const bool isMoved = ForwardPath(mCalls, existing, false, [&](const wchar_t* source) {
    return ::MoveFileExW(source, target.Get(), flags & ~DWORD{MOVEFILE_COPY_ALLOWED}) != FALSE;
  });
  const bool mayCopy = (flags & MOVEFILE_COPY_ALLOWED) != 0;
  if (isMoved || !mayCopy || ::GetLastError() != ERROR_NOT_SAME_DEVICE) return isMoved;
  const win32::PathArgument source(existing);
  const DWORD attributes = ::GetFileAttributesW(source.Get());
  // Neither folders nor links are copied.
  constexpr DWORD uncopied = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & uncopied) != 0)
    return Fail(ERROR_NOT_SAME_DEVICE, false);
  const bool replaces = (flags & MOVEFILE_REPLACE_EXISTING) != 0;
  const std::uint32_t code = win32::MoveByCopy(
      source.Get(), target.Get(), replaces ? win32::WhenTaken::Replace : win32::WhenTaken::Fail);
  return code == 0 || Fail(code, false);
}

bool Win32Disk::DoCopyFile(TextView existing, TextView newPath, bool failIfExists) {
  const win32::PathArgument source(existing);
  const win32::PathArgument target(newPath);
  for (const auto* path : {&source, &target})
    if (const std::uint32_t code = path->Refusal()) return Fail(code, false);
  const std::uint32_t code =
      win32::CopyWhole(source.Get(), target.Get(),
                       failIfExists ? win32::WhenTaken::Fail : win32::WhenTaken::Replace);
  return code == 0 || Fail(code, false);
}

bool Win32Disk::DoCreateDirectory(TextView path) {
  return ForwardPath(mCalls, path, false, [](const wchar_t* name) {
    return ::CreateDirectoryW(name, nullptr) != FALSE;
  });
}

bool Win32Disk::DoRemoveDirectory(TextView path) {
  return ForwardPath(mCalls, path, false,
                     [](const wchar_t* name) { return ::RemoveDirectoryW(name) != FALSE; });
}

bool Win32Disk::DoSetAttributes(TextView path, std::uint32_t attributes) {
  return ForwardPath(mCalls, path, false, [&](const wchar_t* name) {
    return ::SetFileAttributesW(name, attributes) != FALSE;
  });
}

}  // namespace quillmarsh
