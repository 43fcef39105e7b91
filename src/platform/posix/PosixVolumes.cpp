// SPDX-License-Identifier: MIT
// Questions about drives, and paths as people and other programs see them.
#include "platform/posix/PosixVolumes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/NameMapping.h"
#include "platform/posix/NativeWalk.h"
#include "platform/posix/VolumeFacts.h"

namespace quillmarsh {
namespace {

std::uint32_t ReadFreeSpace(const PathResolver& resolver, const Drive& drive, DiskSpace& space) {
  UniqueFd root;
  if (const std::uint32_t error = resolver.OpenRoot(drive, root)) return error;
  struct statvfs facts {};
  if (::fstatvfs(root.Get(), &facts) != 0) return SystemErrorFromErrno(errno);
  const std::uint64_t unit = facts.f_frsize;
  space = {facts.f_bavail * unit, facts.f_blocks * unit, facts.f_bfree * unit};
  return ERROR_SUCCESS;
}

}  // namespace

PosixVolumes::PosixVolumes(CallState& state, PosixContext& context)
    : Volumes(state), mContext(context) {}

const Drive* PosixVolumes::DriveOfRoot(TextView root, std::shared_ptr<const DriveTable>& table) {
  Located located;
  std::uint32_t error = mContext.Locate(root, located);
  if (error == 0 && !located.path.relative.empty()) error = ERROR_INVALID_NAME;
  SetLastError(error);
  table = std::move(located.table);
  return error == 0 ? located.drive : nullptr;
}

Text PosixVolumes::DoGetDriveStrings() {
  mContext.letters->Refresh();
  Text strings;
  for (const Drive& drive : mContext.letters->Current()->drives) {
    strings += static_cast<char16_t>(drive.letter);
    strings += TextView(u":\\\0", 3);
  }
  return strings;
}

std::uint32_t PosixVolumes::DoGetDriveType(TextView root) {
  std::shared_ptr<const DriveTable> table;
  const Drive* const drive = DriveOfRoot(root, table);
  return drive == nullptr ? DRIVE_NO_ROOT_DIR : DriveTypeOf(*drive);
}

bool PosixVolumes::DoGetVolumeInformation(TextView root, VolumeInformation& information) {
  std::shared_ptr<const DriveTable> table;
  const Drive* const drive = DriveOfRoot(root, table);
  if (drive == nullptr) return false;
  if (mKnownTable != table) {
    mKnown.clear();
    mKnownTable = table;
  }
  const auto known = mKnown.find(drive->letter);
  information = known != mKnown.end()
                    ? known->second
                    : mKnown.emplace(drive->letter, VolumeInformationOf(*drive)).first->second;
  return true;
}

bool PosixVolumes::DoGetFreeSpace(TextView root, DiskSpace& space) {
  std::shared_ptr<const DriveTable> table;
  const Drive* const drive = DriveOfRoot(root, table);
  if (drive == nullptr) return false;
  const std::uint32_t error = mContext.Run(
      drive->kind.answers, space, [table, drive, resolver = mContext.resolver](DiskSpace& found) {
        return ReadFreeSpace(*resolver, *drive, found);
      });
  return error == 0 || Fail(error, false);
}

// A link to a folder is no mount, although both are told as junctions. The table answers without
// touching a file system; what it does not know may have been mounted since.
Text PosixVolumes::DoGetMountVolume(TextView path) {
  if (!path.ends_with(u'\\')) return Fail(ERROR_INVALID_NAME, Text());
  Located located;
  if (const std::uint32_t error = mContext.Locate(path, located)) return Fail(error, Text());
  const std::string native = JoinNative(located.drive->mount->point, located.path.relative);
  if (const Mount* mount = located.table->mounts.RootedAt(native)) return VolumeNameOf(*mount);
  EntryFacts entry;
  if (const std::uint32_t error = mContext.LookAt(located, entry)) return Fail(error, Text());
  if (entry.kind != EntryKind::MountRoot) return Fail(ERROR_NOT_A_REPARSE_POINT, Text());
  Mount unknown;
  unknown.device =
      std::to_string(entry.facts.stx_dev_major) + ":" + std::to_string(entry.facts.stx_dev_minor);
  unknown.root = std::to_string(entry.facts.stx_ino);
  return VolumeNameOf(unknown);
}

// Labels are set by the tools of each file system, for which the volume must not be in use.
bool PosixVolumes::DoSetLabel(TextView root, TextView /*label*/) {
  std::shared_ptr<const DriveTable> table;
  return DriveOfRoot(root, table) != nullptr && Fail(ERROR_NOT_SUPPORTED, false);
}

CanonicalLocation PosixVolumes::LocationOf(std::string_view native, MissingTail tail) {
  // The mounts are read after the walk, which may itself have mounted something.
  CanonicalPath canonical;
  std::uint32_t error =
      mContext.Run(false, canonical, [own = std::string(native), tail](CanonicalPath& found) {
        found = Canonical(own, tail);
        return found.parentMissing ? ERROR_PATH_NOT_FOUND : SystemErrorFromErrno(found.error);
      });
  std::optional<Text> form;
  if (error == 0) {
    mContext.letters->Refresh();
    form = mContext.letters->Current()->DriveForm(canonical.path);
    if (!form) error = ERROR_INVALID_DRIVE;
  }
  if (error != 0) {
    SetLastError(error);
    return {{}, error};
  }
  return {std::move(*form), ERROR_SUCCESS};
}

CanonicalLocation PosixVolumes::DoLocationFromNative(std::string_view native) {
  return LocationOf(native, MissingTail::Refused);
}

CanonicalLocation PosixVolumes::DoNewLocationFromNative(std::string_view native) {
  return LocationOf(native, MissingTail::Kept);
}

Text PosixVolumes::DoTextFromNative(std::string_view native, NativeTextKind kind) const {
  // The characters that keep their meaning stand between pieces that are mapped as names are.
  const std::string_view kept = kind == NativeTextKind::Mask ? "*?" : "/";
  Text text;
  while (!native.empty()) {
    const std::size_t end = std::min(native.find_first_of(kept), native.size());
    AppendMappedName(native.substr(0, end), text);
    if (end == native.size()) break;
    text += native[end] == '/' ? u'\\' : static_cast<char16_t>(native[end]);
    native.remove_prefix(end + 1);
  }
  return text;
}

Text PosixVolumes::DoShownPath(TextView path) const {
  std::string native = DoNativePath(path);
  // A name alone has bytes of its own; what is left is a path of a drive that is not here.
  const bool isName = native.empty() && path.find(u'\\') == TextView::npos;
  if (native.empty() && !(isName && AppendNameBytes(path, native))) native = ToUtf8(path);
  return ShownText(native);
}

std::string PosixVolumes::DoNativePath(TextView path) const {
  Located located;
  if (mContext.Locate(path, located) != 0) return {};
  std::string native = JoinNative(located.drive->mount->point, located.path.relative);
  if (located.path.endsInBackslash && !native.ends_with('/')) native += '/';
  return native;
}

std::vector<Text> PosixVolumes::DoPlacesWithoutLetter() const {
  std::vector<Text> places;
  for (const std::string& point : mContext.letters->Current()->withoutLetter)
    places.push_back(ShownText(point));
  return places;
}

}  // namespace quillmarsh
