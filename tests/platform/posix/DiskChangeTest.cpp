// SPDX-License-Identifier: MIT
// Deleting, moving and copying on a real disk: links, second links, moves between volumes, ways of
// renaming for file systems that know no rename without replacing. Nothing is ever lost.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <sstream>

#include "platform/posix/FileCopying.h"
#include "platform/posix/FolderEntry.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

constexpr std::uint32_t Replace = MOVEFILE_REPLACE_EXISTING;
constexpr std::uint32_t CopyAllowed = MOVEFILE_COPY_ALLOWED;

// D: and E: are two volumes to the machine, though one file system holds both.
PosixOptions TwoDrives(const TempTree& scratch, const std::string& d, const std::string& e,
                       const std::string& type) {
  PosixOptions options = DriveAt(scratch, d, type);
  const UniqueFd root(::open(d.c_str(), O_PATH | O_DIRECTORY));
  MountLine first{d, type};
  MountLine second{e, type, "/dev/test2", "8:2"};
  first.id = second.id = static_cast<int>(MountIdOf(root.Get()));
  options.mountInfoFile = scratch.File("two-drives", MountList({first, second}));
  return options;
}

// Writing beyond a size fails for as long as this lives, as it does on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : mHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit limited{bytes, mBefore.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &mBefore);
    std::signal(SIGXFSZ, mHandler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*mHandler)(int);
  rlimit mBefore{};
};

class DiskChangeTest : public testing::TestWithParam<const char*> {
 protected:
  DiskChangeTest() : mMachine(TwoDrives(mScratch, mTree.Root(), mOther.Root(), GetParam())) {}

  std::uint32_t Move(TextView from, TextView to, std::uint32_t flags) {
    return mMachine.Disk().MoveFileExW(from, to, flags) ? 0 : mMachine.GetLastError();
  }
  std::uint32_t Delete(TextView path) {
    return mMachine.Disk().DeleteFileW(path) ? 0 : mMachine.GetLastError();
  }
  // "(none)" for a missing file.
  static std::string Bytes(const std::string& native) {
    std::ifstream file(native, std::ios::binary);
    if (!file) return "(none)";
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
  }
  std::size_t EntriesOf(const Text& folder) { return ListAll(mMachine, folder).entries.size() - 2; }

  TempTree mTree;
  TempTree mOther;
  TempTree mScratch;
  PosixMachine mMachine;
};

TEST_P(DiskChangeTest, DeletesALinkItselfAndNoDevice) {
  mTree.File("file", "bytes");
  mTree.Link("link", "file");
  mTree.Link("broken", "nowhere");
  ::mkfifo(mTree.At("fifo").c_str(), 0644);
  EXPECT_EQ(Delete(u"D:\\link"), 0U);
  EXPECT_EQ(Delete(u"D:\\broken"), 0U);
  EXPECT_EQ(Delete(u"D:\\fifo"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Delete(u"D:\\"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Bytes(mTree.At("file")), "bytes");
}

TEST_P(DiskChangeTest, ChangesNothingBehindALink) {
  mOther.File("folder/file", "bytes");
  mTree.Link("way", mOther.At("folder"));
  EXPECT_EQ(Delete(u"D:\\way\\file"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Move(u"D:\\way\\file", u"D:\\file", 0), ERROR_PATH_NOT_FOUND);
  mTree.File("new", "new");
  EXPECT_EQ(Move(u"D:\\new", u"D:\\way\\file", Replace), ERROR_PATH_NOT_FOUND);
  EXPECT_FALSE(mMachine.Disk().CopyFileW(u"D:\\new", u"D:\\way\\other", false));
  EXPECT_EQ(Bytes(mOther.At("folder/file")), "bytes");
  EXPECT_EQ(Bytes(mTree.At("new")), "new");
}

TEST_P(DiskChangeTest, AMoveOntoAnotherLinkOfTheSameFileLeavesOneOfTheTwo) {
  for (const std::string target : {"second", "folder/second"}) {
    SCOPED_TRACE(target);
    mTree.File("first", "bytes");
    mTree.Folder("folder");
    ASSERT_EQ(::link(mTree.At("first").c_str(), mTree.At(target).c_str()), 0);
    const Text path = u"D:\\" + FromUtf8(target == "second" ? "second" : "folder\\second");
    EXPECT_EQ(Move(u"D:\\first", path, 0), ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(mMachine.Disk().CopyFileW(u"D:\\first", path, false));
    EXPECT_EQ(mMachine.GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(Bytes(mTree.At("first")), "bytes");
    EXPECT_EQ(Move(u"D:\\first", path, Replace), 0U);
    EXPECT_EQ(Bytes(mTree.At("first")), "(none)");
    EXPECT_EQ(Bytes(mTree.At(target)), "bytes");
  }
}

TEST_P(DiskChangeTest, BetweenVolumesAFileGoesWholeOrStays) {
  const std::string bytes(2'500'000, 'b');
  mTree.File("file", bytes);
  mTree.File("folder/in", "2");
  mTree.Link("link", "file");
  mOther.File("taken", "there");
  mOther.File("locked", "kept");
  ::chmod(mOther.At("locked").c_str(), 0444);
  ::chmod(mTree.At("file").c_str(), 0440);
  const timespec moment[2] = {{1'600'000'000, 5'000}, {1'500'000'000, 123'456'700}};
  ASSERT_EQ(::utimensat(AT_FDCWD, mTree.At("file").c_str(), moment, 0), 0);

  EXPECT_EQ(Move(u"D:\\file", u"E:\\file", Replace), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(Move(u"D:\\folder", u"E:\\folder", CopyAllowed), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(Move(u"D:\\link", u"E:\\link", CopyAllowed), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(Move(u"D:\\file", u"E:\\taken", CopyAllowed), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(Move(u"D:\\file", u"E:\\locked", CopyAllowed | Replace), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(u"D:\\file", u"E:\\", CopyAllowed), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(Bytes(mTree.At("file")), bytes);
  EXPECT_EQ(EntriesOf(u"E:\\"), 2U) << "no temporary file stays";

  EXPECT_EQ(Move(u"D:\\file", u"E:\\taken", CopyAllowed | Replace), 0U);
  EXPECT_EQ(Bytes(mTree.At("file")), "(none)") << "a read-only source goes too";
  EXPECT_EQ(Bytes(mOther.At("taken")), bytes);
  EXPECT_EQ(Bytes(mOther.At("locked")), "kept");
  EXPECT_EQ(EntriesOf(u"E:\\"), 2U);
  struct stat facts {};
  ASSERT_EQ(::stat(mOther.At("taken").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0440U);
  EXPECT_EQ(facts.st_mtim.tv_sec, 1'500'000'000);
  EXPECT_EQ(facts.st_mtim.tv_nsec, 123'456'700);
}

TEST_P(DiskChangeTest, AFullVolumeKeepsTheSourceAndTheOldTarget) {
  mTree.File("file", std::string(3'000'000, 'b'));
  mOther.File("old", "old");
  {
    const FileSizeLimit limit(2'000'000);
    EXPECT_EQ(Move(u"D:\\file", u"E:\\old", CopyAllowed | Replace), ERROR_DISK_FULL);
    EXPECT_FALSE(mMachine.Disk().CopyFileW(u"D:\\file", u"D:\\new", true));
    EXPECT_EQ(mMachine.GetLastError(), ERROR_DISK_FULL);
  }
  EXPECT_EQ(Bytes(mTree.At("file")).size(), 3'000'000U);
  EXPECT_EQ(Bytes(mOther.At("old")), "old");
  EXPECT_EQ(EntriesOf(u"D:\\"), 1U);
  EXPECT_EQ(EntriesOf(u"E:\\"), 1U);
}

TEST_P(DiskChangeTest, ASparseFileIsCopiedByteForByte) {
  mTree.File("file", "begin");
  ASSERT_EQ(::truncate(mTree.At("file").c_str(), 5'000'000), 0);
  std::ofstream(mTree.At("file"), std::ios::binary | std::ios::app) << "end";
  ASSERT_TRUE(mMachine.Disk().CopyFileW(u"D:\\file", u"E:\\copy", true));
  EXPECT_TRUE(Bytes(mOther.At("copy")) == Bytes(mTree.At("file")));
  ASSERT_EQ(::truncate(mTree.At("file").c_str(), 9'000'000), 0);
  ASSERT_TRUE(mMachine.Disk().CopyFileW(u"D:\\file", u"E:\\copy", false));
  EXPECT_EQ(Bytes(mOther.At("copy")).size(), 9'000'000U) << "a hole at the end";
}

TEST_P(DiskChangeTest, ADriveWhoseMountHasChangedIsNotTouched) {
  mTree.File("file", "bytes");
  MountLine line{mTree.Root(), GetParam()};
  line.id = 4242;
  PosixOptions options;
  options.dataHome = "";
  options.mountInfoFile = mScratch.File("stale", MountList({line}));
  PosixMachine stale(options);
  EXPECT_FALSE(stale.Disk().DeleteFileW(u"D:\\file"));
  EXPECT_EQ(stale.GetLastError(), ERROR_NOT_READY);
  EXPECT_FALSE(stale.Disk().MoveFileExW(u"D:\\file", u"D:\\new", Replace));
  EXPECT_EQ(stale.GetLastError(), ERROR_NOT_READY);
  EXPECT_FALSE(stale.Disk().CopyFileW(u"D:\\file", u"D:\\new", false));
  EXPECT_EQ(stale.GetLastError(), ERROR_NOT_READY);
  EXPECT_EQ(Bytes(mTree.At("file")), "bytes");
}

TEST(GivenUpCopies, ComeIntoPlaceNoMore) {
  const TempTree tree;
  const TempTree scratch;
  tree.File("file", "bytes");
  DriveLetters::Sources sources;
  sources.mountInfoFile = DriveAt(scratch, tree.Root()).mountInfoFile;
  sources.letters = "D";
  PosixContext context(std::make_shared<DriveLetters>(sources),
                       std::make_shared<PathResolver>(false), {});
  CopyRequest request;
  ASSERT_EQ(context.Locate(u"D:\\file", request.source), 0U);
  ASSERT_EQ(context.Locate(u"D:\\copy", request.target), 0U);
  const auto givenUp = std::make_shared<std::atomic<bool>>(true);
  EXPECT_EQ(MoveByCopy(*context.resolver, request, givenUp), ERROR_OPERATION_ABORTED);
  EXPECT_EQ(CopyToTarget(*context.resolver, request, givenUp), ERROR_OPERATION_ABORTED);
  PosixMachine machine(DriveAt(scratch, tree.Root()));
  EXPECT_EQ(ListAll(machine, u"D:\\").Names(), (std::multiset<Text>{u".", u"..", u"file"}));
}

INSTANTIATE_TEST_SUITE_P(Drives, DiskChangeTest, testing::Values("ext4", "nfs4", "vfat"),
                         [](const auto& row) { return std::string(row.param); });

// Each way of renaming, also those for file systems that know no rename without replacing.
class FreeNameTest
    : public testing::TestWithParam<int (*)(const FolderEntry&, const FolderEntry&)> {
 protected:
  FolderEntry EntryOf(const std::string& name) const {
    FolderEntry place;
    place.folder.Reset(::open(mTree.Root().c_str(), O_PATH | O_DIRECTORY));
    place.name = name;
    place.exists = ::statx(place.folder.Get(), name.c_str(), FactsOfEntryItself, FactsWanted,
                           &place.entry.facts) == 0;
    return place;
  }
  TempTree mTree;
};

TEST_P(FreeNameTest, TakesAFreeNameAndNoOther) {
  const bool isForFolders = GetParam() != &RenameByLink;
  std::ofstream(mTree.At("file")) << "1";
  std::ofstream(mTree.At("taken")) << "2";
  mTree.Folder("folder/in");
  mTree.Folder("empty");
  EXPECT_EQ(GetParam()(EntryOf("file"), EntryOf("taken")), EEXIST);
  EXPECT_EQ(GetParam()(EntryOf("file"), EntryOf("empty")), EEXIST);
  EXPECT_EQ(GetParam()(EntryOf("file"), EntryOf("new")), 0);
  if (isForFolders) {
    EXPECT_EQ(GetParam()(EntryOf("folder"), EntryOf("empty")), EEXIST);
    EXPECT_EQ(GetParam()(EntryOf("folder"), EntryOf("taken")), EEXIST);
    EXPECT_EQ(GetParam()(EntryOf("folder"), EntryOf("folder/below")), EINVAL);
    EXPECT_EQ(GetParam()(EntryOf("folder"), EntryOf("moved")), 0);
  }
  const std::string moved = isForFolders ? "moved" : "folder";
  EXPECT_TRUE(EntryOf("new").exists && EntryOf("taken").exists && EntryOf(moved + "/in").exists);
  EXPECT_FALSE(EntryOf("file").exists || EntryOf(moved + "/below").exists);
  EXPECT_EQ(EntryOf("new").entry.facts.stx_nlink, 1U);
  EXPECT_EQ(EntryOf("taken").entry.facts.stx_size, 1U);
}

TEST_P(FreeNameTest, AMissingSourceLeavesNothingAtTheTarget) {
  mTree.File("file");
  const FolderEntry vanished = EntryOf("file");
  ::unlink(mTree.At("file").c_str());
  EXPECT_EQ(GetParam()(vanished, EntryOf("new")), ENOENT);
  EXPECT_FALSE(EntryOf("new").exists);
}

std::string NameOfWay(
    const testing::TestParamInfo<int (*)(const FolderEntry&, const FolderEntry&)>& row) {
  constexpr const char* names[] = {"Kernel", "Link", "ReservedName"};
  return names[row.index];
}
INSTANTIATE_TEST_SUITE_P(Ways, FreeNameTest,
                         testing::Values(&RenameToFreeName, &RenameByLink, &RenameOntoReservedName),
                         NameOfWay);

}  // namespace
}  // namespace quillmarsh::test
