// SPDX-License-Identifier: MIT
// Brings a native path to its one canonical form: absolute, without "." and "..", links resolved.
// Walks by handles, one component at a time, so a path may have any length. May wait for file
// systems that do not answer; holds no state, any thread may call it.
#pragma once

#include <string>
#include <string_view>

namespace quillmarsh {

enum class MissingTail { Refused, Kept };

struct CanonicalPath {
  std::string path;
  int error = 0;  // an errno; ENOENT with `parentMissing` when more than the last part is missing
  bool parentMissing = false;
};

// A relative path counts from the current folder. With MissingTail::Kept components behind the last
// existing one are added as they are.
[[nodiscard]] CanonicalPath Canonical(std::string_view native, MissingTail tail);

}  // namespace quillmarsh
