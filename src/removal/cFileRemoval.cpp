// SPDX-License-Identifier: MIT
// The four ways in which a file goes. A move counts only once the file is seen to be gone: where it
// had to be copied to another volume, the system calls it done also when the original stayed.
#include "removal/cFileRemoval.h"

#include <functional>
#include <optional>

#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/Handles.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"
#include "removal/DupesFolder.h"
#include "removal/history/cLog.h"
#include "search/results/modDupe.h"

namespace quillmarsh {
namespace {

Text Shown(TextView path) {
  return path.empty() ? Text() : TheMachine().Drives().ShownPath(path);
}

// Takes the read-only bit from a file for the time that something is tried again, and gives it back
// unless that was done.
class WritableForNow {
 public:
  explicit WritableForNow(TextView path) : mPath(ToLongPath(path)) {}
  ~WritableForNow() {
    if (!mAttributes) return;
    const LastErrorKeeper keeper;
    static_cast<void>(TheMachine().Disk().SetFileAttributesW(mPath, *mAttributes));
  }
  WritableForNow(const WritableForNow&) = delete;
  WritableForNow& operator=(const WritableForNow&) = delete;

  // False where that is no way to go on: the bit is not set, or was taken before.
  [[nodiscard]] bool Take() {
    if (mIsTaken) return false;
    const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(mPath);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_READONLY) == 0)
      return false;
    mIsTaken = true;
    if (TheMachine().Disk().SetFileAttributesW(mPath, attributes ^ FILE_ATTRIBUTE_READONLY))
      mAttributes = attributes;
    return true;
  }
  void Forget() { mAttributes.reset(); }

 private:
  const Text mPath;
  bool mIsTaken = false;
  std::optional<std::uint32_t> mAttributes;  // to be given back
};

// Runs an operation that answers a code, and once more where access was denied for the read-only
// bit of `path` alone. Answers a code.
std::uint32_t TryAlsoWritable(TextView path, const std::function<std::uint32_t()>& operation) {
  WritableForNow writable(path);
  while (true) {
    const std::uint32_t code = operation();
    if (code == ERROR_SUCCESS) writable.Forget();
    if (code != ERROR_ACCESS_DENIED || !writable.Take()) return code;
    DoEvents_Fast();
  }
}

bool IsStillThere(TextView path) {
  return TheMachine().Files().GetFileAttributesW(ToLongPath(path)) != INVALID_FILE_ATTRIBUTES;
}

// Asked without the final backslash but for a root: with it, a file that stands in the way would be
// an unusual failure, and reported for each file that cannot go there.
bool IsFolderThere(TextView folder) {
  const Text asked = IsRootPath(folder) ? Text(folder) : RemoveBackslash(folder);
  return cFSXFileSystemObject().FolderExists(asked, false);
}

// Answers a code. Within a volume a move is a rename, and done when the system says so. To another
// volume the file is copied, and the system says yes also when the original then could not be
// deleted: that is no removal, and told as 5.
std::uint32_t Move(const Text& from, const Text& to, std::uint32_t flags) {
  DiskChange& disk = TheMachine().Disk();
  if (disk.MoveFileExW(from, to, flags)) return ERROR_SUCCESS;
  const std::uint32_t code = TheMachine().GetLastError();
  if (code != ERROR_NOT_SAME_DEVICE) return code;
  const bool isCopied = flags == 0 ? disk.MoveFileW(from, to)
                                   : disk.MoveFileExW(from, to, flags | MOVEFILE_COPY_ALLOWED);
  if (!isCopied) return TheMachine().GetLastError();
  return IsStillThere(from) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace

void cFileRemoval::RemoveFile(TextView fileSpec, TextView dupesFolder, bool& result) {
  const bool isDone = Guarded(u"frmFindDuplicates.RemoveFile()", [&] {
    const RedirectionOff redirection;
    result = true;
    switch (mMethod) {
      case RemoveMethod::Delete:
        result = Delete(fileSpec);
        break;
      case RemoveMethod::Recycle:
        result = Recycle(fileSpec);
        break;
      case RemoveMethod::MoveToDupesFolder:
        result = MoveToDupesFolder(fileSpec, dupesFolder);
        break;
      case RemoveMethod::MoveToOtherFolder:
        result = MoveToOtherFolder(fileSpec);
        break;
    }
  });
  if (!isDone) result = false;
}

void cFileRemoval::AddEntry(const RemovalEntry& entry) const {
  bool result = false;
  if (gLog != nullptr)
    gLog->Add(entry.kind, {}, Shown(entry.fileSpec), Shown(entry.target),
              static_cast<std::int32_t>(entry.code), entry.text, {}, result);
  if (mListener) mListener(entry);
}

bool cFileRemoval::Fail(std::int32_t kind, TextView fileSpec, TextView target,
                        std::uint32_t code) const {
  AddEntry({kind, Text(fileSpec), Text(target), code, FormatSystemErrorMessage(code)});
  return false;
}

bool cFileRemoval::Delete(TextView fileSpec) {
  const Text path = ToLongPath(fileSpec);
  const std::uint32_t code = TryAlsoWritable(fileSpec, [&] {
    return TheMachine().Disk().DeleteFileW(path) ? ERROR_SUCCESS : TheMachine().GetLastError();
  });
  if (code != ERROR_SUCCESS) return Fail(log_kind::DeleteError, fileSpec, {}, code);
  AddEntry({log_kind::FileDeleted, Text(fileSpec), {}, 0, {}});
  return true;
}

bool cFileRemoval::Recycle(TextView fileSpec) {
  std::int32_t errorNumber = 0;
  Text errorText;
  const bool isSent = SendFileToRecycleBin(fileSpec, errorNumber, errorText);
  if (!isSent) {
    AddEntry({log_kind::DeleteError,
              Text(fileSpec),
              {},
              static_cast<std::uint32_t>(errorNumber),
              errorText});
    return false;
  }
  const bool isDeletedForGood = FSXFSO_WasLastDeletePermanent();
  AddEntry({log_kind::FileSentToRecycleBin, Text(fileSpec), {}, 0, {}, isDeletedForGood});
  if (isDeletedForGood) {
    mDeletedForGoodCount += 1;
    AddFreeTextToLog(u"The Recycle Bin refused it, so it was deleted for good: " + Shown(fileSpec));
  }
  return true;
}

// Where nobody knows the folder yet, making it fails like any other.
std::uint32_t cFileRemoval::ProvideFolder(TextView folder) {
  if (folder.empty()) return ERROR_PATH_NOT_FOUND;
  if (folder == mProvidedFolder) return ERROR_SUCCESS;
  std::uint32_t code = 0;
  if (!IsFolderThere(folder) && !CreateFolderTree(folder, code))
    return code != 0 ? code : ERROR_PATH_NOT_FOUND;
  mProvidedFolder = folder;
  return ERROR_SUCCESS;
}

bool cFileRemoval::MoveToDupesFolder(TextView fileSpec, TextView dupesFolder) {
  const Text newPath = dupesFolder.empty() ? Text() : PathInDupesFolder(fileSpec, dupesFolder);
  const Text folder = GetFolderPartOf(newPath);
  if (const std::uint32_t code = ProvideFolder(folder))
    return Fail(log_kind::CreateFolderError, fileSpec, folder, code);
  const Text from = ToLongPath(fileSpec);
  const Text to = ToLongPath(newPath);
  std::uint32_t code = Move(from, to, 0);
  // The move itself says whether something is in its place.
  if (code == ERROR_ALREADY_EXISTS && FSXFileExists(newPath)) {
    if (mGuard != nullptr && !mGuard->MayReplace(fileSpec, newPath))
      return Fail(log_kind::MoveError, fileSpec, newPath, ERROR_ALREADY_EXISTS);
    code = TryAlsoWritable(newPath, [&] { return Move(from, to, MOVEFILE_REPLACE_EXISTING); });
  }
  if (code == ERROR_SUCCESS) {
    AddEntry({log_kind::FileMovedToDupesFolder, Text(fileSpec), newPath, 0, {}});
    return true;
  }
  mProvidedFolder.clear();
  return Fail(log_kind::MoveError, fileSpec, newPath, code);
}

bool cFileRemoval::MoveToOtherFolder(TextView fileSpec) {
  const Text& folder = mOtherFolder;
  const Text name = GetFileNameOf(fileSpec);
  if (const std::uint32_t code = ProvideFolder(folder))
    return Fail(log_kind::CreateFolderError, fileSpec, folder, code);
  const Text from = ToLongPath(fileSpec);
  Text newPath = folder + name;
  std::uint32_t code = Move(from, ToLongPath(newPath), 0);
  // The move itself says whether the name is taken.
  if (code == ERROR_ALREADY_EXISTS && FSXFileExists(newPath)) {
    newPath = ResolveNextFileNameCollision(name, folder, mLastNames[name]);
    code = Move(from, ToLongPath(newPath), 0);
  }
  if (code == ERROR_SUCCESS) {
    AddEntry({log_kind::FileMovedToOtherFolder, Text(fileSpec), newPath, 0, {}});
    return true;
  }
  mProvidedFolder.clear();
  mLastNames.erase(name);
  return Fail(log_kind::MoveError, fileSpec, newPath, code);
}

}  // namespace quillmarsh
