// SPDX-License-Identifier: MIT
// Tests with real mounts run in a user and mount namespace of their own, so that nobody else sees
// them and no special rights are needed.
#pragma once

#include <string>

namespace quillmarsh::test {

[[nodiscard]] bool IsInOwnNamespace();
[[nodiscard]] bool CanHaveOwnNamespace();
// Runs this program again for the one test. Answers its exit status.
[[nodiscard]] int RunInOwnNamespace(const char* test);

void MountOrFail(const std::string& source, const std::string& target, const char* type,
                 unsigned long flags);

}  // namespace quillmarsh::test
