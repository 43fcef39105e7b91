// SPDX-License-Identifier: MIT
// One row of the conformance suite: what a machine must do, and the routine of the core that would
// go wrong if it did not. The rows stand in tables by role.
#pragma once

#include <gtest/gtest.h>

#include <span>

#include "platform/MachineUnderTest.h"

namespace quillmarsh {

struct ConformanceRow {
  const char* reliesOnIt;
  const char* sentence;
  void (*check)(MachineUnderTest& ground);
};

[[nodiscard]] std::span<const ConformanceRow> FindingRows();
[[nodiscard]] std::span<const ConformanceRow> FileRows();
[[nodiscard]] std::span<const ConformanceRow> ChangeRows();
[[nodiscard]] std::span<const ConformanceRow> VolumeRows();

}  // namespace quillmarsh
