// SPDX-License-Identifier: MIT
// The program's help, by the numbers of its topics.
#pragma once

#include <QWidget>

namespace quillmarsh {

namespace help_topic {
inline constexpr int Contents = 1;
inline constexpr int Troubleshooting = 2;
inline constexpr int Filters = 4;
}  // namespace help_topic

// Whether there is help to show; what would show it is disabled otherwise.
[[nodiscard]] bool IsHelpThere();
// Over the window. Only where there is help.
void ShowHelpTopic(QWidget* window, int topic);

}  // namespace quillmarsh
