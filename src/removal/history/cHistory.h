// SPDX-License-Identifier: MIT
// Where the history lies, for the commands of the menu. Keeps nothing and opens nothing.
#pragma once

#include <memory>

#include "base/Text.h"

namespace quillmarsh {

class cHistory {
 public:
  // "history.log" in the folder of the options file, whether or not it is there yet.
  [[nodiscard]] Text FileSpec() const;
};

// Made and released with the other program-wide objects.
extern std::unique_ptr<cHistory> gHistory;

}  // namespace quillmarsh
