// SPDX-License-Identifier: MIT
// Rows on changing the disk: deleting, moving, copying, recycling, attributes and times.
#include <algorithm>

#include "platform/AtomicFiles.h"
#include "platform/ConformanceRows.h"

namespace quillmarsh {

namespace {

constexpr std::uint32_t replace = MOVEFILE_REPLACE_EXISTING;
constexpr std::uint32_t removalFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;

// Each answers 0 or the code of the failure.
std::uint32_t Delete(MachineUnderTest& ground, TextView relative) {
  return ground.Get().Disk().DeleteFileW(ground.PathOf(relative)) ? 0 : ground.Get().GetLastError();
}
std::uint32_t Move(MachineUnderTest& ground, TextView from, TextView to, std::uint32_t flags = 0) {
  return ground.Get().Disk().MoveFileExW(ground.PathOf(from), ground.PathOf(to), flags)
             ? 0
             : ground.Get().GetLastError();
}
std::uint32_t Copy(MachineUnderTest& ground, TextView from, TextView to, bool failIfExists) {
  return ground.Get().Disk().CopyFileW(ground.PathOf(from), ground.PathOf(to), failIfExists)
             ? 0
             : ground.Get().GetLastError();
}

// The names in the ground and what the files hold: "a=1 folder\ z=26".
std::string Ground(MachineUnderTest& ground, TextView below = {}) {
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(Text(below) + u"*"));
  std::vector<std::string> entries;
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    const Text name = Text(below) + listing.names[i];
    if ((listing.records[i].dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      entries.push_back(ToUtf8(name) + "\\ " + Ground(ground, name + u"\\"));
      continue;
    }
    std::string bytes(100, '\0');
    std::uint32_t done = 0;
    FileInputOutput& files = ground.Get().Files();
    const HANDLE file =
        files.CreateFileW(ground.PathOf(name), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    EXPECT_TRUE(files.ReadFile(file, std::as_writable_bytes(std::span(bytes)), done));
    EXPECT_TRUE(files.CloseHandle(file));
    entries.push_back(ToUtf8(name) + "=" + bytes.substr(0, done) + " ");
  }
  std::ranges::sort(entries);
  std::string text;
  for (const std::string& entry : entries) text += entry;
  return text;
}

std::uint32_t AttributesOf(MachineUnderTest& ground, TextView relative) {
  return ground.Get().Files().GetFileAttributesW(ground.PathOf(relative));
}

void Deleting(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"kept", "2");
  ground.MakeFolder(u"folder");
  ground.MakeFolderLink(u"link", u"folder");
  ground.SetReadOnly(u"kept", true);
  EXPECT_EQ(Delete(ground, u"a"), 0U);
  EXPECT_EQ(Delete(ground, u"a"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Delete(ground, u"none\\a"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Delete(ground, u"kept\\a"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Delete(ground, u"kept"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Delete(ground, u"kept\\"), ERROR_INVALID_NAME);
  EXPECT_EQ(Delete(ground, u"folder"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Delete(ground, u"link"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Delete(ground, u"a*"), ERROR_INVALID_NAME);
  EXPECT_FALSE(ground.Get().Disk().DeleteFileW(u""));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_PATH_NOT_FOUND);
  ground.SetReadOnly(u"kept", false);
  EXPECT_EQ(Delete(ground, u"kept"), 0U);
  EXPECT_EQ(ListFolder(ground.Get(), ground.PathOf(u"*")).names.size(), 2U);
}

void MovingToAFreeName(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"folder\\inner", "2");
  ground.MakeFolder(u"other");
  ground.SetReadOnly(u"a", true);
  ground.SetWritten(u"a", 133'000'000'120'000'000);
  EXPECT_EQ(Move(ground, u"a", u"other\\b", MOVEFILE_WRITE_THROUGH), 0U);
  EXPECT_NE(AttributesOf(ground, u"other\\b") & FILE_ATTRIBUTE_READONLY, 0U);
  EXPECT_EQ(ListFolder(ground.Get(), ground.PathOf(u"other\\*")).records[0].ftLastWriteTime.Ticks(),
            133'000'000'120'000'000);
  EXPECT_EQ(Move(ground, u"folder\\", u"other\\moved\\", removalFlags), 0U);
  EXPECT_EQ(Ground(ground), "other\\ other\\b=1 other\\moved\\ other\\moved\\inner=2 ");
  struct Row {
    const char* name;
    TextView from, to;
    std::uint32_t code;
  };
  const Row table[] = {
      {"missing", u"none", u"x", ERROR_FILE_NOT_FOUND},
      {"missing folder", u"none\\a", u"x", ERROR_PATH_NOT_FOUND},
      {"missing target folder", u"other\\b", u"none\\x", ERROR_PATH_NOT_FOUND},
      {"below a file", u"other\\moved", u"other\\b\\x", ERROR_PATH_NOT_FOUND},
      {"a name that cannot be", u"other\\b", u"x?", ERROR_INVALID_NAME},
  };
  for (const Row& row : table)
    EXPECT_EQ(Move(ground, row.from, row.to, replace), row.code) << row.name;
  EXPECT_FALSE(ground.Get().Disk().MoveFileExW(ground.PathOf(u"other"), ground.PathOf(u"x"), 4));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Ground(ground), "other\\ other\\b=1 other\\moved\\ other\\moved\\inner=2 ");
}

void MovingNeverReplacesUnasked(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"b", "2");
  ground.MakeFile(u"folder\\in", "3");
  ground.MakeFolder(u"empty");
  const std::string before = Ground(ground);
  for (const auto& [from, to] : {std::pair<TextView, TextView>{u"a", u"b"},
                                 {u"a", u"folder"},
                                 {u"folder", u"a"},
                                 {u"folder", u"empty"},
                                 {u"empty", u"folder"}})
    EXPECT_EQ(Move(ground, from, to, MOVEFILE_COPY_ALLOWED), ERROR_ALREADY_EXISTS)
        << ToUtf8(from) << " to " << ToUtf8(to);
  EXPECT_EQ(Move(ground, u"a", u"a"), 0U) << "onto itself";
  EXPECT_EQ(Move(ground, u"folder", u"folder"), 0U) << "a folder onto itself";
  EXPECT_EQ(Ground(ground), before);
}

void MovingToAPlaceThatCannotBe(MachineUnderTest& ground) {
  ground.MakeFile(u"folder\\a", "1");
  ground.MakeFolder(u"folder\\empty");
  const std::string before = Ground(ground);
  EXPECT_EQ(Move(ground, u"folder\\a", u"x\\", replace), ERROR_INVALID_NAME);
  EXPECT_EQ(Move(ground, u"folder\\a", u"folder\\empty\\"), ERROR_INVALID_NAME);
  EXPECT_EQ(Move(ground, u"folder", u"folder\\empty\\x", replace), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(Ground(ground), before);
}

void MovingWithReplace(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"b", "2");
  ground.MakeFile(u"kept", "3");
  ground.SetReadOnly(u"kept", true);
  EXPECT_EQ(Move(ground, u"a", u"a", replace), 0U);
  EXPECT_EQ(Move(ground, u"kept", u"b", replace | MOVEFILE_WRITE_THROUGH), 0U);
  EXPECT_EQ(Ground(ground), "a=1 b=3 ");
}

void MovingReplacesFilesOnly(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"kept", "3");
  ground.MakeFolder(u"folder");
  ground.MakeFolder(u"other");
  ground.SetReadOnly(u"kept", true);
  const std::string before = Ground(ground);
  EXPECT_EQ(Move(ground, u"a", u"kept", replace), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(ground, u"a", u"folder", replace), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(ground, u"folder", u"a", replace), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(ground, u"folder", u"other", replace), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Ground(ground), before);
}

void MovingChangesCase(MachineUnderTest& ground) {
  ground.MakeFile(u"name.txt", "1");
  ground.MakeFile(u"folder\\in", "2");
  EXPECT_EQ(Move(ground, u"name.txt", u"NAME.txt"), 0U);
  EXPECT_EQ(Move(ground, u"folder", u"Folder"), 0U);
  EXPECT_EQ(Ground(ground), "Folder\\ Folder\\in=2 NAME.txt=1 ");
}

void Copying(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"b", "old and longer");
  ground.MakeFile(u"kept", "3");
  ground.MakeFolder(u"folder");
  ground.SetWritten(u"a", 133'000'000'120'000'000);
  ground.SetReadOnly(u"a", true);
  ground.SetReadOnly(u"kept", true);
  const std::string before = Ground(ground);
  struct Row {
    const char* name;
    TextView from, to;
    bool failIfExists;
    std::uint32_t code;
  };
  const Row table[] = {
      {"missing", u"none", u"b", true, ERROR_FILE_NOT_FOUND},
      {"missing target folder", u"a", u"none\\x", false, ERROR_PATH_NOT_FOUND},
      {"a folder", u"folder", u"x", false, ERROR_ACCESS_DENIED},
      {"onto a folder", u"a", u"folder", false, ERROR_ACCESS_DENIED},
      {"onto a folder, new wanted", u"a", u"folder", true, ERROR_FILE_EXISTS},
      {"onto a read-only file", u"b", u"kept", false, ERROR_ACCESS_DENIED},
      {"onto a file, new wanted", u"a", u"b", true, ERROR_FILE_EXISTS},
      {"onto itself", u"b", u"b", false, ERROR_SHARING_VIOLATION},
      {"to a folder that is not", u"a", u"x\\", false, ERROR_INVALID_NAME},
  };
  for (const Row& row : table)
    EXPECT_EQ(Copy(ground, row.from, row.to, row.failIfExists), row.code) << row.name;
  EXPECT_EQ(Ground(ground), before);
  EXPECT_EQ(Copy(ground, u"a", u"b", false), 0U);
  EXPECT_EQ(Copy(ground, u"a", u"folder\\new", true), 0U);
  EXPECT_EQ(Ground(ground), "a=1 b=1 folder\\ folder\\new=1 kept=3 ");
  EXPECT_NE(AttributesOf(ground, u"b") & FILE_ATTRIBUTE_READONLY, 0U);
  const FolderListing copy = ListFolder(ground.Get(), ground.PathOf(u"folder\\*"));
  EXPECT_EQ(copy.records[0].ftLastWriteTime.Ticks(), 133'000'000'120'000'000);
}

void CopyingLargeFiles(MachineUnderTest& ground) {
  std::string bytes(3'000'001, 'x');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 / 7);
  ground.MakeFile(u"a", bytes);
  ground.MakeFile(u"empty", "");
  EXPECT_EQ(Copy(ground, u"a", u"b", true), 0U);
  EXPECT_EQ(Copy(ground, u"empty", u"empty too", true), 0U);
  FileInputOutput& files = ground.Get().Files();
  const HANDLE copy =
      files.CreateFileW(ground.PathOf(u"b"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
  std::string found(bytes.size() + 10, '\0');
  std::uint32_t done = 0;
  EXPECT_TRUE(files.ReadFile(copy, std::as_writable_bytes(std::span(found)), done));
  EXPECT_TRUE(files.CloseHandle(copy));
  EXPECT_EQ(done, bytes.size());
  EXPECT_TRUE(found.starts_with(bytes)) << "other bytes";
  EXPECT_EQ(ListFolder(ground.Get(), ground.PathOf(u"*")).names.size(), 4U) << "nothing besides";
}

void KeptOutOfChanges(MachineUnderTest& ground) {
  if (!ground.CanKeepOut()) GTEST_SKIP() << "nobody can be kept out here";
  ground.MakeFile(u"shut\\a", "1");
  ground.MakeFile(u"b", "2");
  ground.KeepOut(u"shut");
  EXPECT_EQ(Delete(ground, u"shut\\a"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(ground, u"shut\\a", u"a"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(ground, u"b", u"shut\\b", removalFlags), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Copy(ground, u"b", u"shut\\b", false), ERROR_ACCESS_DENIED);
  EXPECT_NE(AttributesOf(ground, u"b"), INVALID_FILE_ATTRIBUTES);
}

void ReplacingWhole(MachineUnderTest& ground) {
  Machine& machine = ground.Get();
  EXPECT_TRUE(ReplaceFileContents(machine, ground.PathOf(u"new.ini"), "first"));
  EXPECT_TRUE(ReplaceFileContents(machine, ground.PathOf(u"new.ini"), "2nd"));
  EXPECT_FALSE(ReplaceFileContents(machine, ground.PathOf(u"none\\new.ini"), "3rd"));
  EXPECT_EQ(machine.GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Ground(ground), "new.ini=2nd ");
}

void ReplacingReadOnly(MachineUnderTest& ground) {
  ground.MakeFile(u"new.ini", "2nd");
  ground.SetReadOnly(u"new.ini", true);
  EXPECT_FALSE(ReplaceFileContents(ground.Get(), ground.PathOf(u"new.ini"), "3rd"));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Ground(ground), "new.ini=2nd ");
}

void SettingReadOnly(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  ground.MakeFolder(u"folder");
  DiskChange& disk = ground.Get().Disk();
  const std::uint32_t before = AttributesOf(ground, u"a");
  EXPECT_TRUE(disk.SetFileAttributesW(ground.PathOf(u"a"), before | FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(AttributesOf(ground, u"a"), before | FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(Delete(ground, u"a"), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(disk.SetFileAttributesW(ground.PathOf(u"a"), before));
  EXPECT_EQ(AttributesOf(ground, u"a"), before);
  EXPECT_EQ(Delete(ground, u"a"), 0U);
  EXPECT_TRUE(disk.SetFileAttributesW(ground.PathOf(u"folder"), FILE_ATTRIBUTE_NORMAL));
  EXPECT_FALSE(disk.SetFileAttributesW(ground.PathOf(u"a"), before));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(disk.SetFileAttributesW(ground.PathOf(u"none\\a"), before));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_PATH_NOT_FOUND);
}

void RemovingFolders(MachineUnderTest& ground) {
  ground.MakeFile(u"folder\\in", "1");
  ground.MakeFolder(u"empty");
  struct Row {
    TextView path;
    std::uint32_t code;
  };
  const Row table[] = {
      {u"folder", ERROR_DIR_NOT_EMPTY},         {u"folder\\in", ERROR_DIRECTORY},
      {u"none", ERROR_FILE_NOT_FOUND},          {u"none\\empty", ERROR_PATH_NOT_FOUND},
      {u"folder\\in\\x", ERROR_PATH_NOT_FOUND}, {u"empty\\", 0},
      {u"empty", ERROR_FILE_NOT_FOUND},
  };
  for (const Row& row : table) {
    const bool isGone = ground.Get().Disk().RemoveDirectoryW(ground.PathOf(row.path));
    EXPECT_EQ(isGone ? 0 : ground.Get().GetLastError(), row.code) << ToUtf8(row.path);
  }
  EXPECT_EQ(Ground(ground), "folder\\ folder\\in=1 ");
}

void RemovingRootsAndLinks(MachineUnderTest& ground) {
  ground.MakeFile(u"folder\\in", "1");
  ground.MakeFolderLink(u"link", u"folder");
  EXPECT_TRUE(ground.Get().Disk().RemoveDirectoryW(ground.PathOf(u"link")));
  EXPECT_EQ(Ground(ground), "folder\\ folder\\in=1 ");
  const Text root = ground.Base().substr(0, 3);
  EXPECT_FALSE(ground.Get().Disk().RemoveDirectoryW(root));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_ACCESS_DENIED);
}

void SettingTimes(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  FileInputOutput& files = ground.Get().Files();
  const HANDLE file = files.CreateFileW(ground.PathOf(u"a"), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ, OPEN_EXISTING, 0);
  BY_HANDLE_FILE_INFORMATION told;
  // In 1909, one tick before 1970, and a moment of today with all its digits.
  constexpr std::int64_t moments[] = {97'444'736'000'000'001, 116'444'735'999'999'999,
                                      133'000'000'123'456'789};
  for (const std::int64_t ticks : moments) {
    const FILETIME written = FILETIME::FromTicks(ticks);
    const FILETIME accessed = FILETIME::FromTicks(ticks + 10'000'001);
    EXPECT_TRUE(files.SetFileTime(file, &written, &accessed, &written));
    EXPECT_TRUE(files.GetFileInformationByHandle(file, told));
    EXPECT_EQ(told.ftLastWriteTime.Ticks(), ticks);
    EXPECT_EQ(told.ftLastAccessTime.Ticks(), ticks + 10'000'001);
  }
  const FILETIME later = FILETIME::FromTicks(133'000'000'000'000'000);
  EXPECT_TRUE(files.SetFileTime(file, nullptr, &later, nullptr));
  EXPECT_TRUE(files.GetFileInformationByHandle(file, told));
  EXPECT_EQ(told.ftLastWriteTime.Ticks(), moments[2]);
  EXPECT_EQ(told.ftLastAccessTime, later);
  EXPECT_TRUE(files.CloseHandle(file));
  EXPECT_FALSE(files.SetFileTime(file, nullptr, &later, nullptr));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_INVALID_HANDLE);
}

void SettingTimesOfARead(MachineUnderTest& ground) {
  ground.MakeFile(u"a", "1");
  FileInputOutput& files = ground.Get().Files();
  const HANDLE readable =
      files.CreateFileW(ground.PathOf(u"a"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
  const FILETIME later = FILETIME::FromTicks(133'000'000'000'000'000);
  EXPECT_FALSE(files.SetFileTime(readable, nullptr, &later, nullptr));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(files.CloseHandle(readable));
}

std::int32_t Recycle(MachineUnderTest& ground, const Text& path, std::uint16_t flags) {
  SHFILEOPSTRUCTW operation;
  operation.wFunc = FO_DELETE;
  operation.pFrom = path + Text(2, u'\0');
  operation.fFlags = flags;
  const std::int32_t code = ground.Get().Desktop().SHFileOperationW(operation);
  EXPECT_FALSE(operation.fAnyOperationsAborted);
  return code;
}

void Recycling(MachineUnderTest& ground) {
  constexpr std::uint16_t flags = FOF_NOERRORUI | FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT;
  ground.MakeFile(u"a", "1");
  ground.MakeFile(u"kept", "2");
  ground.SetReadOnly(u"a", true);
  EXPECT_EQ(Recycle(ground, ground.PathOf(u"kept"), FOF_SILENT), 87) << "it could not be undone";
  EXPECT_EQ(Recycle(ground, u"\\\\?\\" + ground.PathOf(u"kept"), flags), DE_INVALIDFILES);
  EXPECT_EQ(Recycle(ground, ground.PathOf(u"k*"), flags), DE_INVALIDFILES);
  EXPECT_EQ(Recycle(ground, ground.PathOf(u"none"), flags), 2);
  EXPECT_EQ(Recycle(ground, ground.PathOf(u"none\\a"), flags), 3);
  EXPECT_EQ(Recycle(ground, ground.PathOf(u"a"), flags), 0);
  EXPECT_EQ(Ground(ground), "kept=2 ");
  EXPECT_EQ(ground.RecycledBytes(u"a"), "1");
  EXPECT_EQ(ground.RecycledBytes(u"kept"), "(none)");
}

constexpr ConformanceRow rows[] = {
    {"FSXFSO_DeleteFSO", "deleting takes files away and keeps read-only ones and folders",
     Deleting},
    {"FSXFSO_MoveFSO", "a move to a free name keeps all that belongs to the entry",
     MovingToAFreeName},
    {"FSXFSO_MoveFSO", "a move never replaces unasked", MovingNeverReplacesUnasked},
    {"FSXFSO_MoveFSO", "a move to a place that cannot be leaves all as it was",
     MovingToAPlaceThatCannotBe},
    {"RemoveMarkedFilesAllGroups", "a move that replaces puts a file in the place of another",
     MovingWithReplace},
    {"RemoveMarkedFilesAllGroups", "a move that replaces takes files only, and no read-only ones",
     MovingReplacesFilesOnly},
    {"FSXFSO_MoveFSO", "a move may change the case of a name alone", MovingChangesCase},
    {"FSXFSO_CopyFSO", "a copy replaces only what may be replaced, and keeps time and attribute",
     Copying},
    {"SaveAs", "a copy of many blocks is whole and leaves nothing besides", CopyingLargeFiles},
    {"WritePrivateProfileStringW", "a file is replaced as a whole with nothing left beside it",
     ReplacingWhole},
    {"WritePrivateProfileStringW", "a read-only file is not replaced", ReplacingReadOnly},
    {"RemoveMarkedFilesAllGroups", "a folder that keeps one out of changes is 5", KeptOutOfChanges},
    {"RemoveFile", "read-only is set and lifted for sure", SettingReadOnly},
    {"FSXFSO_MoveFSO", "only empty folders are removed", RemovingFolders},
    {"FSXFSO_MoveFSO", "of a link to a folder the link is removed, and a root never",
     RemovingRootsAndLinks},
    {"ChangeFileDate", "times are set to the tick, and those that are not given stay",
     SettingTimes},
    {"ChangeFileDate", "times are not set through a handle for reading", SettingTimesOfARead},
    {"SendFileToRecycleBin", "what goes to the Recycle Bin is found there", Recycling},
};

}  // namespace

std::span<const ConformanceRow> ChangeRows() {
  return rows;
}

}  // namespace quillmarsh
