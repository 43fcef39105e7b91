// SPDX-License-Identifier: MIT
// Find records handed on.
#include "platform/win32/Win32Finding.h"

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

}  // namespace

Win32Finding::~Win32Finding() {
  for (const auto& search : mOpen) ::FindClose(reinterpret_cast<::HANDLE>(search.first));
}

// The short names are left out and the records come in large portions, which only costs less.
HANDLE Win32Finding::DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) {
  auto found = std::make_unique<::WIN32_FIND_DATAW>();
  const HANDLE search =
      win32::ForwardPath(mCalls, pattern, INVALID_HANDLE, [&](const wchar_t* path) {
        return win32::FromSystem(::FindFirstFileExW(path, FindExInfoBasic, found.get(),
                                                    FindExSearchNameMatch, nullptr,
                                                    FIND_FIRST_EX_LARGE_FETCH));
      });
  if (search == INVALID_HANDLE) return search;
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
