// SPDX-License-Identifier: MIT
// What a simulated machine keeps of a call that started a program. A plain value.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

struct StartedProgram {
  Text verb;
  Text file;
  Text parameters;
  std::int32_t show = 0;
  std::uint32_t mask = 0;  // of ShellExecuteExW
};

}  // namespace quillmarsh
