// SPDX-License-Identifier: MIT
// The modules that this program has loaded by itself, each with the number of its loads. Those that
// the system's loader brought in are none of its business. A module that is still here at the end
// stays loaded: others may have pointers into it.
#pragma once

#include <string>
#include <vector>

#include "platform/SystemTypes.h"

namespace quillmarsh {

class LoadedModules {
 public:
  // A native path with a slash in it. NULL_HANDLE and the code on failure.
  [[nodiscard]] HANDLE Load(const std::string& nativePath, std::uint32_t& code);
  // A library of the system by its bare name, where the system's loader looks for such.
  [[nodiscard]] HANDLE LoadFromSystem(const std::string& fileName, std::uint32_t& code);
  // By the last component of its path.
  [[nodiscard]] HANDLE Find(const std::string& fileName) const;
  [[nodiscard]] void* Function(HANDLE module, const char* name) const;
  // False for what is no loaded module.
  [[nodiscard]] bool Free(HANDLE module);

 private:
  struct Module {
    std::string fileName;
    void* library = nullptr;
    int loads = 0;
  };
  [[nodiscard]] HANDLE Keep(void* library, const std::string& fileName);

  std::vector<Module> mModules;
};

}  // namespace quillmarsh
