// SPDX-License-Identifier: MIT
// Which mounts get a letter, and that letters stay with their file systems.
#include "platform/posix/DriveLetters.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

class DriveLettersTest : public testing::Test {
 protected:
  [[nodiscard]] DriveLetters::Sources SourcesFor(const std::string& mountInfo,
                                                 const std::string& letters = "DEFG") const {
    return {mTree.File("mountinfo", mountInfo), MemoryFile(), "/nonexistent", "/nonexistent",
            letters};
  }
  [[nodiscard]] std::string MemoryFile() const { return mTree.At("data/app/drives.ini"); }
  // "C=/ D=/mnt/usb"
  [[nodiscard]] std::string Given(const std::vector<MountLine>& lines,
                                  const std::string& letters = "DEFG") const {
    return Described(DriveLetters(SourcesFor(MountList(lines), letters)));
  }
  static std::string Described(const DriveLetters& letters) {
    std::string text;
    const auto table = letters.Current();
    for (const Drive& drive : table->drives)
      text += std::string(text.empty() ? "" : " ") + drive.letter + "=" + drive.mount->point;
    for (const std::string& place : table->withoutLetter) text += " without:" + place;
    return text;
  }

  TempTree mTree;
};

TEST_F(DriveLettersTest, GivesLettersToWhatPeopleStoreFilesOnAndToNothingElse) {
  const MountLine stick{"/mnt/my\\040stick", "vfat", "/dev/sdb1", "8:17"};
  struct Row {
    const char* what;
    std::vector<MountLine> lines;
    const char* given;
  };
  const Row rows[] = {
      {"escapes in a mount point", {stick}, "C=/ D=/mnt/my stick"},
      {"services", {{"/proc", "proc", "proc", "0:4"}, {"/sys", "sysfs", "sysfs", "0:5"}}, "C=/"},
      {"tmpfs by its place",
       {{"/run/user/1", "tmpfs", "tmpfs", "0:6"},
        {"/dev/shm", "tmpfs", "tmpfs", "0:7"},
        {"/scratch", "tmpfs", "tmpfs", "0:8"}},
       "C=/ D=/scratch"},
      {"network and user-space types",
       {{"/net/a", "nfs4", "server:/a", "0:9"},
        {"/net/b", "fuse.sshfs", "u@h:", "0:10"},
        {"/run/x", "fuse.portal", "portal", "0:11"}},
       "C=/ D=/net/a E=/net/b"},
      {"a bind mount of what lies below a letter",
       {{"/view", "ext4", "/dev/root", "254:0", "/home/u/data"}},
       "C=/"},
      {"a part before its whole",
       {{"/part", "ext4", "/dev/sdc1", "8:33", "/sub"}, {"/whole", "ext4", "/dev/sdc1", "8:33"}},
       "C=/ D=/whole"},
      {"a part whose place in the whole is covered by another mount",
       {{"/whole", "ext4", "/dev/sdc1", "8:33", "/", 50},
        {"/part", "ext4", "/dev/sdc1", "8:33", "/sub"},
        {"/whole/sub", "ext4", "/dev/sdd1", "8:49", "/", 0, 50}},
       "C=/ D=/whole E=/part F=/whole/sub"},
      {"a mount that another one covers",
       {{"/mnt", "ext4", "/dev/sde1", "8:65", "/", 60},
        {"/mnt", "xfs", "/dev/sdf1", "8:81", "/", 0, 60}},
       "C=/ D=/mnt"},
  };
  for (const Row& row : rows) {
    ::unlink(MemoryFile().c_str());
    EXPECT_EQ(Given(row.lines), row.given) << row.what;
  }
}

TEST_F(DriveLettersTest, KnowsMountsBelowAChangedRootThatIsNoMount) {
  const DriveLetters letters(
      SourcesFor("42 27 0:39 / /proc rw - proc proc rw\n"
                 "50 27 8:1 / /data rw - ext4 /dev/sda1 rw\n"));
  EXPECT_EQ(Described(letters), "C=/ D=/data");
  EXPECT_NE(letters.Current()->mounts.RootedAt("/proc"), nullptr);
}

TEST_F(DriveLettersTest, RemembersALetterByTheFileSystemAndNeverGivesItToAnother) {
  const MountLine a{"/mnt/a", "ext4", "/dev/sda9", "8:9"};
  const MountLine b{"/mnt/b", "nfs4", "server:/b", "0:40"};
  const MountLine c{"/mnt/c", "xfs", "/dev/sdc9", "8:41"};
  EXPECT_EQ(Given({a, b}), "C=/ D=/mnt/a E=/mnt/b");
  EXPECT_EQ(Given({b, c}), "C=/ E=/mnt/b F=/mnt/c") << "D: is kept for what is away";
  MountLine moved = a;
  moved.point = "/media/elsewhere";
  EXPECT_EQ(Given({c, moved}), "C=/ D=/media/elsewhere F=/mnt/c");
}

TEST_F(DriveLettersTest, NamesPlacesThatFoundNoLetterLeft) {
  const MountLine a{"/mnt/a", "ext4", "/dev/sda9", "8:9"};
  const MountLine b{"/mnt/b", "ext4", "/dev/sdb9", "8:25"};
  EXPECT_EQ(Given({a, b}, "D"), "C=/ D=/mnt/a without:/mnt/b");
}

TEST_F(DriveLettersTest, TellsCopiesOfADiskApart) {
  const MountLine a{"/mnt/a", "nfs", "server:/x", "0:50"};
  MountLine twin = a;
  twin.point = "/mnt/twin";
  twin.device = "0:51";
  EXPECT_EQ(Given({a, twin}), "C=/ D=/mnt/a E=/mnt/twin");
  EXPECT_EQ(Given({a, twin}), "C=/ D=/mnt/a E=/mnt/twin");
}

TEST_F(DriveLettersTest, WorksInMemoryWhereNothingCanBeWritten) {
  mTree.File("data", "a file where the folder should be");
  DriveLetters letters(SourcesFor(MountList({{"/mnt/a"}})));
  EXPECT_EQ(Described(letters), "C=/ D=/mnt/a");
  // Also there a letter is not given to another while the program runs.
  mTree.File("mountinfo", MountList({{"/mnt/z", "ext4", "/dev/sdz", "8:99"}}));
  letters.Refresh();
  EXPECT_EQ(Described(letters), "C=/ E=/mnt/z");
  EXPECT_EQ(letters.Current()->remembered, "D");
}

TEST_F(DriveLettersTest, KeepsASnapshotAliveWhileMountsChange) {
  DriveLetters letters(SourcesFor(MountList({{"/mnt/a"}})));
  const auto before = letters.Current();
  mTree.File("mountinfo", MountList({}));
  letters.Refresh();
  ASSERT_EQ(before->drives.size(), 2U);
  EXPECT_EQ(before->drives[1].mount->point, "/mnt/a");
}

TEST_F(DriveLettersTest, GivesOneDriveFormToAFileThatShowsUnderTwoMounts) {
  // "/" is a part of a file system whose whole is mounted elsewhere too.
  const std::string text =
      "27 1 254:0 /@ / rw - btrfs /dev/root rw\n"
      "30 27 254:0 / /whole rw - btrfs /dev/root rw\n"
      "31 27 254:0 /@home/u /home/u rw - btrfs /dev/root rw\n";
  const DriveLetters letters(SourcesFor(text));
  const auto table = letters.Current();
  EXPECT_EQ(Described(letters), "C=/ D=/whole");
  struct Row {
    const char* native;
    const char16_t* form;
  };
  const Row rows[] = {{"/etc/fstab", u"C:\\etc\\fstab"},
                      {"/whole/@/etc/fstab", u"C:\\etc\\fstab"},
                      {"/home/u/a:b", u"D:\\@home\\u\\a\uF03Ab"},
                      {"/whole/@home/u", u"D:\\@home\\u"},
                      {"/whole", u"D:\\"}};
  for (const Row& row : rows) EXPECT_EQ(table->DriveForm(row.native), row.form) << row.native;
  EXPECT_EQ(table->drives[1].innerRoots, std::vector<std::string>{"@"});
}

}  // namespace
}  // namespace quillmarsh::test
