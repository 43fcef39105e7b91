// SPDX-License-Identifier: MIT
// The window program takes no arguments of its own.
#include "frame/startup/modQuillmarsh.h"

int main(int argc, char** argv) {
  return quillmarsh::Main(argc, argv);
}
