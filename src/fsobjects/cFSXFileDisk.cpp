// SPDX-License-Identifier: MIT
// What a file object has to ask the disk or the system for: existence and the facts of a handle,
// the Booleans that want a look, permissions, the version, and facts of the contents.
#include <algorithm>

#include "base/CaseMapping.h"
#include "base/TextEquality.h"
#include "fsobjects/FileChecksum.h"
#include "fsobjects/Handles.h"
#include "fsobjects/WholeFileReading.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modAccessCheck.h"
#include "fsobjects/modFileEncryptionStatus.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

namespace {

// Sequential scan with the attributes normal, read-only, hidden and system.
constexpr std::uint32_t kInformationFlags = 0x8000087;
// Backup semantics, sequential scan and every ordinary attribute.
constexpr std::uint32_t kProbeFlags = 0xA0001A7;
constexpr std::uint32_t kMostVersionBytes = 64000;

Text AtLeastDigits(std::int32_t number, std::size_t digits) {
  Text text = DecimalText(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  while (text.size() - sign < digits) text.insert(sign, 1, u'0');
  return text;
}

// The divisor is 65535: a word whose lower half is large comes out one higher. Version texts in
// people's reports were made this way and are compared with new ones.
std::int32_t VersionHi(std::uint32_t word) {
  const auto number = static_cast<std::int32_t>(word);
  return number / 65535 - (number < 0 ? 1 : 0);
}
std::int32_t VersionLo(std::uint32_t word) {
  return static_cast<std::int32_t>(word & 0xFFFFU);
}

Text VersionText(const VS_FIXEDFILEINFO& version) {
  const std::uint32_t ms = version.dwFileVersionMS;
  const std::uint32_t ls = version.dwFileVersionLS;
  Text text = DecimalText(VersionHi(ms)) + u"." + AtLeastDigits(VersionLo(ms), 2) + u".";
  if (static_cast<std::int32_t>(ls) < 1) {
    text += u"0000";
  } else {
    text += AtLeastDigits(VersionHi(ls), 2) + u"." + AtLeastDigits(VersionLo(ls), 2);
  }
  if ((version.dwFileFlags & VS_FF_PATCHED) != 0) text += u"*";
  return text;
}

}  // namespace

// A file that was found is taken to be there for the rest of the object's life; one that was not
// found is looked for again.
bool cFSXFile::Exists() {
  if (GetStateBit(FileFact::Exists)) return true;
  NeedFileInfo();
  return GetStateBit(FileFact::Exists);
}

void cFSXFile::LoadFileInfo() {
  const RedirectionOff redirection;
  const Text longPath = ToLongPath(Path());
  if (!LoadFromHandle(longPath)) LoadFromSearch(longPath);
}

bool cFSXFile::LoadFromHandle(const Text& longPath) {
  FileInputOutput& files = TheMachine().Files();
  const FileHandle file(
      files.CreateFileW(longPath, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, kInformationFlags));
  const bool read = file.IsValid() && files.GetFileInformationByHandle(file.Get(), mFileInfo);
  if (read) SetStateBit(FileFact::Exists, true);
  SetStateBit(FileFact::FileInfoRead, read);
  return read;
}

// Reads a file that another process holds open without sharing it.
void cFSXFile::LoadFromSearch(const Text& longPath) {
  WIN32_FIND_DATAW found;
  const FindHandle search(TheMachine().Find().FindFirstFileW(longPath, found));
  if (!search.IsValid()) return NoteFailedSearch(TheMachine().GetLastError());
  mFileInfo.dwFileAttributes = found.dwFileAttributes;
  mFileInfo.ftCreationTime = found.ftCreationTime;
  mFileInfo.ftLastAccessTime = found.ftLastAccessTime;
  mFileInfo.ftLastWriteTime = found.ftLastWriteTime;
  mFileInfo.nFileSizeHigh = found.nFileSizeHigh;
  mFileInfo.nFileSizeLow = found.nFileSizeLow;
  SetStateBit(FileFact::Exists, true);
  SetStateBit(FileFact::FileInfoRead, true);
}

void cFSXFile::NoteFailedSearch(std::uint32_t error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DATA:
      SetStateBit(FileFact::Exists, false);
      break;
    case ERROR_ACCESS_DENIED:
      SetStateBit(FileFact::Exists, true);
      SetStateBit(FileFact::ReadPermissionKnown, true);
      SetStateBit(FileFact::HasReadPermission, false);
      break;
    case ERROR_SHARING_VIOLATION:
      SetStateBit(FileFact::Exists, true);
      SetStateBit(FileFact::InUseKnown, true);
      SetStateBit(FileFact::InUse, true);
      break;
    default:
      break;
  }
}

template <typename WorkOut>
bool cFSXFile::DiskBoolean(FileFact known, FileFact value, WorkOut&& workOut) {
  if (!GetStateBit(known)) {
    const bool worked = Exists() && workOut();
    SetStateBit(value, worked);
    SetStateBit(known, true);
  }
  return GetStateBit(value);
}

bool cFSXFile::InUse() {
  return DiskBoolean(FileFact::InUseKnown, FileFact::InUse,
                     [this] { return CannotBeOpenedAlone(); });
}

bool cFSXFile::CannotBeOpenedAlone() {
  if (!HasReadPermission()) return true;
  const RedirectionOff redirection;
  const FileHandle file(TheMachine().Files().CreateFileW(ToLongPath(Path()), GENERIC_READ, 0,
                                                         OPEN_EXISTING, kProbeFlags));
  return !file.IsValid();
}

bool cFSXFile::IsShortcut() {
  return DiskBoolean(FileFact::IsShortcutKnown, FileFact::IsShortcut, [this] {
    if (!AreStringsEqual(Extension(), u"lnk", true)) return false;
    const Text type = TheMachine().Desktop().SHGetFileInfoW(ToLongPath(Path()));
    return AreStringsEqual(TrimAtNull(type), u"Shortcut", true);
  });
}

bool cFSXFile::IsEXE() {
  return DiskBoolean(FileFact::IsEXEKnown, FileFact::IsEXE, [this] {
    const RedirectionOff redirection;
    return TheMachine().Files().GetBinaryTypeW(ToLongPath(Path())).has_value();
  });
}

bool cFSXFile::IsLocal() {
  return DiskBoolean(FileFact::IsLocalKnown, FileFact::IsLocal, [this] {
    const Text program = TheMachine().Process().GetModuleFileNameW();
    return UpperCaseText(GetDriveRootOf(Path())) == UpperCaseText(GetDriveRootOf(program));
  });
}

bool cFSXFile::IsEncrypted() {
  return DiskBoolean(FileFact::IsEncryptedKnown, FileFact::IsEncrypted, [this] {
    return GetFileEncryptionStatus(Path()) == static_cast<std::int32_t>(FILE_IS_ENCRYPTED);
  });
}

bool cFSXFile::HasReadPermission() {
  if (!GetStateBit(FileFact::ReadPermissionKnown)) {
    SetStateBit(FileFact::HasReadPermission, UserHasReadPermission(Path()));
    SetStateBit(FileFact::ReadPermissionKnown, true);
  }
  return GetStateBit(FileFact::HasReadPermission);
}

bool cFSXFile::HasWritePermission() {
  if (!GetStateBit(FileFact::WritePermissionKnown)) {
    SetStateBit(FileFact::HasWritePermission, UserHasWritePermission(Path()));
    SetStateBit(FileFact::WritePermissionKnown, true);
  }
  return GetStateBit(FileFact::HasWritePermission);
}

Currency cFSXFile::CompressedSize() {
  if (!IsCompressed()) return Size();
  if (!GetStateBit(FileFact::CompressedSizeKnown)) {
    const RedirectionOff redirection;
    std::uint32_t high = 0;
    const std::uint32_t low = TheMachine().Files().GetCompressedFileSizeW(ToLongPath(Path()), high);
    // The mark of a failure may be half of a true size, but only above 4 GiB.
    const bool failed =
        low == 0xFFFFFFFF && (high == 0 || TheMachine().GetLastError() != ERROR_SUCCESS);
    mCompressedSize = failed ? Currency::FromInteger(-1) : HiLoToCurr(high, low);
    SetStateBit(FileFact::CompressedSizeKnown, true);
  }
  return mCompressedSize;
}

const Text& cFSXFile::VersionNumber() {
  if (!GetStateBit(FileFact::VersionNumberKnown)) {
    mVersionNumber = Exists() ? ReadVersion() : Text();
    SetStateBit(FileFact::VersionNumberKnown, true);
  }
  return mVersionNumber;
}

Text cFSXFile::ReadVersion() {
  const RedirectionOff redirection;
  VersionResources& versions = TheMachine().Versions();
  const Text longPath = ToLongPath(Path());
  const std::uint32_t size = versions.GetFileVersionInfoSizeW(longPath);
  if (size == 0) return {};
  std::vector<std::byte> block(std::min(size, kMostVersionBytes));
  if (!versions.GetFileVersionInfoW(longPath, block)) return {};
  const auto version = versions.VerQueryValueRoot(block);
  return version ? VersionText(*version) : Text();
}

std::int32_t cFSXFile::FileASCIIPercentage(bool highCharactersToo) {
  if (!GetStateBit(FileFact::ASCIIPercentageKnown)) {
    mFileASCIIPercentage = Exists() && HasReadPermission()
                               ? PlainTextPercentage(Path(), highCharactersToo).value_or(0)
                               : 0;
    SetStateBit(FileFact::ASCIIPercentageKnown, true);
  }
  return mFileASCIIPercentage;
}

const Text& cFSXFile::MD5() {
  if (!GetStateBit(FileFact::MD5Known)) {
    mMD5 = Exists() && HasReadPermission() ? Md5OfFile(Path()).value_or(Text()) : Text();
    SetStateBit(FileFact::MD5Known, true);
  }
  return mMD5;
}

std::int32_t cFSXFile::CRC32() {
  if (!GetStateBit(FileFact::CRC32Known)) {
    mCRC32 = 0;
    if (Exists() && HasReadPermission()) {
      bool errorFlag = false;
      std::int32_t errorNumber = 0;
      Text errorText;
      const std::int32_t value = GetFileCRC32(Path(), errorFlag, errorNumber, errorText);
      // A stopped reading knows nothing, so the next question reads anew.
      if (!errorFlag && gStopCRC) return mCRC32;
      // -1 is also a checksum like any other.
      const bool failed = value == kChecksumFailed && errorNumber != 0;
      mCRC32 = failed ? 0 : value;
    }
    SetStateBit(FileFact::CRC32Known, true);
  }
  return mCRC32;
}

}  // namespace quillmarsh
