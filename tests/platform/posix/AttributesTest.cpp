// SPDX-License-Identifier: MIT
// The read-only attribute and what belongs to a file besides its bytes: whose permissions change,
// whose do not, and what comes along to another volume.
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/posix/SystemCallHook.h"
#include "platform/posix/TwoDrives.h"

namespace quillmarsh::test {
namespace {

constexpr std::uint32_t ReadOnly = FILE_ATTRIBUTE_READONLY;
constexpr std::uint32_t Normal = FILE_ATTRIBUTE_NORMAL;

class AttributesTest : public DrivesDAndE, public testing::WithParamInterface<const char*> {
 protected:
  AttributesTest() : DrivesDAndE(GetParam()) {}

  std::uint32_t Set(TextView path, std::uint32_t attributes) {
    return mMachine.Disk().SetFileAttributesW(path, attributes) ? 0 : mMachine.GetLastError();
  }
  mode_t ModeOf(const std::string& name) const {
    struct stat facts {};
    return ::lstat(mTree.At(name).c_str(), &facts) == 0 ? facts.st_mode & 07777U : 0;
  }
  // One read-only file under two names.
  void MakePair() {
    ::unlink(mTree.At("second").c_str());
    ::chmod(mTree.File("first", "bytes").c_str(), 0440);
    ASSERT_EQ(::link(mTree.At("first").c_str(), mTree.At("second").c_str()), 0);
  }
};

TEST_P(AttributesTest, OnlyTheOwnersWritePermissionOfAFileItselfChanges) {
  ::chmod(mTree.File("file").c_str(), 0664);
  mTree.Link("link", "file");
  mTree.Link("broken", "nowhere");
  mTree.Folder("folder");
  ::mkfifo(mTree.At("fifo").c_str(), 0644);
  EXPECT_EQ(Set(u"D:\\file", ReadOnly), 0U);
  EXPECT_EQ(ModeOf("file"), 0464U);
  EXPECT_EQ(Set(u"D:\\file", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM), 0U);
  EXPECT_EQ(ModeOf("file"), 0664U);
  for (const TextView path : {u"D:\\link", u"D:\\broken", u"D:\\folder", u"D:\\"})
    EXPECT_EQ(Set(path, ReadOnly), 0U) << ToUtf8(path);
  EXPECT_EQ(ModeOf("file"), 0664U) << "not through the link";
  EXPECT_EQ(ModeOf("folder"), 0755U);
  EXPECT_EQ(Set(u"D:\\fifo", ReadOnly), ERROR_ACCESS_DENIED);
}

TEST_P(AttributesTest, AFileSystemThatDoesNotKeepTheBitIsFoundOut) {
  mTree.File("file");
  int wishes = 0;
  const SystemCallHook hook([&](SystemCall call, int, std::string_view) {
    wishes += call == SystemCall::Chmod ? 1 : 0;
    return call == SystemCall::Chmod ? PretendDone : 0;
  });
  EXPECT_EQ(Set(u"D:\\file", ReadOnly), ERROR_NOT_SUPPORTED);
  EXPECT_EQ(wishes, 2) << "for the owner, and for all together";
  EXPECT_EQ(Set(u"D:\\file", Normal), 0U) << "nothing to do";
}

TEST_P(AttributesTest, TheOtherNamesOfAFileStayProtected) {
  struct Row {
    const char* name;
    std::function<bool(DiskChange&)> takesTheFirstNameAway;
    SystemCall fails;
  };
  const Row rows[] = {
      {"delete", [](DiskChange& disk) { return disk.DeleteFileW(u"D:\\first"); },
       SystemCall::Unlinkat},
      {"replace by a move",
       [](DiskChange& disk) {
         return disk.MoveFileExW(u"D:\\other", u"D:\\first", MOVEFILE_REPLACE_EXISTING);
       },
       SystemCall::Renameat},
      {"replace from another volume",
       [](DiskChange& disk) {
         return disk.MoveFileExW(u"E:\\other", u"D:\\first",
                                 MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED);
       },
       SystemCall::Renameat},
      {"replace by a copy",
       [](DiskChange& disk) { return disk.CopyFileW(u"E:\\other", u"D:\\first", false); },
       SystemCall::Renameat},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    MakePair();
    mTree.File("other");
    mOther.File("other");
    EXPECT_FALSE(row.takesTheFirstNameAway(mMachine.Disk())) << "read-only";
    EXPECT_EQ(Set(u"D:\\first", Normal), 0U);
    {
      const SystemCallHook hook([&](SystemCall call, int, std::string_view name) {
        const bool isLast = call == row.fails && (call == SystemCall::Renameat || name == "first");
        return isLast ? EIO : 0;
      });
      EXPECT_FALSE(row.takesTheFirstNameAway(mMachine.Disk()));
    }
    EXPECT_EQ(ModeOf("second"), 0440U) << "after a failure";
    EXPECT_EQ(Set(u"D:\\first", Normal), 0U);
    EXPECT_EQ(Move(u"E:\\other", u"D:\\first", MOVEFILE_REPLACE_EXISTING), ERROR_NOT_SAME_DEVICE);
    EXPECT_EQ(ModeOf("second"), 0640U) << "the move goes on as a copy";
    EXPECT_EQ(Delete(u"D:\\none"), ERROR_FILE_NOT_FOUND) << "nothing to do with it";
    EXPECT_TRUE(row.takesTheFirstNameAway(mMachine.Disk()));
    EXPECT_EQ(ModeOf("second"), 0440U) << "after a success";
    EXPECT_EQ(Bytes(mTree.At("second")), "bytes");
  }
}

TEST_P(AttributesTest, ABitThatAPersonLiftedStaysLifted) {
  MakePair();
  mTree.File("other");
  EXPECT_EQ(Set(u"D:\\first", Normal), 0U);
  EXPECT_EQ(Set(u"D:\\other", Normal), 0U);
  EXPECT_EQ(Delete(u"D:\\first"), 0U);
  EXPECT_EQ(ModeOf("second"), 0640U);
}

// With an access list the group's permissions in the mode are those of all whom the list names.
TEST_P(AttributesTest, ACopyWithoutTheAccessListGivesTheGroupNothing) {
  const std::string source = mTree.File("file", "bytes");
  // The owner rw-, one user rw-, the group ---, at most rw-, others ---.
  const unsigned char list[] = {2, 0,    0,    0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  6,
                                0, 0x39, 0x30, 0,   0,   4,   0,  0, 0,   255, 255, 255, 255, 16, 0,
                                6, 0,    255,  255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};
  if (::setxattr(source.c_str(), "system.posix_acl_access", list, sizeof list, 0) != 0)
    GTEST_SKIP() << "no access lists here";
  ASSERT_EQ(ModeOf("file"), 0660U);
  EXPECT_TRUE(mMachine.Disk().CopyFileW(u"D:\\file", u"D:\\copy", true));
  EXPECT_EQ(ModeOf("copy"), 0600U);
  EXPECT_EQ(Move(u"D:\\file", u"E:\\file", MOVEFILE_COPY_ALLOWED), 0U);
  char kept[sizeof list];
  EXPECT_EQ(::getxattr(mOther.At("file").c_str(), "system.posix_acl_access", kept, sizeof kept),
            static_cast<ssize_t>(sizeof kept));
  if (::getuid() != 0) return;
  ASSERT_EQ(::chown(mTree.File("group's").c_str(), 12345, 23456), 0);
  ::chmod(mTree.At("group's").c_str(), 0664);
  EXPECT_TRUE(mMachine.Disk().CopyFileW(u"D:\\group's", u"D:\\another", true));
  EXPECT_EQ(ModeOf("another"), 0644U) << "not for another group";
}

TEST_P(AttributesTest, AFileMovedToAnotherVolumeKeepsWhatBelongsToIt) {
  const std::string source = mTree.File("file", "bytes");
  const bool hasAttributes = ::setxattr(source.c_str(), "user.colour", "blue", 4, 0) == 0;
  const bool isRoot = ::getuid() == 0;
  if (isRoot) {
    ASSERT_EQ(::chown(source.c_str(), 12345, 23456), 0);
  }
  ::chmod(source.c_str(), 02440);
  const timespec times[2] = {{1'600'000'000, 5'000}, {-1'500'000'000, 123'456'700}};
  ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
  EXPECT_EQ(Move(u"D:\\file", u"E:\\file", MOVEFILE_COPY_ALLOWED), 0U);
  struct stat facts {};
  ASSERT_EQ(::stat(mOther.At("file").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_atim.tv_sec, 1'600'000'000);
  EXPECT_EQ(facts.st_atim.tv_nsec, 5'000);
  EXPECT_EQ(facts.st_mtim.tv_sec, -1'500'000'000);
  EXPECT_EQ(facts.st_mtim.tv_nsec, 123'456'700);
  EXPECT_EQ(facts.st_mode & 07777U, 02440U);
  if (isRoot) {
    EXPECT_EQ(facts.st_uid, 12345U);
    EXPECT_EQ(facts.st_gid, 23456U);
  }
  char value[8] = {};
  if (hasAttributes) {
    EXPECT_EQ(::getxattr(mOther.At("file").c_str(), "user.colour", value, sizeof value), 4);
  }
  EXPECT_STREQ(value, hasAttributes ? "blue" : "");
}

INSTANTIATE_TEST_SUITE_P(Drives, AttributesTest, testing::Values("ext4", "nfs4"),
                         [](const auto& row) { return std::string(row.param); });

// A folder that is still open from a moment ago is used again only where its path leads to it.
class FoldersKeptOpen : public DrivesDAndE {
 protected:
  FoldersKeptOpen() : DrivesDAndE("ext4") {}

  void SetUp() override {
    mTree.File("above/folder/file", "old");
    mTree.File("above/folder/warm", "");
    ASSERT_EQ(Delete(u"D:\\above\\folder\\warm"), 0U);
  }
  void Rename(const char* from, const char* to) const {
    ASSERT_EQ(::rename(mTree.At(from).c_str(), mTree.At(to).c_str()), 0);
  }
};

TEST_F(FoldersKeptOpen, AreLeftWhenAnotherFolderHasTakenTheirPlace) {
  Rename("above/folder", "above/moved");
  mTree.File("above/folder/file", "new");
  EXPECT_EQ(Delete(u"D:\\above\\folder\\file"), 0U);
  EXPECT_EQ(Bytes(mTree.At("above/moved/file")), "old");
  Rename("above", "gone");
  mTree.File("above/folder/file", "newer");
  mTree.File("other", "other");
  EXPECT_EQ(Move(u"D:\\other", u"D:\\above\\folder\\second", 0), 0U);
  EXPECT_EQ(Bytes(mTree.At("above/folder/second")), "other");
  EXPECT_EQ(Move(u"D:\\above\\folder\\file", u"D:\\taken", 0), 0U);
  EXPECT_EQ(Bytes(mTree.At("taken")), "newer");
  EXPECT_EQ(Bytes(mTree.At("gone/moved/file")), "old");
}

TEST_F(FoldersKeptOpen, AreLeftWhenALinkHasTakenTheirPlace) {
  Rename("above/folder", "above/moved");
  mTree.Link("above/folder", "moved");
  EXPECT_EQ(Delete(u"D:\\above\\folder\\file"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(mMachine.Files().GetFileAttributesW(u"D:\\above\\folder\\file"),
            INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(Bytes(mTree.At("above/moved/file")), "old");
  EXPECT_EQ(mMachine.Files().GetFileAttributesW(u"D:\\above\\folder"),
            FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
}

TEST_F(FoldersKeptOpen, AreLeftWhenTheyAreGone) {
  ASSERT_EQ(Delete(u"D:\\above\\folder\\file"), 0U);
  EXPECT_TRUE(mMachine.Disk().RemoveDirectoryW(u"D:\\above\\folder"));
  EXPECT_EQ(Delete(u"D:\\above\\folder\\file"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(mMachine.Files().GetFileAttributesW(u"D:\\above\\folder"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(mMachine.GetLastError(), ERROR_FILE_NOT_FOUND);
  mTree.File("above/folder/file", "again");
  EXPECT_EQ(Delete(u"D:\\above\\folder\\file"), 0U);
}

}  // namespace
}  // namespace quillmarsh::test
