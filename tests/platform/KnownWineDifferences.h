// SPDX-License-Identifier: MIT
// Where Wine is known to answer other than Windows is documented or known to. Such a row is run on
// it all the same, so that one notices when it no longer differs.
#pragma once

#include <string_view>

#include "platform/MachineUnderTest.h"

namespace quillmarsh {

struct WineDifference {
  enum class When { Always, AsSuperuser };

  std::string_view sentence;  // of the row
  When when;
  const char* reason;
};

// None where the row is to hold.
[[nodiscard]] const WineDifference* KnownWineDifference(const MachineUnderTest& ground,
                                                        std::string_view sentence);

}  // namespace quillmarsh
