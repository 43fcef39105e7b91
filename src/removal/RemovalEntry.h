// SPDX-License-Identifier: MIT
// What became of one file in a removal, as the history tells it. A plain value.
#pragma once

#include <functional>

#include "base/Text.h"

namespace quillmarsh {

struct RemovalEntry {
  std::int32_t kind = 0;  // a kind of log entry
  Text fileSpec;
  Text target;  // of a move; for a folder that could not be made, that folder
  std::uint32_t code = 0;
  Text text;  // of the code
  // Of what the history calls sent to the Recycle Bin: the bin refused it.
  bool isDeletedForGood = false;
};

using RemovalListener = std::function<void(const RemovalEntry&)>;

}  // namespace quillmarsh
