// SPDX-License-Identifier: MIT
// What the library MediaInfo knows of one file. The bytes go the program's own way to files; what
// the library makes of them is worked out on a helper, while the program waits and pumps, for a
// list of pieces may lead it to other files and to the network. The user's stop (gUserAbort) ends
// the wait at any moment; then the helper is left behind with all that it uses.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

enum class MediaOutcome {
  Read,
  NoLibrary,  // the library is not installed, or is not one that can be used
  NotOpened,  // the file could not be read, or not wholly
  NotMedia,   // the library knows no format for it
  Stopped,
};

struct MediaProperties {
  MediaOutcome outcome = MediaOutcome::NotOpened;
  Text summary;  // the library's report, where it could be read
};

// The caller clears gUserAbort. `fileSpec` is a path in drive form; `libraryName` the file name of
// the library (MediaInfoLibraryName).
[[nodiscard]] MediaProperties ReadMediaProperties(TextView fileSpec, TextView libraryName);

}  // namespace quillmarsh
