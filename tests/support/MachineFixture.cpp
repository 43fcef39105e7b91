// SPDX-License-Identifier: MIT
// Sets the machine at the start and takes it out of use at the end.
#include "support/MachineFixture.h"

#include <stdexcept>

namespace quillmarsh {

MachineFixture::MachineFixture() {
  SimulatedDrive drive;
  drive.root = u"C:\\";
  machine.AddDrive(drive);
  machine.SetHook(&hook);
  UseMachine(&machine);
}

MachineFixture::~MachineFixture() {
  UseMachine(nullptr);
}

std::int64_t TicksOf(int year, int month, int day, int hour, int minute, int second) {
  SYSTEMTIME time;
  time.wYear = static_cast<std::uint16_t>(year);
  time.wMonth = static_cast<std::uint16_t>(month);
  time.wDay = static_cast<std::uint16_t>(day);
  time.wHour = static_cast<std::uint16_t>(hour);
  time.wMinute = static_cast<std::uint16_t>(minute);
  time.wSecond = static_cast<std::uint16_t>(second);
  FILETIME file;
  if (!SystemTimeToFileTime(time, file)) throw std::logic_error("there is no such moment");
  return file.Ticks();
}

}  // namespace quillmarsh
