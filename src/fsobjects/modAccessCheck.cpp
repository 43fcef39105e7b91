// SPDX-License-Identifier: MIT
// The steps of the check stand in one routine in their order; impersonation ends with the scope
// that began it, on every way out.
#include "fsobjects/modAccessCheck.h"

#include <optional>

#include "frame/ErrorReporting.h"
#include "fsobjects/Handles.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

bool mCheckFolderPermission = true;

namespace {

constexpr GENERIC_MAPPING kFileMapping = {FILE_GENERIC_READ, FILE_GENERIC_WRITE,
                                          FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS};

std::optional<bool> isWindowsNT;

// The token of the calling thread, which takes on the user's own identity for as long as it lives.
class ThreadToken {
 public:
  ThreadToken() {
    // The check that follows judges a failed impersonation: there is no token then.
    static_cast<void>(TheMachine().Security().ImpersonateSelf(SecurityDelegation));
    mToken = TheMachine().Security().OpenThreadToken(TOKEN_QUERY, false);
  }
  ~ThreadToken() {
    if (mToken != NULL_HANDLE) TheMachine().Security().CloseToken(mToken);
    TheMachine().Security().RevertToSelf();
  }
  ThreadToken(const ThreadToken&) = delete;
  ThreadToken& operator=(const ThreadToken&) = delete;

  [[nodiscard]] HANDLE Get() const { return mToken; }

 private:
  HANDLE mToken = NULL_HANDLE;
};

std::uint32_t CheckedAccess(const std::vector<std::byte>& descriptor, std::uint32_t desired) {
  const ThreadToken token;
  if (token.Get() == NULL_HANDLE) return 0;
  AccessCheckAnswer answer;
  // A check that fails leaves nothing granted.
  static_cast<void>(TheMachine().Security().AccessCheck(
      descriptor, token.Get(), MapGenericMask(desired, kFileMapping), kFileMapping, answer));
  return answer.grantedAccess;
}

bool HasAccess(TextView source, TextView path, std::uint32_t desired) {
  bool granted = false;
  Guarded(source, [&] { granted = GetGrantedAccess(path, desired) == desired; });
  return granted;
}

}  // namespace

bool UserHasReadPermission(TextView path) {
  return HasAccess(u"modAccessCheck.UserHasReadPermission()", path, FILE_GENERIC_READ);
}

bool UserHasFolderEnumPermission(TextView path) {
  return HasAccess(u"modAccessCheck.UserHasFolderEnumPermission()", path, FILE_LIST_DIRECTORY);
}

// Reports under the name of the read check: support staff know the pair by that one name.
bool UserHasWritePermission(TextView path) {
  return HasAccess(u"modAccessCheck.UserHasReadPermission()", path, FILE_GENERIC_WRITE);
}

std::uint32_t GetGrantedAccess(TextView path, std::uint32_t desired) {
  if (!IsWindowsNT()) return desired;

  // A volume without access lists cannot refuse anyone.
  VolumeInformation volume;
  const bool read =
      TheMachine().Drives().GetVolumeInformationW(ToLongPath(GetDriveRootOf(path)), volume);
  if (!read || (volume.fileSystemFlags & FS_PERSISTENT_ACLS) == 0) return desired;

  // The first call, which only asks for the length, normally fails for want of room, and its
  // failure ends the check in the user's favour. The search depends on it: what may be read is told
  // by reading it, and a folder is never skipped because its descriptor looks forbidding.
  Access& security = TheMachine().Security();
  const Text longPath = ToLongPath(path);
  std::vector<std::byte> descriptor;
  std::uint32_t lengthNeeded = 0;
  if (!security.GetFileSecurityW(longPath, OWNER_GROUP_DACL_SECURITY_INFORMATION, descriptor,
                                 lengthNeeded))
    return desired;
  if (lengthNeeded == 0) return 0;

  descriptor.resize(lengthNeeded);
  if (!security.GetFileSecurityW(longPath, OWNER_GROUP_DACL_SECURITY_INFORMATION, descriptor,
                                 lengthNeeded))
    return desired;
  return CheckedAccess(descriptor, desired);
}

bool IsWindowsNT() {
  if (!isWindowsNT)
    isWindowsNT = TheMachine().Process().GetVersionExW().dwPlatformId == VER_PLATFORM_WIN32_NT;
  return *isWindowsNT;
}

void ResetIsWindowsNT() {
  isWindowsNT.reset();
}

bool FolderCanBeListed(TextView path) {
  const RedirectionOff redirection;
  const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(ToLongPath(path));
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    return false;
  Finding& finding = TheMachine().Find();
  WIN32_FIND_DATAW entry;
  const FindHandle search(finding.FindFirstFileW(ToLongPath(AddBackslash(path)) + u"*", entry));
  if (!search.IsValid()) return false;
  do {
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return true;
  } while (finding.FindNextFileW(search.Get(), entry));
  return TheMachine().GetLastError() == ERROR_NO_MORE_FILES;
}

}  // namespace quillmarsh
