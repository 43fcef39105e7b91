// SPDX-License-Identifier: MIT
// The window program takes no arguments of its own.
#include <cstdlib>

#include "frame/startup/modQuillmarsh.h"
#include "platform/PatientWorker.h"

int main(int argc, char** argv) {
  const int code = quillmarsh::Main(argc, argv);
  // A helper that waits inside a library uses what the usual end would take apart under it. All
  // that is to be kept is written.
  if (quillmarsh::PatientWorker::IsAnyLeftBehind()) std::_Exit(code);
  return code;
}
