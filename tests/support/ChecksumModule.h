// SPDX-License-Identifier: MIT
// The checksum library for tests on the simulated machine: its own code, linked into the test and
// given to the machine as the module beside its program.
#pragma once

#include "platform/simulated/SimulatedMachine.h"

namespace quillmarsh {

// Sets gAppPath, and the module in that folder. It still has to be loaded.
void PutChecksumModule(SimulatedMachine& machine);

}  // namespace quillmarsh
