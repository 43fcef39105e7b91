// SPDX-License-Identifier: MIT
// A simulated machine in use, with a hook set and an NTFS drive C:, for as long as the fixture
// lives. A member or a base of a test's own fixture.
#pragma once

#include "platform/simulated/SimulatedMachine.h"
#include "support/FaultHook.h"

namespace quillmarsh {

class MachineFixture {
 public:
  MachineFixture();
  ~MachineFixture();
  MachineFixture(const MachineFixture&) = delete;
  MachineFixture& operator=(const MachineFixture&) = delete;

  FaultHook hook;
  SimulatedMachine machine;
};

// UTC ticks of a moment. A moment that no calendar has throws.
[[nodiscard]] std::int64_t TicksOf(int year, int month, int day, int hour = 0, int minute = 0,
                                   int second = 0);

}  // namespace quillmarsh
