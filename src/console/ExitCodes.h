// SPDX-License-Identifier: MIT
// What the console program tells its caller.
#pragma once

namespace quillmarsh {

enum class ExitCode {
  Done = 0,
  SomeFilesFailed = 1,  // done, but some files could not be read or removed
  Refused = 2,          // bad usage, a refused request, or a failure: there is no whole list
  Stopped = 130,        // by the user; what was written is not whole
};

}  // namespace quillmarsh
