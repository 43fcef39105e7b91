// SPDX-License-Identifier: MIT
// From a path that a person names to its one form and back, and real mounts in a namespace of
// their own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "platform/posix/OwnNamespace.h"
#include "platform/posix/PathResolver.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

TEST(Locations, OfOneFolderHaveOneForm) {
  TempTree tree;
  TempTree scratch;
  tree.File("real/inner/file");
  tree.Link("link", "real");
  tree.Link("absolute", tree.At("link/inner"));
  tree.Link("circle", "circle");
  tree.Link("dangling", "nowhere/at all");
  tree.File("odd:\n\xFF/file");
  PosixMachine machine(DriveAt(scratch, tree.Root()));
  struct Row {
    std::string native;
    Text path;
    std::uint32_t error;
  };
  const Row rows[] = {
      {tree.Root(), u"D:\\", 0},
      {tree.Root() + "/", u"D:\\", 0},
      {tree.At("real/inner"), u"D:\\real\\inner", 0},
      {tree.At("link//./inner/"), u"D:\\real\\inner", 0},
      {tree.At("absolute/../inner"), u"D:\\real\\inner", 0},
      {tree.At("real/inner/file"), u"D:\\real\\inner\\file", 0},
      {tree.At("odd:\n\xFF"), u"D:\\odd\uF03A\uF00A\xDCFF", 0},
      {tree.At("real/../.."), u"C:\\tmp", 0},
      {"/../..", u"C:\\", 0},
      {tree.At("none"), u"", ERROR_FILE_NOT_FOUND},
      {tree.At("none/inner"), u"", ERROR_PATH_NOT_FOUND},
      {tree.At("real/inner/file/x"), u"", ERROR_PATH_NOT_FOUND},
      {tree.At("dangling"), u"", ERROR_PATH_NOT_FOUND},
      {tree.At("circle"), u"", ERROR_PATH_NOT_FOUND},
      {"", u"", ERROR_PATH_NOT_FOUND},
      {std::string("/tmp\0x", 6), u"", ERROR_INVALID_NAME},
  };
  for (const Row& row : rows) {
    const CanonicalLocation location = machine.Drives().LocationFromNative(row.native);
    EXPECT_EQ(location.path, row.path) << row.native;
    EXPECT_EQ(location.error, row.error) << row.native;
  }
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(tree.At("link"));
  EXPECT_EQ(machine.Drives().LocationFromNative("inner").path, u"D:\\real\\inner");
  EXPECT_EQ(machine.Process().GetCurrentDirectoryW(), u"D:\\real");
  std::filesystem::current_path(before);

  const Text odd = u"D:\\odd\uF03A\uF00A\xDCFF\\file";
  EXPECT_EQ(machine.Drives().NativePath(odd), tree.At("odd:\n\xFF/file"));
  EXPECT_EQ(machine.Drives().ShownPath(odd), FromUtf8(tree.At("")) + u"odd:\u240A\uFFFD/file");
}

TEST(Folders, OfTheUserFollowTheRulesForUserDirectories) {
  TempTree home;
  home.File(".config/user-dirs.dirs",
            "# comment\nXDG_DESKTOP_DIR=\"$HOME/Screen\"\nXDG_DOCUMENTS_DIR=\"/usr/share\"\n");
  home.Folder("real-data");
  home.Link("data", "real-data");
  const std::string oldHome = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
  ::setenv("HOME", home.Root().c_str(), 1);
  ::unsetenv("XDG_CONFIG_HOME");
  ::setenv("TMPDIR", "not/absolute", 1);
  PosixOptions options;
  options.dataHome = home.At("data");
  options.mountInfoFile = home.File("mountinfo", MountList({}));
  PosixMachine machine(options);
  const Text root = machine.Drives().LocationFromNative(home.Root()).path;
  Shell& shell = machine.Desktop();
  EXPECT_EQ(shell.SHGetFolderPathW(CSIDL_DESKTOPDIRECTORY), root + u"\\Screen");
  EXPECT_EQ(shell.SHGetFolderPathW(CSIDL_PERSONAL), u"C:\\usr\\share");
  EXPECT_EQ(shell.SHGetFolderPathW(CSIDL_LOCAL_APPDATA), root + u"\\real-data");
  EXPECT_EQ(shell.GetTempPathW(), u"C:\\tmp\\");
  const Text user = FromUtf8(std::to_string(::getuid()));
  EXPECT_EQ(shell.RecycleBinMarks(),
            (std::vector<Text>{root + u"\\real-data\\Trash\\", u"\\.Trash-" + user + u"\\",
                               u"\\.Trash\\" + user + u"\\"}));
  ::setenv("HOME", oldHome.c_str(), 1);
  ::unsetenv("TMPDIR");
}

TEST(RealMounts, AreDrivesOfTheirOwnAndNeverEnteredFromAbove) {
  if (!IsInOwnNamespace()) {
    if (!CanHaveOwnNamespace()) GTEST_SKIP() << "this system grants no namespaces to a user";
    EXPECT_EQ(RunInOwnNamespace("RealMounts.AreDrivesOfTheirOwnAndNeverEnteredFromAbove"), 0);
    return;
  }
  TempTree tree;
  tree.File("data/sub/file");
  tree.File("target");
  tree.Link("link", "data");
  for (const char* folder : {"volume", "view", "part"}) tree.Folder(folder);
  MountOrFail("tmpfs", tree.At("volume"), "tmpfs", 0);
  tree.File("volume/inner/deep");
  MountOrFail(tree.At("data/sub"), tree.At("view"), nullptr, MS_BIND);
  MountOrFail(tree.At("volume/inner"), tree.At("part"), nullptr, MS_BIND);
  MountOrFail(tree.At("data/sub/file"), tree.At("target"), nullptr, MS_BIND);

  PosixOptions options;
  options.dataHome = "";
  PosixMachine machine(options);
  Volumes& drives = machine.Drives();
  const auto at = [&](const char* relative) {
    return drives.LocationFromNative(tree.At(relative)).path;
  };
  const Text root = drives.LocationFromNative(tree.Root()).path + u"\\";
  const Text volume = at("volume");
  EXPECT_EQ(volume.size(), 3U) << "a root: " << ToUtf8(volume);
  EXPECT_NE(volume, u"C:\\");
  EXPECT_EQ(at("view/file"), root + u"data\\sub\\file");
  EXPECT_EQ(at("part/deep"), volume + u"inner\\deep");
  VolumeInformation information;
  EXPECT_TRUE(drives.GetVolumeInformationW(volume, information));
  EXPECT_EQ(information.fileSystemName, u"tmpfs");

  const WholeListing listing = ListAll(machine, root);
  EXPECT_EQ(listing.end, ERROR_NO_MORE_FILES);
  for (const char16_t* name : {u"volume", u"view", u"part", u"link"}) {
    const Listed* const entry = listing.Find(name);
    ASSERT_NE(entry, nullptr) << ToUtf8(name);
    EXPECT_EQ(entry->attributes, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(entry->tag, IO_REPARSE_TAG_MOUNT_POINT);
    const bool isMount = TextView(name) != u"link";
    EXPECT_EQ(drives.GetVolumeNameForVolumeMountPointW(root + name + u"\\").empty(), !isMount);
    EXPECT_EQ(ListAll(machine, root + name + u"\\").end, ERROR_PATH_NOT_FOUND) << ToUtf8(name);
  }
  EXPECT_EQ(listing.Find(u"target"), nullptr) << "a second name of another file";
  EXPECT_NE(ListAll(machine, volume).Find(u"inner"), nullptr);

  EXPECT_TRUE(machine.Disk().CreateDirectoryW(volume + u"changed"));
  // An open machine keeps nobody from unmounting: it lets go of a drive that is not in use.
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  ASSERT_EQ(::umount(tree.At("part").c_str()), 0);
  int unmounted = -1;
  while (unmounted != 0 && std::chrono::steady_clock::now() < limit)
    unmounted = ::umount(tree.At("volume").c_str());
  EXPECT_EQ(unmounted, 0);
  EXPECT_FALSE(machine.Disk().CreateDirectoryW(volume + u"folder"));
  EXPECT_EQ(machine.GetLastError(), ERROR_NOT_READY) << "not on what lies under the mount";
  EXPECT_EQ(drives.GetLogicalDriveStringsW().find(volume), Text::npos);
  EXPECT_EQ(machine.Files().GetFileAttributesW(volume), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(machine.GetLastError(), ERROR_NOT_READY) << "the letter is remembered";
  ::umount(tree.At("view").c_str());
  ::umount(tree.At("target").c_str());
}

// The system gives the number of a mount that is gone to the next one.
TEST(RealMounts, AreNotTakenForOthersAtTheirPlace) {
  if (!IsInOwnNamespace()) {
    if (!CanHaveOwnNamespace()) GTEST_SKIP() << "this system grants no namespaces to a user";
    EXPECT_EQ(RunInOwnNamespace("RealMounts.AreNotTakenForOthersAtTheirPlace"), 0);
    return;
  }
  const TempTree tree;
  const std::string point = tree.Folder("volume");
  const auto number = [&] {
    return MountIdOf(UniqueFd(::open(point.c_str(), O_PATH | O_DIRECTORY)).Get());
  };
  MountOrFail("/dev/first", point, "tmpfs", 0);
  const std::int64_t first = number();
  PosixOptions options;
  options.dataHome = "";
  PosixMachine machine(options);
  const Text volume = machine.Drives().LocationFromNative(point).path;
  for (int i = 0; i < 500 && (i == 0 || number() != first); ++i) {
    ASSERT_EQ(::umount(point.c_str()), 0);
    MountOrFail("/dev/second", point, "tmpfs", 0);
  }
  tree.File("volume/file", "kept");
  EXPECT_FALSE(machine.Disk().DeleteFileW(volume + u"file"));
  EXPECT_EQ(machine.GetLastError(), ERROR_NOT_READY);
  const Text there = machine.Drives().LocationFromNative(point).path;
  EXPECT_NE(there, volume);
  EXPECT_TRUE(machine.Disk().DeleteFileW(there + u"file"));
  ::umount2(point.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace quillmarsh::test
