// SPDX-License-Identifier: MIT
// The machine is picked when the program is built.
#include "console/MakeMachine.h"

#include "platform/posix/PosixMachine.h"

namespace quillmarsh {

std::unique_ptr<Machine> MakeMachine() {
  PosixOptions options;
  // A console program has no queue that could be asked; what may wait is a signal.
  options.queueStatus = [](std::uint32_t kinds) { return kinds; };
  return std::make_unique<PosixMachine>(std::move(options));
}

}  // namespace quillmarsh
