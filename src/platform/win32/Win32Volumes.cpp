// SPDX-License-Identifier: MIT
// Questions about drives, and locations.
#include "platform/win32/Win32Volumes.h"

#include <array>

namespace quillmarsh {
namespace {

using win32::Forward;
using win32::Wide;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kVolumeNameRoom = MAX_PATH + 1;

// The absolute path of what was typed, with its "." and ".." gone; empty on failure.
std::wstring AbsolutePath(const std::wstring& typed) {
  std::wstring path(::GetFullPathNameW(typed.c_str(), 0, nullptr, nullptr), L'\0');
  const DWORD length =
      ::GetFullPathNameW(typed.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
  path.resize(length < path.size() ? length : 0);
  return path;
}

// Where an existing path leads, links resolved and in the case in which its names are stored.
// Empty, with the thread's last error, on failure. Of a volume that has no drive letter, the path
// through its mount point as it stands.
std::wstring FinalPath(const std::wstring& path) {
  const win32::OwnedHandle entry(::CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                               FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!entry.IsValid()) return {};
  constexpr DWORD form = FILE_NAME_NORMALIZED | VOLUME_NAME_DOS;
  std::wstring found(::GetFinalPathNameByHandleW(entry.Get(), nullptr, 0, form), L'\0');
  const DWORD length = ::GetFinalPathNameByHandleW(entry.Get(), found.data(),
                                                   static_cast<DWORD>(found.size()), form);
  if (found.empty() || length >= found.size()) return path;
  found.resize(length);
  return found;
}

// Roots keep their final backslash.
Text WithoutFinalBackslash(Text path) {
  if (path.ends_with(u'\\') && path.size() > 3) path.pop_back();
  return path;
}

CanonicalLocation Failed(CallState& calls, std::uint32_t code) {
  calls.lastError = code;
  return {{}, code};
}

}  // namespace

Text Win32Volumes::DoGetDriveStrings() {
  return Forward(mCalls, [] {
    std::wstring strings(::GetLogicalDriveStringsW(0, nullptr), L'\0');
    const DWORD length =
        ::GetLogicalDriveStringsW(static_cast<DWORD>(strings.size()), strings.data());
    strings.resize(length < strings.size() ? length : 0);
    return win32::Narrow(strings);
  });
}

std::uint32_t Win32Volumes::DoGetDriveType(TextView root) {
  return Forward(mCalls, [&] { return ::GetDriveTypeW(Wide(root).c_str()); });
}

bool Win32Volumes::DoGetVolumeInformation(TextView root, VolumeInformation& information) {
  std::array<wchar_t, kVolumeNameRoom> label{};
  std::array<wchar_t, kVolumeNameRoom> fileSystem{};
  DWORD serial = 0;
  DWORD longest = 0;
  DWORD flags = 0;
  const bool isTold = Forward(mCalls, [&] {
    return ::GetVolumeInformationW(Wide(root).c_str(), label.data(), kVolumeNameRoom, &serial,
                                   &longest, &flags, fileSystem.data(), kVolumeNameRoom) != FALSE;
  });
  if (!isTold) return false;
  information = {Text(win32::View(label.data())), serial, longest, flags,
                 Text(win32::View(fileSystem.data()))};
  return true;
}

bool Win32Volumes::DoGetFreeSpace(TextView root, DiskSpace& space) {
  ULARGE_INTEGER available{};
  ULARGE_INTEGER total{};
  ULARGE_INTEGER free{};
  const bool isTold = Forward(mCalls, [&] {
    return ::GetDiskFreeSpaceExW(Wide(root).c_str(), &available, &total, &free) != FALSE;
  });
  if (isTold) space = {available.QuadPart, total.QuadPart, free.QuadPart};
  return isTold;
}

Text Win32Volumes::DoGetMountVolume(TextView path) {
  return Forward(mCalls, [&] {
    std::array<wchar_t, 50> name{};  // the call's own "reasonable size" for "\\?\Volume{GUID}\"
    const bool isTold =
        ::GetVolumeNameForVolumeMountPointW(Wide(path).c_str(), name.data(),
                                            static_cast<DWORD>(name.size())) != FALSE;
    return isTold ? Text(win32::View(name.data())) : Text();
  });
}

bool Win32Volumes::DoSetLabel(TextView root, TextView label) {
  return Forward(mCalls, [&] {
    return ::SetVolumeLabelW(Wide(root).c_str(), label.empty() ? nullptr : Wide(label).c_str()) !=
           FALSE;
  });
}

CanonicalLocation Win32Volumes::DoLocationFromNative(std::string_view native) {
  const Text typed = FromWtf8(native);
  if (typed.empty()) return Failed(mCalls, ERROR_PATH_NOT_FOUND);
  if (typed.find(u'\0') != Text::npos) return Failed(mCalls, ERROR_INVALID_NAME);
  // What was told as a path leads back to it; what nothing is called by is read as the system does.
  const std::wstring exact = win32::ExactPath(typed);
  std::wstring found = exact.starts_with(L"\\\\?\\") ? FinalPath(exact) : L"";
  if (found.empty()) {
    const std::wstring path = AbsolutePath(Wide(typed));
    if (path.empty()) return Failed(mCalls, ::GetLastError());
    found = FinalPath(win32::ExactPath(win32::Narrow(path)));
  }
  if (found.empty()) return Failed(mCalls, ::GetLastError());
  return {WithoutFinalBackslash(win32::PlainPath(found)), ERROR_SUCCESS};
}

// What exists is brought to its one form, and the missing parts follow as they stand.
CanonicalLocation Win32Volumes::DoNewLocationFromNative(std::string_view native) {
  CanonicalLocation whole = DoLocationFromNative(native);
  const bool isMissing = whole.error == ERROR_FILE_NOT_FOUND || whole.error == ERROR_PATH_NOT_FOUND;
  if (!isMissing || native.empty()) return whole;
  const Text path = WithoutFinalBackslash(win32::Narrow(AbsolutePath(Wide(FromWtf8(native)))));
  const std::size_t end = path.rfind(u'\\');
  if (end == Text::npos || end + 1 == path.size()) return whole;
  CanonicalLocation parent = DoNewLocationFromNative(ToWtf8(TextView(path).substr(0, end + 1)));
  if (parent.error != 0) return parent;
  if (!parent.path.ends_with(u'\\')) parent.path += u'\\';
  parent.path += TextView(path).substr(end + 1);
  return parent;
}

Text Win32Volumes::DoTextFromNative(std::string_view native, NativeTextKind /*kind*/) const {
  return FromWtf8(native);
}

// Names here hold no control characters, but a path from elsewhere may.
Text Win32Volumes::DoShownPath(TextView path) const {
  constexpr char16_t kControlPictures = 0x2400;
  Text shown(path);
  for (char16_t& unit : shown)
    if (unit < u' ') unit = static_cast<char16_t>(kControlPictures + unit);
  return shown;
}

std::string Win32Volumes::DoNativePath(TextView path) const {
  return ToWtf8(path);
}

}  // namespace quillmarsh
