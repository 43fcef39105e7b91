// SPDX-License-Identifier: MIT
// A last look before a file goes: its marks were made when the search ended, and other programs
// have had their time since. A removal without a guard does what its marks say. What it refuses
// stays where it is and in its group; the guard has told why.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

class RemovalGuard {
 public:
  virtual ~RemovalGuard() = default;
  // Asked just before the removal of a record (from 1) that is a member of the group (from 1). A
  // refusal with the stop flag set counts as the stop, not as a failure, and needs no word.
  [[nodiscard]] virtual bool MayRemove(std::int32_t group, std::int32_t record) = 0;
  // Asked before a file takes the place of one that was moved to the DUPES folder earlier.
  [[nodiscard]] virtual bool MayReplace(TextView fileSpec, TextView existing) = 0;
};

}  // namespace quillmarsh
