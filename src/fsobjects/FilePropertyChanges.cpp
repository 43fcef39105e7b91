// SPDX-License-Identifier: MIT
// The times of a file, and what differs between a file object and the disk.
#include <optional>

#include "base/TextEquality.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/Handles.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

constexpr std::int32_t kEveryTime = kCreationTime | kLastWriteTime | kLastAccessTime;

// The UTC ticks of a local date; none for a year that file times do not have.
std::optional<FILETIME> FileTimeOf(Date date) {
  const CivilTime civil = date.ToCivil();
  SYSTEMTIME system;
  system.wYear = static_cast<std::uint16_t>(civil.year);
  system.wMonth = static_cast<std::uint16_t>(civil.month);
  system.wDayOfWeek = static_cast<std::uint16_t>(civil.weekday);
  system.wDay = static_cast<std::uint16_t>(civil.day);
  system.wHour = static_cast<std::uint16_t>(civil.hour);
  system.wMinute = static_cast<std::uint16_t>(civil.minute);
  system.wSecond = static_cast<std::uint16_t>(civil.second);
  FILETIME local;
  FILETIME utc;
  if (!SystemTimeToFileTime(system, local) ||
      !TheMachine().Locale().LocalFileTimeToFileTime(local, utc))
    return std::nullopt;
  return utc;
}

// Times that are not chosen are set to what they are, in the same call.
bool SetTimes(TextView fileSpec, Date newDate, std::int32_t which) {
  FileInputOutput& files = TheMachine().Files();
  const RedirectionOff redirection;
  const FileHandle file(files.CreateFileW(ToLongPath(fileSpec), GENERIC_READ | GENERIC_WRITE,
                                          FILE_SHARE_READ, OPEN_EXISTING,
                                          FILE_FLAG_BACKUP_SEMANTICS));
  if (!file.IsValid() || !newDate.IsValid()) return false;
  BY_HANDLE_FILE_INFORMATION now;
  if (!files.GetFileInformationByHandle(file.Get(), now)) return false;
  const std::optional<FILETIME> time = FileTimeOf(newDate);
  if (!time || (which & kEveryTime) == 0) return false;
  const auto chosen = [&](std::int32_t bit, const FILETIME& present) {
    return (which & bit) != 0 ? *time : present;
  };
  const FILETIME created = chosen(kCreationTime, now.ftCreationTime);
  const FILETIME accessed = chosen(kLastAccessTime, now.ftLastAccessTime);
  const FILETIME written = chosen(kLastWriteTime, now.ftLastWriteTime);
  return files.SetFileTime(file.Get(), &created, &accessed, &written);
}

// What the disk says of a file; the times are raw local ticks.
struct FactsOnDisk {
  std::uint32_t attributes = 0;
  Currency created;
  Currency lastAccessed;
  Currency lastModified;
};

Currency LocalRawTime(const FILETIME& utc) {
  FILETIME local;
  static_cast<void>(TheMachine().Locale().FileTimeToLocalFileTime(utc, local));
  return Currency::FromRaw(local.Ticks());
}

std::optional<FactsOnDisk> FindFacts(TextView path) {
  const RedirectionOff redirection;
  WIN32_FIND_DATAW entry;
  const FindHandle search(TheMachine().Find().FindFirstFileW(ToLongPath(path), entry));
  if (!search.IsValid()) return std::nullopt;
  return FactsOnDisk{entry.dwFileAttributes, LocalRawTime(entry.ftCreationTime),
                     LocalRawTime(entry.ftLastAccessTime), LocalRawTime(entry.ftLastWriteTime)};
}

// The object's path has the new name already, so an object of the old one is renamed.
bool WriteName(cFSXFile& file) {
  if (AreStringsEqual(file.Name(), file.OriginalName(), true)) return true;
  cFSXFile before;
  before.SetPath(file.Path());
  before.SetName(file.OriginalName());
  return before.RenameFile(file.Name());
}

bool WriteChanges(cFSXFile& file) {
  const auto disk = FindFacts(file.ParentFolderPath() + file.OriginalName());
  if (!disk || !WriteName(file)) return false;
  const Text path = file.Path();
  if (file.LastAccessedDateAsCurr() != disk->lastAccessed &&
      !ChangeFileDate(path, file.LastAccessedDate(), kLastAccessTime))
    return false;
  if (file.LastModifiedDateAsCurr() != disk->lastModified &&
      !ChangeFileDate(path, file.LastModifiedDate(), kLastWriteTime))
    return false;
  if (file.CreatedDateAsCurr() != disk->created &&
      !ChangeFileDate(path, file.CreatedDate(), kCreationTime))
    return false;
  if (file.Attributes() == disk->attributes) return true;
  const RedirectionOff redirection;
  return TheMachine().Disk().SetFileAttributesW(ToLongPath(path), file.Attributes());
}

}  // namespace

bool ChangeFileDate(TextView fileSpec, Date newDate, std::int32_t which) {
  bool changed = false;
  Guarded(u"modFSXFSO_SupportRoutines.ChangeFileDate",
          [&] { changed = SetTimes(fileSpec, newDate, which); });
  return changed;
}

bool SaveFilePropertyChanges(cFSXFile& file) {
  bool saved = false;
  Guarded(u"modFSXFSO_SupportRoutines.SaveFilePropertyChanges",
          [&] { saved = WriteChanges(file); });
  return saved;
}

}  // namespace quillmarsh
