// SPDX-License-Identifier: MIT
// What became of one file in a removal: what the history says of it, and what the report shows. A
// plain value.
#pragma once

#include <functional>

#include "base/Text.h"

namespace quillmarsh {

struct RemovalEntry {
  std::int32_t kind = 0;  // a kind of log entry; free text where a check kept the file
  Text fileSpec = {};
  Text target = {};  // of a move; for a folder that could not be made, that folder
  std::uint32_t code = 0;
  Text text = {};    // of the code
  Text reason = {};  // why a check kept the file, a clause without a full stop
  // A file that was to be sent to the Recycle Bin and has been deleted, as the user had allowed.
  bool isDeletedForGood = false;
};

using RemovalListener = std::function<void(const RemovalEntry&)>;

}  // namespace quillmarsh
