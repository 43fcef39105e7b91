// SPDX-License-Identifier: MIT
// The system error number that stands for an errno. One table; what is not in it is the code of a
// device that does not work, so that no failure passes for a success.
#pragma once

#include <cstdint>

namespace quillmarsh {

[[nodiscard]] std::uint32_t SystemErrorFromErrno(int error);

}  // namespace quillmarsh
