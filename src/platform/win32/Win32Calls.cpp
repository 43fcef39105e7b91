// SPDX-License-Identifier: MIT
// Exact paths.
#include "platform/win32/Win32Calls.h"

#include <algorithm>

namespace quillmarsh::win32 {
namespace {

// Whether some part of the path is empty, "." or "..", or holds a slash.
bool HasSpecialPart(TextView path) {
  if (path.find(u'/') != TextView::npos) return true;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(u'\\'), path.size());
    const TextView part = path.substr(0, end);
    if (part.empty() || part == u"." || part == u"..") return true;
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return false;
}

bool BeginsWithDrive(TextView path) {
  const auto isLetter = [](char16_t unit) {
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
  };
  return path.size() >= 3 && isLetter(path[0]) && path.substr(1, 2) == u":\\";
}

}  // namespace

std::wstring ExactPath(TextView path) {
  if (BeginsWithDrive(path) && !HasSpecialPart(path.substr(3))) return L"\\\\?\\" + Wide(path);
  const bool isUnc =
      path.starts_with(u"\\\\") && !path.starts_with(u"\\\\?\\") && !path.starts_with(u"\\\\.\\");
  if (isUnc && path.find(u'\\', 2) != TextView::npos && !HasSpecialPart(path.substr(2)))
    return L"\\\\?\\UNC\\" + Wide(path.substr(2));
  return Wide(path);
}

std::uint32_t PathArgument::Refusal() const {
  if (mPath.find(L'\0') != std::wstring::npos) return ERROR_INVALID_NAME;
  const bool beginsAtRoot = mPath.starts_with(L"\\\\") || BeginsWithDrive(Narrow(mPath));
  return mPath.empty() || beginsAtRoot ? ERROR_SUCCESS : ERROR_BAD_PATHNAME;
}

bool AreOneName(std::wstring_view one, std::wstring_view other) {
  return ::CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(),
                                static_cast<int>(other.size()), TRUE) == CSTR_EQUAL;
}

Text PlainPath(std::wstring_view path) {
  constexpr std::wstring_view uncPrefix = L"\\\\?\\UNC\\";
  constexpr std::wstring_view prefix = L"\\\\?\\";
  if (path.starts_with(uncPrefix)) return u"\\\\" + Narrow(path.substr(uncPrefix.size()));
  if (path.starts_with(prefix)) {
    Text plain = Narrow(path.substr(prefix.size()));
    if (BeginsWithDrive(plain)) return plain;
  }
  return Narrow(path);
}

}  // namespace quillmarsh::win32
