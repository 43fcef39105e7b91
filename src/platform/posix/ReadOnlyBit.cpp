// SPDX-License-Identifier: MIT
// Permissions are changed through an open handle, so that no link is followed and no other file is
// met that has taken the name meanwhile.
#include "platform/posix/ReadOnlyBit.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/ErrnoCodes.h"

namespace quillmarsh {
namespace {

constexpr mode_t AllPermissions = 07777;
constexpr mode_t WriteOfOwner = S_IWUSR;
constexpr mode_t WriteOfAll = S_IWUSR | S_IWGRP | S_IWOTH;

int FactsOf(int file, struct statx& facts) {
  return ::statx(file, "", AT_EMPTY_PATH, FactsWanted, &facts) == 0 ? 0 : errno;
}

// A handle that gives no right to read cannot change anything by itself, but its name can.
int ChangePermissions(int file, mode_t permissions, ChangePermit& permit) {
  const std::string name = "/proc/self/fd/" + std::to_string(file);
  const int error = permit.Use([&] { return ::chmod(name.c_str(), permissions); });
  return error == ENOENT ? EOPNOTSUPP : error;
}

bool HasBit(const struct statx& facts) {
  return (facts.stx_mode & WriteOfOwner) == 0;
}

// Some file systems know only one write permission for all together, and say yes to any other wish
// without fulfilling it.
std::uint32_t ChangeBit(int file, bool readOnly, ChangePermit& permit, struct statx& facts) {
  for (const mode_t bits : {WriteOfOwner, WriteOfAll}) {
    const mode_t before = facts.stx_mode & AllPermissions;
    const mode_t wanted = readOnly ? before & ~bits : before | bits;
    if (const int error = ChangePermissions(file, wanted, permit))
      return SystemErrorFromErrno(error);
    if (const int error = FactsOf(file, facts)) return SystemErrorFromErrno(error);
    if (HasBit(facts) == readOnly) return ERROR_SUCCESS;
  }
  return ERROR_NOT_SUPPORTED;
}

}  // namespace

std::uint32_t SetReadOnlyBit(OpenFolders& folders, const Located& located, bool readOnly,
                             ChangePermit& permit, std::optional<LiftedBit>& lifted) {
  FolderEntry place;
  if (const std::uint32_t error = OpenEntry(folders, located, place)) return error;
  if (!place.exists) return ERROR_FILE_NOT_FOUND;
  if (place.IsFolder()) return ERROR_SUCCESS;
  if (located.path.endsInBackslash) return ERROR_INVALID_NAME;
  if (place.entry.kind == EntryKind::FileLink) return ERROR_SUCCESS;
  if (place.entry.kind == EntryKind::Other) return ERROR_ACCESS_DENIED;
  const UniqueFd file(
      ::openat(place.folder.Get(), place.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  struct statx facts {};
  const int error = file ? FactsOf(file.Get(), facts) : errno;
  if (error != 0) return SystemErrorFromErrno(error);
  if (!S_ISREG(facts.stx_mode)) return ERROR_ACCESS_DENIED;
  if (HasBit(facts) == readOnly) return ERROR_SUCCESS;
  if (const auto code = ChangeBit(file.Get(), readOnly, permit, facts)) return code;
  if (!readOnly && facts.stx_nlink > 1)
    lifted = LiftedBit{facts.stx_ino, facts.stx_dev_major, facts.stx_dev_minor};
  return ERROR_SUCCESS;
}

OtherNames::OtherNames(OpenFolders& folders, const Located& located,
                       const std::optional<LiftedBit>& lifted) {
  if (!lifted || located.drive == nullptr || located.path.relative.empty()) return;
  FolderEntry place;
  if (OpenPlace(folders, located, place) != 0) return;
  UniqueFd file(::openat(place.folder.Get(), place.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  struct statx facts {};
  if (!file || FactsOf(file.Get(), facts) != 0) return;
  const bool isTheFile = facts.stx_ino == lifted->file &&
                         facts.stx_dev_major == lifted->deviceMajor &&
                         facts.stx_dev_minor == lifted->deviceMinor;
  if (isTheFile) mFile = std::move(file);
}

void OtherNames::Protect(ChangePermit& permit) const {
  struct statx facts {};
  if (!mFile || FactsOf(mFile.Get(), facts) != 0 || facts.stx_nlink == 0 || HasBit(facts)) return;
  (void)ChangePermissions(mFile.Get(), facts.stx_mode & AllPermissions & ~WriteOfOwner, permit);
}

}  // namespace quillmarsh
