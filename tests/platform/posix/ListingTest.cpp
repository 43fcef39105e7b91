// SPDX-License-Identifier: MIT
// What a listing of a real folder tells of each kind of entry.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/posix/PathResolver.h"
#include "platform/posix/StatxFacts.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

constexpr std::uint32_t Folder = FILE_ATTRIBUTE_DIRECTORY;
constexpr std::uint32_t Junction = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
constexpr std::uint32_t File = FILE_ATTRIBUTE_ARCHIVE;

TEST(FileTimes, StayInTheRangeThatTicksHave) {
  struct Row {
    const char* what;
    std::int64_t seconds;
    std::uint32_t nanoseconds;
    std::int64_t ticks;
  };
  const Row rows[] = {
      {"the epoch", 0, 0, 116'444'736'000'000'000},
      {"parts of a tick are cut", 1, 199, 116'444'736'010'000'001},
      {"half a second before 1970", -1, 500'000'000, 116'444'735'995'000'000},
      {"the first tick", -11'644'473'600, 0, 0},
      {"before 1601", -11'644'473'601, 999'999'999, -1},
      {"before the first day that a date can be", -90'000'000'000, 5, -473'669'856'000'000'000},
      {"far beyond", INT64_MAX, 0, INT64_MAX},
  };
  for (const Row& row : rows)
    EXPECT_EQ(FileTimeOf(row.seconds, row.nanoseconds).Ticks(), row.ticks) << row.what;
}

class ListingTest : public testing::Test {
 protected:
  [[nodiscard]] WholeListing List(const Text& folder = u"D:\\") const {
    PosixMachine machine(DriveAt(mScratch, mTree.Root()));
    return ListAll(machine, folder);
  }
  TempTree mTree;
  TempTree mScratch;
};

TEST_F(ListingTest, TellsEveryKindOfEntryAsThePlanSays) {
  mTree.File("plain.txt", "12345");
  mTree.File(".hidden");
  mTree.File("locked");
  ::chmod(mTree.At("locked").c_str(), 0444);
  mTree.File("folder/inner");
  mTree.File("a:b\n\xFF");
  mTree.Link("to-folder", "folder");
  mTree.Link("to-file", "plain.txt");
  mTree.Link("broken", "nowhere");
  mTree.Link("circle", "circle");
  ::mkfifo(mTree.At("fifo").c_str(), 0644);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{AF_UNIX, {}};
  mTree.At("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ::close(socket);

  const WholeListing listing = List();
  EXPECT_EQ(listing.end, ERROR_NO_MORE_FILES);
  ASSERT_GE(listing.entries.size(), 2U);
  EXPECT_EQ(listing.entries[0].name, u".");
  EXPECT_EQ(listing.entries[1].name, u"..");
  struct Row {
    const char16_t* name;
    std::uint32_t attributes;
    std::uint32_t tag;
    std::uint64_t size;
  };
  const Row rows[] = {{u".", Folder, 0, 0},
                      {u"..", Folder, 0, 0},
                      {u"plain.txt", File, 0, 5},
                      {u".hidden", File | FILE_ATTRIBUTE_HIDDEN, 0, 1},
                      {u"locked", File | FILE_ATTRIBUTE_READONLY, 0, 1},
                      {u"folder", Folder, 0, 0},
                      {u"a\uF03Ab\uF00A\xDCFF", File, 0, 1},
                      {u"to-folder", Junction, IO_REPARSE_TAG_MOUNT_POINT, 0}};
  EXPECT_EQ(listing.entries.size(), std::size(rows))
      << "links to files, FIFOs and sockets stay out";
  for (const Row& row : rows) {
    const Listed* const entry = listing.Find(row.name);
    ASSERT_NE(entry, nullptr) << ToUtf8(row.name);
    EXPECT_EQ(entry->attributes, row.attributes) << ToUtf8(row.name);
    EXPECT_EQ(entry->tag, row.tag) << ToUtf8(row.name);
    EXPECT_EQ(entry->size, row.size) << ToUtf8(row.name);
  }
}

TEST_F(ListingTest, FindsOneEntryByItsNameAndDescribesALinkItself) {
  mTree.File("file", "123");
  mTree.Link("link", "file");
  ::mkfifo(mTree.At("fifo").c_str(), 0644);
  PosixMachine machine(DriveAt(mScratch, mTree.Root()));
  WIN32_FIND_DATAW entry;
  HANDLE search = machine.Find().FindFirstFileW(u"D:\\file", entry);
  ASSERT_NE(search, INVALID_HANDLE);
  EXPECT_EQ(entry.cFileName, u"file");
  EXPECT_EQ(entry.nFileSizeLow, 3U);
  EXPECT_FALSE(machine.Find().FindNextFileW(search, entry));
  EXPECT_EQ(machine.GetLastError(), ERROR_NO_MORE_FILES);
  EXPECT_TRUE(machine.Find().FindClose(search));
  EXPECT_FALSE(machine.Find().FindClose(search)) << "a closed handle is no handle";

  search = machine.Find().FindFirstFileW(u"D:\\link", entry);
  EXPECT_EQ(entry.dwReserved0, IO_REPARSE_TAG_SYMLINK);
  machine.Find().FindClose(search);
  struct Row {
    const char16_t* pattern;
    std::uint32_t error;
  };
  for (const Row& row :
       {Row{u"D:\\none", ERROR_FILE_NOT_FOUND}, Row{u"D:\\none\\*", ERROR_PATH_NOT_FOUND},
        Row{u"D:\\file\\*", ERROR_DIRECTORY}, Row{u"D:\\", ERROR_FILE_NOT_FOUND},
        Row{u"D:\\fifo", ERROR_ACCESS_DENIED}, Row{u"*", ERROR_BAD_PATHNAME}}) {
    EXPECT_EQ(machine.Find().FindFirstFileW(row.pattern, entry), INVALID_HANDLE);
    EXPECT_EQ(machine.GetLastError(), row.error) << ToUtf8(row.pattern);
  }
}

TEST_F(ListingTest, TellsTimesBefore1970) {
  mTree.File("old");
  const timespec times[] = {{-1, 500'000'000}, {-1'000'000'000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, mTree.At("old").c_str(), times, 0), 0);
  const WholeListing listing = List();
  ASSERT_NE(listing.Find(u"old"), nullptr);
  EXPECT_EQ(listing.Find(u"old")->written, FileTimeOf(-1'000'000'000, 0));
  EXPECT_GT(listing.Find(u"old")->created.Ticks(), FileTimeOf(1'700'000'000, 0).Ticks());
}

TEST_F(ListingTest, ListsEachOfManyEntriesOnce) {
  std::multiset<Text> expected = {u".", u".."};
  mTree.Many("many", 9000);
  for (int index = 0; index < 9000; ++index) expected.insert(FromUtf8("f" + std::to_string(index)));
  const WholeListing listing = List(u"D:\\many\\");
  EXPECT_EQ(listing.end, ERROR_NO_MORE_FILES);
  EXPECT_TRUE(listing.Names() == expected);
}

TEST_F(ListingTest, NeverShowsTheFilesOfAnotherDriveASecondTime) {
  // The drive is the whole of a file system of which "/" is the part "@".
  mTree.File("@/file");
  mTree.File("@home/file");
  const UniqueFd root(::open(mTree.Root().c_str(), O_PATH | O_DIRECTORY));
  PosixOptions options;
  options.dataHome = "";
  options.mountInfoFile =
      mScratch.File("mountinfo", "27 1 0:30 /@ / rw - btrfs /dev/sda1 rw\n" +
                                     std::to_string(MountIdOf(root.Get())) + " 27 0:30 / " +
                                     mTree.Root() + " rw - btrfs /dev/sda1 rw\n");
  PosixMachine machine(options);
  const WholeListing listing = ListAll(machine, u"D:\\");
  ASSERT_EQ(listing.entries.size(), 4U);
  EXPECT_EQ(listing.Find(u"@")->attributes, Junction);
  EXPECT_EQ(listing.Find(u"@home")->attributes, Folder);
}

TEST_F(ListingTest, NeverTakesAnUnreadableEntryForAnEmptyOne) {
  mTree.File("closed/file");
  mTree.File("names-only/file");
  mTree.File("secret");
  ::chmod(mTree.At("closed").c_str(), 0);
  ::chmod(mTree.At("names-only").c_str(), 0444);
  ::chmod(mTree.At("secret").c_str(), 0);
  ::chmod(mTree.Root().c_str(), 0755);
  const PosixOptions options = DriveAt(mScratch, mTree.Root());
  const std::string outcome = AsOrdinaryUser([&] {
    PosixMachine machine(options);
    std::string wrong;
    const auto expect = [&](bool good, const char* what) { wrong += good ? "" : what; };
    const WholeListing top = ListAll(machine, u"D:\\");
    expect(top.end == ERROR_NO_MORE_FILES && top.entries.size() == 5, "the top; ");
    const WholeListing closed = ListAll(machine, u"D:\\closed\\");
    expect(closed.end == ERROR_ACCESS_DENIED && closed.entries.empty(), "closed folder; ");
    const WholeListing names = ListAll(machine, u"D:\\names-only\\");
    expect(names.end == ERROR_ACCESS_DENIED && names.entries.size() == 2, "names only; ");
    std::uint32_t error = 0;
    (void)ReadAll(machine, u"D:\\secret", error);
    expect(error == ERROR_ACCESS_DENIED, "secret file; ");
    expect(!machine.Disk().CreateDirectoryW(u"D:\\new") &&
               machine.GetLastError() == ERROR_ACCESS_DENIED,
           "new folder; ");
    return wrong;
  });
  EXPECT_EQ(outcome, "");
}

}  // namespace
}  // namespace quillmarsh::test
