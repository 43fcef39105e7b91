// SPDX-License-Identifier: MIT
// What only the simulated machine has: case folding, junctions and mount points, shares, media that
// are read-only or not there, access lists, share modes, redirection, recipes, and its size.
#include <gtest/gtest.h>

#include <array>

#include "platform/MachineUnderTest.h"
#include "support/MachineFixture.h"

namespace quillmarsh {

namespace {

class SimulatedMachineTest : public testing::Test, protected MachineFixture {
 protected:
  std::uint32_t AttributesCode(TextView path) {
    const bool failed = machine.Files().GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES;
    return failed ? machine.GetLastError() : 0;
  }
  std::uint32_t OpeningCode(TextView path, std::uint32_t access = GENERIC_READ,
                            std::uint32_t share = FILE_SHARE_READ,
                            std::uint32_t disposition = OPEN_EXISTING, std::uint32_t flags = 0x80) {
    const HANDLE file = machine.Files().CreateFileW(path, access, share, disposition, flags);
    if (file == INVALID_HANDLE) return machine.GetLastError();
    machine.Files().CloseHandle(file);
    return 0;
  }
  void AddDrive(TextView root, TextView fileSystem, std::uint32_t type = DRIVE_FIXED) {
    SimulatedDrive drive;
    drive.root = root;
    drive.fileSystem = fileSystem;
    drive.type = type;
    machine.AddDrive(drive);
  }
};

TEST_F(SimulatedMachineTest, NamesIgnoreCaseAndKeepTheirSpelling) {
  machine.AddFile(u"C:\\Music\\Übung.TXT", "x");
  EXPECT_EQ(AttributesCode(u"c:\\MUSIC\\üBUNG.txt"), 0U);
  EXPECT_EQ(ListFolder(machine, u"C:\\music\\*").names, std::vector<Text>{u"Übung.TXT"});
  EXPECT_EQ(machine.Drives().LocationFromNative("c:\\mUsic\\").path, u"C:\\Music");
  EXPECT_FALSE(machine.Disk().CreateDirectoryW(u"C:\\MUSIC"));
  EXPECT_EQ(machine.GetLastError(), ERROR_ALREADY_EXISTS);
}

TEST_F(SimulatedMachineTest, OrderIsByNameOnNtfsAndByAgeOnFat) {
  AddDrive(u"E:\\", u"FAT32");
  for (const TextView name : {u"b", u"C", u"_", u"a"}) {
    machine.AddFile(u"C:\\order\\" + Text(name));
    machine.AddFile(u"E:\\order\\" + Text(name));
  }
  EXPECT_EQ(ListFolder(machine, u"C:\\order\\*").names,
            (std::vector<Text>{u"a", u"b", u"C", u"_"}));
  EXPECT_EQ(ListFolder(machine, u"E:\\order\\*").names,
            (std::vector<Text>{u"b", u"C", u"_", u"a"}));
}

TEST_F(SimulatedMachineTest, RootsListNoDots) {
  EXPECT_EQ(ListFolder(machine, u"C:\\*").endCode, ERROR_FILE_NOT_FOUND);
  machine.AddFolder(u"C:\\one");
  EXPECT_EQ(ListFolder(machine, u"C:\\*").dotsFirst, 0);
}

TEST_F(SimulatedMachineTest, AddedEntriesAppearInARunningListingByTheirPlace) {
  for (const TextView root : {u"C:\\", u"E:\\"}) {
    if (root == u"E:\\") AddDrive(root, u"exFAT");
    const Text folder = Text(root) + u"f\\";
    machine.AddFile(folder + u"b");
    machine.AddFile(folder + u"d");
    WIN32_FIND_DATAW entry;
    const HANDLE search = machine.Find().FindFirstFileW(folder + u"*", entry);
    std::vector<Text> names;
    do {
      names.emplace_back(entry.cFileName);
      if (names.back() != u"b") continue;
      machine.AddFile(folder + u"a");
      machine.AddFile(folder + u"c");
      machine.Remove(folder + u"b");
    } while (machine.Find().FindNextFileW(search, entry));
    machine.Find().FindClose(search);
    const auto expected = root == u"C:\\" ? std::vector<Text>{u".", u"..", u"b", u"c", u"d"}
                                          : std::vector<Text>{u".", u"..", u"b", u"d", u"a", u"c"};
    EXPECT_EQ(names, expected);
  }
}

TEST_F(SimulatedMachineTest, APathOf260CharactersNeedsThePrefix) {
  const Text folder = u"C:\\" + Text(100, u'a') + u"\\" + Text(100, u'b');  // 204
  const auto fileOf = [&](std::size_t length) {
    return folder + u"\\" + Text(length - folder.size() - 1, u'f');
  };
  machine.AddFile(fileOf(259));
  machine.AddFile(fileOf(260));
  EXPECT_EQ(AttributesCode(fileOf(259)), 0U);
  EXPECT_EQ(AttributesCode(fileOf(260)), ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(AttributesCode(u"\\\\?\\" + fileOf(260)), 0U);
  EXPECT_TRUE(machine.Disk().CreateDirectoryW(fileOf(247)));
  EXPECT_FALSE(machine.Disk().CreateDirectoryW(fileOf(248)));
  EXPECT_EQ(machine.GetLastError(), ERROR_FILENAME_EXCED_RANGE);
}

TEST_F(SimulatedMachineTest, FinalDotsAndBlanksCountWhereNothingIsToBeWorkedOut) {
  machine.AddFile(u"C:\\name");
  EXPECT_EQ(AttributesCode(u"C:\\name. ."), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(AttributesCode(u"C:/name. ."), 0U);
  EXPECT_EQ(AttributesCode(u"C:\\.\\name. ."), 0U);
  EXPECT_EQ(AttributesCode(u"C:/other/../name"), 0U);
  EXPECT_EQ(AttributesCode(u"\\\\?\\C:\\name."), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(AttributesCode(u"\\\\?\\C:\\.\\name"), ERROR_INVALID_NAME);
  EXPECT_EQ(AttributesCode(u"\\\\?\\C:/name"), ERROR_INVALID_NAME);
  machine.SetCurrentFolder(u"C:\\here\\below");
  machine.AddFile(u"C:\\here\\file");
  EXPECT_EQ(AttributesCode(u"..\\file"), 0U);
}

TEST_F(SimulatedMachineTest, AFinalDotThatTheShellWouldDropIsNotSentToTheBin) {
  machine.AddFile(u"C:\\name", "kept");
  machine.AddFile(u"C:\\name.", "kept too");
  SHFILEOPSTRUCTW operation;
  operation.wFunc = FO_DELETE;
  operation.pFrom = Text(u"C:\\name.\0\0", 10);
  operation.fFlags = FOF_ALLOWUNDO;
  EXPECT_EQ(machine.Desktop().SHFileOperationW(operation), DE_INVALIDFILES);
  EXPECT_EQ(machine.TreeOf(u"C:\\"), (std::vector<Text>{u"C:\\name", u"C:\\name."}));
}

TEST_F(SimulatedMachineTest, JunctionsAreEnteredOnTheWayAndOneFileHasOnePlace) {
  machine.AddFile(u"C:\\real\\sub\\file", "same");
  machine.AddJunction(u"C:\\door", u"C:\\real");
  machine.AddJunction(u"C:\\second door", u"C:\\door");
  EXPECT_EQ(machine.ContentsOf(u"C:\\second door\\sub\\file"), "same");
  EXPECT_EQ(ListFolder(machine, u"C:\\second door\\*").names, std::vector<Text>{u"sub"});
  EXPECT_EQ(machine.Drives().LocationFromNative("C:\\second door\\SUB").path, u"C:\\real\\sub");
  machine.Remove(u"C:\\door");
  EXPECT_TRUE(machine.Exists(u"C:\\real\\sub\\file"));
  EXPECT_EQ(ListFolder(machine, u"C:\\second door\\*").endCode, ERROR_PATH_NOT_FOUND);
}

TEST_F(SimulatedMachineTest, LinksInACircleAreAnErrorAndNoHang) {
  machine.AddJunction(u"C:\\a", u"C:\\b");
  machine.AddJunction(u"C:\\b", u"C:\\a");
  machine.AddJunction(u"C:\\folder\\self", u"C:\\folder\\self\\x");
  EXPECT_EQ(ListFolder(machine, u"C:\\a\\*").endCode, 1921U);
  EXPECT_NE(ListFolder(machine, u"C:\\folder\\self\\*").endCode, 0U);
  EXPECT_EQ(AttributesCode(u"C:\\a"), 0U);
}

TEST_F(SimulatedMachineTest, AMountPointShowsItsVolumeAndTellsItsName) {
  SimulatedDrive hidden;
  hidden.label = u"Archive";
  hidden.totalBytes = 1000;
  const Text volume = machine.AddVolumeWithoutLetter(hidden);
  machine.AddMountPoint(u"C:\\mounted", volume);
  machine.AddFile(u"C:\\mounted\\file", "x");
  Volumes& drives = machine.Drives();
  EXPECT_EQ(drives.GetVolumeNameForVolumeMountPointW(u"C:\\mounted\\"), volume);
  EXPECT_EQ(drives.GetVolumeNameForVolumeMountPointW(u"C:\\mounted"), u"");
  EXPECT_EQ(machine.GetLastError(), ERROR_INVALID_NAME);
  const FolderListing listing = ListFolder(machine, u"C:\\mounted\\*");
  EXPECT_EQ(listing.names, std::vector<Text>{u"file"});
  EXPECT_EQ(listing.dotsFirst, 0);
  DiskSpace space;
  EXPECT_TRUE(drives.GetDiskFreeSpaceExW(u"C:\\mounted", space));
  EXPECT_EQ(space.totalNumberOfBytes, 1000U);
  VolumeInformation information;
  EXPECT_TRUE(drives.GetVolumeInformationW(u"C:\\mounted\\", information));
  EXPECT_EQ(information.label, u"Archive");
  EXPECT_EQ(drives.LocationFromNative("C:\\MOUNTED\\file").path, u"C:\\mounted\\file");
  EXPECT_EQ(drives.GetLogicalDriveStringsW(), Text(u"C:\\\0", 4));
}

TEST_F(SimulatedMachineTest, AShareUnderALetterHasOneCanonicalForm) {
  AddDrive(u"\\\\server\\share\\", u"NTFS", DRIVE_REMOTE);
  machine.AddFile(u"\\\\server\\share\\docs\\file", "x");
  machine.AddSecondRoot(u"S:\\", u"\\\\server\\share\\");
  EXPECT_EQ(machine.Drives().LocationFromNative("S:\\docs").path, u"\\\\server\\share\\docs");
  EXPECT_EQ(AttributesCode(u"\\\\?\\UNC\\SERVER\\share\\docs\\file"), 0U);
  EXPECT_EQ(machine.Drives().GetDriveTypeW(u"\\\\server\\share\\"), DRIVE_REMOTE);
  EXPECT_EQ(ListFolder(machine, u"\\\\server\\other\\*").endCode, ERROR_BAD_NETPATH);
}

TEST_F(SimulatedMachineTest, AnEmptyCardReaderIsListedAndNotReady) {
  AddDrive(u"F:\\", u"FAT32", DRIVE_REMOVABLE);
  machine.AddFile(u"F:\\photo.jpg", "x");
  WIN32_FIND_DATAW entry;
  const HANDLE search = machine.Find().FindFirstFileW(u"F:\\*", entry);
  const HANDLE file = machine.Files().CreateFileW(u"F:\\photo.jpg", GENERIC_READ, FILE_SHARE_READ,
                                                  OPEN_EXISTING, 0);
  machine.SetReady(u"F:\\", false);
  EXPECT_NE(machine.Drives().GetLogicalDriveStringsW().find(u"F:\\"), Text::npos);
  EXPECT_EQ(machine.Drives().GetDriveTypeW(u"F:\\"), DRIVE_REMOVABLE);
  EXPECT_EQ(AttributesCode(u"F:\\photo.jpg"), ERROR_NOT_READY);
  EXPECT_FALSE(machine.Find().FindNextFileW(search, entry));
  EXPECT_EQ(machine.GetLastError(), ERROR_NOT_READY);
  std::byte byte{};
  std::uint32_t done = 0;
  EXPECT_FALSE(machine.Files().ReadFile(file, {&byte, 1}, done));
  EXPECT_EQ(machine.GetLastError(), ERROR_NOT_READY);
  EXPECT_EQ(machine.OpenHandles(), 2U);
  machine.Find().FindClose(search);
  machine.Files().CloseHandle(file);
  EXPECT_EQ(machine.OpenHandles(), 0U);
}

TEST_F(SimulatedMachineTest, ASilentDriveIsGivenUpWhenPatienceEnds) {
  struct ThreeTimes : Patience {
    int asked = 0;
    bool KeepWaiting() override { return ++asked < 3; }
  } patience;
  machine.SetPatience(&patience);
  machine.AddFile(u"C:\\file");
  machine.SetAnswering(u"C:\\", false);
  EXPECT_EQ(AttributesCode(u"C:\\file"), ERROR_OPERATION_ABORTED);
  EXPECT_EQ(patience.asked, 3);
  machine.SetPatience(nullptr);
}

TEST_F(SimulatedMachineTest, AReadOnlyMediumRefusesEveryChange) {
  machine.AddFile(u"C:\\file", "x");
  machine.SetReadOnlyMedium(u"C:\\", true);
  EXPECT_EQ(OpeningCode(u"C:\\file"), 0U);
  EXPECT_EQ(OpeningCode(u"C:\\file", GENERIC_WRITE), ERROR_WRITE_PROTECT);
  EXPECT_EQ(OpeningCode(u"C:\\new", GENERIC_WRITE, 0, CREATE_NEW), ERROR_WRITE_PROTECT);
  EXPECT_FALSE(machine.Disk().CreateDirectoryW(u"C:\\folder"));
  EXPECT_EQ(machine.GetLastError(), ERROR_WRITE_PROTECT);
}

TEST_F(SimulatedMachineTest, AFullDiskTakesNoMoreAndKeepsWhatItHas) {
  machine.AddFile(u"C:\\file", "12345");
  machine.SetFreeBytes(u"C:\\", 3);
  const HANDLE file =
      machine.Files().CreateFileW(u"C:\\file", FILE_APPEND_DATA, 0, OPEN_EXISTING, 0);
  std::uint32_t done = 0;
  EXPECT_FALSE(
      machine.Files().WriteFile(file, std::as_bytes(std::span(std::string_view("6789"))), done));
  EXPECT_EQ(machine.GetLastError(), ERROR_DISK_FULL);
  EXPECT_TRUE(
      machine.Files().WriteFile(file, std::as_bytes(std::span(std::string_view("678"))), done));
  machine.Files().CloseHandle(file);
  EXPECT_EQ(machine.ContentsOf(u"C:\\file"), "12345678");
}

TEST_F(SimulatedMachineTest, ShareModesBindBothWays) {
  struct Row {
    const char* name;
    std::uint32_t heldAccess, heldShare, access, share, code;
  };
  constexpr std::uint32_t R = FILE_SHARE_READ;
  constexpr std::uint32_t W = FILE_SHARE_WRITE;
  const Row rows[] = {
      {"readers that share", GENERIC_READ, R, GENERIC_READ, R, 0},
      {"a holder that shares nothing", GENERIC_READ, 0, GENERIC_READ, R | W, 32},
      {"a holder that shares reading", GENERIC_READ, R, GENERIC_WRITE, R | W, 32},
      {"a writer that shares both", GENERIC_WRITE, R | W, GENERIC_READ, R | W, 0},
      {"a reader that forbids the writer", GENERIC_WRITE, R | W, GENERIC_READ, R, 32},
      {"appending is writing", FILE_APPEND_DATA, R | W, GENERIC_READ, R, 32},
      {"no access is never forbidden", GENERIC_READ, 0, 0, 0, 0},
  };
  machine.AddFile(u"C:\\file", "x");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const HANDLE held = machine.HoldOpen(u"C:\\file", row.heldShare, row.heldAccess);
    EXPECT_EQ(OpeningCode(u"C:\\file", row.access, row.share), row.code);
    EXPECT_EQ(AttributesCode(u"C:\\file"), 0U);
    machine.LetGo(held);
  }
}

TEST_F(SimulatedMachineTest, AccessListsRefuseByRightAndReachBelow) {
  machine.AddFile(u"C:\\shut\\sub\\file", "x");
  machine.AddFile(u"C:\\locked.txt", "x");
  machine.DenyAccess(u"C:\\shut");
  machine.DenyAccess(u"C:\\locked.txt", FILE_GENERIC_WRITE & ~FILE_GENERIC_READ);
  EXPECT_EQ(AttributesCode(u"C:\\shut\\sub\\file"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(AttributesCode(u"C:\\shut"), 0U);
  EXPECT_EQ(ListFolder(machine, u"C:\\shut\\*").endCode, ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(u"C:\\shut\\new", GENERIC_WRITE, 0, CREATE_NEW), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(u"C:\\locked.txt"), 0U);
  EXPECT_EQ(OpeningCode(u"C:\\locked.txt", GENERIC_WRITE), ERROR_ACCESS_DENIED);
  AddDrive(u"E:\\", u"FAT32");
  EXPECT_THROW(machine.DenyAccess(u"E:\\"), std::logic_error);
}

TEST_F(SimulatedMachineTest, SystemFoldersAreRedirectedUntilSwitchedOff) {
  machine.AddFile(u"C:\\Windows\\System32\\big.dll", "64 bits");
  machine.AddFile(u"C:\\Windows\\SysWOW64\\small.dll", "32 bits");
  EXPECT_EQ(AttributesCode(u"C:\\windows\\system32\\big.dll"), 0U);
  EXPECT_FALSE(machine.Process().Wow64DisableWow64FsRedirection());
  machine.SetWow64(true);
  EXPECT_EQ(ListFolder(machine, u"C:\\windows\\system32\\*").names,
            std::vector<Text>{u"small.dll"});
  EXPECT_TRUE(machine.Process().Wow64DisableWow64FsRedirection());
  EXPECT_TRUE(machine.Process().Wow64DisableWow64FsRedirection());
  EXPECT_TRUE(machine.Process().Wow64RevertWow64FsRedirection());
  EXPECT_EQ(ListFolder(machine, u"C:\\windows\\system32\\*").names, std::vector<Text>{u"big.dll"});
  EXPECT_EQ(machine.RedirectionDepth(), 1);
}

TEST_F(SimulatedMachineTest, ShortNamesAreUniqueAndLeadBack) {
  machine.AddFile(u"C:\\Program Files\\readme.txt", "1");
  machine.AddFile(u"C:\\Program Files (x86)\\long name.html", "2");
  FileInputOutput& files = machine.Files();
  const Text first = files.GetShortPathNameW(u"C:\\Program Files\\readme.txt");
  const Text second = files.GetShortPathNameW(u"C:\\Program Files (x86)\\long name.html");
  EXPECT_EQ(first, u"C:\\PROGRA~1\\readme.txt");
  EXPECT_EQ(second, u"C:\\PROGRA~2\\LONGNA~1.HTM");
  EXPECT_EQ(machine.ContentsOf(second), "2");
  EXPECT_EQ(machine.Drives().LocationFromNative("c:\\progra~2\\").path, u"C:\\Program Files (x86)");
}

TEST_F(SimulatedMachineTest, FileLinksOpenTheirTargetAndOtherReparsePointsThemselves) {
  machine.AddFile(u"C:\\target", "abc");
  machine.AddFileLink(u"C:\\link", u"C:\\target");
  machine.AddFileLink(u"C:\\broken", u"C:\\none");
  machine.AddFile(u"C:\\cloud", "def");
  machine.SetReparseTag(u"C:\\cloud", 0x9000'001A);
  const FolderListing listing = ListFolder(machine, u"C:\\*");
  ASSERT_EQ(listing.names, (std::vector<Text>{u"broken", u"cloud", u"link", u"target"}));
  EXPECT_EQ(listing.records[1].dwReserved0, 0x9000'001AU);
  EXPECT_EQ(listing.records[1].nFileSizeLow, 3U);
  EXPECT_EQ(listing.records[2].dwReserved0, IO_REPARSE_TAG_SYMLINK);
  EXPECT_EQ(listing.records[2].nFileSizeLow, 0U);
  std::uint32_t high = 0;
  EXPECT_EQ(machine.Files().GetCompressedFileSizeW(u"C:\\link", high), 3U);
  EXPECT_EQ(OpeningCode(u"C:\\broken"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(OpeningCode(u"C:\\broken", GENERIC_WRITE, 0, CREATE_NEW), ERROR_FILE_NOT_FOUND);
}

TEST_F(SimulatedMachineTest, RecipesGiveTheSameBytesInAnyPiecesAndDifferWhereTold) {
  const FileContents recipe = FileContents::Recipe(42, 1000);
  machine.AddFile(u"C:\\a", recipe);
  machine.AddFile(u"C:\\b", recipe.ChangedAt(999));
  machine.AddFile(u"C:\\c", FileContents::Recipe(43, 1000));
  const std::string whole = machine.ContentsOf(u"C:\\a");
  EXPECT_EQ(whole.substr(0, 999), machine.ContentsOf(u"C:\\b").substr(0, 999));
  EXPECT_NE(whole[999], machine.ContentsOf(u"C:\\b")[999]);
  EXPECT_NE(whole.substr(0, 8), machine.ContentsOf(u"C:\\c").substr(0, 8));
  const HANDLE file =
      machine.Files().CreateFileW(u"C:\\a", GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
  std::string pieces;
  for (std::uint32_t done = 1; done != 0;) {
    std::array<std::byte, 7> buffer;
    ASSERT_TRUE(machine.Files().ReadFile(file, buffer, done));
    pieces.append(reinterpret_cast<const char*>(buffer.data()), done);
  }
  machine.Files().CloseHandle(file);
  EXPECT_EQ(pieces, whole);
}

TEST_F(SimulatedMachineTest, HookFailsAndChangesTheDiskBetweenCalls) {
  machine.AddFile(u"C:\\f\\a");
  machine.AddFile(u"C:\\f\\b");
  hook.Fail({Operation::FindNextFileW, 3}, ERROR_IO_DEVICE);
  hook.Fail({Operation::GetFileAttributesW, 1, u"C:\\f\\B"}, ERROR_SHARING_VIOLATION);
  hook.RunAfter({Operation::GetFileAttributesW, 2}, [&] { machine.Remove(u"C:\\f\\a"); });
  EXPECT_EQ(ListFolder(machine, u"C:\\f\\*").endCode, ERROR_IO_DEVICE);
  EXPECT_EQ(AttributesCode(u"\\\\?\\C:\\f\\b"), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(AttributesCode(u"C:\\f\\a"), 0U);
  EXPECT_EQ(hook.OrdersNotMet(), 1U);
  EXPECT_EQ(AttributesCode(u"C:\\f\\a"), 0U);
  EXPECT_EQ(hook.OrdersNotMet(), 0U);
  EXPECT_EQ(AttributesCode(u"C:\\f\\a"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(hook.JournalLines().back(), "GetFileAttributesW C:\\f\\a failed");
  EXPECT_EQ(hook.CountOf(Operation::FindNextFileW), 3U);
}

TEST_F(SimulatedMachineTest, AMillionFilesAreBuiltAndListedOnceEach) {
  machine.SetHook(nullptr);
  constexpr std::int64_t folders = 200;
  constexpr std::int64_t filesEach = 5000;
  for (std::int64_t f = 0; f < folders; ++f) {
    const Text folder = u"C:\\tree\\" + DecimalText(f % 10) + u"\\" + DecimalText(f) + u"\\";
    for (std::int64_t i = 0; i < filesEach; ++i)
      machine.AddFile(folder + u"file " + DecimalText((i * 7919) % filesEach) + u".dat",
                      FileContents::Recipe(static_cast<std::uint64_t>(i), 4096));
  }
  std::size_t listed = 0;
  std::uint64_t bytes = 0;
  std::vector<Text> queue = {u"C:\\tree\\"};
  WIN32_FIND_DATAW entry;
  while (!queue.empty()) {
    const Text folder = std::move(queue.back());
    queue.pop_back();
    const HANDLE search = machine.Find().FindFirstFileW(folder + u"*", entry);
    ASSERT_NE(search, INVALID_HANDLE);
    do {
      if (entry.cFileName == u"." || entry.cFileName == u"..") continue;
      if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        queue.push_back(folder + Text(entry.cFileName) + u"\\");
        continue;
      }
      ++listed;
      bytes += entry.nFileSizeLow;
    } while (machine.Find().FindNextFileW(search, entry));
    machine.Find().FindClose(search);
  }
  EXPECT_EQ(listed, static_cast<std::size_t>(folders * filesEach));
  EXPECT_EQ(bytes, 4096U * listed);
}

}  // namespace

}  // namespace quillmarsh
