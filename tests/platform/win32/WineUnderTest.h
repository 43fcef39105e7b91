// SPDX-License-Identifier: MIT
// What is special where Wine stands in for Windows.
#pragma once

#include <string>

#include "platform/MachineUnderTest.h"

namespace quillmarsh {

[[nodiscard]] bool RunsOnWine();

// The path by which the system below Wine knows a file.
[[nodiscard]] std::string PathBelowWine(const std::wstring& path);
// A symbolic link of that system, which Wine shows as a reparse point. The target is absolute.
[[nodiscard]] bool MakeLinkBelowWine(const std::wstring& target, const std::wstring& path);
// Of that link; RemoveDirectoryW would remove what it leads to.
[[nodiscard]] bool RemoveLinkBelowWine(const std::wstring& path);
// Gives the owner back what an access list took; Wine itself is then kept out too.
[[nodiscard]] bool LetInBelowWine(const std::wstring& path);

}  // namespace quillmarsh
