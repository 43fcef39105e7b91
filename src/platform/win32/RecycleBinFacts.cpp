// SPDX-License-Identifier: MIT
// What the shell looks at before it deletes: the kind of the drive, and the settings of its bin.
#include "platform/win32/RecycleBinFacts.h"

#include <array>
#include <optional>
#include <string>

#include "platform/win32/Win32Calls.h"

namespace quillmarsh::win32 {
namespace {

constexpr const wchar_t* kBinSettings =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\BitBucket";
constexpr const wchar_t* kPolicies =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr std::uint64_t kBytesInMegabyte = 1U << 20U;

std::optional<DWORD> SettingOf(HKEY root, const std::wstring& key, const wchar_t* value) {
  DWORD number = 0;
  DWORD size = sizeof(number);
  const LSTATUS code =
      ::RegGetValueW(root, key.c_str(), value, RRF_RT_REG_DWORD, nullptr, &number, &size);
  return code == ERROR_SUCCESS ? std::optional(number) : std::nullopt;
}

bool IsSet(HKEY root, const std::wstring& key, const wchar_t* value) {
  return SettingOf(root, key, value).value_or(0) != 0;
}

// The user's settings for the bin of a volume, by the GUID in its name.
std::wstring SettingsOfVolume(const std::wstring& root) {
  std::array<wchar_t, 50> name{};
  if (::GetVolumeNameForVolumeMountPointW(root.c_str(), name.data(), 50) == FALSE) return {};
  const std::wstring volume = name.data();
  const std::size_t begin = volume.find(L'{');
  const std::size_t end = volume.find(L'}');
  if (begin == std::wstring::npos || end == std::wstring::npos) return {};
  return std::wstring(kBinSettings) + L"\\Volume\\" + volume.substr(begin, end - begin + 1);
}

// The shell reads a path by its own rules, so it gets only one that means the same by both.
bool MeansTheSameToTheShell(const std::wstring& path) {
  std::wstring full(path.size() + 2, L'\0');
  const DWORD length =
      ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  return length == path.size() && full.compare(0, length, path) == 0 &&
         path.find_first_of(L"*?") == std::wstring::npos && !path.starts_with(L"\\\\?\\");
}

// The root of the path's volume; empty, with the last error set, where it cannot be told.
std::wstring RootOf(const std::wstring& path) {
  std::wstring root(path.size() + 2, L'\0');
  if (::GetVolumePathNameW(path.c_str(), root.data(), static_cast<DWORD>(root.size())) == FALSE)
    return {};
  root.resize(root.find(L'\0'));
  return root;
}

std::uint32_t WhyNoBinOf(const std::wstring& root, const std::wstring& settings) {
  if (::GetDriveTypeW(root.c_str()) != DRIVE_FIXED) return ERROR_NOT_SUPPORTED;
  const bool isOff = IsSet(HKEY_CURRENT_USER, kPolicies, L"NoRecycleFiles") ||
                     IsSet(HKEY_LOCAL_MACHINE, kPolicies, L"NoRecycleFiles") ||
                     (!settings.empty() && IsSet(HKEY_CURRENT_USER, settings, L"NukeOnDelete"));
  return isOff ? ERROR_NOT_SUPPORTED : ERROR_SUCCESS;
}

}  // namespace

std::uint32_t WhyNoBin(TextView path) {
  const std::wstring root = RootOf(Wide(path));
  return root.empty() ? ::GetLastError() : WhyNoBinOf(root, SettingsOfVolume(root));
}

std::uint32_t WhyNotRecycled(TextView path) {
  const std::wstring plain = Wide(path);
  if (plain.size() >= MAX_PATH) return DE_PATHTOODEEP;
  if (!MeansTheSameToTheShell(plain)) return DE_INVALIDFILES;
  WIN32_FILE_ATTRIBUTE_DATA facts{};
  if (::GetFileAttributesExW(ExactPath(path).c_str(), GetFileExInfoStandard, &facts) == FALSE)
    return ::GetLastError();
  const std::wstring root = RootOf(plain);
  if (root.empty()) return ::GetLastError();
  const std::wstring settings = SettingsOfVolume(root);
  if (const std::uint32_t code = WhyNoBinOf(root, settings)) return code;
  if (settings.empty()) return ERROR_SUCCESS;
  const std::uint64_t size = (std::uint64_t{facts.nFileSizeHigh} << 32U) | facts.nFileSizeLow;
  const auto capacity = SettingOf(HKEY_CURRENT_USER, settings, L"MaxCapacity");
  return capacity && size > *capacity * kBytesInMegabyte ? ERROR_DISK_FULL : ERROR_SUCCESS;
}

}  // namespace quillmarsh::win32
