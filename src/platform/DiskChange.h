// SPDX-License-Identifier: MIT
// Changing folders and entries on the disk. Each operation either happens whole or answers false
// with a code and leaves things as they were.
#pragma once

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

class DiskChange : public Role {
 public:
  using Role::Role;

  // 183 when anything of that name is there, 3 when the parent folder is missing.
  [[nodiscard]] bool CreateDirectoryW(TextView path) {
    return Run(Operation::CreateDirectoryW, path, false, [&] { return DoCreateDirectory(path); });
  }

 private:
  virtual bool DoCreateDirectory(TextView path) = 0;
};

}  // namespace quillmarsh
