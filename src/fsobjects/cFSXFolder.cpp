// SPDX-License-Identifier: MIT
// A folder's own facts, and the reading of its directory.
#include "fsobjects/cFSXFolder.h"

#include <optional>

#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/Handles.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modAccessCheck.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t kEntriesPerPump = 64;
// A walk keeps its place on the call stack, which has room for a few times this many folders.
constexpr std::int32_t kDeepestLevel = 1000;
constexpr std::int32_t kOutOfStackSpace = 28;
// Links inside folders that were reached by links.
constexpr int kDeepestLinkNesting = 3;

bool IsDirectoryEntry(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

TextView NameOfEntry(const WIN32_FIND_DATAW& entry) {
  return entry.cFileName.substr(0, entry.cFileName.find(u'\0'));
}

bool IsDots(TextView name) {
  return name == u"." || name == u"..";
}

Currency LocalRawTime(const FILETIME& utc) {
  FILETIME local;
  static_cast<void>(TheMachine().Locale().FileTimeToLocalFileTime(utc, local));
  return Currency::FromRaw(local.Ticks());
}

// None beyond some 922 million million bytes.
std::optional<Currency> SizeOfEntry(const WIN32_FIND_DATAW& entry) {
  try {
    return HiLoToCurr(entry.nFileSizeHigh, entry.nFileSizeLow);
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
}

}  // namespace

struct cFSXFolder::Trail {
  Text volumeMountName;  // empty for a link
  std::shared_ptr<const Trail> above;
};

void cFSXFolder::SetPath(TextView path) {
  if (mFolderIdx != -1) mEnumerationStatus = NotEnumerated;
  mFolderIdx = gFolderPathsList->AddFolder(path);
}

Text cFSXFolder::Path() const {
  return GetFolderPathByIdx(mFolderIdx);
}

std::int32_t cFSXFolder::Attributes() {
  if (mAttributes == -1) {
    const RedirectionOff redirection;
    mAttributes =
        static_cast<std::int32_t>(TheMachine().Files().GetFileAttributesW(ToLongPath(Path())));
  }
  return mAttributes;
}

void cFSXFolder::ChangeAttribute(std::int32_t mask, bool value) {
  const std::int32_t before = Attributes();
  mAttributes = value ? before | mask : before & ~mask;
}

bool cFSXFolder::IsDirectoryJunction() {
  return IsJunction() && JunctionPointType() == DirectoryJunction;
}

bool cFSXFolder::IsVolumeMount() {
  return IsJunction() && JunctionPointType() == VolumeMountPoint;
}

Text cFSXFolder::VolumeMountName() {
  return IsVolumeMount() ? mVolumeMountName : Text();
}

std::int32_t cFSXFolder::JunctionPointType() {
  if (mJunctionPointType == -1) mJunctionPointType = GetJunctionPointType();
  return mJunctionPointType;
}

// The one place that tells junctions and mount points apart.
std::int32_t cFSXFolder::GetJunctionPointType() {
  const RedirectionOff redirection;
  const Text longPath = ToLongPath(Path());
  WIN32_FIND_DATAW entry;
  const FindHandle search(TheMachine().Find().FindFirstFileW(RemoveBackslash(longPath), entry));
  if (!search.IsValid()) return NoJunctionPoint;
  mReparseTag = entry.dwReserved0;
  if (mReparseTag != IO_REPARSE_TAG_MOUNT_POINT) return NoJunctionPoint;
  const Text volume = TheMachine().Drives().GetVolumeNameForVolumeMountPointW(longPath);
  if (volume.empty()) return DirectoryJunction;
  mVolumeMountName = TrimAtNull(volume);
  return VolumeMountPoint;
}

const Text& cFSXFolder::Name() {
  if (mName.empty()) mName = GetLastFolderName(Path());
  return mName;
}

void cFSXFolder::SetName(TextView name) {
  if (!name.empty()) mName = name;
}

bool cFSXFolder::NameContainsUnicodeChars() {
  return ContainsUnicodeChars(Name());
}

bool cFSXFolder::PathContainsUnicodeChars() const {
  return ContainsUnicodeChars(Path());
}

const Text& cFSXFolder::ParentName() {
  if (mParentName.empty()) mParentName = GetLastFolderName(ParentFolderPath());
  return mParentName;
}

Text cFSXFolder::ParentFolderPath() {
  if (mParentFolderIdx != -1) return GetFolderPathByIdx(mParentFolderIdx);
  Text parent = GetParentFolderPathOf(Path());
  if (!parent.empty()) mParentFolderIdx = gFolderPathsList->AddFolder(parent);
  return parent;
}

bool cFSXFolder::IsRootFolder() {
  if (!mIsRootFolderKnown) {
    mIsRootFolder = ParentFolderPath().empty();
    mIsRootFolderKnown = true;
  }
  return mIsRootFolder;
}

const Text& cFSXFolder::DriveName() {
  if (mDriveName.empty()) mDriveName = GetDriveRootOf(Path());
  return mDriveName;
}

std::unique_ptr<cFSXDrive> cFSXFolder::Drive() {
  std::unique_ptr<cFSXDrive> drive;
  Guarded(u"cFSXFolder.Drive", [&] {
    drive = std::make_unique<cFSXDrive>();
    drive->SetName(GetDriveRootOf(Path()));
  });
  return drive;
}

const Text& cFSXFolder::ShortPathName() {
  if (mShortPathName.empty()) mShortPathName = GetShortPath(Path());
  return mShortPathName;
}

bool cFSXFolder::ErrorsDuringEnumeration() const {
  return mEnumerationStatus == NotReadable || mEnumerationStatus == Failed;
}

bool cFSXFolder::HasReadPermission() {
  if (!mCheckFolderPermission) return true;
  if (!mReadPermissionKnown) {
    const Text path = Path();
    mHasReadPermission = UserHasFolderEnumPermission(path) || FolderCanBeListed(path);
    mReadPermissionKnown = true;
  }
  return mHasReadPermission;
}

// Without the check nothing counts as writable, the contrary of reading: what removes folders asks
// for this permission, and must not go ahead where nobody has looked.
bool cFSXFolder::HasWritePermission() {
  if (!mCheckFolderPermission) return false;
  if (!mWritePermissionKnown) {
    mHasWritePermission = UserHasWritePermission(Path());
    mWritePermissionKnown = true;
  }
  return mHasWritePermission;
}

std::shared_ptr<cFSXSubFolders> cFSXFolder::SubFoldersAndJunctions() {
  if (mEnumerationStatus == NotEnumerated) Enumerate(false);
  return mobjSubFoldersAndJunctions;
}

std::shared_ptr<cFSXFiles> cFSXFolder::Files() {
  if (mEnumerationStatus == NotEnumerated) Enumerate(false);
  return mobjFiles;
}

bool cFSXFolder::Enumerate(bool recursive) {
  if (mEnumerationStatus != NotEnumerated) return mEnumerationStatus == Enumerated;

  MakeCollections();
  const RedirectionOff redirection;
  if (IsDirectoryJunction() || !HasReadPermission()) {
    mEnumerationStatus = NotReadable;
    return false;
  }
  ReadEntries(recursive);
  return mEnumerationStatus == Enumerated;
}

void cFSXFolder::MakeCollections() {
  const Text path = Path();
  mobjFiles = std::make_shared<cFSXFiles>();
  mobjSubFoldersAndJunctions = std::make_shared<cFSXSubFolders>();
  mobjFiles->SetParentFolderPath(path);
  mobjSubFoldersAndJunctions->SetParentFolderPath(path);
  mEnumerationError = mListingError = 0;
  mSize = 0;
}

void cFSXFolder::ReadEntries(bool recursive) {
  Finding& finding = TheMachine().Find();
  WIN32_FIND_DATAW entry;
  const FindHandle search(finding.FindFirstFileW(ToLongPath(Path()) + u"*", entry));
  if (!search.IsValid()) {
    mEnumerationError = TheMachine().GetLastError();
    mEnumerationStatus = IsSystem() ? NotReadable : Failed;
    return;
  }

  // Pumped code may point this object at another folder; what is read belongs to these two.
  const std::shared_ptr<cFSXFiles> files = mobjFiles;
  const std::shared_ptr<cFSXSubFolders> subFolders = mobjSubFoldersAndJunctions;
  const cFSXSubFolders::ReaderScope reading(*subFolders, *this);
  Currency size;
  std::uint32_t untilPump = kEntriesPerPump;
  while (!gUserAbort) {
    const TextView name = NameOfEntry(entry);
    if (!IsDirectoryEntry(entry)) {
      // A file whose size cannot be told is left out and makes the listing one that is not whole.
      if (const std::optional<Currency> bytes = SizeOfEntry(entry)) {
        files->Add(name, *bytes, LocalRawTime(entry.ftCreationTime),
                   LocalRawTime(entry.ftLastWriteTime), entry.dwFileAttributes);
        size = Currency::SaturatingSum(size, *bytes);
      } else {
        mListingError = ERROR_ARITHMETIC_OVERFLOW;
      }
    } else if (!IsDots(name)) {
      subFolders->Add(name, static_cast<std::int32_t>(entry.dwFileAttributes), recursive);
    }
    if (!finding.FindNextFileW(search.Get(), entry)) {
      const std::uint32_t error = TheMachine().GetLastError();
      if (error != ERROR_NO_MORE_FILES) mListingError = error;
      break;
    }
    // A folder of a million entries must not hold up the window.
    if (--untilPump == 0) {
      untilPump = kEntriesPerPump;
      DoEvents_Fast();
    }
  }
  mSize = size.ToDouble();
  mEnumerationStatus = Enumerated;
}

bool cFSXFolder::IsDeepest() const {
  return mLevel >= kDeepestLevel;
}

void cFSXFolder::EnterFrom(const cFSXFolder& above) {
  if (above.IsDeepest()) throw RuntimeError(kOutOfStackSpace, {}, u"Out of stack space");
  mLevel = above.mLevel + 1;
  mTrail = above.mTrail;
  if (!IsJunction()) return;
  if (LeadsInACircle()) {
    MakeCollections();
    mEnumerationStatus = NotReadable;
    return;
  }
  const bool link = mReparseTag == IO_REPARSE_TAG_SYMLINK;
  if (link || IsVolumeMount())
    mTrail = std::make_shared<const Trail>(Trail{VolumeMountName(), above.mTrail});
}

// A volume that is mounted below itself, and links that lead upward: without this a walk through
// them would only end where paths become too long, after visiting every fork on the way.
bool cFSXFolder::LeadsInACircle() {
  const Text volume = VolumeMountName();
  int links = 0;
  for (const Trail* trail = mTrail.get(); trail != nullptr; trail = trail->above.get()) {
    if (trail->volumeMountName.empty()) ++links;
    if (!volume.empty() && trail->volumeMountName == volume) return true;
  }
  return mReparseTag == IO_REPARSE_TAG_SYMLINK && links >= kDeepestLinkNesting;
}

bool cFSXFolder::HasEntries() {
  Finding& finding = TheMachine().Find();
  WIN32_FIND_DATAW entry;
  const FindHandle search(finding.FindFirstFileW(ToLongPath(Path()) + u"*", entry));
  if (!search.IsValid()) return false;
  do {
    DoEvents_Fast();
    if (!IsDirectoryEntry(entry) || !IsDots(NameOfEntry(entry))) return true;
  } while (finding.FindNextFileW(search.Get(), entry));
  return false;
}

bool cFSXFolder::IsEmpty() {
  bool empty = false;
  Guarded(u"cFSXFolder.IsEmpty", [&] {
    if (mEnumerationStatus != NotEnumerated) {
      empty = mobjFiles != nullptr && mobjFiles->Count() == 0 &&
              mobjSubFoldersAndJunctions->Count() == 0;
      return;
    }
    const RedirectionOff redirection;
    if (IsJunction()) {
      empty = true;
    } else if (HasReadPermission()) {
      empty = !HasEntries();
    }
  });
  return empty;
}

}  // namespace quillmarsh
