// SPDX-License-Identifier: MIT
// Each change first sees that the path still leads to the pinned entry.
#include "platform/simulated/SimulatedPinning.h"

namespace quillmarsh::simulated {
namespace {

constexpr TextView LongPrefix = u"\\\\?\\";
constexpr TextView LongShare = u"\\\\?\\UNC\\";

FileState StateOf(const Node& node, const Volume& volume) {
  FileState state;
  state.volume = reinterpret_cast<std::uintptr_t>(&volume);
  state.mount = state.volume;
  state.number = reinterpret_cast<std::uintptr_t>(&node);
  state.size = node.size;
  state.created = FILETIME::FromTicks(node.created);
  state.written = FILETIME::FromTicks(node.written);
  state.changed = state.written;
  state.hasTrustedNumbers = true;
  state.isVolatile = volume.facts.type == DRIVE_RAMDISK;
  state.isFolder = node.IsFolder();
  return state;
}

bool IsSameState(const FileState& a, const FileState& b) {
  return a.IsSameFileAs(b) && a.size == b.size && a.written == b.written && a.created == b.created;
}

// The shell takes no path with the prefix.
Text ShellPath(TextView path) {
  if (path.starts_with(LongShare)) return u"\\\\" + Text(path.substr(LongShare.size()));
  return Text(path.starts_with(LongPrefix) ? path.substr(LongPrefix.size()) : path);
}

}  // namespace

bool SimulatedPinning::DoLookAt(TextView path, FileState& state) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, false);
  state = StateOf(*place.node, *place.volume);
  return true;
}

HANDLE SimulatedPinning::DoPin(TextView path, PinPurpose purpose, TextView asideName,
                               FileState& state) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, INVALID_HANDLE);
  Node& node = *place.node;
  if (node.IsFolder() || node.Link() != LinkKind::None)
    return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE);
  const std::uint32_t rights =
      FILE_READ_DATA | (purpose == PinPurpose::Remove ? DELETE_ACCESS : 0U);
  if (!mWorld->Grants(node, rights)) return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE);
  if (mWorld->SharingForbids(node, rights, FILE_SHARE_READ))
    return Fail(ERROR_SHARING_VIOLATION, INVALID_HANDLE);
  const HANDLE handle = mWorld->NewHandle();
  mWorld->files[handle] = {&node, place.volume, rights, FILE_SHARE_READ, 0, false};
  Pinned& pin = mPins[handle];
  pin.path = pin.ownPath = Text(path);
  pin.asidePath = pin.path.substr(0, pin.path.rfind(u'\\') + 1) + Text(asideName);
  pin.node = &node;
  state = pin.state = StateOf(node, *place.volume);
  return handle;
}

SimulatedPinning::Pinned* SimulatedPinning::Checked(HANDLE handle) {
  Pinned* const none = nullptr;
  const auto found = mPins.find(handle);
  if (found == mPins.end()) return Fail(ERROR_INVALID_HANDLE, none);
  Pinned& pin = found->second;
  const Resolved place = mWorld->Look(pin.path, LastLink::Keep);
  if (place.error == ERROR_FILE_NOT_FOUND || place.error == ERROR_PATH_NOT_FOUND)
    return Fail(ERROR_FILE_INVALID, none);
  if (place.error != 0) return Fail(place.error, none);
  const bool isIt =
      place.node == pin.node && IsSameState(StateOf(*place.node, *place.volume), pin.state);
  return isIt ? &pin : Fail(ERROR_FILE_INVALID, none);
}

bool SimulatedPinning::DoLock(HANDLE handle) {
  const OpenFile& open = mWorld->files.at(handle);
  for (const auto& [other, file] : mWorld->files)
    if (file.node == open.node && file.isLocked) return Fail(ERROR_LOCK_VIOLATION, false);
  return true;
}

bool SimulatedPinning::DoCheck(HANDLE handle) {
  return Checked(handle) != nullptr;
}

bool SimulatedPinning::DoReachAnew(HANDLE handle) {
  return Checked(handle) != nullptr;
}

std::uint32_t SimulatedPinning::DoReadAt(HANDLE handle, std::int64_t position,
                                         std::span<std::byte> buffer, std::uint32_t& done) {
  done = 0;
  const auto found = mWorld->files.find(handle);
  if (found == mWorld->files.end()) return ERROR_INVALID_HANDLE;
  if (const std::uint32_t error = mWorld->CheckVolume(*found->second.volume)) return error;
  done = static_cast<std::uint32_t>(
      mWorld->disk.Read(*found->second.node, static_cast<std::uint64_t>(position), buffer));
  return ERROR_SUCCESS;
}

bool SimulatedPinning::DoFlush(HANDLE handle) {
  return mPins.contains(handle) || Fail(ERROR_INVALID_HANDLE, false);
}

template <typename Step>
bool SimulatedPinning::WithoutPin(HANDLE handle, Step step) {
  Pinned* const pin = Checked(handle);
  if (pin == nullptr) return false;
  auto open = mWorld->files.extract(handle);
  const bool isDone = step(*pin);
  mWorld->files.insert(std::move(open));
  return isDone || Fail(mOwnCalls.lastError, false);
}

bool SimulatedPinning::RenameTo(HANDLE handle, const Text& newPath) {
  return WithoutPin(handle, [&](Pinned& pin) {
    if (!mDisk.MoveFileExW(pin.path, newPath, 0)) return false;
    pin.path = newPath;
    return true;
  });
}

bool SimulatedPinning::DoTakeAside(HANDLE handle) {
  const auto found = mPins.find(handle);
  if (found == mPins.end()) return Fail(ERROR_INVALID_HANDLE, false);
  return RenameTo(handle, found->second.asidePath);
}

bool SimulatedPinning::DoPutBack(HANDLE handle) {
  const auto found = mPins.find(handle);
  if (found == mPins.end()) return Fail(ERROR_INVALID_HANDLE, false);
  return RenameTo(handle, found->second.ownPath);
}

bool SimulatedPinning::DoDelete(HANDLE handle) {
  return WithoutPin(handle, [&](Pinned& pin) {
    const std::uint32_t attributes = pin.node->attributes;
    pin.node->attributes &= ~FILE_ATTRIBUTE_READONLY;
    pin.isDeleted = mDisk.DeleteFileW(pin.path);
    if (!pin.isDeleted) pin.node->attributes = attributes;
    return pin.isDeleted;
  });
}

bool SimulatedPinning::DoRestore(HANDLE handle) {
  const auto found = mPins.find(handle);
  if (found == mPins.end()) return Fail(ERROR_INVALID_HANDLE, false);
  const ParsedPath parsed = mWorld->Parse(found->second.ownPath, NoPathLimit, false);
  const Resolved place = mWorld->Resolve(parsed, LastLink::Keep);
  if (place.error != ERROR_FILE_NOT_FOUND || place.parent == nullptr)
    return Fail(ERROR_ALREADY_EXISTS, false);
  Node& made = mWorld->AddNow(*place.parent, parsed.components.back(),
                              found->second.node->attributes, false);
  mWorld->disk.CopyContents(*found->second.node, made);
  made.written = found->second.node->written;
  made.created = found->second.node->created;
  return true;
}

bool SimulatedPinning::DoMoveTo(HANDLE handle, TextView newPath, PinnedMove way) {
  return WithoutPin(handle, [&](Pinned& pin) {
    if (way == PinnedMove::Rename) return mDisk.MoveFileExW(pin.path, newPath, 0);
    const Resolved place = mWorld->Look(pin.path, LastLink::Keep);
    mOwnCalls.lastError = mWorld->WhyNotTakenAway(place);
    return mOwnCalls.lastError == ERROR_SUCCESS && mDisk.MoveFileW(pin.path, newPath);
  });
}

bool SimulatedPinning::DoRecycle(HANDLE handle) {
  return WithoutPin(handle, [&](Pinned& pin) {
    SHFILEOPSTRUCTW operation;
    operation.wFunc = FO_DELETE;
    operation.fFlags = FOF_ALLOWUNDO;
    operation.pFrom = ShellPath(pin.path) + Text(2, u'\0');
    mOwnCalls.lastError = SystemCodeOfShellCode(mShell.SHFileOperationW(operation));
    return mOwnCalls.lastError == ERROR_SUCCESS;
  });
}

bool SimulatedPinning::DoUnpin(HANDLE handle) {
  mWorld->files.erase(handle);
  return mPins.erase(handle) > 0 || Fail(ERROR_INVALID_HANDLE, false);
}

Text SimulatedPinning::DoWhereLeft(HANDLE handle) const {
  const auto found = mPins.find(handle);
  const bool isLeft = found != mPins.end() && found->second.path == found->second.asidePath &&
                      !found->second.isDeleted;
  return isLeft ? found->second.path : Text();
}

bool SimulatedPinning::DoHasBin(TextView path) {
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, false);
  return place.volume->facts.type == DRIVE_FIXED || Fail(ERROR_NOT_SUPPORTED, false);
}

}  // namespace quillmarsh::simulated
