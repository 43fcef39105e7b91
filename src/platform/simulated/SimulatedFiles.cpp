// SPDX-License-Identifier: MIT
// Opening, reading and writing in the simulated tree, with share modes, access lists, read-only
// media and a disk that can be full; and the making of folders.
#include <algorithm>
#include <cstring>

#include "base/CheckedArithmetic.h"
#include "platform/ExecutableFormats.h"
#include "platform/simulated/SimulatedRoles.h"

namespace quillmarsh::simulated {

namespace {

constexpr std::uint32_t TRUNCATE_EXISTING = 5;
constexpr std::uint32_t FILE_FLAG_OPEN_REPARSE_POINT = 0x00200000;
constexpr std::uint32_t GENERIC_EXECUTE = 0x20000000;
constexpr std::uint32_t GENERIC_ALL = 0x10000000;

std::uint32_t SpecificRights(std::uint32_t access) {
  return MapGenericMask(
      access, {FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE, FILE_ALL_ACCESS});
}

bool MakesMissing(std::uint32_t disposition) {
  return disposition == CREATE_NEW || disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
}

bool EmptiesExisting(std::uint32_t disposition) {
  return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
}

// 0, or the code with which an entry that is there refuses to be opened.
std::uint32_t WhyNotOpened(const World& world, const Resolved& place, std::uint32_t rights,
                           std::uint32_t share, std::uint32_t disposition, std::uint32_t flags) {
  const Node& node = *place.node;
  if (disposition == CREATE_NEW) return ERROR_FILE_EXISTS;
  const bool changes =
      EmptiesExisting(disposition) || (rights & (FILE_WRITE_DATA | FILE_APPEND_DATA)) != 0;
  if (node.IsFolder()) {
    const bool asFolder =
        (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0 && !EmptiesExisting(disposition);
    if (!asFolder) return ERROR_ACCESS_DENIED;
  } else if (changes && (node.attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    return ERROR_ACCESS_DENIED;
  }
  if (!world.Grants(node, rights | FILE_READ_ATTRIBUTES)) return ERROR_ACCESS_DENIED;
  if (changes && place.volume->facts.readOnly) return ERROR_WRITE_PROTECT;
  if (disposition == CREATE_ALWAYS) {
    constexpr std::uint32_t mustBeNamed = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    if ((node.attributes & mustBeNamed & ~flags) != 0) return ERROR_ACCESS_DENIED;
  }
  const std::uint32_t used = EmptiesExisting(disposition) ? rights | FILE_WRITE_DATA : rights;
  return world.SharingForbids(node, used, share) ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

}  // namespace

HANDLE SimulatedFiles::DoCreateFile(TextView path, std::uint32_t access, std::uint32_t share,
                                    std::uint32_t disposition, std::uint32_t flags) {
  if (disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING)
    return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE);
  const ParsedPath parsed = mWorld->Parse(path, UsualPathLimit, false);
  const bool keepLink = (flags & FILE_FLAG_OPEN_REPARSE_POINT) != 0;
  Resolved place = mWorld->Resolve(parsed, keepLink ? LastLink::Keep : LastLink::Follow);
  const std::uint32_t rights = SpecificRights(access);
  std::uint32_t outcome = ERROR_SUCCESS;
  if (place.error == 0) {
    const std::uint32_t refusal = WhyNotOpened(*mWorld, place, rights, share, disposition, flags);
    if (refusal != 0) return Fail(refusal, INVALID_HANDLE);
    if (EmptiesExisting(disposition)) {
      mWorld->disk.SetContents(*place.node, {});
      place.node->written = mWorld->clock;
    }
    if (disposition == CREATE_ALWAYS)
      place.node->attributes = (flags & storableAttributes) | FILE_ATTRIBUTE_ARCHIVE;
    if (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS) outcome = ERROR_ALREADY_EXISTS;
  } else {
    const bool canBeMade = place.error == ERROR_FILE_NOT_FOUND && place.parent != nullptr;
    if (!canBeMade || !MakesMissing(disposition)) return Fail(place.error, INVALID_HANDLE);
    if (parsed.endsInBackslash) return Fail(ERROR_INVALID_NAME, INVALID_HANDLE);
    const std::uint32_t refusal =
        mWorld->WhyNotAdded(*place.parent, *place.volume, FILE_WRITE_DATA);
    if (refusal != 0) return Fail(refusal, INVALID_HANDLE);
    place.node = &mWorld->AddNow(*place.parent, parsed.components.back(),
                                 (flags & storableAttributes) | FILE_ATTRIBUTE_ARCHIVE, false);
  }
  const HANDLE handle = mWorld->NewHandle();
  mWorld->files[handle] = {place.node, place.volume, rights, share, 0, false};
  SetLastError(outcome);
  return handle;
}

OpenFile* SimulatedFiles::Opened(HANDLE file) {
  OpenFile* const none = nullptr;
  const auto found = mWorld->files.find(file);
  if (found == mWorld->files.end()) return Fail(ERROR_INVALID_HANDLE, none);
  const std::uint32_t error = mWorld->CheckVolume(*found->second.volume);
  return error != 0 ? Fail(error, none) : &found->second;
}

bool SimulatedFiles::DoGetInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) {
  const OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  const Node& node = *open->node;
  information.dwFileAttributes = World::ToldAttributes(node);
  information.ftCreationTime = FILETIME::FromTicks(node.created);
  information.ftLastAccessTime = FILETIME::FromTicks(node.accessed);
  information.ftLastWriteTime = FILETIME::FromTicks(node.written);
  information.dwVolumeSerialNumber = open->volume->facts.serialNumber;
  information.nFileSizeHigh = static_cast<std::uint32_t>(node.size >> 32U);
  information.nFileSizeLow = static_cast<std::uint32_t>(node.size);
  information.nNumberOfLinks = 1;
  information.nFileIndexHigh = static_cast<std::uint32_t>(node.number >> 32U);
  information.nFileIndexLow = static_cast<std::uint32_t>(node.number);
  return true;
}

std::uint32_t SimulatedFiles::DoReadAt(HANDLE file, std::int64_t position,
                                       std::span<std::byte> buffer, std::uint32_t& done) {
  done = 0;
  const auto found = mWorld->files.find(file);
  if (found == mWorld->files.end()) return ERROR_INVALID_HANDLE;
  const OpenFile& open = found->second;
  if (const std::uint32_t error = mWorld->CheckVolume(*open.volume)) return error;
  if ((open.access & FILE_READ_DATA) == 0) return ERROR_ACCESS_DENIED;
  if (open.node->IsFolder()) return ERROR_INVALID_FUNCTION;
  done = static_cast<std::uint32_t>(
      mWorld->disk.Read(*open.node, static_cast<std::uint64_t>(position), buffer));
  return ERROR_SUCCESS;
}

bool SimulatedFiles::DoRead(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) {
  const auto found = mWorld->files.find(file);
  const std::int64_t position = found == mWorld->files.end() ? 0 : found->second.position;
  if (const std::uint32_t error = DoReadAt(file, position, buffer, done)) return Fail(error, false);
  found->second.position += done;
  return true;
}

bool SimulatedFiles::GrowTo(OpenFile& file, std::uint64_t size) {
  Node& node = *file.node;
  std::uint64_t& freeBytes = file.volume->facts.freeBytes;
  if (size > node.size && size - node.size > freeBytes) return Fail(ERROR_DISK_FULL, false);
  std::string& bytes = mWorld->disk.BytesForWriting(node);
  freeBytes = freeBytes + node.size - size;
  bytes.resize(size);
  node.size = size;
  node.written = mWorld->clock;
  return true;
}

bool SimulatedFiles::DoWrite(HANDLE file, std::span<const std::byte> bytes, std::uint32_t& done) {
  done = 0;
  OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  const bool canWrite = (open->access & FILE_WRITE_DATA) != 0;
  const bool canAppend = (open->access & FILE_APPEND_DATA) != 0;
  if (!canWrite && !canAppend) return Fail(ERROR_ACCESS_DENIED, false);
  if (open->volume->facts.readOnly) return Fail(ERROR_WRITE_PROTECT, false);
  if (bytes.empty()) return true;
  const std::uint64_t start =
      canWrite ? static_cast<std::uint64_t>(open->position) : open->node->size;
  if (!GrowTo(*open, std::max(open->node->size, start + bytes.size()))) return false;
  std::memcpy(open->node->extra->bytes.data() + start, bytes.data(), bytes.size());
  open->position = static_cast<std::int64_t>(start + bytes.size());
  done = static_cast<std::uint32_t>(bytes.size());
  return true;
}

bool SimulatedFiles::DoSetPointer(HANDLE file, std::int64_t distance, std::int64_t& newPosition,
                                  std::uint32_t method) {
  OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  std::int64_t start = 0;
  if (method == FILE_CURRENT)
    start = open->position;
  else if (method == FILE_END)
    start = static_cast<std::int64_t>(open->node->size);
  else if (method != FILE_BEGIN)
    return Fail(ERROR_INVALID_PARAMETER, false);
  std::int64_t target = 0;
  if (AddOverflows(start, distance, target)) return Fail(ERROR_INVALID_PARAMETER, false);
  if (target < 0) return Fail(ERROR_NEGATIVE_SEEK, false);
  open->position = target;
  newPosition = target;
  return true;
}

bool SimulatedFiles::DoSetEnd(HANDLE file) {
  OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  if ((open->access & FILE_WRITE_DATA) == 0) return Fail(ERROR_ACCESS_DENIED, false);
  return GrowTo(*open, static_cast<std::uint64_t>(open->position));
}

bool SimulatedFiles::DoSetTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                                const FILETIME* written) {
  const OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  if ((open->access & FILE_WRITE_ATTRIBUTES) == 0) return Fail(ERROR_ACCESS_DENIED, false);
  if (created != nullptr) open->node->created = created->Ticks();
  if (accessed != nullptr) open->node->accessed = accessed->Ticks();
  if (written != nullptr) open->node->written = written->Ticks();
  return true;
}

bool SimulatedFiles::DoFlush(HANDLE file) {
  const OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  const bool canWrite = (open->access & (FILE_WRITE_DATA | FILE_APPEND_DATA)) != 0;
  return canWrite || Fail(ERROR_ACCESS_DENIED, false);
}

bool SimulatedFiles::DoLock(HANDLE file) {
  OpenFile* const open = Opened(file);
  if (open == nullptr) return false;
  const bool isTaken = std::ranges::any_of(mWorld->files, [&](const auto& entry) {
    return entry.second.node == open->node && entry.second.isLocked;
  });
  if (isTaken) return Fail(ERROR_LOCK_VIOLATION, false);
  open->isLocked = true;
  return true;
}

bool SimulatedFiles::DoClose(HANDLE file) {
  if (mWorld->files.erase(file) == 0) return Fail(ERROR_INVALID_HANDLE, false);
  return true;
}

std::uint32_t SimulatedFiles::DoGetAttributes(TextView path) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, INVALID_FILE_ATTRIBUTES);
  if (!mWorld->Grants(*place.node, FILE_READ_ATTRIBUTES))
    return Fail(ERROR_ACCESS_DENIED, INVALID_FILE_ATTRIBUTES);
  return World::ToldAttributes(*place.node);
}

std::uint32_t SimulatedFiles::DoGetCompressedSize(TextView path, std::uint32_t& high) {
  constexpr std::uint32_t failure = 0xFFFFFFFF;
  const Resolved place = mWorld->Look(path, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, failure);
  if (!mWorld->Grants(*place.node, FILE_READ_ATTRIBUTES)) return Fail(ERROR_ACCESS_DENIED, failure);
  const Node& node = *place.node;
  std::uint64_t size = node.size;
  if (node.extra && node.extra->compressedSize) size = *node.extra->compressedSize;
  high = static_cast<std::uint32_t>(size >> 32U);
  SetLastError(ERROR_SUCCESS);
  return static_cast<std::uint32_t>(size);
}

Text SimulatedFiles::DoGetShortPath(TextView path) {
  const ParsedPath parsed = mWorld->Parse(path, UsualPathLimit, false);
  const Resolved place = mWorld->Resolve(parsed, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, Text());
  Text shortened = path.starts_with(u"\\\\?\\") && !parsed.root.starts_with(u"\\\\?\\")
                       ? u"\\\\?\\" + parsed.root
                       : parsed.root;
  if (parsed.root.starts_with(u"\\\\") && path.starts_with(u"\\\\?\\UNC"))
    shortened = u"\\\\?\\UNC" + parsed.root.substr(1);
  // Links on the way keep their own names, so each beginning of the path is looked up by itself.
  ParsedPath part = parsed;
  part.components.clear();
  part.endsInBackslash = false;
  for (std::size_t i = 0; i < parsed.components.size(); ++i) {
    part.components.push_back(parsed.components[i]);
    const Resolved step = mWorld->Resolve(part, LastLink::Keep);
    if (step.error != 0) return Fail(step.error, Text());
    const bool keeps = VolumeOf(*step.node)->facts.keepsShortNames;
    shortened += keeps ? mWorld->disk.ShortNameOf(*step.node) : parsed.components[i];
    if (i + 1 < parsed.components.size() || parsed.endsInBackslash) shortened += u'\\';
  }
  return shortened;
}

std::optional<std::uint32_t> SimulatedFiles::DoGetBinaryType(TextView path) {
  const std::optional<std::uint32_t> none;
  const Resolved place = mWorld->Look(path, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, none);
  if (place.node->IsFolder() || !mWorld->Grants(*place.node, FILE_READ_DATA))
    return Fail(ERROR_ACCESS_DENIED, none);
  const auto kind = KindOfExecutable(mWorld->ReaderOf(*place.node));
  return kind ? kind : Fail(ERROR_BAD_EXE_FORMAT, none);
}

bool SimulatedDiskChange::DoCreateDirectory(TextView path) {
  const ParsedPath parsed = mWorld->Parse(path, NewFolderPathLimit, false);
  const Resolved place = mWorld->Resolve(parsed, LastLink::Keep);
  if (place.error == 0 || (place.error == ERROR_INVALID_NAME && place.node != nullptr))
    return Fail(ERROR_ALREADY_EXISTS, false);
  if (place.error != ERROR_FILE_NOT_FOUND || place.parent == nullptr)
    return Fail(place.error, false);
  const std::uint32_t refusal =
      mWorld->WhyNotAdded(*place.parent, *place.volume, FILE_ADD_SUBDIRECTORY);
  if (refusal != 0) return Fail(refusal, false);
  mWorld->AddNow(*place.parent, parsed.components.back(), FILE_ATTRIBUTE_DIRECTORY, true);
  return true;
}

}  // namespace quillmarsh::simulated
