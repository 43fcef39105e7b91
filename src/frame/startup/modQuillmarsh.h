// SPDX-License-Identifier: MIT
// The entry of the window program: one instance, the program-wide objects, the checksum library,
// the main window, and the event loop until that is gone.
#pragma once

namespace quillmarsh {

// The exit code of the process.
[[nodiscard]] int Main(int argc, char** argv);

}  // namespace quillmarsh
