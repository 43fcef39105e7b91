// SPDX-License-Identifier: MIT
// Asks Wine by the functions that Windows does not have.
#include "platform/win32/WineUnderTest.h"

#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

namespace {

template <typename Function>
Function FunctionOf(const wchar_t* module, const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(module), name)));
}

void RunBelowWine(const wchar_t* program, const std::string& arguments) {
  std::wstring commandLine = win32::Wide(FromUtf8(arguments));
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  ::CreateProcessW(program, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                   &startup, &process);
}

bool IsThere(const std::wstring& path) {
  return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool OpensForReading(const std::wstring& path) {
  return win32::OwnedHandle(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr))
      .IsValid();
}

// Whether that comes to be so for the path. Such a process has no handle to wait for.
bool Comes(bool (*question)(const std::wstring&), const std::wstring& path, bool answer) {
  for (int milliseconds = 0; milliseconds < 10'000; ++milliseconds) {
    if (question(path) == answer) return true;
    ::Sleep(1);
  }
  return false;
}

}  // namespace

bool RunsOnWine() {
  return FunctionOf<void*>(L"ntdll.dll", "wine_get_version") != nullptr;
}

std::string PathBelowWine(const std::wstring& path) {
  using Converter = char*(__cdecl*)(const wchar_t*);
  const auto convert = FunctionOf<Converter>(L"kernel32.dll", "wine_get_unix_file_name");
  char* const converted = convert != nullptr ? convert(path.c_str()) : nullptr;
  if (converted == nullptr) return {};
  std::string found = converted;
  ::HeapFree(::GetProcessHeap(), 0, converted);
  return found;
}

bool MakeLinkBelowWine(const std::wstring& target, const std::wstring& path) {
  RunBelowWine(L"\\\\?\\unix\\bin\\ln",
               "ln -s \"" + PathBelowWine(target) + "\" \"" + PathBelowWine(path) + "\"");
  return Comes(IsThere, path, true);
}

bool RemoveLinkBelowWine(const std::wstring& path) {
  RunBelowWine(L"\\\\?\\unix\\bin\\rm", "rm \"" + PathBelowWine(path) + "\"");
  return Comes(IsThere, path, false);
}

bool LetInBelowWine(const std::wstring& path) {
  RunBelowWine(L"\\\\?\\unix\\bin\\chmod", "chmod u+rwX \"" + PathBelowWine(path) + "\"");
  return Comes(OpensForReading, path, true);
}

}  // namespace quillmarsh
