// SPDX-License-Identifier: MIT
// The message pump of the one thread of logic. Long loops call DoEvents_Fast at each step; it costs
// next to nothing unless it is time, and it pumps only when something waits that is worth it.
#pragma once

#include "platform/Machine.h"

namespace quillmarsh {

// Pumps when at least 16 milliseconds have passed since the last pump ended, or four times the
// length of that pump if that is longer, and GetQueueStatus tells of a key, a button, a paint or a
// hot key. A call inside a pump does nothing.
void DoEvents_Fast();

// Pumps now, whatever the time.
void DoEvents();

// Keeps the program alive while a file system does not answer, and gives the operation up when the
// user asks to stop.
class PumpingPatience final : public Patience {
 public:
  bool KeepWaiting() override;
};

}  // namespace quillmarsh
