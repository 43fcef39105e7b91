// SPDX-License-Identifier: MIT
// Changing folders and entries on the disk. Each operation either happens whole or answers false
// with a code and leaves things as they were.
#pragma once

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

inline constexpr std::uint32_t MOVEFILE_REPLACE_EXISTING = 0x1;
inline constexpr std::uint32_t MOVEFILE_COPY_ALLOWED = 0x2;
inline constexpr std::uint32_t MOVEFILE_WRITE_THROUGH = 0x8;  // returns when it is on the disk

class DiskChange : public Role {
 public:
  using Role::Role;

  // Deletes a file, or a link itself. 2 when it is missing, 3 when its folder is, 5 for a folder
  // and for a read-only file, 32 while another program has it open without sharing that.
  [[nodiscard]] bool DeleteFileW(TextView path) {
    return Run(Operation::DeleteFileW, path, false, [&] { return DoDeleteFile(path); });
  }
  // Gives a file or a folder another name or place; `flags` are MOVEFILE_... ones. Onto itself and
  // with another case it succeeds. Without MOVEFILE_REPLACE_EXISTING an existing target is 183;
  // with it, 5 for a read-only target and where either of the two is a folder. To another volume
  // 17, unless a file may be copied: then the target is whole on the disk before the source goes,
  // and where the source cannot be deleted it stays and the move counts as done.
  [[nodiscard]] bool MoveFileExW(TextView existing, TextView newPath, std::uint32_t flags) {
    return Run(Operation::MoveFileExW, existing, false,
               [&] { return DoMoveFile(existing, newPath, flags); });
  }
  // MoveFileExW that may copy a file to another volume and replaces nothing.
  [[nodiscard]] bool MoveFileW(TextView existing, TextView newPath) {
    return Run(Operation::MoveFileW, existing, false,
               [&] { return DoMoveFile(existing, newPath, MOVEFILE_COPY_ALLOWED); });
  }
  // Copies contents, write time and the read-only bit of a file. The target appears under its name
  // when it is whole, never before. An existing target is 80 if that is to fail, else 5 for a
  // read-only one and for a folder; the source itself is 32.
  [[nodiscard]] bool CopyFileW(TextView existing, TextView newPath, bool failIfExists) {
    return Run(Operation::CopyFileW, existing, false,
               [&] { return DoCopyFile(existing, newPath, failIfExists); });
  }
  // 183 when anything of that name is there, 3 when the parent folder is missing.
  [[nodiscard]] bool CreateDirectoryW(TextView path) {
    return Run(Operation::CreateDirectoryW, path, false, [&] { return DoCreateDirectory(path); });
  }
  // Removes an empty folder, and of a junction or a link to a folder the link itself. 145 when
  // something is in it, 267 for a file, 2 when it is missing.
  [[nodiscard]] bool RemoveDirectoryW(TextView path) {
    return Run(Operation::RemoveDirectoryW, path, false, [&] { return DoRemoveDirectory(path); });
  }
  // Sets the bits of the entry itself that can be set; the others stay as they are, without a
  // failure. A machine whose files have no such bit succeeds without effect, but for read-only,
  // which is set for sure or fails.
  [[nodiscard]] bool SetFileAttributesW(TextView path, std::uint32_t attributes) {
    return Run(Operation::SetFileAttributesW, path, false,
               [&] { return DoSetAttributes(path, attributes); });
  }

 private:
  virtual bool DoDeleteFile(TextView path) = 0;
  virtual bool DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) = 0;
  virtual bool DoCopyFile(TextView existing, TextView newPath, bool failIfExists) = 0;
  virtual bool DoCreateDirectory(TextView path) = 0;
  virtual bool DoRemoveDirectory(TextView path) = 0;
  virtual bool DoSetAttributes(TextView path, std::uint32_t attributes) = 0;
};

}  // namespace quillmarsh
