// SPDX-License-Identifier: MIT
// Filters on a machine whose people write names and paths otherwise than the program does.
#include <gtest/gtest.h>

#include "filetypes/TypedFilters.h"
#include "fsobjects/modPaths.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh {
namespace {

using enum FolderFilterUse;

class NativeFilters : public testing::Test {
 protected:
  NativeFilters() : mMachine(test::DriveAt(mScratch, mFiles.Root())) { UseMachine(&mMachine); }
  ~NativeFilters() override { UseMachine(nullptr); }
  Text Native(const std::string& relative) const { return FromUtf8(mFiles.At(relative)); }

  test::TempTree mScratch;
  test::TempTree mFiles;
  PosixMachine mMachine;
};

TEST_F(NativeFilters, FoldersBecomeWhatASearchHoldsThemAgainst) {
  mFiles.Folder("a:b");
  mFiles.Link("link", mFiles.At("a:b"));
  struct Row {
    Text typed;
    FolderFilterUse use;
    Text entry;
    Text shown;
  };
  const Row rows[] = {
      {Native("a:b"), Exclude, u"D:\\a\uF03Ab\\", Native("a:b/")},
      {Native("a:b"), Include, u"D:\\a\uF03Ab", Native("a:b")},
      {Native("link/"), Include, u"D:\\a\uF03Ab\\", Native("a:b/")},
      {Native("not/there/yet"), Exclude, u"D:\\not\\there\\yet\\", Native("not/there/yet/")},
      // Of no folder, so a piece of paths.
      {u"/photos/2020", Include, u"\\photos\\2020", u"/photos/2020"},
      {u"Caf\u00E9: old/x", Include, u"Caf\u00E9\uF03A old\\x", u"Caf\u00E9: old/x"},
      {u"D:\\typed", Exclude, u"D:\\typed\\", Native("typed/")},
      {u"*", Include, u"*", u"*"},
  };
  for (const Row& row : rows) {
    const Text entry = FolderFilterFromTyped(row.typed, row.use);
    EXPECT_EQ(ToUtf8(entry), ToUtf8(row.entry)) << ToUtf8(row.typed);
    EXPECT_EQ(ToUtf8(ShownFolderFilter(entry)), ToUtf8(row.shown)) << ToUtf8(row.typed);
    EXPECT_EQ(FolderFilterFromTyped(ShownFolderFilter(entry), row.use), entry) << "and back";
  }
  EXPECT_EQ(ShownFolderFilter(u"Q:\\gone\\"), u"Q:\\gone\\") << "a drive that is not here";
}

TEST_F(NativeFilters, MasksMeetNamesAsTheProgramKnowsThem) {
  struct Row {
    TextView typed;
    TextView mask;
  };
  constexpr Row kRows[] = {{u"*.txt", u"*.txt"},
                           {u"a:b?*", u"a\uF03Ab?*"},
                           {u"*", u"*"},
                           {u"<x>;*.y", u"\uF03Cx\uF03E;*.y"}};
  for (const Row& row : kRows) {
    EXPECT_EQ(ToUtf8(MaskFromTyped(row.typed)), ToUtf8(row.mask));
    EXPECT_EQ(ToUtf8(ShownMask(row.mask)), ToUtf8(row.typed));
  }
}

}  // namespace
}  // namespace quillmarsh
