// SPDX-License-Identifier: MIT
// The ways into the trash, one after another. The note comes first and is on the disk before the
// entry moves: a kill in between leaves a note too many, never an entry of which nobody knows where
// it came from.
#include "platform/posix/DesktopTrash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <vector>

#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileCopying.h"
#include "platform/posix/FileOpening.h"
#include "platform/posix/TrashEntry.h"
#include "platform/posix/TrashPlaces.h"

namespace quillmarsh {
namespace {

constexpr long LongestName = 255;
constexpr int HeldOnly = O_PATH | O_NOFOLLOW | O_CLOEXEC;

std::uint32_t CheckSource(const TrashRequest& request, const FolderEntry& source) {
  if (!source.exists) return ERROR_FILE_NOT_FOUND;
  if (request.source.path.endsInBackslash && !source.IsFolder()) return ERROR_INVALID_NAME;
  if (source.entry.kind == EntryKind::Other || source.entry.kind == EntryKind::MountRoot)
    return ERROR_ACCESS_DENIED;
  return WhyNotTakenAway(source);
}

// One entry on its way.
struct Trashing {
  OpenFolders& folders;
  const TrashRequest& request;
  ChangePermit& permit;
  FolderEntry source;
  std::tm moment{};

  [[nodiscard]] std::string NoteText(TrashKind kind) const {
    const std::string& relative = request.source.path.relative;
    return TrashNoteText(kind == TrashKind::Home
                             ? JoinNative(request.source.drive->mount->point, relative)
                             : relative,
                         moment);
  }
  [[nodiscard]] const std::string& EntryName() const {
    return request.pin != nullptr ? request.pin->home.name : source.name;
  }
  // Whether the name still leads to what was to be trashed. Answers an errno.
  [[nodiscard]] int LookForSource(bool& isThere) const {
    FolderEntry now = source;
    isThere = false;
    if (::statx(now.folder.Get(), now.name.c_str(), FactsOfEntryItself, FactsWanted,
                &now.entry.facts) != 0)
      return errno == ENOENT ? 0 : errno;
    isThere = now.IsSameFileAs(source);
    return 0;
  }
  // A look may tell what was remembered; whoever opens a file has it.
  [[nodiscard]] bool CanOpenSource() const {
    FolderEntry now = source;
    OpenedFile opened;
    const OpenRequest reading{GENERIC_READ, OPEN_EXISTING, 0};
    if (OpenFileAt(folders.Resolver(), request.source, reading, opened) != 0) return false;
    now.entry.facts = opened.facts;
    return now.IsSameFileAs(source) && opened.facts.stx_nlink > 0;
  }
};

// What a note under a free name is followed by. Answers a code; 183 when the name is taken among
// the files, and then another one is tried.
using Bring = std::uint32_t(const Trashing& trashing, const FolderEntry& target, TrashNote& note);

// Trusts nothing that it has not seen. The note stays unless the entry surely is where it was.
std::uint32_t CheckArrival(const Trashing& trashing, const FolderEntry& target, TrashNote& note) {
  bool isThere = false;
  const int lookAtTarget = LookFor(target);
  const int lookAtSource = trashing.LookForSource(isThere);
  const bool hasStayed = lookAtTarget == ENOENT && lookAtSource == 0 && isThere;
  if (!hasStayed) note.Keep();
  if (lookAtTarget != 0) return SystemErrorFromErrno(lookAtTarget);
  if (lookAtSource != 0) return SystemErrorFromErrno(lookAtSource);
  return isThere ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

// The pin itself looks at what arrives.
std::uint32_t BringPinned(const Trashing& trashing, const FolderEntry& target, TrashNote& note) {
  const std::uint32_t code =
      RenamePinned(trashing.folders, *trashing.request.pin, {target, {}}, trashing.permit);
  if (code == ERROR_SUCCESS || (code != ERROR_ALREADY_EXISTS && LookFor(target) != ENOENT))
    note.Keep();
  return code;
}

std::uint32_t BringByRename(const Trashing& trashing, const FolderEntry& target, TrashNote& note) {
  if (trashing.request.pin != nullptr) return BringPinned(trashing, target, note);
  const int error = RenameToFreeName(trashing.source, target, trashing.permit);
  if (error == EXDEV) return ERROR_NOT_SAME_DEVICE;
  if (error == 0) return CheckArrival(trashing, target, note);
  // Where a file system needs two steps, the first of them may have been done.
  if (error != EEXIST && LookFor(target) != ENOENT) note.Keep();
  return SystemErrorFromErrno(error);
}

CopyRequest CopyInto(const Trashing& trashing, const FolderEntry& target) {
  CopyRequest copy;
  copy.source = trashing.request.source;
  copy.target = trashing.request.home;
  copy.pin = trashing.request.pin;
  std::string& path = copy.target.path.relative;
  path = JoinRelative(JoinRelative(path, "files"), target.name);
  copy.target.path.endsInBackslash = false;  // a trash that is a whole drive does
  copy.codeIfExists = ERROR_ALREADY_EXISTS;
  return copy;
}

std::uint32_t BringByCopy(const Trashing& trashing, const FolderEntry& target, TrashNote& note) {
  const CopyRequest copy = CopyInto(trashing, target);
  if (copy.pin != nullptr) {
    const std::uint32_t code = MovePinnedByCopy(trashing.folders, copy, trashing.permit);
    if (code == ERROR_SUCCESS || (code != ERROR_ALREADY_EXISTS && LookFor(target) != ENOENT))
      note.Keep();
    return code;
  }
  // Held open, so that a file that is made under the old name cannot get the old number.
  FolderEntry held = trashing.source;
  const UniqueFd file(::openat(held.folder.Get(), held.name.c_str(), HeldOnly));
  if (!file) return SystemErrorFromErrno(errno);
  if (::statx(file.Get(), "", AT_EMPTY_PATH, FactsWanted, &held.entry.facts) != 0)
    return SystemErrorFromErrno(errno);
  if (!held.IsSameFileAs(trashing.source)) return ERROR_SHARING_VIOLATION;
  const std::uint32_t code = MoveByCopy(trashing.folders, copy, trashing.permit);
  if (code != ERROR_SUCCESS) {
    if (code != ERROR_ALREADY_EXISTS && LookFor(target) != ENOENT) note.Keep();
    return code;
  }
  // Where the source has changed meanwhile, or would not go, the copy is one too many.
  if (!trashing.CanOpenSource()) return CheckArrival(trashing, target, note);
  const int error =
      trashing.permit.Use([&] { return ::unlinkat(target.folder.Get(), target.name.c_str(), 0); });
  if (error != 0) note.Keep();
  return ERROR_ACCESS_DENIED;
}

std::uint32_t BringTo(const Trashing& trashing, const TrashPlace& place, TrashKind kind,
                      Bring* bring) {
  const std::string text = trashing.NoteText(kind);
  const long limit = ::fpathconf(place.info.Get(), _PC_NAME_MAX);
  const long longest = limit > 0 ? std::min(limit, LongestName) : LongestName;
  FolderEntry target;
  target.folder = place.files;
  for (int attempt = 1; attempt <= MostTrashNames; ++attempt) {
    target.name = TrashName(trashing.EntryName(), attempt, static_cast<std::size_t>(longest));
    TrashNote note(place.info.Get(), target.name, trashing.permit);
    const int error = note.Write(text);
    const std::uint32_t code =
        error == 0 ? bring(trashing, target, note) : SystemErrorFromErrno(error);
    if (code != ERROR_ALREADY_EXISTS) return code;
  }
  return ERROR_ALREADY_EXISTS;
}

std::uint32_t TryTrash(const Trashing& trashing, TrashKind kind, Bring* bring) {
  const TrashRequest& request = trashing.request;
  const Located& where = kind == TrashKind::Home ? request.home : request.source;
  TrashPlace place;
  if (const auto code = OpenTrash(trashing.folders.Resolver(), kind, where, trashing.permit, place))
    return code;
  return BringTo(trashing, place, kind, bring);
}

struct Way {
  TrashKind kind;
  Bring* bring;
};

// Between two drives nothing can be renamed, so the home trash is first for what lies on its own.
std::vector<Way> WaysFor(const TrashRequest& request, const FolderEntry& source) {
  std::vector<Way> ways;
  const bool hasHome = request.home.drive != nullptr;
  if (hasHome && request.home.drive->letter == request.source.drive->letter)
    ways.push_back({TrashKind::Home, BringByRename});
  ways.push_back({TrashKind::Shared, BringByRename});
  ways.push_back({TrashKind::Own, BringByRename});
  if (hasHome && source.entry.kind == EntryKind::File)
    ways.push_back({TrashKind::Home, BringByCopy});
  return ways;
}

}  // namespace

std::uint32_t SendToTrash(OpenFolders& folders, const TrashRequest& request, ChangePermit& permit) {
  if (request.source.path.relative.empty() || TouchesTrash(request.source, request.home))
    return ERROR_BAD_PATHNAME;
  Trashing trashing{folders, request, permit, {}, {}};
  if (request.pin != nullptr)
    trashing.source = request.pin->place;
  else if (const auto error = OpenEntry(folders, request.source, trashing.source))
    return error;
  if (const auto error = CheckSource(request, trashing.source)) return error;
  const std::time_t now = std::time(nullptr);
  (void)::localtime_r(&now, &trashing.moment);

  std::uint32_t code = ERROR_SUCCESS;
  for (const Way& way : WaysFor(request, trashing.source)) {
    code = TryTrash(trashing, way.kind, way.bring);
    const bool isDecided = code == ERROR_FILE_INVALID || code == ERROR_SHARING_VIOLATION;
    if (code == ERROR_SUCCESS || isDecided) return code;
    if (permit.IsToStop()) return ERROR_OPERATION_ABORTED;
    // Nothing more is tried with what is not surely where it was.
    bool isThere = false;
    if (const int error = trashing.LookForSource(isThere)) return SystemErrorFromErrno(error);
    if (!isThere) return code;
  }
  return code;
}

}  // namespace quillmarsh
