// SPDX-License-Identifier: MIT
// Makes the machine that the program was built for.
#pragma once

#include <memory>

#include "platform/Machine.h"

namespace quillmarsh {

[[nodiscard]] std::unique_ptr<Machine> MakeMachine();

}  // namespace quillmarsh
