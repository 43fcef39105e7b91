// SPDX-License-Identifier: MIT
// Opening, creating and writing real files, on a drive that answers and on one that may not.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "platform/AtomicFiles.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

class FilesTest : public testing::TestWithParam<const char*> {
 protected:
  FilesTest() : mMachine(DriveAt(mScratch, mTree.Root(), GetParam())) {}

  [[nodiscard]] std::uint32_t Open(TextView path, std::uint32_t access, std::uint32_t disposition,
                                   std::uint32_t flags = 0) {
    const HANDLE file = mMachine.Files().CreateFileW(path, access, 0, disposition, flags);
    const std::uint32_t error = mMachine.GetLastError();
    if (file != INVALID_HANDLE) mMachine.Files().CloseHandle(file);
    return file == INVALID_HANDLE ? error : Opened + error;
  }
  [[nodiscard]] std::string Bytes(const std::string& relative) const {
    std::stringstream bytes;
    bytes << std::ifstream(mTree.At(relative), std::ios::binary).rdbuf();
    return bytes.str();
  }

  static constexpr std::uint32_t Opened = 1'000'000;  // plus the last error
  TempTree mTree;
  TempTree mScratch;
  PosixMachine mMachine;
};

TEST_P(FilesTest, OpensRegularFilesOnlyAndKeepsReadOnlyOnes) {
  mTree.File("file", "bytes");
  mTree.File("locked", "kept");
  ::chmod(mTree.At("locked").c_str(), 0444);
  mTree.Folder("folder");
  mTree.Link("link", "file");
  ::mkfifo(mTree.At("fifo").c_str(), 0644);
  constexpr std::uint32_t Backup = FILE_FLAG_BACKUP_SEMANTICS;
  struct Row {
    const char* what;
    const char16_t* path;
    std::uint32_t access, disposition, flags, outcome;
  };
  const Row rows[] = {
      {"a file", u"D:\\file", GENERIC_READ, OPEN_EXISTING, 0, Opened},
      {"nothing", u"D:\\none", GENERIC_READ, OPEN_EXISTING, 0, ERROR_FILE_NOT_FOUND},
      {"no folder", u"D:\\none\\f", GENERIC_WRITE, CREATE_NEW, 0, ERROR_PATH_NOT_FOUND},
      {"a FIFO to read", u"D:\\fifo", GENERIC_READ, OPEN_EXISTING, 0, ERROR_ACCESS_DENIED},
      {"a FIFO to write", u"D:\\fifo", GENERIC_WRITE, OPEN_ALWAYS, 0, ERROR_ACCESS_DENIED},
      {"a link", u"D:\\link", GENERIC_READ, OPEN_EXISTING, 0, ERROR_PATH_NOT_FOUND},
      {"through a link", u"D:\\link", GENERIC_WRITE, CREATE_ALWAYS, 0, ERROR_PATH_NOT_FOUND},
      {"a folder", u"D:\\folder", GENERIC_READ, OPEN_EXISTING, 0, ERROR_ACCESS_DENIED},
      {"a folder meant", u"D:\\folder", GENERIC_READ, OPEN_EXISTING, Backup, Opened},
      {"read-only to read", u"D:\\locked", GENERIC_READ, OPEN_EXISTING, 0, Opened},
      {"read-only to write", u"D:\\locked", GENERIC_WRITE, OPEN_EXISTING, 0, ERROR_ACCESS_DENIED},
      {"read-only to empty", u"D:\\locked", GENERIC_WRITE, CREATE_ALWAYS, 0, ERROR_ACCESS_DENIED},
      {"new where one is", u"D:\\file", GENERIC_WRITE, CREATE_NEW, 0, ERROR_FILE_EXISTS},
      {"open or new, there", u"D:\\file", GENERIC_WRITE, OPEN_ALWAYS, 0,
       Opened + ERROR_ALREADY_EXISTS},
      {"open or new, not there", u"D:\\new", GENERIC_WRITE, OPEN_ALWAYS, 0, Opened},
      {"always new", u"D:\\file", GENERIC_WRITE, CREATE_ALWAYS, 0, Opened + ERROR_ALREADY_EXISTS},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Open(row.path, row.access, row.disposition, row.flags), row.outcome) << row.what;
  EXPECT_EQ(Bytes("locked"), "kept");
  EXPECT_EQ(Bytes("file"), "") << "CREATE_ALWAYS empties";
}

TEST_P(FilesTest, KeepsItsOwnPositionOverReadsWritesAndSeeks) {
  mTree.File("file", "0123456789");
  FileInputOutput& files = mMachine.Files();
  const HANDLE file =
      files.CreateFileW(u"D:\\file", GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, 0);
  ASSERT_NE(file, INVALID_HANDLE);
  std::array<std::byte, 4> block{};
  std::uint32_t done = 0;
  std::int64_t position = 0;
  EXPECT_TRUE(files.ReadFile(file, block, done) && done == 4);
  EXPECT_TRUE(files.SetFilePointerEx(file, -1, position, FILE_CURRENT) && position == 3);
  EXPECT_TRUE(files.WriteFile(file, std::as_bytes(std::span("ab", 2)), done) && done == 2);
  EXPECT_TRUE(files.SetFilePointerEx(file, -2, position, FILE_END) && position == 8);
  EXPECT_TRUE(files.SetEndOfFile(file));
  EXPECT_TRUE(files.ReadFile(file, block, done) && done == 0) << "the end is no failure";
  EXPECT_FALSE(files.SetFilePointerEx(file, -1, position, FILE_BEGIN));
  EXPECT_EQ(mMachine.GetLastError(), 131U);
  BY_HANDLE_FILE_INFORMATION facts;
  EXPECT_TRUE(files.GetFileInformationByHandle(file, facts));
  EXPECT_EQ(facts.nFileSizeLow, 8U);
  EXPECT_EQ(facts.nNumberOfLinks, 1U);
  EXPECT_TRUE(files.CloseHandle(file));
  EXPECT_FALSE(files.ReadFile(file, block, done));
  EXPECT_EQ(mMachine.GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_EQ(Bytes("file"), "012ab567");

  const HANDLE log = files.CreateFileW(u"D:\\file", FILE_APPEND_DATA, 0, OPEN_EXISTING, 0);
  EXPECT_TRUE(files.WriteFile(log, std::as_bytes(std::span("!", 1)), done));
  EXPECT_TRUE(files.CloseHandle(log));
  EXPECT_EQ(Bytes("file"), "012ab567!");
}

TEST_P(FilesTest, MakesFoldersOnlyWhereNothingIs) {
  mTree.File("file");
  EXPECT_TRUE(mMachine.Disk().CreateDirectoryW(u"D:\\new\\"));
  struct Row {
    const char16_t* path;
    std::uint32_t error;
  };
  for (const Row& row :
       {Row{u"D:\\new", ERROR_ALREADY_EXISTS}, Row{u"D:\\file", ERROR_ALREADY_EXISTS},
        Row{u"D:\\none\\new", ERROR_PATH_NOT_FOUND}, Row{u"D:\\", ERROR_ALREADY_EXISTS}}) {
    EXPECT_FALSE(mMachine.Disk().CreateDirectoryW(row.path));
    EXPECT_EQ(mMachine.GetLastError(), row.error) << ToUtf8(row.path);
  }
}

TEST_P(FilesTest, AReplacedFileKeepsItsPermissions) {
  const bool isRoot = ::getuid() == 0;
  for (const mode_t mode : {0600U, 0640U, 0666U}) {
    ::unlink(mTree.At("file").c_str());
    ::chmod(mTree.File("file", "old").c_str(), mode);
    if (isRoot) {
      ASSERT_EQ(::chown(mTree.At("file").c_str(), 12345, 23456), 0);
    }
    FileReplacement replacement(mMachine, u"D:\\file");
    ASSERT_TRUE(replacement.Begin() && replacement.Write("new"));
    for (const Listed& entry : ListAll(mMachine, u"D:\\").entries) {
      struct stat facts {};
      ASSERT_EQ(::stat(mTree.At(ToUtf8(entry.name)).c_str(), &facts), 0);
      EXPECT_TRUE(!S_ISREG(facts.st_mode) || (facts.st_mode & 07777U) == mode);
    }
    EXPECT_TRUE(replacement.PutInPlace());
    struct stat facts {};
    ASSERT_EQ(::stat(mTree.At("file").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, mode);
    EXPECT_TRUE(!isRoot || (facts.st_uid == 12345 && facts.st_gid == 23456));
    EXPECT_EQ(Bytes("file"), "new");
  }
  EXPECT_TRUE(ReplaceFileContents(mMachine, u"D:\\other", "new"));
  struct stat facts {};
  ASSERT_EQ(::stat(mTree.At("other").c_str(), &facts), 0);
  const mode_t mask = ::umask(0);
  ::umask(mask);
  EXPECT_EQ(facts.st_mode & 07777U, 0666U & ~mask);
}

TEST_P(FilesTest, RefusesADriveWhoseMountHasChanged) {
  mTree.File("file");
  PosixOptions options = DriveAt(mScratch, mTree.Root(), GetParam());
  // The list speaks of a mount that has gone since; another one is in its place.
  MountLine line{mTree.Root(), GetParam()};
  line.id = 4242;
  options.mountInfoFile = mScratch.File("mountinfo-stale", MountList({line}));
  PosixMachine stale(options);
  EXPECT_EQ(stale.Files().GetFileAttributesW(u"D:\\file"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(stale.GetLastError(), ERROR_NOT_READY);
  EXPECT_FALSE(stale.Disk().CreateDirectoryW(u"D:\\folder"));
  EXPECT_EQ(stale.GetLastError(), ERROR_NOT_READY);
  EXPECT_EQ(ListAll(stale, u"D:\\").end, ERROR_NOT_READY);
  std::uint32_t error = 0;
  (void)ReadAll(stale, u"D:\\file", error);
  EXPECT_EQ(error, ERROR_NOT_READY);
}

INSTANTIATE_TEST_SUITE_P(Drives, FilesTest, testing::Values("ext4", "nfs4"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace quillmarsh::test
