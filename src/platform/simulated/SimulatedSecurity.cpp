// SPDX-License-Identifier: MIT
// Access checks of the simulated machine. A security descriptor is a mark and the mask of rights
// that its entry granted when it was read.
#include <cstring>

#include "platform/simulated/SimulatedRoles.h"

namespace quillmarsh::simulated {

namespace {

constexpr std::uint32_t ERROR_NO_TOKEN = 1008;
constexpr std::uint32_t ERROR_INVALID_SECURITY_DESCR = 1338;
constexpr std::uint32_t FILE_ENCRYPTABLE = 0;
constexpr std::uint32_t FILE_SYSTEM_NOT_SUPPORT = 6;
constexpr std::uint32_t descriptorMark = 0x44435351;
constexpr std::uint32_t descriptorSize = 2 * sizeof(std::uint32_t);

}  // namespace

bool SimulatedAccess::DoGetSecurity(TextView path, std::uint32_t /*information*/,
                                    std::vector<std::byte>& descriptor,
                                    std::uint32_t& lengthNeeded) {
  lengthNeeded = 0;
  const Resolved place = mWorld->Look(path, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, false);
  if (!mWorld->Grants(*place.node, READ_CONTROL)) return Fail(ERROR_ACCESS_DENIED, false);
  lengthNeeded = descriptorSize;
  if (descriptor.size() < descriptorSize) return Fail(ERROR_INSUFFICIENT_BUFFER, false);
  const std::uint32_t words[] = {descriptorMark, mWorld->disk.GrantedRights(*place.node)};
  std::memcpy(descriptor.data(), words, descriptorSize);
  return true;
}

bool SimulatedAccess::DoImpersonate(std::uint32_t /*level*/) {
  mWorld->impersonating = true;
  return true;
}

HANDLE SimulatedAccess::DoOpenToken(std::uint32_t /*access*/, bool /*openAsSelf*/) {
  if (!mWorld->impersonating) return Fail(ERROR_NO_TOKEN, NULL_HANDLE);
  const HANDLE token = mWorld->NewHandle();
  mWorld->tokens[token] = true;
  return token;
}

void SimulatedAccess::DoCloseToken(HANDLE token) {
  if (mWorld->tokens.erase(token) == 0) SetLastError(ERROR_INVALID_HANDLE);
}

bool SimulatedAccess::DoRevert() {
  mWorld->impersonating = false;
  return true;
}

bool SimulatedAccess::DoAccessCheck(const std::vector<std::byte>& descriptor, HANDLE token,
                                    std::uint32_t desired, const GENERIC_MAPPING& /*mapping*/,
                                    AccessCheckAnswer& answer) {
  if (!mWorld->tokens.contains(token)) return Fail(ERROR_INVALID_HANDLE, false);
  std::uint32_t words[2] = {};
  if (descriptor.size() >= descriptorSize) std::memcpy(words, descriptor.data(), descriptorSize);
  if (words[0] != descriptorMark) return Fail(ERROR_INVALID_SECURITY_DESCR, false);
  answer.accessStatus = (words[1] & desired) == desired;
  answer.grantedAccess = answer.accessStatus ? desired : 0;
  if (!answer.accessStatus) SetLastError(ERROR_ACCESS_DENIED);
  return true;
}

std::optional<std::uint32_t> SimulatedAccess::DoEncryptionStatus(TextView path) {
  const std::optional<std::uint32_t> none;
  const Resolved place = mWorld->Look(path, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, none);
  if (place.volume->facts.fileSystem != u"NTFS") return FILE_SYSTEM_NOT_SUPPORT;
  const bool isEncrypted = (place.node->attributes & FILE_ATTRIBUTE_ENCRYPTED) != 0;
  return isEncrypted ? FILE_IS_ENCRYPTED : FILE_ENCRYPTABLE;
}

}  // namespace quillmarsh::simulated
