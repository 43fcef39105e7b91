// SPDX-License-Identifier: MIT
// The desktop's own programs, by the public rules for applications and types of files. A program
// that was started is nobody's child: it is neither waited for nor left behind as a zombie.
#pragma once

#include <string>

namespace quillmarsh {

// Whether there is a display for a program to show itself on.
[[nodiscard]] bool HasDesktopSession();

// The type of a file or folder ("text/plain") by its name and its first bytes; empty when it cannot
// be told. May wait for the file system.
[[nodiscard]] std::string ContentTypeOf(const std::string& native);

// Opens a file in the application that the user has chosen for a type. False when there is none or
// it cannot be started.
[[nodiscard]] bool OpenInApplicationFor(const std::string& contentType, const std::string& native);

// Has the desktop's file manager show its window about a file or folder. False without a bus of the
// session or a file manager that can. May wait for both, and for ever where something listens at
// the bus that never answers.
[[nodiscard]] bool ShowItemProperties(const std::string& native);

}  // namespace quillmarsh
