// SPDX-License-Identifier: MIT
// The pointer to the machine in use.
#include "platform/Machine.h"

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

Machine* gMachine = nullptr;

}  // namespace

Machine& TheMachine() {
  if (gMachine == nullptr)
    throw RuntimeError(runtime_error::InvalidProcedureCall, u"TheMachine",
                       u"No machine has been set");
  return *gMachine;
}

void UseMachine(Machine* machine) {
  gMachine = machine;
}

}  // namespace quillmarsh
