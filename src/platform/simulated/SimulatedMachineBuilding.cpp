// SPDX-License-Identifier: MIT
// Building and changing the drives and trees of the simulated machine by hand.
#include <stdexcept>

#include "platform/simulated/SimulatedMachine.h"
#include "platform/simulated/SimulatedWorld.h"

namespace quillmarsh {

using simulated::LastLink;
using simulated::LinkKind;
using simulated::Node;
using simulated::NoPathLimit;
using simulated::ParsedPath;
using simulated::Resolved;
using simulated::Volume;
using simulated::World;

namespace {

[[noreturn]] void Refuse(TextView path, const char* reason) {
  throw std::logic_error(ToUtf8(path) + ": " + reason);
}

Volume& ExistingVolume(World& world, TextView root) {
  Volume* const volume = world.disk.FindVolume(root);
  if (volume == nullptr) Refuse(root, "there is no such drive");
  return *volume;
}

Node& ExistingNode(World& world, TextView path) {
  const Resolved place =
      world.Resolve(simulated::ParsePath(path, {}, NoPathLimit, false), LastLink::Keep);
  if (place.error != 0) Refuse(path, "there is no such entry");
  return *place.node;
}

Node& ExistingBelowRoot(World& world, TextView path) {
  Node& node = ExistingNode(world, path);
  if (node.parent == nullptr) Refuse(path, "a root stays");
  return node;
}

SimulatedFacts WithTimes(const World& world, SimulatedFacts facts) {
  for (std::int64_t SimulatedFacts::*time :
       {&SimulatedFacts::created, &SimulatedFacts::accessed, &SimulatedFacts::written})
    if (facts.*time == 0) facts.*time = world.clock;
  return facts;
}

// The folder that a path's last component lies in, made where it is missing.
Node& FolderAbove(World& world, ParsedPath path, TextView given) {
  path.components.pop_back();
  path.endsInBackslash = false;
  const Resolved place = world.Resolve(path, LastLink::Follow);
  if (place.error == 0) {
    if (!place.node->IsFolder()) Refuse(given, "a file stands in the way");
    return *place.node;
  }
  if (path.components.empty() ||
      (place.error != ERROR_FILE_NOT_FOUND && place.error != ERROR_PATH_NOT_FOUND))
    Refuse(given, "its drive is not there");
  Node& above = FolderAbove(world, path, given);
  if (world.disk.FindChild(above, path.components.back()) != nullptr)
    Refuse(given, "something that leads nowhere stands in the way");
  return world.disk.AddChild(above, path.components.back(),
                             WithTimes(world, {FILE_ATTRIBUTE_DIRECTORY}), true);
}

// The folder and the name of a new entry. Many entries in a row go into one folder, so the last
// folder is kept, as long as nothing was removed or moved since.
Node& FolderForNew(World& world, TextView path, Text& name) {
  const std::size_t end = path.rfind(u'\\');
  if (end != TextView::npos && world.lastFolder != nullptr &&
      world.lastFolderPath == path.substr(0, end) && simulated::IsPlainName(path.substr(end + 1))) {
    name = path.substr(end + 1);
    return *world.lastFolder;
  }
  const ParsedPath parsed = simulated::ParsePath(path, {}, NoPathLimit, false);
  if (parsed.error != 0 || parsed.components.empty()) Refuse(path, "no path for a new entry");
  Node& folder = FolderAbove(world, parsed, path);
  name = parsed.components.back();
  if (path.ends_with(name)) {
    world.lastFolder = &folder;
    world.lastFolderPath = path.substr(0, path.size() - name.size() - 1);
  }
  return folder;
}

Node& NewEntry(World& world, TextView path, const SimulatedFacts& facts, bool isFolder) {
  Text name;
  Node& folder = FolderForNew(world, path, name);
  const bool mayBeShortName = name.find(u'~') != Text::npos;
  if (mayBeShortName && world.disk.FindChild(folder, name) != nullptr)
    Refuse(path, "the name is taken");
  return world.disk.AddChild(folder, name, WithTimes(world, facts), isFolder);
}

void MakeLink(World& world, TextView path, LinkKind kind, TextView target, bool isFolder) {
  Node& node = NewEntry(world, path, {FILE_ATTRIBUTE_REPARSE_POINT}, isFolder);
  if (!isFolder) node.attributes |= FILE_ATTRIBUTE_ARCHIVE;
  node.Extra().link = kind;
  node.Extra().linkTarget = target;
  node.Extra().reparseTag =
      kind == LinkKind::SymbolicLink ? IO_REPARSE_TAG_SYMLINK : IO_REPARSE_TAG_MOUNT_POINT;
}

}  // namespace

void SimulatedMachine::AddDrive(const SimulatedDrive& drive) {
  if (drive.root.size() < 3 || !drive.root.ends_with(u'\\'))
    Refuse(drive.root, "a root ends in a backslash");
  mWorld->disk.AddVolume(drive);
}

void SimulatedMachine::AddSecondRoot(TextView root, TextView existingRoot) {
  if (mWorld->disk.FindVolume(root) != nullptr) Refuse(root, "the root is taken");
  ExistingVolume(*mWorld, existingRoot).roots.emplace_back(root);
}

Text SimulatedMachine::AddVolumeWithoutLetter(const SimulatedDrive& drive) {
  SimulatedDrive hidden = drive;
  hidden.root.clear();
  return mWorld->disk.AddVolume(hidden).volumeName;
}

void SimulatedMachine::SetReady(TextView root, bool ready) {
  ExistingVolume(*mWorld, root).facts.ready = ready;
}
void SimulatedMachine::SetFreeBytes(TextView root, std::uint64_t bytes) {
  ExistingVolume(*mWorld, root).facts.freeBytes = bytes;
}
void SimulatedMachine::SetReadOnlyMedium(TextView root, bool readOnly) {
  ExistingVolume(*mWorld, root).facts.readOnly = readOnly;
}
void SimulatedMachine::SetAnswering(TextView root, bool answers) {
  ExistingVolume(*mWorld, root).answers = answers;
}
void SimulatedMachine::RemoveDrive(TextView root) {
  mWorld->lastFolder = nullptr;
  ExistingVolume(*mWorld, root).present = false;
}

void SimulatedMachine::AddFolder(TextView path, const SimulatedFacts& facts) {
  NewEntry(*mWorld, path, facts, true);
}

void SimulatedMachine::AddFile(TextView path, const FileContents& contents,
                               const SimulatedFacts& facts) {
  mWorld->disk.SetContents(NewEntry(*mWorld, path, facts, false), contents);
}

void SimulatedMachine::AddJunction(TextView path, TextView target) {
  MakeLink(*mWorld, path, LinkKind::Junction, target, true);
}

void SimulatedMachine::AddMountPoint(TextView path, TextView rootOrVolumeName) {
  Volume& volume = ExistingVolume(*mWorld, rootOrVolumeName);
  MakeLink(*mWorld, path, LinkKind::MountPoint, {}, true);
  Node& node = ExistingNode(*mWorld, path);
  node.extra->volume = &volume;
  if (volume.mountedAt == nullptr) volume.mountedAt = &node;
}

void SimulatedMachine::AddFileLink(TextView path, TextView target) {
  MakeLink(*mWorld, path, LinkKind::SymbolicLink, target, false);
}
void SimulatedMachine::AddFolderLink(TextView path, TextView target) {
  MakeLink(*mWorld, path, LinkKind::SymbolicLink, target, true);
}

void SimulatedMachine::SetReparseTag(TextView path, std::uint32_t tag) {
  Node& node = ExistingNode(*mWorld, path);
  node.Extra().reparseTag = tag;
  node.attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
}

void SimulatedMachine::SetContents(TextView path, const FileContents& contents) {
  Node& node = ExistingNode(*mWorld, path);
  if (node.IsFolder()) Refuse(path, "a folder holds no bytes");
  mWorld->disk.SetContents(node, contents);
}

void SimulatedMachine::SetAttributes(TextView path, std::uint32_t attributes) {
  constexpr std::uint32_t fixed = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  Node& node = ExistingNode(*mWorld, path);
  node.attributes = (attributes & ~(fixed | FILE_ATTRIBUTE_NORMAL)) | (node.attributes & fixed);
}

void SimulatedMachine::SetTimes(TextView path, std::int64_t created, std::int64_t accessed,
                                std::int64_t written) {
  Node& node = ExistingNode(*mWorld, path);
  node.created = created;
  node.accessed = accessed;
  node.written = written;
}

void SimulatedMachine::SetCompressedSize(TextView path, std::uint64_t bytes) {
  Node& node = ExistingNode(*mWorld, path);
  node.Extra().compressedSize = bytes;
  node.attributes |= FILE_ATTRIBUTE_COMPRESSED;
}

void SimulatedMachine::SetShortName(TextView path, TextView name) {
  mWorld->disk.SetShortName(ExistingBelowRoot(*mWorld, path), name);
}

void SimulatedMachine::Remove(TextView path) {
  mWorld->lastFolder = nullptr;
  mWorld->disk.Remove(ExistingBelowRoot(*mWorld, path));
}

void SimulatedMachine::Move(TextView from, TextView to) {
  mWorld->lastFolder = nullptr;
  Node& node = ExistingBelowRoot(*mWorld, from);
  const ParsedPath target = simulated::ParsePath(to, {}, NoPathLimit, false);
  if (target.error != 0 || target.components.empty()) Refuse(to, "no path for an entry");
  mWorld->disk.Move(node, FolderAbove(*mWorld, target, to), target.components.back());
}

void SimulatedMachine::DenyAccess(TextView path, std::uint32_t rights, bool below) {
  Node& node = ExistingNode(*mWorld, path);
  if ((VolumeOf(node)->Flags() & FS_PERSISTENT_ACLS) == 0)
    Refuse(path, "its volume keeps no access lists");
  const std::uint32_t allowed = node.extra ? node.extra->allowed : 0xFFFFFFFF;
  mWorld->disk.SetAccess(node, allowed, rights, below);
}

void SimulatedMachine::AllowOnly(TextView path, std::uint32_t rights, bool below) {
  Node& node = ExistingNode(*mWorld, path);
  if ((VolumeOf(node)->Flags() & FS_PERSISTENT_ACLS) == 0)
    Refuse(path, "its volume keeps no access lists");
  const std::uint32_t denied = node.extra ? node.extra->denied : 0;
  mWorld->disk.SetAccess(node, rights, denied, below);
}

HANDLE SimulatedMachine::HoldOpen(TextView path, std::uint32_t share, std::uint32_t access) {
  const ParsedPath parsed = simulated::ParsePath(path, {}, NoPathLimit, false);
  const Resolved place = mWorld->Resolve(parsed, LastLink::Follow);
  if (place.error != 0) Refuse(path, "there is no such entry");
  const std::uint32_t rights = MapGenericMask(
      access, {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS});
  const HANDLE handle = mWorld->NewHandle();
  mWorld->files[handle] = {place.node, place.volume, rights, share, 0, true};
  return handle;
}

void SimulatedMachine::LetGo(HANDLE held) {
  if (mWorld->files.erase(held) == 0) throw std::logic_error("the handle is not open");
}

}  // namespace quillmarsh
