// SPDX-License-Identifier: MIT
// There are no topics yet.
#include "ui/Help.h"

namespace quillmarsh {

bool IsHelpThere() {
  return false;
}

void ShowHelpTopic(QWidget* /*window*/, int /*topic*/) {}

}  // namespace quillmarsh
