// SPDX-License-Identifier: MIT
// The folder path list, with a hash of the test's own where folders are to collide.
#include "FsObjectsFixture.h"

namespace quillmarsh {
namespace {

class FolderPathsList : public FsObjectsFixture {};

TEST_F(FolderPathsList, GivesOneKeyToOnePathAndKeepsTheOrderOfComing) {
  cFSXFolderPathsList list;
  const std::int32_t a = list.AddFolder(u"C:\\a\\");
  const std::int32_t upper = list.AddFolder(u"C:\\A\\");
  EXPECT_EQ(list.AddFolder(u"C:\\a\\"), a);
  EXPECT_NE(a, upper);
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(list.GetFolderByIndex(upper), u"C:\\A\\");
  EXPECT_EQ(list.GetFolderByPosition(1), u"C:\\a\\");
  EXPECT_EQ(list.GetFolderByPosition(2), u"C:\\A\\");
  EXPECT_EQ(list.GetFolderByPosition(3), u"");
  EXPECT_EQ(list.GetFolderByPosition(0), u"");
  EXPECT_EQ(list.GetFolderByIndex(a + 1), u"");
  list.NewList();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(list.GetFolderByIndex(a), u"");
}

TEST_F(FolderPathsList, EmptyTextHasTheKeyOfNoFolder) {
  cFSXFolderPathsList list;
  EXPECT_EQ(list.AddFolder(u""), 0);
  EXPECT_EQ(list.GetFolderByIndex(0), u"");
}

TEST_F(FolderPathsList, FoldersThatShareAHashLie7ApartAndAreFoundAgain) {
  cFSXFolderPathsList list([](TextView) { return 100; });
  EXPECT_EQ(list.AddFolder(u"a"), 100);
  EXPECT_EQ(list.AddFolder(u"b"), 93);
  EXPECT_EQ(list.AddFolder(u"c"), 86);
  EXPECT_EQ(list.AddFolder(u"b"), 93);
  EXPECT_EQ(list.GetFolderByIndex(86), u"c");
  EXPECT_TRUE(list.AddStringAndReportCollisions(u"d"));
  EXPECT_FALSE(list.AddStringAndReportCollisions(u"a"));
}

TEST_F(FolderPathsList, ProbingGoesRoundAtTheLowEndAndLeavesOutTheReservedKeys) {
  cFSXFolderPathsList low([](TextView) { return -2147483645; });
  static_cast<void>(low.AddFolder(u"a"));
  EXPECT_EQ(low.AddFolder(u"b"), 2147483647);
  cFSXFolderPathsList nearZero([](TextView) { return 7; });
  static_cast<void>(nearZero.AddFolder(u"a"));
  EXPECT_EQ(nearZero.AddFolder(u"b"), -7) << "0 is no folder";
  cFSXFolderPathsList nearMinusOne([](TextView) { return 6; });
  static_cast<void>(nearMinusOne.AddFolder(u"a"));
  EXPECT_EQ(nearMinusOne.AddFolder(u"b"), -8) << "-1 is not known";
}

// Taking one for the other would give a file the path of another file.
TEST_F(FolderPathsList, FoldersThatDifferInCaseStayTwoEvenUnderOneHash) {
  cFSXFolderPathsList list([](TextView) { return 100; });
  EXPECT_EQ(list.AddFolder(u"C:\\Data\\"), 100);
  EXPECT_EQ(list.AddFolder(u"C:\\data\\"), 93);
  EXPECT_EQ(list.GetFolderByIndex(93), u"C:\\data\\");
}

TEST_F(FolderPathsList, KeepsManyFoldersApartWhileItGrows) {
  constexpr std::int32_t Many = 100000;
  cFSXFolderPathsList list;
  std::vector<std::int32_t> keys;
  for (std::int32_t i = 0; i < Many; ++i)
    keys.push_back(list.AddFolder(u"C:\\" + DecimalText(i) + u"\\"));
  ASSERT_EQ(list.Count(), Many);
  for (std::int32_t i = 0; i < Many; ++i) {
    ASSERT_EQ(list.GetFolderByIndex(keys[static_cast<std::size_t>(i)]),
              u"C:\\" + DecimalText(i) + u"\\");
  }
}

}  // namespace
}  // namespace quillmarsh
