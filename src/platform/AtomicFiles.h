// SPDX-License-Identifier: MIT
// Small files read and replaced as a whole. Whoever looks at a file that is being replaced, also
// after a kill or on a full disk, finds the old contents or the new ones, and never a part. Holds
// nothing; a failure leaves the code of the call that failed as the last error.
#pragma once

#include <string>
#include <string_view>

#include "platform/Machine.h"

namespace quillmarsh {

// Reads a file to its end, opened with this sharing (FILE_SHARE_...).
[[nodiscard]] bool ReadFileContents(Machine& machine, TextView path, std::uint32_t share,
                                    std::string& bytes);

// Gives an existing or new file these bytes: written beside it under a name of its own, flushed,
// and moved over it. A file that is read-only or otherwise not to be written to stays, with the
// code of that. Nothing is left beside it when this returns, as far as the machine lets go of it.
[[nodiscard]] bool ReplaceFileContents(Machine& machine, TextView path, std::string_view bytes);

}  // namespace quillmarsh
