// SPDX-License-Identifier: MIT
// Reading a folder: raw directory reads into a large buffer, facts by folder handle and name.
#include "platform/posix/FolderCursor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/SystemConstants.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/NameMapping.h"
#include "platform/posix/StatxFacts.h"

namespace quillmarsh {
namespace {

constexpr std::size_t EntriesPerBatch = 4096;

// The head of a record of getdents64; the name follows, ended by a NUL.
struct RawEntry {
  std::uint64_t inode;
  std::int64_t offset;
  std::uint16_t length;
  unsigned char type;
};
constexpr std::size_t NameOffset = 19;

bool IsNeverListed(unsigned char type) {
  return type == DT_FIFO || type == DT_SOCK || type == DT_CHR || type == DT_BLK || type == DT_WHT;
}

}  // namespace

void EntryBatch::Clear() {
  entries.clear();
  nameUnits = 0;
}

std::size_t EntryBatch::Bytes() const {
  return entries.capacity() * sizeof(WIN32_FIND_DATAW) + names.capacity() * sizeof(char16_t);
}

std::uint32_t FolderCursor::ReadOn(ReadingTools& tools, EntryBatch& batch,
                                   const std::atomic<bool>& dropped) {
  if (!mFd)
    if (const std::uint32_t error = Open(tools, batch)) return error;
  std::uint32_t end = 0;
  while (end == 0 && batch.entries.size() < EntriesPerBatch) {
    const long got = ::syscall(SYS_getdents64, mFd.Get(), tools.buffer.data(), tools.buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      end = got < 0 ? SystemErrorFromErrno(errno)
                    : (mUnreadable != 0 ? mUnreadable : ERROR_NO_MORE_FILES);
      break;
    }
    const std::byte* place = tools.buffer.data();
    for (const std::byte* const last = place + got; place < last && end == 0;) {
      RawEntry raw;
      std::memcpy(&raw, place, NameOffset);
      ReadEntry(reinterpret_cast<const char*>(place + NameOffset), raw.type, batch,
                *tools.resolver);
      place += raw.length;
      if (dropped.load(std::memory_order_relaxed)) end = ERROR_OPERATION_ABORTED;
    }
  }
  // The buffer of the names may have moved while it grew.
  const char16_t* name = batch.names.data();
  for (WIN32_FIND_DATAW& entry : batch.entries) {
    entry.cFileName = TextView(name, entry.cFileName.size());
    name += entry.cFileName.size();
  }
  if (end != 0) mFd.Reset();
  return end;
}

std::uint32_t FolderCursor::Open(ReadingTools& tools, EntryBatch& batch) {
  if (tools.beforeFolder) tools.beforeFolder(mFolder);
  DrivePath path;
  if (const std::uint32_t error = ParseDrivePath(mFolder, path)) return error;
  mTable = tools.letters->Current();
  mDrive = mTable->ByLetter(path.letter);
  if (mDrive == nullptr)
    return mTable->remembered.find(path.letter) == std::string::npos ? ERROR_PATH_NOT_FOUND
                                                                     : ERROR_NOT_READY;
  mRelative = std::move(path.relative);

  auto& [mountId, root] = tools.roots[path.letter];
  if (!root || mountId != mDrive->mount->id) {
    if (const std::uint32_t error = tools.resolver->OpenRoot(*mDrive, root)) return error;
    mountId = mDrive->mount->id;
  }
  const int error = tools.resolver->Open(root.Get(), mRelative,
                                         O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC, 0, mFd);
  if (error != 0) {
    const std::uint32_t code = tools.resolver->CodeOfFailure(root.Get(), mRelative, error);
    return code == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : code;
  }
  struct statx facts {};
  if (::statx(mFd.Get(), "", AT_EMPTY_PATH, FactsWanted, &facts) != 0)
    return SystemErrorFromErrno(errno);
  // Both stand for the folder itself; of the one above nothing is asked.
  Add(facts, EntryKind::Folder, ".", batch);
  Add(facts, EntryKind::Folder, "..", batch);
  mMountsHere = !mDrive->innerRoots.empty() ||
                mTable->mounts.HasMountsIn(JoinNative(mDrive->mount->point, mRelative));
  return 0;
}

void FolderCursor::ReadEntry(const char* name, unsigned char type, EntryBatch& batch,
                             const PathResolver& resolver) {
  if (IsNeverListed(type)) return;
  const std::string_view text(name);
  if (text == "." || text == "..") return;

  const Mount* mount = nullptr;
  bool isInnerRoot = false;
  int flags = FactsOfEntryItself;
  if (mMountsHere && type != DT_REG) [[unlikely]] {
    const std::string relative = JoinRelative(mRelative, text);
    mount = mTable->mounts.RootedAt(JoinNative(mDrive->mount->point, relative));
    isInnerRoot = std::find(mDrive->innerRoots.begin(), mDrive->innerRoots.end(), relative) !=
                  mDrive->innerRoots.end();
    // What is known of the root of a silent file system is enough; it must not hold up this folder.
    if (mount != nullptr && !KindOfFileSystem(mount->type).answers) flags |= AT_STATX_DONT_SYNC;
  }
  struct statx facts {};
  if (::statx(mFd.Get(), name, flags, FactsWanted, &facts) != 0) {
    if (mount != nullptr && ::statx(mFd.Get(), "", AT_EMPTY_PATH, FactsWanted, &facts) == 0)
      Add(facts, EntryKind::MountRoot, text, batch);
    else if (errno != ENOENT && mUnreadable == 0)  // a vanished entry is none
      mUnreadable = SystemErrorFromErrno(errno);
    return;
  }
  EntryKind kind = KindOf(facts);
  if (kind == EntryKind::FileLink) {
    if (!resolver.LinkLeadsToFolder(mFd.Get(), name, mTable->mounts.HasAutomounts())) return;
    kind = EntryKind::FolderLink;
  }
  if (kind == EntryKind::Folder && (mount != nullptr || isInnerRoot)) kind = EntryKind::MountRoot;
  if (kind == EntryKind::Other) return;
  Add(facts, kind, text, batch);
}

void FolderCursor::Add(const struct statx& facts, EntryKind kind, std::string_view name,
                       EntryBatch& batch) const {
  if (batch.names.size() < batch.nameUnits + name.size())
    batch.names.resize(std::max(batch.nameUnits + name.size(), 2 * batch.names.size() + 256));
  WIN32_FIND_DATAW& entry = batch.entries.emplace_back();
  FillFindData(facts, kind, name, entry);
  const std::size_t units = MapName(name, batch.names.data() + batch.nameUnits);
  entry.cFileName = TextView(batch.names.data() + batch.nameUnits, units);
  batch.nameUnits += units;
}

}  // namespace quillmarsh
