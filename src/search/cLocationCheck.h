// SPDX-License-Identifier: MIT
// Whether a search may begin: the criteria, and each location by itself and against the others. The
// checks show their own messages and change nothing.
#pragma once

#include <vector>

#include "base/Text.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// A plain test, and odd by design: of two texts of different length, whether the longer holds the
// shorter anywhere, ignoring case. It knows no folder boundaries, so D:\Data and D:\Database count
// as nested. Empty texts and texts of one length never do.
[[nodiscard]] bool IsPathInSubtreeOf(TextView a, TextView b);

// The name under which a location is known once, whatever it is called; the text itself when it
// cannot be found.
[[nodiscard]] Text CanonicalFormOf(const Text& location);

// Whether a location can be searched; if not, one message box has told why.
[[nodiscard]] bool IsLocationUsable(const Text& path);

// Criteria, locations and their nesting, in this order, up to the first failure.
[[nodiscard]] bool AreCriteriaAndLocationsValid(const clsDupeSettings& settings,
                                                const std::vector<Text>& locations);

}  // namespace quillmarsh
