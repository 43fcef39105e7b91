// SPDX-License-Identifier: MIT
// Deleting, moving and copying on a real disk: links, second links, moves between volumes, ways of
// renaming for file systems that know no rename without replacing, servers that die at the worst of
// moments, sources that change. Nothing is ever lost.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <fstream>
#include <future>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "platform/posix/DyingServer.h"
#include "platform/posix/FileCopying.h"
#include "platform/posix/FileOpening.h"
#include "platform/posix/FolderEntry.h"
#include "platform/posix/TwoDrives.h"

namespace quillmarsh::test {
namespace {

constexpr std::uint32_t Replace = MOVEFILE_REPLACE_EXISTING;
constexpr std::uint32_t CopyAllowed = MOVEFILE_COPY_ALLOWED;

class DiskChangeTest : public DrivesDAndE, public testing::WithParamInterface<const char*> {
 protected:
  DiskChangeTest() : DrivesDAndE(GetParam()) {}
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

TEST_P(DiskChangeTest, ACopyOfAGrowingFileEndsAtTheSizeOfItsBeginning) {
  mTree.File("file", "begin");
  const SystemCallHook hook([&](SystemCall call, int, std::string_view name) {
    // The last look at the target before the bytes are copied lies behind the source's opening.
    if (call == SystemCall::Statx && name == "copy")
      std::ofstream(mTree.At("file"), std::ios::binary | std::ios::app) << "more";
    return 0;
  });
  EXPECT_TRUE(mMachine.Disk().CopyFileW(u"D:\\file", u"E:\\copy", true));
  EXPECT_EQ(Bytes(mOther.At("copy")), "begin");
  ::unlink(mOther.At("copy").c_str());
  EXPECT_EQ(Move(u"D:\\file", u"E:\\copy", CopyAllowed), ERROR_SHARING_VIOLATION);
  EXPECT_TRUE(Bytes(mTree.At("file")).starts_with("beginmoremore"));
  EXPECT_EQ(EntriesOf(u"E:\\"), 0U);
}

// A file of a terabyte without a byte in it takes minutes to copy.
TEST_P(DiskChangeTest, AStopEndsACopyToAnotherVolume) {
  class Stopping final : public Patience {
   public:
    bool KeepWaiting() override { return false; }
    [[nodiscard]] bool IsStopAsked() const override { return true; }
  } stopping;
  mTree.File("sparse", "");
  ASSERT_EQ(::truncate(mTree.At("sparse").c_str(), std::int64_t{1} << 40U), 0);
  mMachine.SetPatience(&stopping);
  EXPECT_EQ(Move(u"D:\\sparse", u"E:\\sparse", CopyAllowed), ERROR_OPERATION_ABORTED);
  FileState state;
  const HANDLE pin = mMachine.Pins().Pin(u"D:\\sparse", PinPurpose::Remove, u"aside", state);
  if (pin != INVALID_HANDLE) {
    EXPECT_FALSE(mMachine.Pins().MoveTo(pin, u"E:\\sparse", PinnedMove::CopyIfNeeded));
    EXPECT_EQ(mMachine.GetLastError(), ERROR_OPERATION_ABORTED);
    mMachine.Pins().Unpin(pin);
  }
  mMachine.SetPatience(nullptr);
  EXPECT_TRUE(std::ifstream(mTree.At("sparse")).good());
  // What was given up is still cleaning up where the file system may not answer.
  if (std::string(GetParam()) != "nfs4") {
    EXPECT_EQ(EntriesOf(u"E:\\"), 0U);
  }
}

TEST_P(DiskChangeTest, OnlyACopyThatDiffersFromAnUnchangedSourceIsAFailureOfTheDisk) {
  struct Row {
    const char* name;
    std::function<void(const std::string& source, int copy)> happens;
    std::uint32_t code;
  };
  const auto write = [](const std::string& path, const char* bytes, std::ios::openmode mode) {
    std::ofstream(path, std::ios::binary | mode) << bytes;
  };
  const Row rows[] = {
      {"the copy is spoilt",
       [](const std::string&, int copy) { ASSERT_EQ(::pwrite(copy, "?", 1, 2), 1); },
       ERROR_IO_DEVICE},
      {"the source is overwritten",
       [&](const std::string& source, int) { write(source, "bytEs", std::ios::out); },
       ERROR_SHARING_VIOLATION},
      {"the source grows",
       [&](const std::string& source, int) { write(source, "more", std::ios::app); },
       ERROR_SHARING_VIOLATION},
      {"the source becomes shorter",
       [](const std::string& source, int) { ASSERT_EQ(::truncate(source.c_str(), 2), 0); },
       ERROR_SHARING_VIOLATION},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string source = mTree.File("file", "bytes");
    const timespec longAgo[2] = {{1'500'000'000, 0}, {1'500'000'000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), longAgo, 0), 0);
    const SystemCallHook hook([&](SystemCall call, int fd, std::string_view) {
      if (call == SystemCall::Fsync) row.happens(source, fd);
      return 0;
    });
    EXPECT_EQ(Move(u"D:\\file", u"E:\\file", CopyAllowed), row.code);
    EXPECT_NE(Bytes(source), "(none)");
    EXPECT_EQ(EntriesOf(u"E:\\"), 0U);
  }
}

TEST(FilesWithoutATrueSize, AreNotCutShort) {
  const TempTree target;
  const TempTree scratch;
  std::vector<MountLine> lines = {{"/proc"}, {target.Root(), "ext4", "/dev/test2", "8:2"}};
  for (MountLine& line : lines) {
    const UniqueFd root(::open(line.point.c_str(), O_PATH | O_DIRECTORY));
    line.id = static_cast<int>(MountIdOf(root.Get()));
  }
  PosixOptions options;
  options.dataHome = "";
  options.mountInfoFile = scratch.File("mounts", MountList(lines));
  PosixMachine machine(options);
  EXPECT_FALSE(machine.Disk().CopyFileW(u"D:\\version", u"E:\\copy", true));
  EXPECT_EQ(machine.GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(machine.Disk().MoveFileExW(u"D:\\version", u"E:\\copy", CopyAllowed));
  EXPECT_EQ(machine.GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(ListAll(machine, u"E:\\").entries.size(), 2U);
}

class GivenUpChanges : public DrivesDAndE {
 protected:
  GivenUpChanges() : DrivesDAndE("nfs4") {}

  // A patience that ends the waiting by raising something.
  class RaisingServer final : public DyingServer {
   public:
    using DyingServer::DyingServer;
    bool KeepWaiting() override {
      return DyingServer::KeepWaiting() ? true : throw std::runtime_error("stop");
    }
  };
  // The code of a change that is given up where the server dies, after the server has come back.
  std::uint32_t Undergo(const DyingServer::Where& where,
                        const std::function<bool(Machine&)>& change) {
    DyingServer server(where);
    mMachine.SetPatience(&server);
    const std::uint32_t code = change(mMachine) ? 0 : mMachine.GetLastError();
    mMachine.SetPatience(nullptr);
    server.ComeBackAndFinish();
    return code;
  }
};

TEST_F(GivenUpChanges, DoNotHappenWhenTheServerComesBack) {
  struct Row {
    const char* name;
    std::function<bool(Machine&)> change;
  };
  const Row rows[] = {
      {"delete", [](Machine& machine) { return machine.Disk().DeleteFileW(u"D:\\file"); }},
      {"rename",
       [](Machine& machine) { return machine.Disk().MoveFileExW(u"D:\\file", u"D:\\new", 0); }},
      {"replace",
       [](Machine& machine) {
         return machine.Disk().MoveFileExW(u"D:\\file", u"D:\\taken", Replace);
       }},
      {"onto a second link",
       [](Machine& machine) {
         return machine.Disk().MoveFileExW(u"D:\\file", u"D:\\second", Replace);
       }},
      {"copy",
       [](Machine& machine) { return machine.Disk().CopyFileW(u"D:\\file", u"E:\\copy", true); }},
      {"create", [](Machine& machine) { return machine.Disk().CreateDirectoryW(u"D:\\made"); }},
      {"make a file",
       [](Machine& machine) {
         return machine.Files().CreateFileW(u"D:\\made", GENERIC_WRITE, 0, CREATE_NEW, 0) !=
                INVALID_HANDLE;
       }},
  };
  mTree.File("file", "bytes");
  mTree.File("taken", "taken");
  ASSERT_EQ(::link(mTree.At("file").c_str(), mTree.At("second").c_str()), 0);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto onTheWay = [](SystemCall call, int, std::string_view) {
      return call == SystemCall::Statx;
    };
    EXPECT_EQ(Undergo(onTheWay, row.change), ERROR_OPERATION_ABORTED);
    EXPECT_EQ(Bytes(mTree.At("file")), "bytes");
    EXPECT_EQ(Bytes(mTree.At("taken")), "taken");
    EXPECT_EQ(EntriesOf(u"D:\\"), 3U);
    EXPECT_EQ(EntriesOf(u"E:\\"), 0U);
    RaisingServer server(onTheWay);
    mMachine.SetPatience(&server);
    EXPECT_THROW((void)row.change(mMachine), std::runtime_error);
    mMachine.SetPatience(nullptr);
    server.ComeBackAndFinish();
    EXPECT_EQ(Bytes(mTree.At("file")), "bytes");
    EXPECT_EQ(EntriesOf(u"D:\\"), 3U);
    EXPECT_EQ(EntriesOf(u"E:\\"), 0U);
  }
}

TEST_F(GivenUpChanges, AMoveThatIsInPlaceAlreadyKeepsItsSource) {
  mTree.File("file", "bytes");
  const auto inTheSyncOfTheFolder = [](SystemCall call, int fd, std::string_view) {
    struct stat facts {};
    return call == SystemCall::Fsync && ::fstat(fd, &facts) == 0 && S_ISDIR(facts.st_mode);
  };
  EXPECT_EQ(Undergo(inTheSyncOfTheFolder,
                    [](Machine& machine) {
                      return machine.Disk().MoveFileExW(u"D:\\file", u"E:\\file", CopyAllowed);
                    }),
            ERROR_OPERATION_ABORTED);
  EXPECT_EQ(Bytes(mTree.At("file")), "bytes");
  EXPECT_EQ(Bytes(mOther.At("file")), "bytes");
}

TEST_F(GivenUpChanges, OnlyTheSystemCallThatWasUnderWayStillTakesEffect) {
  mTree.File("file", "bytes");
  const auto inTheDeletion = [](SystemCall call, int, std::string_view) {
    return call == SystemCall::Unlinkat;
  };
  EXPECT_EQ(Undergo(inTheDeletion,
                    [](Machine& machine) { return machine.Disk().DeleteFileW(u"D:\\file"); }),
            ERROR_OPERATION_ABORTED);
  EXPECT_EQ(Bytes(mTree.At("file")), "(none)");
}

TEST_F(GivenUpChanges, AnOpeningWithoutLeaveMakesAndEmptiesNothing) {
  mTree.File("file", "bytes");
  DriveLetters::Sources sources;
  sources.mountInfoFile = DriveAt(mScratch, mTree.Root()).mountInfoFile;
  sources.letters = "D";
  const PosixContext context(std::make_shared<DriveLetters>(sources),
                             std::make_shared<PathResolver>(false), {});
  OpenRequest request;
  request.access = GENERIC_READ;
  request.permit = std::make_shared<ChangePermit>();
  request.permit->Withdraw();
  const auto open = [&](TextView path, std::uint32_t disposition) {
    Located located;
    OpenedFile opened;
    EXPECT_EQ(context.Locate(path, located), 0U);
    request.disposition = disposition;
    return OpenFileAt(*context.resolver, located, request, opened);
  };
  EXPECT_EQ(open(u"D:\\file", CREATE_ALWAYS), ERROR_OPERATION_ABORTED);
  EXPECT_EQ(Bytes(mTree.At("file")), "bytes");
  for (const std::uint32_t disposition : {CREATE_NEW, CREATE_ALWAYS, OPEN_ALWAYS})
    EXPECT_EQ(open(u"D:\\new", disposition), ERROR_OPERATION_ABORTED);
  EXPECT_EQ(EntriesOf(u"D:\\"), 1U);
  EXPECT_EQ(open(u"D:\\file", OPEN_ALWAYS), ERROR_SUCCESS) << "nothing is changed by it";
}

INSTANTIATE_TEST_SUITE_P(Drives, DiskChangeTest, testing::Values("ext4", "nfs4", "vfat"),
                         [](const auto& row) { return std::string(row.param); });

// Each way of renaming, also those for file systems that know no rename without replacing.
using Way = int (*)(const FolderEntry&, const FolderEntry&, ChangePermit&);
class RenamingTest : public testing::Test {
 protected:
  static int Rename(Way way, const FolderEntry& source, const FolderEntry& target) {
    ChangePermit permit;
    return way(source, target, permit);
  }
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
class FreeNameTest : public RenamingTest, public testing::WithParamInterface<Way> {};

TEST_P(FreeNameTest, TakesAFreeNameAndNoOther) {
  const bool isForFolders = GetParam() != &RenameByLink;
  std::ofstream(mTree.At("file")) << "1";
  std::ofstream(mTree.At("taken")) << "2";
  mTree.Folder("folder/in");
  mTree.Folder("empty");
  EXPECT_EQ(Rename(GetParam(), EntryOf("file"), EntryOf("taken")), EEXIST);
  EXPECT_EQ(Rename(GetParam(), EntryOf("file"), EntryOf("empty")), EEXIST);
  EXPECT_EQ(Rename(GetParam(), EntryOf("file"), EntryOf("new")), 0);
  if (isForFolders) {
    EXPECT_EQ(Rename(GetParam(), EntryOf("folder"), EntryOf("empty")), EEXIST);
    EXPECT_EQ(Rename(GetParam(), EntryOf("folder"), EntryOf("taken")), EEXIST);
    EXPECT_EQ(Rename(GetParam(), EntryOf("folder"), EntryOf("folder/below")), EINVAL);
    EXPECT_EQ(Rename(GetParam(), EntryOf("folder"), EntryOf("moved")), 0);
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
  EXPECT_EQ(Rename(GetParam(), vanished, EntryOf("new")), ENOENT);
  EXPECT_FALSE(EntryOf("new").exists);
}

TEST_P(FreeNameTest, WithoutLeaveNothingIsChanged) {
  mTree.File("file");
  ChangePermit permit;
  permit.Withdraw();
  EXPECT_EQ(GetParam()(EntryOf("file"), EntryOf("new"), permit), ECANCELED);
  EXPECT_TRUE(EntryOf("file").exists);
  EXPECT_FALSE(EntryOf("new").exists);
}

TEST_F(RenamingTest, GivenUpInTheMiddleNothingIsTakenBack) {
  mTree.File("file", "bytes");
  mTree.Folder("folder");
  ChangePermit forLink;
  ChangePermit forFolder;
  const SystemCallHook hook([&](SystemCall call, int, std::string_view) {
    ChangePermit& permit = call == SystemCall::Linkat ? forLink : forFolder;
    const bool isFirstStep = call == SystemCall::Linkat || call == SystemCall::Mkdirat;
    EXPECT_TRUE(!isFirstStep || !permit.Withdraw()) << "it is under way";
    return 0;
  });
  EXPECT_EQ(RenameByLink(EntryOf("file"), EntryOf("new"), forLink), ECANCELED);
  EXPECT_TRUE(EntryOf("file").exists && EntryOf("new").exists);
  EXPECT_EQ(RenameOntoReservedName(EntryOf("folder"), EntryOf("moved"), forFolder), ECANCELED);
  EXPECT_TRUE(EntryOf("folder").exists && EntryOf("moved").exists);
}

TEST_F(RenamingTest, WhatIsSavedUnderTheSourcesNameMeanwhileStays) {
  mTree.File("file", "bytes");
  mTree.File("saved", "saved");
  bool isLinked = false;
  const SystemCallHook hook([&](SystemCall call, int, std::string_view name) {
    if (isLinked && call == SystemCall::Statx && name == "file")
      ::rename(mTree.At("saved").c_str(), mTree.At("file").c_str());
    isLinked = isLinked || call == SystemCall::Linkat;
    return 0;
  });
  EXPECT_EQ(Rename(&RenameByLink, EntryOf("file"), EntryOf("new")), EBUSY);
  EXPECT_EQ(EntryOf("file").entry.facts.stx_size, 5U);
  EXPECT_FALSE(EntryOf("saved").exists);
  EXPECT_FALSE(EntryOf("new").exists);
}

// The step that takes the source away fails, though it may have been done.
TEST_F(RenamingTest, IsToldAsDoneOnlyWhereTheSourceIsSeenToBeGone) {
  struct Row {
    const char* name;
    Way way;
    bool isDone;
    int look;  // the errno of looking at the source then
    int error;
    bool sourceStays;
    bool targetStays;
  };
  const Row rows[] = {
      {"link, not done", &RenameByLink, false, 0, EIO, true, false},
      {"link, done", &RenameByLink, true, 0, 0, false, true},
      {"link, nobody knows", &RenameByLink, false, ESTALE, ESTALE, true, true},
      {"link, done and nobody knows", &RenameByLink, true, EIO, EIO, false, true},
      {"reserved, not done", &RenameOntoReservedName, false, 0, EIO, true, false},
      {"reserved, done", &RenameOntoReservedName, true, 0, 0, false, true},
      {"reserved, done and nobody knows", &RenameOntoReservedName, true, ESTALE, ESTALE, false,
       true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    mTree.File("file", "bytes");
    ::unlink(mTree.At("new").c_str());
    const FolderEntry source = EntryOf("file");
    const FolderEntry target = EntryOf("new");
    bool hasFailed = false;
    std::optional<SystemCallHook> hook(
        std::in_place, [&](SystemCall call, int, std::string_view name) {
          if (name != "file") return 0;
          if (call == SystemCall::Statx) return hasFailed ? row.look : 0;
          const bool isUnlink = call == SystemCall::Unlinkat;
          if (!isUnlink && call != SystemCall::Renameat) return 0;
          if (row.isDone && isUnlink) ::unlink(mTree.At("file").c_str());
          if (row.isDone && !isUnlink) ::rename(mTree.At("file").c_str(), mTree.At("new").c_str());
          hasFailed = true;
          return EIO;
        });
    EXPECT_EQ(Rename(row.way, source, target), row.error);
    hook.reset();
    EXPECT_TRUE(hasFailed);
    EXPECT_EQ(EntryOf("file").exists, row.sourceStays);
    EXPECT_EQ(EntryOf("new").exists, row.targetStays);
  }
}

std::string NameOfWay(const testing::TestParamInfo<Way>& row) {
  constexpr const char* names[] = {"Kernel", "Link", "ReservedName"};
  return names[row.index];
}
INSTANTIATE_TEST_SUITE_P(Ways, FreeNameTest,
                         testing::Values(&RenameToFreeName, &RenameByLink, &RenameOntoReservedName),
                         NameOfWay);

}  // namespace
}  // namespace quillmarsh::test
