// SPDX-License-Identifier: MIT
// The version resource of a Windows executable, readable on every platform.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

class VersionResources : public Role {
 public:
  using Role::Role;

  // Bytes of the version block, 0 when there is none.
  [[nodiscard]] std::uint32_t GetFileVersionInfoSizeW(TextView path) {
    return Run(Operation::GetFileVersionInfoSizeW, path, std::uint32_t{0},
               [&] { return DoGetSize(path); });
  }
  // Reads at most `block.size()` bytes of the block.
  [[nodiscard]] bool GetFileVersionInfoW(TextView path, std::vector<std::byte>& block) {
    return Run(Operation::GetFileVersionInfoW, path, false,
               [&] { return DoGetBlock(path, block); });
  }
  // The fixed part of a block (the query for "\"), none when the block holds none.
  [[nodiscard]] std::optional<VS_FIXEDFILEINFO> VerQueryValueRoot(
      const std::vector<std::byte>& block) {
    return DoQueryRoot(block);
  }

 private:
  virtual std::uint32_t DoGetSize(TextView path) = 0;
  virtual bool DoGetBlock(TextView path, std::vector<std::byte>& block) = 0;
  virtual std::optional<VS_FIXEDFILEINFO> DoQueryRoot(const std::vector<std::byte>& block) = 0;
};

}  // namespace quillmarsh
