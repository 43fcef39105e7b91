// SPDX-License-Identifier: MIT
// The program-wide objects of the window program: made in one order, released in the reverse one.
// While one lives, the machine, its patience and the g... objects are set.
#pragma once

#include "frame/Pump.h"
#include "platform/Machine.h"

namespace quillmarsh {

class GlobalObjects {
 public:
  explicit GlobalObjects(Machine& machine);
  ~GlobalObjects();
  GlobalObjects(const GlobalObjects&) = delete;
  GlobalObjects& operator=(const GlobalObjects&) = delete;

  // The checksum library beside the program; false when it is missing, which has been told.
  [[nodiscard]] bool LoadModule();

 private:
  PumpingPatience mPatience;
};

}  // namespace quillmarsh
