// SPDX-License-Identifier: MIT
// Calls on files and handles.
#include "platform/win32/Win32Files.h"

#include <algorithm>
#include <limits>

namespace quillmarsh {
namespace {

using win32::Forward;
using win32::ForwardPath;
using win32::ToSystem;

// What one call reads or writes at most; the rest of a larger buffer waits for the next call.
DWORD LengthOf(std::size_t bytes) {
  return static_cast<DWORD>(std::min<std::size_t>(bytes, std::numeric_limits<DWORD>::max()));
}

class SystemTime {
 public:
  explicit SystemTime(const FILETIME* time) : mIsGiven(time != nullptr) {
    if (mIsGiven) mTime = ToSystem(*time);
  }
  [[nodiscard]] const ::FILETIME* Get() const { return mIsGiven ? &mTime : nullptr; }

 private:
  bool mIsGiven;
  ::FILETIME mTime{};
};

}  // namespace

HANDLE Win32Files::DoCreateFile(TextView path, std::uint32_t access, std::uint32_t share,
                                std::uint32_t disposition, std::uint32_t flags) {
  return ForwardPath(mCalls, path, INVALID_HANDLE, [&](const wchar_t* name) {
    return win32::FromSystem(
        ::CreateFileW(name, access, share, nullptr, disposition, flags, nullptr));
  });
}

bool Win32Files::DoGetInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) {
  ::BY_HANDLE_FILE_INFORMATION told{};
  if (!Forward(mCalls,
               [&] { return ::GetFileInformationByHandle(ToSystem(file), &told) != FALSE; }))
    return false;
  information.dwFileAttributes = told.dwFileAttributes;
  information.ftCreationTime = win32::FromSystem(told.ftCreationTime);
  information.ftLastAccessTime = win32::FromSystem(told.ftLastAccessTime);
  information.ftLastWriteTime = win32::FromSystem(told.ftLastWriteTime);
  information.dwVolumeSerialNumber = told.dwVolumeSerialNumber;
  information.nFileSizeHigh = told.nFileSizeHigh;
  information.nFileSizeLow = told.nFileSizeLow;
  information.nNumberOfLinks = told.nNumberOfLinks;
  information.nFileIndexHigh = told.nFileIndexHigh;
  information.nFileIndexLow = told.nFileIndexLow;
  return true;
}

bool Win32Files::DoRead(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) {
  DWORD count = 0;
  const bool isRead = Forward(mCalls, [&] {
    return ::ReadFile(ToSystem(file), buffer.data(), LengthOf(buffer.size()), &count, nullptr) !=
           FALSE;
  });
  done = count;
  return isRead;
}

// The system moves the file's position along, so it is put back.
std::uint32_t Win32Files::DoReadAt(HANDLE file, std::int64_t position, std::span<std::byte> buffer,
                                   std::uint32_t& done) {
  done = 0;
  LARGE_INTEGER before{};
  if (::SetFilePointerEx(ToSystem(file), {}, &before, FILE_CURRENT) == FALSE)
    return ::GetLastError();
  OVERLAPPED place{};
  const auto bits = static_cast<std::uint64_t>(position);
  place.Offset = static_cast<DWORD>(bits);
  place.OffsetHigh = static_cast<DWORD>(bits >> 32U);
  DWORD count = 0;
  const bool isRead =
      ::ReadFile(ToSystem(file), buffer.data(), LengthOf(buffer.size()), &count, &place) != FALSE;
  const std::uint32_t code = isRead ? ERROR_SUCCESS : ::GetLastError();
  if (::SetFilePointerEx(ToSystem(file), before, nullptr, FILE_BEGIN) == FALSE)
    return ::GetLastError();
  if (code == ERROR_HANDLE_EOF) return ERROR_SUCCESS;
  done = count;
  return code;
}

bool Win32Files::DoWrite(HANDLE file, std::span<const std::byte> bytes, std::uint32_t& done) {
  DWORD count = 0;
  const bool isWritten = Forward(mCalls, [&] {
    return ::WriteFile(ToSystem(file), bytes.data(), LengthOf(bytes.size()), &count, nullptr) !=
           FALSE;
  });
  done = count;
  return isWritten;
}

bool Win32Files::DoSetPointer(HANDLE file, std::int64_t distance, std::int64_t& newPosition,
                              std::uint32_t method) {
  LARGE_INTEGER wanted{};
  wanted.QuadPart = distance;
  LARGE_INTEGER reached{};
  const bool isMoved = Forward(mCalls, [&] {
    return ::SetFilePointerEx(ToSystem(file), wanted, &reached, method) != FALSE;
  });
  if (isMoved) newPosition = reached.QuadPart;
  return isMoved;
}

bool Win32Files::DoSetEnd(HANDLE file) {
  return Forward(mCalls, [&] { return ::SetEndOfFile(ToSystem(file)) != FALSE; });
}

bool Win32Files::DoSetTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                            const FILETIME* written) {
  return Forward(mCalls, [&] {
    return ::SetFileTime(ToSystem(file), SystemTime(created).Get(), SystemTime(accessed).Get(),
                         SystemTime(written).Get()) != FALSE;
  });
}

bool Win32Files::DoFlush(HANDLE file) {
  return Forward(mCalls, [&] { return ::FlushFileBuffers(ToSystem(file)) != FALSE; });
}

bool Win32Files::DoLock(HANDLE file) {
  OVERLAPPED fromTheStart{};
  return Forward(mCalls, [&] {
    return ::LockFileEx(ToSystem(file), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0,
                        std::numeric_limits<DWORD>::max(), std::numeric_limits<DWORD>::max(),
                        &fromTheStart) != FALSE;
  });
}

bool Win32Files::DoClose(HANDLE file) {
  return Forward(mCalls, [&] { return ::CloseHandle(ToSystem(file)) != FALSE; });
}

std::uint32_t Win32Files::DoGetAttributes(TextView path) {
  return ForwardPath(mCalls, path, std::uint32_t{INVALID_FILE_ATTRIBUTES},
                     [](const wchar_t* name) { return ::GetFileAttributesW(name); });
}

std::uint32_t Win32Files::DoGetCompressedSize(TextView path, std::uint32_t& high) {
  SetLastError(ERROR_SUCCESS);
  DWORD highHalf = 0;
  const std::uint32_t low =
      ForwardPath(mCalls, path, std::uint32_t{INVALID_FILE_SIZE},
                  [&](const wchar_t* name) { return ::GetCompressedFileSizeW(name, &highHalf); });
  high = highHalf;
  return low;
}

Text Win32Files::DoGetShortPath(TextView path) {
  return ForwardPath(mCalls, path, Text(), [&](const wchar_t* name) {
    std::wstring shortened(::GetShortPathNameW(name, nullptr, 0), L'\0');
    const DWORD length =
        ::GetShortPathNameW(name, shortened.data(), static_cast<DWORD>(shortened.size()));
    shortened.resize(length < shortened.size() ? length : 0);
    return path.starts_with(u"\\\\?\\") ? win32::Narrow(shortened) : win32::PlainPath(shortened);
  });
}

std::optional<std::uint32_t> Win32Files::DoGetBinaryType(TextView path) {
  return ForwardPath(mCalls, path, std::optional<std::uint32_t>(),
                     [](const wchar_t* name) -> std::optional<std::uint32_t> {
                       DWORD kind = 0;
                       if (::GetBinaryTypeW(name, &kind) == FALSE) return {};
                       return kind;
                     });
}

}  // namespace quillmarsh
