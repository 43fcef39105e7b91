// SPDX-License-Identifier: MIT
// Find records handed on.
#include "platform/win32/Win32Finding.h"

#include <algorithm>

namespace quillmarsh {
namespace {

void Tell(const ::WIN32_FIND_DATAW& found, WIN32_FIND_DATAW& entry) {
  entry.dwFileAttributes = found.dwFileAttributes;
  entry.ftCreationTime = win32::FromSystem(found.ftCreationTime);
  entry.ftLastAccessTime = win32::FromSystem(found.ftLastAccessTime);
  entry.ftLastWriteTime = win32::FromSystem(found.ftLastWriteTime);
  entry.nFileSizeHigh = found.nFileSizeHigh;
  entry.nFileSizeLow = found.nFileSizeLow;
  entry.dwReserved0 = found.dwReserved0;
  entry.cFileName = win32::View(found.cFileName);
}

// Whether only one entry, or all, can have been meant. The system takes more for wildcards.
bool IsPlainPattern(TextView pattern) {
  const TextView name = pattern.substr(pattern.find_last_of(u"\\/") + 1);
  const auto isNoName = [](char16_t unit) {
    return unit < u' ' || TextView(u"*?<>|\"").find(unit) != TextView::npos;
  };
  return name == u"*" || std::ranges::none_of(name, isNoName);
}

// Whether what was found is what an exact path meant. A short name ends neither in a point nor in a
// blank.
bool IsMeant(std::wstring_view path, std::wstring_view found) {
  const bool mayMatchMore =
      path.starts_with(L"\\\\?\\") && (path.ends_with(L'.') || path.ends_with(L' '));
  return !mayMatchMore || win32::AreOneName(path.substr(path.rfind(L'\\') + 1), found);
}

}  // namespace

Win32Finding::~Win32Finding() {
  for (const auto& search : mOpen) ::FindClose(reinterpret_cast<::HANDLE>(search.first));
}

// The short names are left out and the records come in large portions, which only costs less.
HANDLE Win32Finding::DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) {
  if (!IsPlainPattern(pattern)) return Fail(ERROR_INVALID_NAME, INVALID_HANDLE);
  auto found = std::make_unique<::WIN32_FIND_DATAW>();
  const HANDLE search =
      win32::ForwardPath(mCalls, pattern, INVALID_HANDLE, [&](const wchar_t* path) {
        return win32::FromSystem(::FindFirstFileExW(path, FindExInfoBasic, found.get(),
                                                    FindExSearchNameMatch, nullptr,
                                                    FIND_FIRST_EX_LARGE_FETCH));
      });
  if (search == INVALID_HANDLE) return search;
  if (!IsMeant(win32::ExactPath(pattern), found->cFileName)) {
    ::FindClose(win32::ToSystem(search));
    return Fail(ERROR_FILE_NOT_FOUND, INVALID_HANDLE);
  }
  Tell(*found, entry);
  mOpen.insert_or_assign(static_cast<std::intptr_t>(search), std::move(found));
  return search;
}

bool Win32Finding::DoFindNext(HANDLE search, WIN32_FIND_DATAW& entry) {
  const auto open = mOpen.find(static_cast<std::intptr_t>(search));
  if (open == mOpen.end()) return Fail(ERROR_INVALID_HANDLE, false);
  const bool isThere = win32::Forward(mCalls, [&] {
    return ::FindNextFileW(win32::ToSystem(search), open->second.get()) != FALSE;
  });
  if (isThere) Tell(*open->second, entry);
  return isThere;
}

bool Win32Finding::DoFindClose(HANDLE search) {
  if (mOpen.erase(static_cast<std::intptr_t>(search)) == 0)
    return Fail(ERROR_INVALID_HANDLE, false);
  return win32::Forward(mCalls, [&] { return ::FindClose(win32::ToSystem(search)) != FALSE; });
}

}  // namespace quillmarsh
