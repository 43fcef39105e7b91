// SPDX-License-Identifier: MIT
// Finding, checking and closing folders that are kept open.
#include "platform/posix/OpenFolders.h"

#include <fcntl.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/SystemConstants.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/StatxFacts.h"

namespace quillmarsh {
namespace {

constexpr std::chrono::milliseconds KeepFor{300};
constexpr std::size_t MostKept = 32;

bool IsSameFolder(const struct statx& a, const struct statx& b) {
  return a.stx_ino == b.stx_ino && a.stx_mnt_id == b.stx_mnt_id &&
         a.stx_dev_major == b.stx_dev_major && a.stx_dev_minor == b.stx_dev_minor;
}

// What may hang is never looked at on the way past.
bool MayBeKept(const Located& located) {
  return located.drive->kind.answers && !located.table->mounts.HasAutomounts();
}

}  // namespace

struct OpenFolders::Kept {
  char letter = 0;
  std::string relative;
  std::string native;
  SharedFd folder;
  struct statx identity {};
  Clock::time_point since;

  // While it is open neither its number nor that of its mount can be given to another one.
  [[nodiscard]] bool IsStillThere(const Drive& drive, struct statx& now) const {
    const bool isSameMount =
        letter == 'C' || drive.mount->id == static_cast<std::int64_t>(identity.stx_mnt_id);
    return isSameMount && Clock::now() - since < KeepFor &&
           ::statx(AT_FDCWD, native.c_str(), FactsOfEntryItself, FactsWanted | STATX_MNT_ID,
                   &now) == 0 &&
           IsSameFolder(now, identity);
  }
};

OpenFolders::OpenFolders(std::shared_ptr<const PathResolver> resolver)
    : mResolver(std::move(resolver)) {}

OpenFolders::~OpenFolders() {
  {
    const std::lock_guard lock(mMutex);
    mQuit = true;
  }
  mChanged.notify_all();
  if (mCloser.joinable()) mCloser.join();
}

std::uint32_t OpenFolders::OpenParent(const Located& located, SharedFd& parent) {
  const std::uint32_t code = Open(located, located.path.Parent(), parent);
  return code == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : code;
}

bool OpenFolders::FactsOf(const Located& located, struct statx& facts) {
  if (!MayBeKept(located)) return false;
  const KeptFolder kept = Find(located.path.letter, located.path.relative);
  return kept != nullptr && kept->IsStillThere(*located.drive, facts);
}

std::uint32_t OpenFolders::Open(const Located& located, std::string_view relative,
                                SharedFd& folder) {
  if (!MayBeKept(located)) return OpenAnew(located, relative, folder);
  struct statx facts {};
  if (const KeptFolder kept = Find(located.path.letter, relative);
      kept != nullptr && kept->IsStillThere(*located.drive, facts)) {
    folder = kept->folder;
    return ERROR_SUCCESS;
  }
  const std::uint32_t code = OpenAnew(located, relative, folder);
  if (code == ERROR_SUCCESS) Keep(located, relative, folder);
  return code;
}

std::uint32_t OpenFolders::OpenAnew(const Located& located, std::string_view relative,
                                    SharedFd& folder) {
  UniqueFd opened;
  if (relative.empty()) {
    if (const std::uint32_t code = mResolver->OpenRoot(*located.drive, opened)) return code;
  } else {
    SharedFd root;
    if (const std::uint32_t code = Open(located, {}, root)) return code;
    if (const int error = mResolver->OpenFolder(root.Get(), relative, opened))
      return SystemErrorFromErrno(error);
  }
  folder = SharedFd(std::move(opened));
  return ERROR_SUCCESS;
}

OpenFolders::KeptFolder OpenFolders::Find(char letter, std::string_view relative) {
  const std::lock_guard lock(mMutex);
  const auto found = std::ranges::find_if(mKept, [&](const KeptFolder& kept) {
    return kept->letter == letter && kept->relative == relative;
  });
  if (found == mKept.end()) return nullptr;
  std::rotate(mKept.begin(), found, found + 1);
  return mKept.front();
}

void OpenFolders::Keep(const Located& located, std::string_view relative, const SharedFd& folder) {
  auto kept = std::make_shared<Kept>();
  kept->letter = located.path.letter;
  kept->relative = relative;
  kept->native = JoinNative(located.drive->mount->point, relative);
  kept->folder = folder;
  kept->since = Clock::now();
  if (::statx(folder.Get(), "", AT_EMPTY_PATH, STATX_INO | STATX_MNT_ID, &kept->identity) != 0 ||
      (kept->identity.stx_mask & STATX_MNT_ID) == 0)
    return;
  const std::lock_guard lock(mMutex);
  std::erase_if(mKept, [&](const KeptFolder& other) {
    return other->letter == kept->letter && other->relative == kept->relative;
  });
  if (mKept.size() >= MostKept) mKept.pop_back();
  try {
    if (!mCloser.joinable()) mCloser = std::thread([this] { CloseInTime(); });
  } catch (const std::system_error&) {
    return;  // nobody would close it
  }
  mKept.insert(mKept.begin(), std::move(kept));
  if (mKept.size() == 1) mChanged.notify_all();
}

void OpenFolders::LetGo() {
  const std::lock_guard lock(mMutex);
  mKept.clear();
}

void OpenFolders::CloseInTime() {
  std::unique_lock lock(mMutex);
  while (!mQuit) {
    if (mKept.empty())
      mChanged.wait(lock);
    else
      mChanged.wait_for(lock, KeepFor);
    const auto now = Clock::now();
    std::erase_if(mKept, [&](const KeptFolder& kept) { return now - kept->since >= KeepFor; });
  }
}

}  // namespace quillmarsh
