// SPDX-License-Identifier: MIT
// Paths as texts: the prefix of long paths, the parts of a path, and what the parser makes of odd
// ones. Each table row is one path.
#include "FsObjectsFixture.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

class PathToolkit : public FsObjectsFixture {};

Text OfLength(TextView head, std::size_t length) {
  Text path(head);
  path.resize(length, u'x');
  return path;
}

TEST_F(PathToolkit, GivesThePrefixToPathsOfMoreThan248Characters) {
  const Text shortest = OfLength(u"C:\\", 248);
  EXPECT_EQ(ToLongPath(shortest), shortest);
  const Text drive = OfLength(u"C:\\", 249);
  EXPECT_EQ(ToLongPath(drive), u"\\\\?\\" + drive);
  EXPECT_EQ(ToLongPath(ToLongPath(drive)), u"\\\\?\\" + drive);
  const Text unc = OfLength(u"\\\\srv\\s\\", 249);
  EXPECT_EQ(ToLongPath(unc), u"\\\\?\\UNC\\" + unc.substr(2));
  EXPECT_EQ(ToLongPath(unc).size(), 255U);
}

TEST_F(PathToolkit, TakesThePrefixAwayFromLongPathsOnly) {
  const Text drive = OfLength(u"C:\\", 249);
  const Text unc = OfLength(u"\\\\srv\\s\\", 249);
  EXPECT_EQ(FromLongPath(ToLongPath(drive)), drive);
  EXPECT_EQ(FromLongPath(ToLongPath(unc)), unc);
  EXPECT_EQ(FromLongPath(drive), drive);
  const Text shortWithPrefix = OfLength(u"\\\\?\\C:\\", 248);
  EXPECT_EQ(FromLongPath(shortWithPrefix), shortWithPrefix);
}

TEST_F(PathToolkit, FindsTheFolderAboveAndStopsAtRoots) {
  const struct {
    TextView path, parent, last;
  } rows[] = {
      {u"", u"", u""},
      {u"C", u"", u""},
      {u"C:", u"", u""},
      {u"C:\\", u"", u""},
      {u"C:\\a", u"C:\\", u"a"},
      {u"C:\\a\\", u"C:\\", u"a"},
      {u"C:\\a\\b.txt", u"C:\\a\\", u"b.txt"},
      {u"\\\\srv", u"", u"srv"},
      {u"\\\\srv\\share", u"", u"share"},
      {u"\\\\srv\\share\\", u"", u"share"},
      {u"\\\\srv\\share\\a", u"\\\\srv\\share\\", u"a"},
      {u"\\\\srv\\share\\a\\", u"\\\\srv\\share\\", u"a"},
      {u"relative\\a", u"", u"a"},
      {u"plain", u"", u""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(ToUtf8(row.path));
    EXPECT_EQ(GetParentFolderPathOf(row.path), row.parent);
    EXPECT_EQ(IsRootPath(row.path), row.parent.empty());
    EXPECT_EQ(GetLastFolderName(row.path), row.last);
  }
}

TEST_F(PathToolkit, ParserSplitsPathsAtTheLastBackslashAndDot) {
  const struct {
    TextView path, folder, name, extension, bareName;
  } rows[] = {
      {u"C:\\a\\b.tar.gz", u"C:\\a\\", u"b.tar.gz", u"gz", u"b.tar"},
      {u"C:\\a.b\\c", u"C:\\a.b\\", u"c", u"", u""},
      {u"C:\\a\\.hid", u"C:\\a\\", u".hid", u"hid", u""},
      {u"C:\\a\\b.", u"C:\\a\\", u"b.", u"", u"b"},
      {u"C:\\", u"C:\\", u"", u"", u""},
      {u"", u"", u"", u"", u""},
      // A bare name is its own folder.
      {u"b.txt", u"b.txt", u"b.txt", u"txt", u"b"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(ToUtf8(row.path));
    EXPECT_EQ(GetFolderPartOf(row.path), row.folder);
    EXPECT_EQ(GetFileNameOf(row.path), row.name);
    EXPECT_EQ(GetExtensionNameOf(row.path), row.extension);
    EXPECT_EQ(gFileSpecParser->GetFileNameWithoutExtension(row.path), row.bareName);
  }
}

// Required as it is; an extension that loses the backslash or gains the even case is a repair.
TEST_F(PathToolkit, FinalBackslashBelongsToTheExtensionOfTextsOfOddLength) {
  EXPECT_EQ(GetExtensionNameOf(u"ab.c\\"), u"c\\");
  EXPECT_EQ(GetExtensionNameOf(u"C:\\x.y\\"), u"y\\");
  EXPECT_EQ(GetExtensionNameOf(u"abc.c\\"), u"");
  EXPECT_EQ(GetExtensionNameOf(u"a.b\\cd\\"), u"");
}

TEST_F(PathToolkit, ParserFindsRootsAndWhatLiesBehindThem) {
  const struct {
    TextView path, root, behindRoot, uncRoot, behindUncRoot;
  } rows[] = {
      {u"c", u"c:\\", u"", u"", u""},
      {u"c:", u"c:\\", u"", u"", u""},
      {u" D:\\a ", u"D:\\", u"a ", u"", u""},
      {u"C:\\a\\b", u"C:\\", u"a\\b", u"", u""},
      {u"C:a", u"", u"", u"", u""},
      {u"\\\\srv\\share\\a\\b", u"\\\\srv\\share\\", u"a\\b", u"\\\\srv\\share\\", u"a\\b"},
      {u"\\\\srv\\share", u"\\\\srv\\share\\", u"", u"\\\\srv\\share\\", u""},
      {u"\\a", u"", u"", u"", u""},
      {u"", u"", u"", u"", u""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(ToUtf8(row.path));
    EXPECT_EQ(GetDriveRootOf(row.path), row.root);
    EXPECT_EQ(gFileSpecParser->GetPathWithoutRoot(row.path), row.behindRoot);
    EXPECT_EQ(gFileSpecParser->GetUNCRoot(row.path), row.uncRoot);
    EXPECT_EQ(gFileSpecParser->GetPathWithoutUNCRoot(row.path), row.behindUncRoot);
  }
}

TEST_F(PathToolkit, ShortPathIsThePathItselfWhereThereIsNone) {
  machine.AddFile(u"C:\\A long folder\\file.txt");
  machine.SetShortName(u"C:\\A long folder", u"ALONGF~1");
  EXPECT_EQ(GetShortPath(u"C:\\A long folder\\file.txt"), u"C:\\ALONGF~1\\file.txt");
  EXPECT_EQ(GetShortPath(u"C:\\not there"), u"C:\\not there");
}

TEST_F(PathToolkit, FolderOfAKeyThatStandsForNoneIsEmpty) {
  const std::int32_t key = gFolderPathsList->AddFolder(u"C:\\a\\");
  EXPECT_EQ(GetFolderPathByIdx(key), u"C:\\a\\");
  EXPECT_EQ(GetFolderPathByIdx(-1), u"");
  EXPECT_EQ(GetFolderPathByIdx(0), u"");
  gFolderPathsList.reset();
  EXPECT_EQ(GetFolderPathByIdx(key), u"");
}

}  // namespace
}  // namespace quillmarsh
