// SPDX-License-Identifier: MIT
// The short text of an attribute word, for lists and reports. Pure.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// One letter for each attribute that is set, always in this order: R read-only, H hidden, S system,
// A archive, D directory, T temporary, C compressed, E encrypted, O offline, P sparse, L link or
// other reparse point, I not indexed. A word without any of them gives the empty text.
[[nodiscard]] Text AttributeLetters(std::uint32_t attributes);

}  // namespace quillmarsh
