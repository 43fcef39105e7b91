// SPDX-License-Identifier: MIT
// The calls of the smaller roles.
#include "platform/win32/Win32Roles.h"

#include <array>
#include <atomic>
#include <cstring>

namespace quillmarsh {

using win32::Forward;
using win32::ForwardPath;
using win32::ToSystem;
using win32::Wide;

bool Win32Access::DoGetSecurity(TextView path, std::uint32_t information,
                                std::vector<std::byte>& descriptor, std::uint32_t& lengthNeeded) {
  DWORD needed = 0;
  const bool isTold = ForwardPath(mCalls, path, false, [&](const wchar_t* name) {
    return ::GetFileSecurityW(name, information, descriptor.empty() ? nullptr : descriptor.data(),
                              static_cast<DWORD>(descriptor.size()), &needed) != FALSE;
  });
  lengthNeeded = needed;
  return isTold;
}

bool Win32Access::DoImpersonate(std::uint32_t level) {
  return Forward(mCalls, [&] {
    return ::ImpersonateSelf(static_cast<SECURITY_IMPERSONATION_LEVEL>(level)) != FALSE;
  });
}

HANDLE Win32Access::DoOpenToken(std::uint32_t access, bool openAsSelf) {
  return Forward(mCalls, [&] {
    ::HANDLE token = nullptr;
    return ::OpenThreadToken(::GetCurrentThread(), access, openAsSelf ? TRUE : FALSE, &token) !=
                   FALSE
               ? win32::FromSystem(token)
               : NULL_HANDLE;
  });
}

bool Win32Access::DoRevert() {
  return Forward(mCalls, [] { return ::RevertToSelf() != FALSE; });
}

bool Win32Access::DoAccessCheck(const std::vector<std::byte>& descriptor, HANDLE token,
                                std::uint32_t desired, const GENERIC_MAPPING& mapping,
                                AccessCheckAnswer& answer) {
  ::GENERIC_MAPPING map = {mapping.GenericRead, mapping.GenericWrite, mapping.GenericExecute,
                           mapping.GenericAll};
  std::array<std::byte, 256> privileges{};
  auto length = static_cast<DWORD>(privileges.size());
  DWORD granted = 0;
  BOOL status = FALSE;
  std::vector<std::byte> own = descriptor;  // the call wants one that may be written to
  const bool isChecked = Forward(mCalls, [&] {
    return ::AccessCheck(own.data(), ToSystem(token), desired, &map,
                         reinterpret_cast<PRIVILEGE_SET*>(privileges.data()), &length, &granted,
                         &status) != FALSE;
  });
  if (isChecked) answer = {granted, status != FALSE};
  return isChecked;
}

std::optional<std::uint32_t> Win32Access::DoEncryptionStatus(TextView path) {
  return ForwardPath(mCalls, path, std::optional<std::uint32_t>(),
                     [](const wchar_t* name) -> std::optional<std::uint32_t> {
                       DWORD status = 0;
                       if (::FileEncryptionStatusW(name, &status) == FALSE) return {};
                       return status;
                     });
}

std::uint32_t Win32Versions::DoGetSize(TextView path) {
  return ForwardPath(mCalls, path, std::uint32_t{0}, [](const wchar_t* name) {
    DWORD ignored = 0;
    return ::GetFileVersionInfoSizeW(name, &ignored);
  });
}

bool Win32Versions::DoGetBlock(TextView path, std::vector<std::byte>& block) {
  return ForwardPath(mCalls, path, false, [&](const wchar_t* name) {
    return ::GetFileVersionInfoW(name, 0, static_cast<DWORD>(block.size()), block.data()) != FALSE;
  });
}

std::optional<VS_FIXEDFILEINFO> Win32Versions::DoQueryRoot(const std::vector<std::byte>& block) {
  void* found = nullptr;
  UINT length = 0;
  if (block.empty() || ::VerQueryValueW(block.data(), L"\\", &found, &length) == FALSE ||
      length < sizeof(VS_FIXEDFILEINFO))
    return {};
  VS_FIXEDFILEINFO info;  // the first fields of the system's own
  std::memcpy(&info, found, sizeof(info));
  return info;
}

Text Win32Modules::DoGetProgram() {
  return Forward(mCalls, [] {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
      const DWORD length =
          ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
      if (length < path.size()) {
        path.resize(length);
        return win32::PlainPath(path);
      }
      path.resize(path.size() * 2);
    }
  });
}

HANDLE Win32Modules::DoLoadLibrary(TextView path) {
  const bool isPath = path.find(u'\\') != TextView::npos;
  const DWORD where =
      isPath ? LOAD_WITH_ALTERED_SEARCH_PATH : DWORD{LOAD_LIBRARY_SEARCH_APPLICATION_DIR};
  return Forward(mCalls, [&] {
    return win32::FromSystem(::LoadLibraryExW(Wide(path).c_str(), nullptr, where));
  });
}

HANDLE Win32Modules::DoLoadLibraryOfSystem(TextView fileName) {
  return Forward(mCalls, [&] {
    return win32::FromSystem(
        ::LoadLibraryExW(Wide(fileName).c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS));
  });
}

HANDLE Win32Modules::DoGetModuleHandle(TextView name) {
  return Forward(mCalls, [&] { return win32::FromSystem(::GetModuleHandleW(Wide(name).c_str())); });
}

void* Win32Modules::DoGetProcAddress(HANDLE module, const char* name) {
  return Forward(mCalls, [&] {
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(ToSystem(module)), name));
  });
}

bool Win32Modules::DoFreeLibrary(HANDLE module) {
  return Forward(mCalls,
                 [&] { return ::FreeLibrary(static_cast<HMODULE>(ToSystem(module))) != FALSE; });
}

Text Win32Modules::DoGetCurrentFolder() {
  return Forward(mCalls, [] {
    std::wstring path(::GetCurrentDirectoryW(0, nullptr), L'\0');
    const DWORD length = ::GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data());
    path.resize(length < path.size() ? length : 0);
    return win32::PlainPath(path);
  });
}

// The manifest of the program names the systems that it knows, without which this call would tell
// of an older one.
SystemVersion Win32Modules::DoGetVersion() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
#ifdef _MSC_VER
#pragma warning(suppress : 4996)
#endif
  const bool isTold = Forward(mCalls, [&] { return ::GetVersionExW(&version) != FALSE; });
  return isTold ? SystemVersion{version.dwMajorVersion, version.dwPlatformId} : SystemVersion{};
}

bool Win32Modules::DoIsConsole(StandardStream stream) {
  static constexpr DWORD streams[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(streams[static_cast<int>(stream)]), &mode) != FALSE;
}

bool Win32Modules::DoSetConsoleCtrlHandler(void (*handler)()) {
  static std::atomic<void (*)()> current = nullptr;
  static constexpr PHANDLER_ROUTINE routine = [](DWORD event) -> BOOL {
    void (*const wanted)() = current.load();
    if (wanted == nullptr) return FALSE;
    wanted();
    // The program ends when a handler for these returns. The system waits some seconds for it,
    // which the work under way may use to come to an end.
    const bool endsTheProgram = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
    if (endsTheProgram) ::Sleep(INFINITE);
    return TRUE;
  };
  current = handler;
  ::SetConsoleCtrlHandler(routine, FALSE);
  return handler == nullptr || ::SetConsoleCtrlHandler(routine, TRUE) != FALSE;
}

bool Win32Modules::DoIsWow64() {
  return Forward(mCalls, [] {
    BOOL isWow64 = FALSE;
    return ::IsWow64Process(::GetCurrentProcess(), &isWow64) != FALSE && isWow64 != FALSE;
  });
}

bool Win32Modules::DoDisableRedirection() {
  if (mDisabled++ > 0) return true;
  return Forward(mCalls, [&] { return ::Wow64DisableWow64FsRedirection(&mRedirection) != FALSE; });
}

bool Win32Modules::DoRevertRedirection() {
  if (mDisabled == 0 || --mDisabled > 0) return true;
  return Forward(mCalls, [&] { return ::Wow64RevertWow64FsRedirection(mRedirection) != FALSE; });
}

Text Win32Locale::DoGetLocaleInfo(std::uint32_t type) {
  return Forward(mCalls, [&] {
    std::array<wchar_t, 256> text{};
    const int length =
        ::GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text.data(), static_cast<int>(text.size()));
    return length > 0 ? Text(win32::View(text.data())) : Text();
  });
}

FILETIME Win32Locale::DoGetLocalTime() {
  return Forward(mCalls, [] {
    ::SYSTEMTIME now{};
    ::GetLocalTime(&now);
    ::FILETIME local{};
    ::SystemTimeToFileTime(&now, &local);
    return win32::FromSystem(local);
  });
}

bool Win32Locale::DoToLocal(const FILETIME& utc, FILETIME& local) {
  const ::FILETIME from = ToSystem(utc);
  ::FILETIME to{};
  if (!Forward(mCalls, [&] { return ::FileTimeToLocalFileTime(&from, &to) != FALSE; }))
    return false;
  local = win32::FromSystem(to);
  return true;
}

bool Win32Locale::DoToUtc(const FILETIME& local, FILETIME& utc) {
  const ::FILETIME from = ToSystem(local);
  ::FILETIME to{};
  if (!Forward(mCalls, [&] { return ::LocalFileTimeToFileTime(&from, &to) != FALSE; }))
    return false;
  utc = win32::FromSystem(to);
  return true;
}

Text Win32Locale::DoFormatMessage(std::uint32_t code) {
  return Forward(mCalls, [&] {
    std::array<wchar_t, 2048> text{};
    const DWORD length =
        ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                         0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    return length > 0 ? Text(win32::View(text.data())) : Text();
  });
}

std::uint32_t Win32Queue::DoGetStatus(std::uint32_t kinds) {
  return mStatus ? mStatus(kinds) : ::GetQueueStatus(kinds);
}

}  // namespace quillmarsh
