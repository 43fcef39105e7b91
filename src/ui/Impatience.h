// SPDX-License-Identifier: MIT
// For questions to the machine that come out of an event of the window: a file system that does not
// answer at once is given up, and nothing else runs meanwhile.
#pragma once

#include "platform/Machine.h"

namespace quillmarsh {

class Impatience final : public Patience {
 public:
  Impatience() : mMachine(TheMachine()), mUsual(mMachine.CurrentPatience()) {
    mMachine.SetPatience(this);
  }
  ~Impatience() override { mMachine.SetPatience(mUsual); }
  Impatience(const Impatience&) = delete;
  Impatience& operator=(const Impatience&) = delete;

  // Asked about every 10 milliseconds.
  bool KeepWaiting() override { return ++mAsked < 3; }

 private:
  Machine& mMachine;
  Patience* const mUsual;
  int mAsked = 0;
};

}  // namespace quillmarsh
