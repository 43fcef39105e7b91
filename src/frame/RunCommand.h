// SPDX-License-Identifier: MIT
// Runs a command that has no scope of its own: one at a time, and with its failures reported.
#pragma once

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"

namespace quillmarsh {

// Nothing happens while another command runs.
template <typename Body>
void RunCommand(TextView source, Body&& body) {
  const CommandScope command;
  if (command.IsEntered()) Guarded(source, body);
}

}  // namespace quillmarsh
