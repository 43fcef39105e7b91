// SPDX-License-Identifier: MIT
// Arguments and streams.
#include "platform/win32/Win32Console.h"

#include <cstdio>

#include <fcntl.h>
#include <io.h>

#include "platform/win32/Win32Calls.h"

#include <shellapi.h>

namespace quillmarsh {

std::vector<std::string> ProgramArguments() {
  int count = 0;
  wchar_t** const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(ToWtf8(win32::View(wide[i])));
  ::LocalFree(wide);
  return arguments;
}

Utf8Console::Utf8Console()
    : mInputCodePage(::GetConsoleCP()), mOutputCodePage(::GetConsoleOutputCP()) {
  ::SetConsoleCP(CP_UTF8);
  ::SetConsoleOutputCP(CP_UTF8);
  for (std::FILE* const stream : {stdin, stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
}

Utf8Console::~Utf8Console() {
  if (mInputCodePage != 0) ::SetConsoleCP(mInputCodePage);
  if (mOutputCodePage != 0) ::SetConsoleOutputCP(mOutputCodePage);
}

}  // namespace quillmarsh
