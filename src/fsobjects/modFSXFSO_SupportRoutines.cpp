// SPDX-License-Identifier: MIT
// One object at a time; lists are in FSOLists.cpp. Each change of the disk is one call of the
// platform, tried a second time at most, when a read-only bit stood in its way.
#include "fsobjects/modFSXFSO_SupportRoutines.h"

#include "base/RuntimeError.h"
#include "frame/TextTable.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/Handles.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

constexpr TextView kUnknownError = u"An unknown error occurred";
// Tells whoever reads a message that its number is one of the shell's.
constexpr TextView kShellMark = u" (*SHFileOp*)";

constexpr std::uint16_t kBinFlags = FOF_NOERRORUI | FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT;
constexpr TextView kTwoNuls(u"\0\0", 2);

// The two arguments in which a routine tells how it ended; cleared when made. Each member answers
// what the routine has to answer.
class Ending {
 public:
  Ending(std::int32_t& number, Text& message) : mNumber(number), mMessage(message) { Clear(); }

  [[nodiscard]] bool Success() {
    Clear();
    return true;
  }
  [[nodiscard]] bool Failure(std::uint32_t code) {
    mNumber = static_cast<std::int32_t>(code);
    mMessage = code == 0 ? Text(kUnknownError) : FormatSystemErrorMessage(code);
    return false;
  }
  [[nodiscard]] bool FailureOfLastCall() { return Failure(TheMachine().GetLastError()); }
  [[nodiscard]] bool ShellFailure(std::int32_t code) {
    mNumber = code;
    mMessage = GetShellErrorMessage(code).append(kShellMark);
    return false;
  }
  [[nodiscard]] bool NoPermission() {
    mNumber = runtime_error::PermissionDenied;
    mMessage = LoadResString(192);
    return false;
  }

 private:
  void Clear() {
    mNumber = 0;
    mMessage.clear();
  }

  std::int32_t& mNumber;
  Text& mMessage;
};

// What a look at a path tells. What may not be looked at counts as both, as everywhere; a failure
// that says nothing about the entry (a drive that is not ready) is none of the two and an error:
// taken for absence, a file that is still there would be told as removed.
struct Entry {
  bool isFile = false;
  bool isFolder = false;
  std::uint32_t error = 0;
};

Entry LookAt(TextView path) {
  const RedirectionOff redirection;
  const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(ToLongPath(path));
  if (attributes != INVALID_FILE_ATTRIBUTES) {
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return {!isFolder, isFolder};
  }
  switch (const std::uint32_t error = TheMachine().GetLastError()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DATA:
      return {};
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return {true, true};
    default:
      return {false, false, error};
  }
}

// Clears the read-only bit, does the refused thing once more, and puts the bit back when that was
// refused too. Without such a bit the refusal stands.
template <typename Retry>
bool WithoutReadOnlyBit(const Text& longPath, Ending& ending, Retry&& retry) {
  const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(longPath);
  if (attributes == INVALID_FILE_ATTRIBUTES) return ending.FailureOfLastCall();
  if ((attributes & FILE_ATTRIBUTE_READONLY) == 0) return ending.Failure(ERROR_ACCESS_DENIED);
  DiskChange& disk = TheMachine().Disk();
  if (!disk.SetFileAttributesW(longPath, attributes ^ FILE_ATTRIBUTE_READONLY))
    return ending.FailureOfLastCall();
  if (retry()) return ending.Success();
  const std::uint32_t code = TheMachine().GetLastError();
  static_cast<void>(disk.SetFileAttributesW(longPath, attributes));
  return ending.Failure(code);
}

bool CopyOneFile(TextView source, TextView target, Ending& ending) {
  const RedirectionOff redirection;
  const Text from = ToLongPath(source);
  const Text to = ToLongPath(target);
  const auto copy = [&] { return TheMachine().Disk().CopyFileW(from, to, false); };
  if (copy()) return ending.Success();
  const std::uint32_t code = TheMachine().GetLastError();
  return code == ERROR_ACCESS_DENIED ? WithoutReadOnlyBit(to, ending, copy) : ending.Failure(code);
}

bool MoveOneFile(TextView source, TextView target, Ending& ending) {
  const RedirectionOff redirection;
  return TheMachine().Disk().MoveFileW(ToLongPath(source), ToLongPath(target))
             ? ending.Success()
             : ending.FailureOfLastCall();
}

bool DeleteOneFile(TextView path, Ending& ending) {
  const RedirectionOff redirection;
  const Text longPath = ToLongPath(path);
  // A file that somebody else has deleted meanwhile is as gone as it was to be.
  const auto isGone = [&] {
    return TheMachine().Disk().DeleteFileW(longPath) ||
           TheMachine().GetLastError() == ERROR_FILE_NOT_FOUND;
  };
  if (isGone()) return ending.Success();
  const std::uint32_t code = TheMachine().GetLastError();
  return code == ERROR_ACCESS_DENIED ? WithoutReadOnlyBit(longPath, ending, isGone)
                                     : ending.Failure(code);
}

bool RemoveEmptyFolder(TextView path, Ending& ending) {
  const RedirectionOff redirection;
  return TheMachine().Disk().RemoveDirectoryW(ToLongPath(path)) ? ending.Success()
                                                                : ending.FailureOfLastCall();
}

bool Cancel(bool& cancelled) {
  cancelled = gFSOCancelled = true;
  return false;
}

bool MakeDestination(TextView folder, Ending& ending) {
  const Entry there = LookAt(folder);
  if (there.isFolder) return true;
  if (there.error != 0) return ending.Failure(there.error);
  std::uint32_t code = 0;
  return CreateFolderTree(folder, code) || ending.Failure(code);
}

bool IsJunctionWord(std::int32_t attributes) {
  constexpr auto kJunction =
      static_cast<std::int32_t>(FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY);
  // A word that cannot be read has every bit, and would make a plain folder a junction.
  return attributes != -1 && (attributes & kJunction) == kJunction;
}

// The plain folders in a junction, then its files, as a list. Nothing of a directory junction.
Text EntriesOf(cFSXFolder& folder) {
  const Text path = folder.Path();
  Text list;
  if (const auto subFolders = folder.SubFoldersAndJunctions()) {
    for (std::int32_t i = 1; i <= subFolders->Count(); ++i) {
      if (IsJunctionWord(subFolders->Attributes(i))) continue;
      list.append(path).append(subFolders->Name(i)).append(u"\\").push_back(u'\0');
    }
  }
  if (const auto files = folder.Files()) {
    for (std::int32_t i = 1; i <= files->Count(); ++i)
      list.append(path).append(files->Facts(i).name).push_back(u'\0');
  }
  return list;
}

// False when entries may be missing in the list, which would then count as done.
bool WasReadWhole(const cFSXFolder& folder, Ending& ending) {
  if (folder.EnumerationError() != 0) return ending.Failure(folder.EnumerationError());
  return folder.ListingError() == 0 || ending.Failure(folder.ListingError());
}

enum class Transfer : std::uint8_t { Copy, Move };

struct Call {
  bool& cancelled;
  Text& log;
};

bool TransferJunction(Transfer transfer, TextView source, TextView destFolder, Ending& ending,
                      const Call& call) {
  // By the path as it is: cFSXFileSystemObject would drop blanks that belong to a folder's name.
  cFSXFolder folder;
  folder.SetPath(AddBackslash(source));
  if (!IsJunctionWord(folder.Attributes())) return ending.Success();
  if (!folder.HasReadPermission()) return ending.NoPermission();
  const Text target = AddBackslash(destFolder) + GetLastFolderName(source);
  if (!MakeDestination(target, ending)) return false;
  const Text entries = EntriesOf(folder);
  if (!WasReadWhole(folder, ending)) return false;
  if (transfer == Transfer::Copy)
    return FSXFSO_CopyFSOs(entries, target, call.cancelled, call.log, nullptr);
  return FSXFSO_MoveFSOs(entries, target, call.cancelled, call.log, nullptr) &&
         RemoveEmptyFolder(source, ending);
}

bool TransferOne(Transfer transfer, TextView source, TextView destFolder, Ending& ending,
                 const Call& call) {
  if (!MakeDestination(destFolder, ending)) return false;
  if (gFSOCancelled) return Cancel(call.cancelled);
  const Entry entry = LookAt(source);
  if (entry.error != 0) return ending.Failure(entry.error);
  if (entry.isFile) {
    const Text target = AddBackslash(destFolder) + gFileSpecParser->GetFileName(source);
    return transfer == Transfer::Copy ? CopyOneFile(source, target, ending)
                                      : MoveOneFile(source, target, ending);
  }
  return entry.isFolder ? TransferJunction(transfer, source, destFolder, ending, call)
                        : ending.Success();
}

// Whether the path could mean more than one entry to the shell.
bool MayMeanSeveral(TextView path) {
  if (path.find(u'\0') != TextView::npos) return true;
  const Text entry = RemoveBackslash(path);
  return entry.find_first_of(u"*?", entry.rfind(u'\\') + 1) != Text::npos;
}

enum class BinAnswer : std::uint8_t { Sent, Refused, Cancelled, Final };

// A final answer is not followed by a permanent delete either: the shell was told to stop, or the
// path is none that one entry has.
BinAnswer SendToBin(TextView path, Ending& ending) {
  if (MayMeanSeveral(path)) {
    static_cast<void>(ending.ShellFailure(DE_INVALIDFILES));
    return BinAnswer::Final;
  }
  // A root and a relative path: the shell would take the current folder for them.
  std::int32_t code = DE_INVALIDFILES;
  if (!IsRootPath(path)) {
    const RedirectionOff redirection;
    SHFILEOPSTRUCTW operation;
    operation.wFunc = FO_DELETE;
    operation.pFrom = RemoveBackslash(path).append(kTwoNuls);
    operation.pTo = kTwoNuls;
    operation.fFlags = kBinFlags;
    code = TheMachine().Desktop().SHFileOperationW(operation);
    if (operation.fAnyOperationsAborted || gFSOCancelled) return BinAnswer::Cancelled;
  }
  if (code == 0) return BinAnswer::Sent;
  static_cast<void>(ending.ShellFailure(code));
  // Given up because a person asked to stop or the disk did not answer; it may have happened. And
  // what this program ran out of says nothing about the bin.
  const auto is = [code](std::uint32_t other) { return code == static_cast<std::int32_t>(other); };
  const bool isNoRefusal =
      is(ERROR_OPERATION_ABORTED) || is(ERROR_TOO_MANY_OPEN_FILES) || is(ERROR_NOT_ENOUGH_MEMORY);
  return isNoRefusal ? BinAnswer::Final : BinAnswer::Refused;
}

bool DeleteJunction(TextView path, Ending& ending, const Call& call, bool permanently) {
  cFSXFolder folder;
  folder.SetPath(AddBackslash(path));
  if (!IsJunctionWord(folder.Attributes())) return ending.Success();
  if (!folder.HasReadPermission() || !folder.HasWritePermission()) return ending.NoPermission();
  const Text entries = EntriesOf(folder);
  if (!WasReadWhole(folder, ending)) return false;
  return FSXFSO_DeleteFSOs(entries, call.cancelled, call.log, permanently, nullptr) &&
         RemoveEmptyFolder(path, ending);
}

}  // namespace

bool FSXFSO_CopyFSO(TextView source, TextView destFolder, bool& cancelled,
                    std::int32_t& errorNumber, Text& errorMessage, Text& log) {
  Ending ending(errorNumber, errorMessage);
  return TransferOne(Transfer::Copy, source, destFolder, ending, {cancelled, log});
}

bool FSXFSO_MoveFSO(TextView source, TextView destFolder, bool& cancelled,
                    std::int32_t& errorNumber, Text& errorMessage, Text& log) {
  Ending ending(errorNumber, errorMessage);
  return TransferOne(Transfer::Move, source, destFolder, ending, {cancelled, log});
}

bool FSXFSO_RenameFSO(TextView path, TextView newName, bool& cancelled, std::int32_t& errorNumber,
                      Text& errorMessage) {
  Ending ending(errorNumber, errorMessage);
  if (gFSOCancelled) return Cancel(cancelled);
  if (!MoveOneFile(path, GetParentFolderPathOf(path).append(newName), ending)) return false;
  // Unlike the others, so that whoever keeps only the message can tell a rename that was made from
  // one that was cancelled.
  errorMessage = u"0";
  return true;
}

bool FSXFSO_DeleteFSO(TextView path, bool& cancelled, std::int32_t& errorNumber, Text& errorMessage,
                      Text& log, bool permanently) {
  Ending ending(errorNumber, errorMessage);
  if (cancelled || gFSOCancelled) return Cancel(cancelled);
  if (!permanently) {
    switch (SendToBin(path, ending)) {
      case BinAnswer::Sent:
        return ending.Success();
      case BinAnswer::Cancelled:
        return Cancel(cancelled);
      case BinAnswer::Final:
        return false;
      case BinAnswer::Refused:  // deleted for good, as users of the window know it
        break;
    }
  }
  const Entry entry = LookAt(path);
  if (entry.error != 0) return ending.Failure(entry.error);
  if (entry.isFile) return DeleteOneFile(path, ending);
  return entry.isFolder ? DeleteJunction(path, ending, {cancelled, log}, permanently)
                        : ending.Success();
}

}  // namespace quillmarsh
