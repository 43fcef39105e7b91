// SPDX-License-Identifier: MIT
// The entry to the file-system objects: what exists, and objects for it. Made when needed and
// dropped again; keeps no state. What does not exist is no error but no object. gFolderPathsList
// and gFileSpecParser must be there first.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

class cFSXDrive;
class cFSXFile;
class cFSXFolder;

class cFSXFileSystemObject {
 public:
  // The numbers of GetSpecialFolder that are no CSIDL.
  static constexpr std::int32_t TemporaryFolder = -3;
  static constexpr std::int32_t SystemFolder = -2;
  static constexpr std::int32_t WindowsFolder = -1;

  // The extensions of the files in a folder or tree, each once, ignoring case. With `sample` only
  // the first quarter of a folder of more than 50 files is looked at.
  [[nodiscard]] std::vector<Text> GetListOfFileTypesInTree(TextView folderSpec, bool recursive,
                                                           bool sample);
  // All logical drives, by their names in capitals; none when the system lists none.
  [[nodiscard]] std::optional<std::vector<std::unique_ptr<cFSXDrive>>> GetMappedDrivesCollection();
  [[nodiscard]] std::unique_ptr<cFSXDrive> GetDrive(TextView driveSpec);
  [[nodiscard]] Text GetDriveName(TextView path);
  // The path of the folder gets a final backslash.
  [[nodiscard]] std::unique_ptr<cFSXFolder> GetFolder(TextView folderSpec);
  [[nodiscard]] std::unique_ptr<cFSXFolder> GetSpecialFolder(std::int32_t folderId);
  [[nodiscard]] std::unique_ptr<cFSXFile> GetFile(TextView fileSpec);
  [[nodiscard]] Text GetFileName(TextView path);
  [[nodiscard]] Text GetExtensionName(TextView path);
  // With a final backslash; empty for a root.
  [[nodiscard]] Text GetParentFolderName(TextView path);
  // What cannot be looked at for want of access, or is in use, counts as existing. An unusual
  // failure is reported with `reportErrors`, and the answer is then false.
  [[nodiscard]] bool FileExists(TextView fileSpec, bool reportErrors);
  [[nodiscard]] bool FolderExists(TextView folderSpec, bool reportErrors);
  [[nodiscard]] bool DriveExists(TextView driveSpec);
  bool WriteTextToFile(TextView fileSpec, TextView text, bool overwrite, TextEncoding encoding);
  // "NTFS", "EXT4": in capitals; empty when the volume cannot be read.
  [[nodiscard]] Text FileSystemName(TextView path);
  [[nodiscard]] bool IsDriveNTFS(TextView path);

 private:
  void PutAllFileExtensionsInTreeIntoList(TextView folderSpec, bool recursive, bool sample,
                                          const cFSXFolder* above, std::vector<Text>& extensions);
};

// For callers that need only the answer; unusual failures are reported.
[[nodiscard]] bool FSXFileExists(TextView path);
[[nodiscard]] bool FSXFolderExists(TextView path);

}  // namespace quillmarsh
