// SPDX-License-Identifier: MIT
// On POSIX arguments and streams are bytes already.
#include "console/Entry.h"
#include "platform/posix/PosixMachine.h"

namespace quillmarsh {

struct Entry::Streams {};

Entry::Entry(int argc, char** argv) : mArguments(argv, argv + argc) {}
Entry::~Entry() = default;

Machine& Entry::GetMachine() {
  if (mMachine == nullptr) {
    PosixOptions options;
    // A console program has no queue that could be asked; what may wait is a signal.
    options.queueStatus = [](std::uint32_t kinds) { return kinds; };
    mMachine = std::make_unique<PosixMachine>(options);
  }
  return *mMachine;
}

}  // namespace quillmarsh
