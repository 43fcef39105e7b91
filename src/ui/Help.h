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

// Over the window, and with it: the help goes when the window goes. The contents for a number that
// is no topic's.
void ShowHelpTopic(QWidget* window, int topic);

}  // namespace quillmarsh
