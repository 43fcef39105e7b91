// SPDX-License-Identifier: MIT
// Looks by the attributes of an entry and judges a failure by its number; objects are made only for
// what such a look has found.
#include "fsobjects/cFSXFileSystemObject.h"

#include <unordered_set>

#include "base/CaseMapping.h"
#include "base/TextEquality.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/Handles.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/modAPIReadWriteFile.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {
namespace {

constexpr std::int32_t kMostUnsampledFiles = 50;

struct ExistenceKind {
  bool directory;
  TextView source;
  TextView detail;
};
constexpr ExistenceKind kFile = {false, u"modFSXFSO.FileExists", u"FSXFileExists - File: "};
constexpr ExistenceKind kFolder = {true, u"modFSXFSO.FolderExists", u"FSXFolderExists - Folder: "};

// What a system error number says of the entry; none for a number that is not expected here.
std::optional<bool> ExistenceBy(std::uint32_t error) {
  switch (error) {
    case ERROR_SUCCESS:
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DATA:
      return false;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return true;
    default:
      return std::nullopt;
  }
}

bool LookForEntry(TextView path, const ExistenceKind& kind, bool reportErrors) {
  TheMachine().SetLastError(ERROR_SUCCESS);
  const RedirectionOff redirection;
  const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(ToLongPath(path));
  if (attributes != INVALID_FILE_ATTRIBUTES)
    return ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) == kind.directory;

  const std::uint32_t error = TheMachine().GetLastError();
  if (const auto answer = ExistenceBy(error)) {
    TheMachine().SetLastError(ERROR_SUCCESS);
    return *answer;
  }
  if (reportErrors) {
    gPendingError = {};
    gPendingError.lastSystemError = error;
    ReportError(kind.source, Text(kind.detail).append(path));
  }
  return false;
}

bool EntryExists(TextView path, const ExistenceKind& kind, bool reportErrors) {
  if (path.empty()) return false;
  bool exists = false;
  try {
    exists = LookForEntry(path, kind, reportErrors);
  } catch (const RuntimeError& error) {
    const bool expected = error.Number() == runtime_error::BadFileName ||
                          error.Number() == runtime_error::FileNotFound;
    if (!expected && reportErrors) {
      TakePendingErrorFromException();
      ReportError(kind.source, Text(kind.detail).append(path));
    }
  }
  return exists;
}

template <typename Result, typename Body>
Result Reported(TextView member, Body&& body) {
  Result result{};
  Guarded(u"cFSXFileSystemObject." + Text(member), [&] { result = body(); });
  return result;
}

}  // namespace

bool FSXFileExists(TextView path) {
  return cFSXFileSystemObject().FileExists(path, true);
}
bool FSXFolderExists(TextView path) {
  return cFSXFileSystemObject().FolderExists(path, true);
}

bool cFSXFileSystemObject::FileExists(TextView fileSpec, bool reportErrors) {
  return EntryExists(fileSpec, kFile, reportErrors);
}

bool cFSXFileSystemObject::FolderExists(TextView folderSpec, bool reportErrors) {
  return EntryExists(folderSpec, kFolder, reportErrors);
}

std::unique_ptr<cFSXFolder> cFSXFileSystemObject::GetFolder(TextView folderSpec) {
  const Text path = AddBackslash(TrimBlanks(folderSpec));
  if (path.empty() || !FolderExists(path, true)) return nullptr;
  auto folder = std::make_unique<cFSXFolder>();
  folder->SetPath(path);
  return folder;
}

std::unique_ptr<cFSXFile> cFSXFileSystemObject::GetFile(TextView fileSpec) {
  const TextView path = TrimBlanks(fileSpec);
  if (path.empty() || !FileExists(path, true)) return nullptr;
  auto file = std::make_unique<cFSXFile>();
  file->SetPath(path);
  return file;
}

std::unique_ptr<cFSXFolder> cFSXFileSystemObject::GetSpecialFolder(std::int32_t folderId) {
  Shell& desktop = TheMachine().Desktop();
  Text path;
  switch (folderId) {
    case TemporaryFolder:
      path = desktop.GetTempPathW();
      break;
    case SystemFolder:
      path = AddBackslash(desktop.SHGetFolderPathW(CSIDL_SYSTEM));
      break;
    case WindowsFolder:
      path = AddBackslash(desktop.SHGetFolderPathW(CSIDL_WINDOWS));
      break;
    default:
      path = AddBackslash(desktop.SHGetFolderPathW(folderId));
      break;
  }
  return path.empty() ? nullptr : GetFolder(path);
}

std::unique_ptr<cFSXDrive> cFSXFileSystemObject::GetDrive(TextView driveSpec) {
  const Text root = GetDriveRootOf(driveSpec);
  if (root.empty()) return nullptr;
  auto drive = std::make_unique<cFSXDrive>();
  drive->SetName(AddBackslash(root));
  return drive->Exists() ? std::move(drive) : nullptr;
}

bool cFSXFileSystemObject::DriveExists(TextView driveSpec) {
  return Reported<bool>(u"DriveExists", [&] { return GetDrive(driveSpec) != nullptr; });
}

std::optional<std::vector<std::unique_ptr<cFSXDrive>>>
cFSXFileSystemObject::GetMappedDrivesCollection() {
  constexpr std::size_t Step = 4;  // "C:\" and its NUL
  const Text list = TheMachine().Drives().GetLogicalDriveStringsW();
  if (list.empty()) return std::nullopt;
  std::vector<std::unique_ptr<cFSXDrive>> drives;
  for (std::size_t place = 0; place < list.size() && list[place] != u'\0'; place += Step) {
    auto drive = std::make_unique<cFSXDrive>();
    drive->SetName(UpperCaseText(TextView(list).substr(place, 3)));
    drives.push_back(std::move(drive));
  }
  return drives;
}

Text cFSXFileSystemObject::GetDriveName(TextView path) {
  return Reported<Text>(u"GetDriveName", [&] { return GetDriveRootOf(path); });
}

Text cFSXFileSystemObject::GetFileName(TextView path) {
  return Reported<Text>(u"GetFileName", [&] { return GetFileNameOf(path); });
}

Text cFSXFileSystemObject::GetExtensionName(TextView path) {
  return Reported<Text>(u"GetExtensionName", [&] { return GetExtensionNameOf(path); });
}

Text cFSXFileSystemObject::GetParentFolderName(TextView path) {
  return Reported<Text>(u"GetParentFolderName", [&] {
    cFSXFolder folder;
    folder.SetPath(path);
    return folder.ParentFolderPath();
  });
}

bool cFSXFileSystemObject::WriteTextToFile(TextView fileSpec, TextView text, bool overwrite,
                                           TextEncoding encoding) {
  return WriteStringToFile(fileSpec, text, overwrite, encoding);
}

Text cFSXFileSystemObject::FileSystemName(TextView path) {
  VolumeInformation volume;
  if (!TheMachine().Drives().GetVolumeInformationW(ToLongPath(GetDriveRootOf(path)), volume))
    return {};
  return UpperCaseText(TrimAtNull(volume.fileSystemName));
}

bool cFSXFileSystemObject::IsDriveNTFS(TextView path) {
  return FileSystemName(path) == u"NTFS";
}

std::vector<Text> cFSXFileSystemObject::GetListOfFileTypesInTree(TextView folderSpec,
                                                                 bool recursive, bool sample) {
  std::vector<Text> found;
  PutAllFileExtensionsInTreeIntoList(folderSpec, recursive, sample, nullptr, found);
  std::vector<Text> list;
  Guarded(u"cFSX_FSO.GetListOfFileTypesInTree", [&] {
    std::unordered_set<Text> keys;
    for (Text& extension : found) {
      if (keys.insert(UpperCaseText(extension)).second) list.push_back(std::move(extension));
    }
  });
  return list;
}

void cFSXFileSystemObject::PutAllFileExtensionsInTreeIntoList(TextView folderSpec, bool recursive,
                                                              bool sample, const cFSXFolder* above,
                                                              std::vector<Text>& extensions) {
  Guarded(u"cFSX_FSO.PutAllFileExtensionsInTreeIntoList", [&] {
    const std::unique_ptr<cFSXFolder> folder = GetFolder(folderSpec);
    if (folder == nullptr) return;
    if (above != nullptr) folder->EnterFrom(*above);

    const std::shared_ptr<cFSXFiles> files = folder->Files();
    const std::int32_t count = files->Count();
    const std::int32_t seen = sample && count > kMostUnsampledFiles ? count / 4 : count;
    for (std::int32_t index = 1; index <= seen; ++index) {
      DoEvents_Fast();
      Text extension = SplitNameAndExtension(files->Facts(index).name).extension;
      const bool repeated =
          !extensions.empty() && AreStringsEqual(extensions.back(), extension, true);
      if (!extension.empty() && !repeated) extensions.push_back(std::move(extension));
    }
    if (!recursive) return;

    const std::shared_ptr<cFSXSubFolders> subFolders = folder->SubFoldersAndJunctions();
    for (std::int32_t index = 1; index <= subFolders->Count(); ++index) {
      DoEvents_Fast();
      const Text path = folder->Path().append(subFolders->Name(index)).append(u"\\");
      PutAllFileExtensionsInTreeIntoList(path, true, sample, folder.get(), extensions);
    }
  });
}

}  // namespace quillmarsh
