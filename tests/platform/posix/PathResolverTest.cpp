// SPDX-License-Identifier: MIT
// Paths in drive form lead to what lies below the drive and nowhere else.
#include "platform/posix/PathResolver.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

#include "platform/SystemConstants.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

TEST(DrivePaths, AreTakenApartOrRefusedWithTheirCode) {
  struct Row {
    const char16_t* path;
    std::uint32_t error;
    const char* relative;
  };
  const Row rows[] = {
      {u"C:\\", 0, ""},
      {u"c:\\usr\\lib\\", 0, "usr/lib"},
      {u"\\\\?\\C:\\a\uF03Ab", 0, "a:b"},
      {u"C:\\a\\\\b\\.\\c", 0, "a/b/c"},
      {u"C:\\a\\..\\b", ERROR_BAD_PATHNAME, ""},
      {u"C:", ERROR_BAD_PATHNAME, ""},
      {u"C:a", ERROR_BAD_PATHNAME, ""},
      {u"a\\b", ERROR_BAD_PATHNAME, ""},
      {u"\\a", ERROR_BAD_PATHNAME, ""},
      {u"\\\\server\\share\\a", ERROR_BAD_NETPATH, ""},
      {u"\\\\?\\UNC\\server\\share", ERROR_BAD_NETPATH, ""},
      {u"", ERROR_PATH_NOT_FOUND, ""},
      {u"C:\\a/b", ERROR_INVALID_NAME, ""},
      {u"C:\\*", ERROR_INVALID_NAME, ""},
  };
  for (const Row& row : rows) {
    DrivePath parsed;
    EXPECT_EQ(ParseDrivePath(row.path, parsed), row.error) << ToUtf8(row.path);
    EXPECT_EQ(row.error == 0 ? parsed.relative : "", row.relative) << ToUtf8(row.path);
  }
}

// By the kernel's bounded resolution, by components, and on a drive that may not answer.
struct Way {
  const char* name;
  bool byComponents;
  const char* type;
};

class EveryWay : public testing::TestWithParam<Way> {
 protected:
  [[nodiscard]] std::unique_ptr<PosixMachine> Machine() const {
    PosixOptions options = DriveAt(mScratch, mTree.Root(), GetParam().type);
    options.byComponents = GetParam().byComponents;
    return std::make_unique<PosixMachine>(options);
  }
  TempTree mTree;
  TempTree mScratch;
};

TEST_P(EveryWay, NeverReadsThroughAFolderThatIsSwappedForALink) {
  TempTree outside;
  outside.File("file", "outside");
  mTree.File("folder/deep/file", "inside");
  mTree.Link("folder/link", outside.Root());
  const std::string folder = mTree.At("folder/deep");
  const std::string link = mTree.At("folder/link");
  const std::string aside = mTree.At("folder/aside");
  const auto machine = Machine();
  std::atomic<bool> stop{false};
  std::thread swapper([&] {
    while (!stop) {
      std::rename(folder.c_str(), aside.c_str());
      std::rename(link.c_str(), folder.c_str());
      std::rename(folder.c_str(), link.c_str());
      std::rename(aside.c_str(), folder.c_str());
    }
  });
  int inside = 0;
  // On a busy machine the swapper may rest with the folder aside for all of the rounds.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  const auto goesOn = [&](int round) {
    return round < 3000 || (inside == 0 && std::chrono::steady_clock::now() < deadline);
  };
  for (int round = 0; goesOn(round); ++round) {
    std::uint32_t error = 0;
    const std::string bytes = ReadAll(*machine, u"D:\\folder\\deep\\file", error);
    EXPECT_NE(bytes, "outside");
    inside += bytes == "inside" ? 1 : 0;
  }
  stop = true;
  swapper.join();
  EXPECT_GT(inside, 0);
}

TEST_P(EveryWay, TellsWhyAPathLeadsNowhere) {
  mTree.File("file");
  mTree.Folder("folder");
  mTree.Link("link", mTree.At("folder"));
  mTree.File("folder/inner");
  struct Row {
    const char16_t* path;
    std::uint32_t attributes;  // or the error with INVALID
    std::uint32_t error;
  };
  constexpr std::uint32_t Invalid = INVALID_FILE_ATTRIBUTES;
  const Row rows[] = {
      {u"D:\\", FILE_ATTRIBUTE_DIRECTORY, 0},
      {u"D:\\file", FILE_ATTRIBUTE_ARCHIVE, 0},
      {u"\\\\?\\D:\\folder\\inner", FILE_ATTRIBUTE_ARCHIVE, 0},
      {u"D:\\folder\\", FILE_ATTRIBUTE_DIRECTORY, 0},
      {u"D:\\link", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT, 0},
      {u"D:\\missing", Invalid, ERROR_FILE_NOT_FOUND},
      {u"D:\\missing\\file", Invalid, ERROR_PATH_NOT_FOUND},
      {u"D:\\file\\inner", Invalid, ERROR_PATH_NOT_FOUND},
      {u"D:\\file\\", Invalid, ERROR_INVALID_NAME},
      {u"D:\\link\\inner", Invalid, ERROR_PATH_NOT_FOUND},
      {u"Q:\\file", Invalid, ERROR_PATH_NOT_FOUND},
  };
  const auto machine = Machine();
  for (const Row& row : rows) {
    EXPECT_EQ(machine->Files().GetFileAttributesW(row.path), row.attributes) << ToUtf8(row.path);
    const std::uint32_t error = row.attributes == Invalid ? machine->GetLastError() : 0;
    EXPECT_EQ(error, row.error) << ToUtf8(row.path);
  }
}

TEST_P(EveryWay, ReachesEntriesBelowPathsOfAnyLength) {
  const auto machine = Machine();
  Text path = u"D:";
  const Text name(200, u'n');
  for (int level = 0; level < 45; ++level) {
    path += u'\\' + name;
    ASSERT_TRUE(machine->Disk().CreateDirectoryW(path)) << machine->GetLastError();
  }
  path += u"\\file";
  const std::string bytes = "at the bottom";
  std::uint32_t done = 0;
  const HANDLE file = machine->Files().CreateFileW(path, GENERIC_WRITE, 0, CREATE_NEW, 0);
  ASSERT_NE(file, INVALID_HANDLE) << machine->GetLastError();
  EXPECT_TRUE(machine->Files().WriteFile(file, std::as_bytes(std::span(bytes)), done));
  machine->Files().CloseHandle(file);

  std::uint32_t error = 0;
  EXPECT_EQ(ReadAll(*machine, path, error), bytes);
  const WholeListing listing = ListAll(*machine, path.substr(0, path.size() - 4));
  EXPECT_NE(listing.Find(u"file"), nullptr);
  EXPECT_EQ(listing.end, ERROR_NO_MORE_FILES);
  const CanonicalLocation location =
      machine->Drives().LocationFromNative(machine->Drives().NativePath(path));
  EXPECT_EQ(location.path, path);
  Text tooLong = u"D:\\" + Text(5000, u'n') + u"\\file";
  EXPECT_EQ(machine->Files().GetFileAttributesW(tooLong), INVALID_FILE_ATTRIBUTES);
}

INSTANTIATE_TEST_SUITE_P(Ways, EveryWay,
                         testing::Values(Way{"Bounded", false, "ext4"},
                                         Way{"ByComponents", true, "ext4"},
                                         Way{"OnTheHelper", false, "nfs4"}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace quillmarsh::test
