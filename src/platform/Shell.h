// SPDX-License-Identifier: MIT
// What the desktop's shell knows: its special folders, the places of the Recycle Bin and the names
// of file types; and the starting of its programs. Folders come as the calls give them, as a rule
// without a final backslash.
#pragma once

#include <vector>

#include "platform/CallHook.h"
#include "platform/SystemErrors.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

// Answers of ShellExecuteW: up to 32 a failure, of which these are named; above it success.
inline constexpr std::intptr_t SE_ERR_FNF = 2;
inline constexpr std::intptr_t SE_ERR_PNF = 3;
inline constexpr std::intptr_t SE_ERR_ACCESSDENIED = 5;
inline constexpr std::intptr_t SE_ERR_NOASSOC = 31;
inline constexpr std::intptr_t kLastShellFailure = 32;
inline constexpr std::int32_t SW_SHOWNORMAL = 1;

inline constexpr std::uint32_t FO_DELETE = 3;
inline constexpr std::uint16_t FOF_SILENT = 0x4;
inline constexpr std::uint16_t FOF_NOCONFIRMATION = 0x10;
inline constexpr std::uint16_t FOF_ALLOWUNDO = 0x40;
inline constexpr std::uint16_t FOF_NOERRORUI = 0x400;

// Answers of SHFileOperationW that are no system codes, of which these are given here.
inline constexpr std::int32_t DE_ACCESSDENIEDSRC = 120;
inline constexpr std::int32_t DE_PATHTOODEEP = 121;
inline constexpr std::int32_t DE_INVALIDFILES = 124;

// The system's code that says the same, for the codes that are not of the system.
[[nodiscard]] constexpr std::uint32_t SystemCodeOfShellCode(std::int32_t code) {
  if (code == DE_ACCESSDENIEDSRC) return ERROR_ACCESS_DENIED;
  if (code == DE_PATHTOODEEP) return ERROR_FILENAME_EXCED_RANGE;
  return code == DE_INVALIDFILES ? ERROR_BAD_PATHNAME : static_cast<std::uint32_t>(code);
}

// What SHFileOperationW is told and tells.
struct SHFILEOPSTRUCTW {
  std::uint32_t wFunc = 0;
  Text pFrom;  // paths, each ended by a NUL, and one more NUL
  Text pTo;
  std::uint16_t fFlags = 0;
  bool fAnyOperationsAborted = false;  // the user stopped it, whatever the answer is
};

// Bits of SHELLEXECUTEINFOW::fMask.
inline constexpr std::uint32_t SEE_MASK_INVOKEIDLIST = 0xC;
inline constexpr std::uint32_t SEE_MASK_NOCLOSEPROCESS = 0x40;
inline constexpr std::uint32_t SEE_MASK_FLAG_NO_UI = 0x400;
inline constexpr std::uint32_t SEE_MASK_UNICODE = 0x4000;

// What ShellExecuteExW is told.
struct SHELLEXECUTEINFOW {
  std::uint32_t fMask = 0;
  Text lpVerb;
  Text lpFile;
  std::int32_t nShow = SW_SHOWNORMAL;
};

class Shell : public Role {
 public:
  using Role::Role;

  // The folder of a CSIDL; empty when there is none.
  [[nodiscard]] Text SHGetFolderPathW(std::int32_t csidl) {
    return Run(Operation::SHGetFolderPathW, {}, Text(), [&] { return DoGetFolder(csidl); });
  }
  // SHGetSpecialFolderLocation and SHGetPathFromIDListA in one: the path behind a shell item, empty
  // for a virtual one, which the Recycle Bin usually is.
  [[nodiscard]] Text SHGetSpecialFolderPath(std::int32_t csidl) {
    return Run(Operation::SHGetSpecialFolderPath, {}, Text(), [&] { return DoGetItemPath(csidl); });
  }
  // With a final backslash; empty on failure.
  [[nodiscard]] Text GetTempPathW() {
    return Run(Operation::GetTempPathW, {}, Text(), [&] { return DoGetTempPath(); });
  }
  // The shell's name for the type of a file by its name alone; empty on failure.
  [[nodiscard]] Text SHGetFileInfoW(TextView name) {
    return Run(Operation::SHGetFileInfoW, name, Text(), [&] { return DoGetTypeName(name); });
  }

  // Starts a program with its parameters, or opens a file in the program for its type, and does not
  // wait for it. "notepad.exe" stands for the system's viewer of plain text and "explorer.exe" for
  // its viewer of folders; each takes one path, which may be in quotation marks. "rundll32.exe"
  // with OpenAs_RunDLL lets a person choose the application; where there is no such box it is
  // SE_ERR_NOASSOC.
  [[nodiscard]] std::intptr_t ShellExecuteW(TextView verb, TextView file, TextView parameters,
                                            std::int32_t show) {
    std::intptr_t answer = SE_ERR_ACCESSDENIED;
    static_cast<void>(Run(Operation::ShellExecuteW, file, false, [&] {
      answer = DoExecute(verb, file, parameters, show);
      return answer > kLastShellFailure;
    }));
    return answer;
  }

  // Does what a verb stands for with a file or folder. "properties" shows the system's window of
  // its facts, which stays when the call has returned. The last error on failure.
  [[nodiscard]] bool ShellExecuteExW(const SHELLEXECUTEINFOW& execution) {
    return Run(Operation::ShellExecuteExW, execution.lpFile, false,
               [&] { return DoExecuteEx(execution); });
  }

  // Sends files and folders to the Recycle Bin: FO_DELETE with FOF_ALLOWUNDO, one or more paths
  // that do not end in a backslash. 0 when all of it is there, else a code of its own or of the
  // system; what was not sent is where it was. The last error means nothing after it. A path with
  // "\\?\" in front is refused, and one of 260 characters and more where the shell has that limit.
  [[nodiscard]] std::int32_t SHFileOperationW(SHFILEOPSTRUCTW& operation) {
    const std::uint32_t code =
        RunForCode(Operation::SHFileOperationW,
                   TextView(operation.pFrom).substr(0, operation.pFrom.find(u'\0')),
                   [&] { return static_cast<std::uint32_t>(DoFileOperation(operation)); });
    return static_cast<std::int32_t>(code);
  }

  // Texts that mark a path as lying in the Recycle Bin when they occur anywhere in it. Empty where
  // the bin's place follows from the file system of the drive.
  [[nodiscard]] std::vector<Text> RecycleBinMarks() { return DoRecycleBinMarks(); }

 private:
  virtual Text DoGetFolder(std::int32_t csidl) = 0;
  virtual Text DoGetItemPath(std::int32_t csidl) = 0;
  virtual Text DoGetTempPath() = 0;
  virtual Text DoGetTypeName(TextView name) = 0;
  virtual std::intptr_t DoExecute(TextView verb, TextView file, TextView parameters,
                                  std::int32_t show) = 0;
  virtual bool DoExecuteEx(const SHELLEXECUTEINFOW& execution) = 0;
  virtual std::int32_t DoFileOperation(SHFILEOPSTRUCTW& operation) = 0;
  virtual std::vector<Text> DoRecycleBinMarks() = 0;
};

}  // namespace quillmarsh
