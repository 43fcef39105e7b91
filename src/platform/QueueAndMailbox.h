// SPDX-License-Identifier: MIT
// The event queue, as far as a long loop asks it: whether anything waits that is worth a pump.
#pragma once

#include "platform/CallHook.h"

namespace quillmarsh {

class QueueAndMailbox : public Role {
 public:
  using Role::Role;

  // Not 0 when an event of one of the kinds (QS_...) waits.
  [[nodiscard]] std::uint32_t GetQueueStatus(std::uint32_t kinds) {
    return Run(Operation::GetQueueStatus, {}, std::uint32_t{0}, [&] { return DoGetStatus(kinds); });
  }

 private:
  virtual std::uint32_t DoGetStatus(std::uint32_t kinds) = 0;
};

}  // namespace quillmarsh
