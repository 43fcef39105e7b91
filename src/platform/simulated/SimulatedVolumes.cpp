// SPDX-License-Identifier: MIT
// Drives, shares and mounted volumes of the simulated machine, and its path texts at the edges.
#include <algorithm>

#include "base/CaseMapping.h"
#include "platform/simulated/SimulatedRoles.h"

namespace quillmarsh::simulated {

namespace {

constexpr std::uint32_t ERROR_DIR_NOT_ROOT = 144;
constexpr std::uint32_t ERROR_LABEL_TOO_LONG = 154;

}  // namespace

Text SimulatedVolumes::DoGetDriveStrings() {
  std::vector<Text> roots;
  for (const Volume& volume : mWorld->disk.Volumes()) {
    if (!volume.present) continue;
    for (const Text& root : volume.roots)
      if (!root.starts_with(u'\\')) roots.push_back(UpperCaseText(root));
  }
  std::ranges::sort(roots);
  Text list;
  for (const Text& root : roots) {
    list += root;
    list += u'\0';
  }
  return list;
}

Volume* SimulatedVolumes::VolumeAtRoot(TextView root) {
  Volume* const none = nullptr;
  if (!root.ends_with(u'\\')) return Fail(ERROR_INVALID_NAME, none);
  const ParsedPath parsed = mWorld->Parse(root, UsualPathLimit, false);
  const Resolved place = mWorld->Resolve(parsed, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, none);
  if (place.node->parent != nullptr) return Fail(ERROR_DIR_NOT_ROOT, none);
  return place.volume;
}

std::uint32_t SimulatedVolumes::DoGetDriveType(TextView root) {
  Text withBackslash(root);
  if (root.size() == 2 && root[1] == u':') withBackslash += u'\\';
  // The letter tells the type, also while there is nothing in the drive.
  if (const Volume* const volume = mWorld->disk.FindVolume(withBackslash))
    return volume->facts.type;
  const Volume* const mounted = VolumeAtRoot(withBackslash);
  return mounted != nullptr ? mounted->facts.type : DRIVE_NO_ROOT_DIR;
}

bool SimulatedVolumes::DoGetVolumeInformation(TextView root, VolumeInformation& information) {
  const Volume* const volume = VolumeAtRoot(root);
  if (volume == nullptr) return false;
  information.label = volume->facts.label;
  information.serialNumber = volume->facts.serialNumber;
  information.maximumComponentLength = volume->facts.maximumComponentLength;
  information.fileSystemFlags = volume->Flags();
  information.fileSystemName = volume->facts.fileSystem;
  return true;
}

bool SimulatedVolumes::DoGetFreeSpace(TextView root, DiskSpace& space) {
  const Resolved place = mWorld->Look(root, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, false);
  if (!place.node->IsFolder()) return Fail(ERROR_DIRECTORY, false);
  space.freeBytesAvailableToCaller = place.volume->facts.freeBytes;
  space.totalNumberOfBytes = place.volume->facts.totalBytes;
  space.totalNumberOfFreeBytes = place.volume->facts.freeBytes;
  return true;
}

Text SimulatedVolumes::DoGetMountVolume(TextView path) {
  if (!path.ends_with(u'\\')) return Fail(ERROR_INVALID_NAME, Text());
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, Text());
  if (place.node->Link() == LinkKind::MountPoint) return place.node->extra->volume->volumeName;
  if (place.node->parent != nullptr) return Fail(ERROR_NOT_A_REPARSE_POINT, Text());
  if (place.volume->facts.type == DRIVE_REMOTE) return Fail(ERROR_PATH_NOT_FOUND, Text());
  return place.volume->volumeName;
}

bool SimulatedVolumes::DoSetLabel(TextView root, TextView label) {
  Volume* const volume = VolumeAtRoot(root);
  if (volume == nullptr) return false;
  if (volume->facts.readOnly) return Fail(ERROR_WRITE_PROTECT, false);
  if (label.size() > (volume->facts.fileSystem == u"NTFS" ? 32U : 11U))
    return Fail(ERROR_LABEL_TOO_LONG, false);
  volume->facts.label = label;
  return true;
}

CanonicalLocation SimulatedVolumes::DoLocationFromNative(std::string_view native) {
  const Text path = FromUtf8(native);
  const ParsedPath parsed = mWorld->Parse(path, NoPathLimit, false);
  const Resolved place = mWorld->Resolve(parsed, LastLink::Follow);
  if (place.error != 0) return {{}, place.error};
  return {PathOf(*place.node), ERROR_SUCCESS};
}

CanonicalLocation SimulatedVolumes::DoNewLocationFromNative(std::string_view native) {
  CanonicalLocation location = DoLocationFromNative(native);
  const bool isMissing =
      location.error == ERROR_FILE_NOT_FOUND || location.error == ERROR_PATH_NOT_FOUND;
  const std::size_t last = native.find_last_of('\\');
  if (!isMissing || last == std::string_view::npos || last + 1 == native.size()) return location;
  CanonicalLocation above = DoNewLocationFromNative(native.substr(0, last));
  if (above.error != 0) return above;
  if (above.path.back() != u'\\') above.path += u'\\';
  return {above.path + FromUtf8(native.substr(last + 1)), ERROR_SUCCESS};
}

Text SimulatedVolumes::DoShownPath(TextView path) const {
  Text shown(path);
  for (char16_t& unit : shown)
    if (unit < 0x20) unit = static_cast<char16_t>(u'\u2400' + unit);
  return shown;
}

std::string SimulatedVolumes::DoNativePath(TextView path) const {
  return ToUtf8(path);
}

std::vector<Text> SimulatedVolumes::DoPlacesWithoutLetter() const {
  return mWorld->placesWithoutLetter;
}

}  // namespace quillmarsh::simulated
