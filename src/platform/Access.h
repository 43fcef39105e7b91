// SPDX-License-Identifier: MIT
// The platform's own access check on a path's security descriptor, and a file's encryption status.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

struct AccessCheckAnswer {
  std::uint32_t grantedAccess = 0;
  bool accessStatus = false;
};

class Access : public Role {
 public:
  using Role::Role;

  // Fills `descriptor` when its size is enough; else fails with 122. `lengthNeeded` is set in both
  // cases (0 when even that failed).
  [[nodiscard]] bool GetFileSecurityW(TextView path, std::uint32_t information,
                                      std::vector<std::byte>& descriptor,
                                      std::uint32_t& lengthNeeded) {
    return Run(Operation::GetFileSecurityW, path, false,
               [&] { return DoGetSecurity(path, information, descriptor, lengthNeeded); });
  }
  [[nodiscard]] bool ImpersonateSelf(std::uint32_t level) {
    return Run(Operation::ImpersonateSelf, {}, false, [&] { return DoImpersonate(level); });
  }
  // NULL_HANDLE on failure.
  [[nodiscard]] HANDLE OpenThreadToken(std::uint32_t access, bool openAsSelf) {
    return Run(Operation::OpenThreadToken, {}, NULL_HANDLE,
               [&] { return DoOpenToken(access, openAsSelf); });
  }
  void CloseToken(HANDLE token) { DoCloseToken(token); }
  bool RevertToSelf() {
    return Run(Operation::RevertToSelf, {}, false, [&] { return DoRevert(); });
  }
  // `desired` is already mapped. False when the call itself failed.
  [[nodiscard]] bool AccessCheck(const std::vector<std::byte>& descriptor, HANDLE token,
                                 std::uint32_t desired, const GENERIC_MAPPING& mapping,
                                 AccessCheckAnswer& answer) {
    return Run(Operation::AccessCheck, {}, false,
               [&] { return DoAccessCheck(descriptor, token, desired, mapping, answer); });
  }
  // Whether a machine without access lists knows that the user may not read an entry
  // (FILE_GENERIC_READ) or write to it (FILE_GENERIC_WRITE). In doubt false; always false where
  // there are lists.
  [[nodiscard]] bool IsRefused(TextView path, std::uint32_t desired) {
    return DoIsRefused(path, desired);
  }
  // None on failure.
  [[nodiscard]] std::optional<std::uint32_t> FileEncryptionStatusW(TextView path) {
    return Run(Operation::FileEncryptionStatusW, path, std::optional<std::uint32_t>(),
               [&] { return DoEncryptionStatus(path); });
  }

 private:
  virtual bool DoGetSecurity(TextView path, std::uint32_t information,
                             std::vector<std::byte>& descriptor, std::uint32_t& lengthNeeded) = 0;
  virtual bool DoImpersonate(std::uint32_t level) = 0;
  virtual HANDLE DoOpenToken(std::uint32_t access, bool openAsSelf) = 0;
  virtual void DoCloseToken(HANDLE token) = 0;
  virtual bool DoRevert() = 0;
  virtual bool DoAccessCheck(const std::vector<std::byte>& descriptor, HANDLE token,
                             std::uint32_t desired, const GENERIC_MAPPING& mapping,
                             AccessCheckAnswer& answer) = 0;
  virtual bool DoIsRefused(TextView /*path*/, std::uint32_t /*desired*/) { return false; }
  virtual std::optional<std::uint32_t> DoEncryptionStatus(TextView path) = 0;
};

// Replaces the generic rights of an access mask by those of the mapping. Pure.
[[nodiscard]] std::uint32_t MapGenericMask(std::uint32_t mask, const GENERIC_MAPPING& mapping);

}  // namespace quillmarsh
