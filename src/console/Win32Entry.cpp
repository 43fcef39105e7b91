// SPDX-License-Identifier: MIT
// On Windows the arguments are asked of the system, since those of `main` are in a code page.
#include "console/Entry.h"
#include "platform/win32/Win32Console.h"
#include "platform/win32/Win32Machine.h"

namespace quillmarsh {

struct Entry::Streams {
  Utf8Console console;
};

Entry::Entry(int /*argc*/, char** /*argv*/)
    : mStreams(std::make_unique<Streams>()), mArguments(ProgramArguments()) {}
Entry::~Entry() = default;

Machine& Entry::GetMachine() {
  if (mMachine == nullptr) {
    Win32Options options;
    // A console program has no queue that could be asked; what may wait is a stop.
    options.queueStatus = [](std::uint32_t kinds) { return kinds; };
    mMachine = std::make_unique<Win32Machine>(options);
  }
  return *mMachine;
}

}  // namespace quillmarsh
