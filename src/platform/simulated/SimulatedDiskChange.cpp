// SPDX-License-Identifier: MIT
// Deleting, moving and copying in the simulated tree. Everything that can refuse is asked before
// anything is changed, so an operation happens whole or not at all.
#include <algorithm>

#include "platform/simulated/SimulatedRoles.h"

namespace quillmarsh::simulated {

namespace {

constexpr std::uint32_t shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::uint32_t knownMoveFlags =
    MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED | MOVEFILE_WRITE_THROUGH;

// Both ends of a move or a copy. The target's `node` is set where something is there already; where
// it is not, its `parent` can take an entry of the name.
struct Ends {
  Resolved source;
  Resolved target;
  ParsedPath targetPath;

  [[nodiscard]] const Text& NewName() const { return targetPath.components.back(); }
  [[nodiscard]] bool TargetIsRoot() const { return targetPath.components.empty(); }
  [[nodiscard]] bool TargetExists() const { return target.node != nullptr; }
};

std::uint32_t WhyNotReplaced(const World& world, const Resolved& place) {
  if (place.node->IsFolder()) return ERROR_ACCESS_DENIED;
  if ((place.node->attributes & FILE_ATTRIBUTE_READONLY) != 0) return ERROR_ACCESS_DENIED;
  return world.WhyNotTakenAway(place);
}

// 0, or the code with which the target's place refuses the moved entry.
std::uint32_t WhyNotMovedTo(const World& world, const Ends& ends, bool replaces) {
  const bool isFolder = ends.source.node->IsFolder();
  if (!ends.TargetExists()) {
    const std::uint32_t right = isFolder ? FILE_ADD_SUBDIRECTORY : FILE_WRITE_DATA;
    return world.WhyNotAdded(*ends.target.parent, *ends.target.volume, right);
  }
  if (!replaces) return ERROR_ALREADY_EXISTS;
  return isFolder ? ERROR_ACCESS_DENIED : WhyNotReplaced(world, ends.target);
}

// Whether the target's volume has room for the source, the replaced file being gone.
bool Fits(const Ends& ends) {
  const std::uint64_t replaced = ends.TargetExists() ? ends.target.node->size : 0;
  const std::uint64_t room = ends.target.volume->facts.freeBytes;
  const std::uint64_t size = ends.source.node->size;
  return size <= replaced || size - replaced <= room;
}

void TakeAway(World& world, const Resolved& place) {
  SimulatedDrive& facts = place.volume->facts;
  facts.freeBytes =
      std::min(facts.freeBytes + place.node->size, std::max(facts.freeBytes, facts.totalBytes));
  place.parent->written = world.clock;
  world.lastFolder = nullptr;
  world.disk.Remove(*place.node);
}

// Contents, write time and attributes.
void Overwrite(World& world, const Ends& ends) {
  const Node& source = *ends.source.node;
  Node& copy = *ends.target.node;
  std::uint64_t& freeBytes = ends.target.volume->facts.freeBytes;
  freeBytes = freeBytes + copy.size - std::min(freeBytes + copy.size, source.size);
  world.disk.CopyContents(source, copy);
  copy.attributes = (source.attributes & storableAttributes) | FILE_ATTRIBUTE_ARCHIVE;
  copy.written = source.written;
}

// The same under a name that must be free.
void AddCopy(World& world, Ends ends, std::int64_t created) {
  ends.target.node = &world.AddNow(*ends.target.parent, ends.NewName(), 0, false);
  ends.target.node->created = created;
  Overwrite(world, ends);
}

std::uint32_t Rename(World& world, const Ends& ends, bool replaces) {
  Node& source = *ends.source.node;
  std::uint32_t refusal = world.WhyNotTakenAway(ends.source);
  if (refusal != 0) return refusal;
  const bool isOntoItself = ends.target.node == &source;
  if (!isOntoItself) {
    if (Disk::IsWithin(*ends.target.parent, source)) return ERROR_SHARING_VIOLATION;
    refusal = WhyNotMovedTo(world, ends, replaces);
    if (refusal != 0) return refusal;
    if (ends.TargetExists()) TakeAway(world, ends.target);
  }
  ends.source.parent->written = world.clock;
  ends.target.parent->written = world.clock;
  world.lastFolder = nullptr;
  if (!isOntoItself || source.Name() != TextView(ends.NewName()))
    world.disk.Move(source, *ends.target.parent, ends.NewName());
  return ERROR_SUCCESS;
}

std::uint32_t WhyNotRead(const World& world, const Resolved& place) {
  if (place.node->IsFolder() || !world.Grants(*place.node, FILE_READ_DATA))
    return ERROR_ACCESS_DENIED;
  const bool isShut = world.SharingForbids(*place.node, FILE_READ_DATA, shareAll);
  return isShut ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

// A copied file whose source refuses to be deleted counts as moved. The creation time is kept.
std::uint32_t MoveByCopy(World& world, const Ends& ends, std::uint32_t flags) {
  const Node& source = *ends.source.node;
  const bool canBeCopied = !source.IsFolder() && source.Link() == LinkKind::None;
  if (!canBeCopied || (flags & MOVEFILE_COPY_ALLOWED) == 0) return ERROR_NOT_SAME_DEVICE;
  std::uint32_t refusal = WhyNotRead(world, ends.source);
  if (refusal != 0) return refusal;
  refusal = WhyNotMovedTo(world, ends, (flags & MOVEFILE_REPLACE_EXISTING) != 0);
  if (refusal != 0) return refusal;
  if (!Fits(ends)) return ERROR_DISK_FULL;
  if (ends.TargetExists()) TakeAway(world, ends.target);
  AddCopy(world, ends, source.created);
  if (world.WhyNotTakenAway(ends.source) == ERROR_SUCCESS) TakeAway(world, ends.source);
  return ERROR_SUCCESS;
}

// 0, or the code with which the target refuses to become a copy.
std::uint32_t WhyNotCopiedTo(const World& world, const Ends& ends) {
  if (!ends.TargetExists())
    return world.WhyNotAdded(*ends.target.parent, *ends.target.volume, FILE_WRITE_DATA);
  const Node& target = *ends.target.node;
  constexpr std::uint32_t notOverwritten = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
  if (target.IsFolder() || (target.attributes & notOverwritten) != 0) return ERROR_ACCESS_DENIED;
  if (&target == ends.source.node) return ERROR_SHARING_VIOLATION;
  if (!world.Grants(target, FILE_WRITE_DATA)) return ERROR_ACCESS_DENIED;
  if (ends.target.volume->facts.readOnly) return ERROR_WRITE_PROTECT;
  const bool isShut = world.SharingForbids(target, FILE_WRITE_DATA, shareAll);
  return isShut ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

// The codes that say nothing more than that there is nothing at the target yet.
bool CanBeMade(const Resolved& place) {
  return place.error == ERROR_FILE_NOT_FOUND && place.parent != nullptr;
}

}  // namespace

std::uint32_t World::WhyNotTakenAway(const Resolved& place) const {
  if (!Grants(*place.node, DELETE_ACCESS)) return ERROR_ACCESS_DENIED;
  if (place.volume->facts.readOnly) return ERROR_WRITE_PROTECT;
  if (SharingForbids(*place.node, DELETE_ACCESS, shareAll)) return ERROR_SHARING_VIOLATION;
  const bool holdsOpenFile = std::ranges::any_of(files, [&](const auto& entry) {
    return entry.second.node != place.node && Disk::IsWithin(*entry.second.node, *place.node);
  });
  return holdsOpenFile ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

bool SimulatedDiskChange::DoDeleteFile(TextView path) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, false);
  const std::uint32_t refusal = WhyNotReplaced(*mWorld, place);
  if (refusal != 0) return Fail(refusal, false);
  TakeAway(*mWorld, place);
  return true;
}

bool SimulatedDiskChange::DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) {
  if ((flags & ~knownMoveFlags) != 0) return Fail(ERROR_INVALID_PARAMETER, false);
  Ends ends;
  ends.source = mWorld->Look(existing, LastLink::Keep);
  if (ends.source.error != 0) return Fail(ends.source.error, false);
  if (ends.source.parent == nullptr) return Fail(ERROR_ACCESS_DENIED, false);
  if (mWorld->SharingForbids(*ends.source.node, DELETE_ACCESS, shareAll))
    return Fail(ERROR_SHARING_VIOLATION, false);
  ends.targetPath = mWorld->Parse(newPath, UsualPathLimit, false);
  ends.target = mWorld->Resolve(ends.targetPath, LastLink::Keep);
  const bool isFolder = ends.source.node->IsFolder();
  if (ends.targetPath.endsInBackslash && !isFolder && !ends.TargetIsRoot())
    return Fail(ERROR_INVALID_NAME, false);
  if (ends.target.error != 0 && !CanBeMade(ends.target)) return Fail(ends.target.error, false);
  const bool replaces = (flags & MOVEFILE_REPLACE_EXISTING) != 0;
  if (ends.TargetIsRoot())
    return Fail(replaces ? ERROR_ACCESS_DENIED : ERROR_ALREADY_EXISTS, false);
  const std::uint32_t error = ends.target.volume == ends.source.volume
                                  ? Rename(*mWorld, ends, replaces)
                                  : MoveByCopy(*mWorld, ends, flags);
  return error == 0 || Fail(error, false);
}

bool SimulatedDiskChange::DoCopyFile(TextView existing, TextView newPath, bool failIfExists) {
  Ends ends;
  ends.source = mWorld->Look(existing, LastLink::Follow);
  if (ends.source.error != 0) return Fail(ends.source.error, false);
  std::uint32_t refusal = WhyNotRead(*mWorld, ends.source);
  if (refusal != 0) return Fail(refusal, false);
  ends.targetPath = mWorld->Parse(newPath, UsualPathLimit, false);
  ends.target = mWorld->Resolve(ends.targetPath, LastLink::Follow);
  if (ends.target.error != 0 && !CanBeMade(ends.target)) return Fail(ends.target.error, false);
  if (ends.TargetExists() && failIfExists) return Fail(ERROR_FILE_EXISTS, false);
  if (ends.targetPath.endsInBackslash && !ends.TargetExists())
    return Fail(ERROR_INVALID_NAME, false);
  refusal = WhyNotCopiedTo(*mWorld, ends);
  if (refusal != 0) return Fail(refusal, false);
  if (!Fits(ends)) return Fail(ERROR_DISK_FULL, false);
  if (ends.TargetExists())
    Overwrite(*mWorld, ends);
  else
    AddCopy(*mWorld, ends, mWorld->clock);
  return true;
}

bool SimulatedDiskChange::DoRemoveDirectory(TextView path) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, false);
  if (!place.node->IsFolder()) return Fail(ERROR_DIRECTORY, false);
  if (place.parent == nullptr) return Fail(ERROR_ACCESS_DENIED, false);
  const std::uint32_t refusal = mWorld->WhyNotTakenAway(place);
  if (refusal != 0) return Fail(refusal, false);
  if (!place.node->folder->byName.empty()) return Fail(ERROR_DIR_NOT_EMPTY, false);
  TakeAway(*mWorld, place);
  return true;
}

bool SimulatedDiskChange::DoSetAttributes(TextView path, std::uint32_t attributes) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, false);
  if (!mWorld->Grants(*place.node, FILE_WRITE_ATTRIBUTES)) return Fail(ERROR_ACCESS_DENIED, false);
  if (place.volume->facts.readOnly) return Fail(ERROR_WRITE_PROTECT, false);
  place.node->attributes =
      (place.node->attributes & ~storableAttributes) | (attributes & storableAttributes);
  return true;
}

}  // namespace quillmarsh::simulated
