// SPDX-License-Identifier: MIT
// Calls of the shell.
#include "platform/win32/Win32Shell.h"

#include <array>

#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

#include "platform/win32/RecycleBinFacts.h"

namespace quillmarsh {

using win32::Forward;
using win32::Wide;

Text Win32Shell::DoGetFolder(std::int32_t csidl) {
  if (csidl == CSIDL_LOCAL_APPDATA && mLocalData) return *mLocalData;
  return Forward(mCalls, [&] {
    std::array<wchar_t, MAX_PATH> path{};
    const bool isThere =
        SUCCEEDED(::SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path.data()));
    return isThere ? Text(win32::View(path.data())) : Text();
  });
}

Text Win32Shell::DoGetItemPath(std::int32_t csidl) {
  return Forward(mCalls, [&] {
    PIDLIST_ABSOLUTE item = nullptr;
    if (FAILED(::SHGetSpecialFolderLocation(nullptr, csidl, &item))) return Text();
    std::array<wchar_t, MAX_PATH> path{};
    const bool isThere = ::SHGetPathFromIDListW(item, path.data()) != FALSE;
    ::CoTaskMemFree(item);
    return isThere ? Text(win32::View(path.data())) : Text();
  });
}

Text Win32Shell::DoGetTempPath() {
  return Forward(mCalls, [] {
    std::array<wchar_t, MAX_PATH + 2> path{};
    const DWORD length = ::GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    return length < path.size() ? Text(win32::View(path.data())) : Text();
  });
}

Text Win32Shell::DoGetTypeName(TextView name) {
  return Forward(mCalls, [&] {
    SHFILEINFOW told{};
    const bool isTold =
        ::SHGetFileInfoW(Wide(name).c_str(), FILE_ATTRIBUTE_NORMAL, &told, sizeof(told),
                         SHGFI_TYPENAME | SHGFI_USEFILEATTRIBUTES) != 0;
    return isTold ? Text(win32::View(told.szTypeName)) : Text();
  });
}

std::intptr_t Win32Shell::DoExecute(TextView verb, TextView file, TextView parameters,
                                    std::int32_t show) {
  return Forward(mCalls, [&] {
    return reinterpret_cast<std::intptr_t>(
        ::ShellExecuteW(nullptr, verb.empty() ? nullptr : Wide(verb).c_str(), Wide(file).c_str(),
                        parameters.empty() ? nullptr : Wide(parameters).c_str(), nullptr, show));
  });
}

bool Win32Shell::DoExecuteEx(const SHELLEXECUTEINFOW& execution) {
  return Forward(mCalls, [&] {
    const std::wstring verb = Wide(execution.lpVerb);
    const std::wstring file = Wide(execution.lpFile);
    ::SHELLEXECUTEINFOW call{};
    call.cbSize = sizeof(call);
    call.fMask = execution.fMask;
    call.lpVerb = verb.empty() ? nullptr : verb.c_str();
    call.lpFile = file.c_str();
    call.nShow = execution.nShow;
    const bool isDone = ::ShellExecuteExW(&call) != FALSE;
    if (call.hProcess != nullptr) ::CloseHandle(call.hProcess);
    return isDone;
  });
}

std::int32_t Win32Shell::DoFileOperation(SHFILEOPSTRUCTW& operation) {
  operation.fAnyOperationsAborted = false;
  if (operation.wFunc != FO_DELETE || (operation.fFlags & FOF_ALLOWUNDO) == 0)
    return ERROR_INVALID_PARAMETER;
  TextView rest = operation.pFrom;
  for (std::size_t end = rest.find(u'\0'); end != 0 && end != TextView::npos;
       end = rest.find(u'\0')) {
    if (const std::uint32_t code = win32::WhyNotRecycled(rest.substr(0, end)))
      return static_cast<std::int32_t>(code);
    rest.remove_prefix(end + 1);
  }
  std::wstring from = Wide(operation.pFrom);
  from += L'\0';
  ::SHFILEOPSTRUCTW call{};
  call.wFunc = operation.wFunc;
  call.pFrom = from.c_str();
  call.fFlags = operation.fFlags;
  const std::int32_t code = ::SHFileOperationW(&call);
  operation.fAnyOperationsAborted = call.fAnyOperationsAborted != FALSE;
  return code;
}

}  // namespace quillmarsh
