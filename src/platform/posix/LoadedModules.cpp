// SPDX-License-Identifier: MIT
// Handles are those of the system's loader, which gives the same one for the same file.
#include "platform/posix/LoadedModules.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

HANDLE HandleOf(void* library) {
  return HANDLE{reinterpret_cast<std::intptr_t>(library)};
}

}  // namespace

HANDLE LoadedModules::Load(const std::string& nativePath, std::uint32_t& code) {
  // The loader would wait for the other end of a FIFO.
  struct stat facts {};
  const bool isFile = ::stat(nativePath.c_str(), &facts) == 0 && S_ISREG(facts.st_mode);
  void* const library = !isFile ? nullptr : ::dlopen(nativePath.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    code = isFile ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND;
    return NULL_HANDLE;
  }
  return Keep(library, nativePath.substr(nativePath.rfind('/') + 1));
}

HANDLE LoadedModules::LoadFromSystem(const std::string& fileName, std::uint32_t& code) {
  const bool isBare = !fileName.empty() && fileName.find('/') == std::string::npos;
  void* const library = isBare ? ::dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (library != nullptr) return Keep(library, fileName);
  code = ERROR_MOD_NOT_FOUND;
  return NULL_HANDLE;
}

HANDLE LoadedModules::Keep(void* library, const std::string& fileName) {
  auto module = std::ranges::find(mModules, library, &Module::library);
  if (module == mModules.end()) {
    mModules.push_back({fileName, library, 0});
    module = mModules.end() - 1;
  }
  ++module->loads;
  return HandleOf(library);
}

HANDLE LoadedModules::Find(const std::string& fileName) const {
  const auto module = std::ranges::find(mModules, fileName, &Module::fileName);
  return module == mModules.end() ? NULL_HANDLE : HandleOf(module->library);
}

void* LoadedModules::Function(HANDLE handle, const char* name) const {
  for (const Module& module : mModules) {
    if (HandleOf(module.library) == handle) return ::dlsym(module.library, name);
  }
  return nullptr;
}

bool LoadedModules::Free(HANDLE handle) {
  const auto module = std::ranges::find_if(
      mModules, [handle](const Module& known) { return HandleOf(known.library) == handle; });
  if (module == mModules.end()) return false;
  ::dlclose(module->library);
  if (--module->loads == 0) mModules.erase(module);
  return true;
}

}  // namespace quillmarsh
