// SPDX-License-Identifier: MIT
// Texts that hold a list: pieces joined by a separator, with none before the first and none behind
// the last. Pure routines; they take any text in time in proportion to its length.
#pragma once

#include <vector>

#include "base/Text.h"

namespace quillmarsh {

// "<:>" where the text holds it, else ",".
[[nodiscard]] TextView SeparatorOfList(TextView list);

// The pieces between the separators (not empty), the empty ones too. An empty text has no piece.
[[nodiscard]] std::vector<Text> SplitText(TextView text, TextView separator);

// The pieces of a list text, by its own separator.
[[nodiscard]] std::vector<Text> SplitListText(TextView list);

// The pieces, any range of texts, with the separator between them.
template <typename Pieces>
[[nodiscard]] Text JoinTexts(const Pieces& pieces, TextView separator) {
  Text joined;
  bool isFirst = true;
  for (const auto& piece : pieces) {
    if (!isFirst) joined += separator;
    joined += piece;
    isFirst = false;
  }
  return joined;
}

}  // namespace quillmarsh
