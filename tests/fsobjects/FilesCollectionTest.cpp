// SPDX-License-Identifier: MIT
// The two collections of an enumeration.
#include "FsObjectsFixture.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFiles.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/cFSXSubFolders.h"

namespace quillmarsh {
namespace {

class FilesCollection : public FsObjectsFixture {};

TEST_F(FilesCollection, ItemsArePrimedObjectsOfTheirOwn) {
  cFSXFiles files;
  files.SetParentFolderPath(u"C:\\d");
  EXPECT_EQ(files.ParentFolderPath(), u"C:\\d\\");
  EXPECT_FALSE(
      files.Add(u"a.txt", Currency::FromInteger(1), Currency::FromRaw(2), Currency::FromRaw(3), 4))
      << "always false";
  files.Add(u"", {}, {}, {}, 0);
  files.Add(u"c", {}, {}, {}, 0);
  EXPECT_EQ(files.Item(0), nullptr);
  EXPECT_EQ(files.Item(4), nullptr);
  EXPECT_THROW(static_cast<void>(files.Facts(4)), RuntimeError);
  EXPECT_EQ(files.Facts(1).name, u"a.txt");
  EXPECT_EQ(files.Facts(2).name, u"");
  EXPECT_EQ(files.Facts(3).name, u"c");

  hook.ClearJournal();
  const auto first = files.Item(1), again = files.Item(1);
  EXPECT_EQ(first->Path(), u"C:\\d\\a.txt");
  EXPECT_EQ(first->Size(), Currency::FromInteger(1));
  EXPECT_EQ(first->CreatedDateAsCurr().Raw(), 2);
  EXPECT_EQ(first->LastModifiedDateAsCurr().Raw(), 3);
  EXPECT_EQ(first->Attributes(), 4U);
  EXPECT_EQ(first->ParentFolderIdx(), files.ParentFolderIdx());
  EXPECT_TRUE(hook.Journal().empty());
  first->SetName(u"other");
  EXPECT_EQ(again->Name(), u"a.txt");
}

TEST_F(FilesCollection, FactsAnswerTheTestsOfTheObject) {
  cFSXFiles files;
  files.SetParentFolderPath(u"C:\\d");
  for (const TextView name :
       {u"a.tmp", u".TMP", u"tmp", u"a.tmpx", u"a.b.Tmp", u"atmp", u"a.tm", u"tmp."})
    for (const std::uint32_t attributes : {0U, 2U, 4U, 0x100U, 0x20U})
      files.Add(name, {}, {}, {}, attributes);
  for (std::int32_t index = 1; index <= files.Count(); ++index) {
    const cFSXFileFacts facts = files.Facts(index);
    const auto object = files.Item(index);
    SCOPED_TRACE(ToUtf8(facts.name) + " " + std::to_string(facts.attributes));
    EXPECT_EQ(facts.IsTemporary(), object->IsTemporary());
    EXPECT_EQ(facts.IsHidden(), object->IsHidden());
    EXPECT_EQ(facts.IsSystem(), object->IsSystem());
  }
}

TEST_F(FilesCollection, SubFoldersAreMadeOnDemandAndKnowTheirAttributes) {
  cFSXSubFolders folders;
  folders.SetParentFolderPath(u"C:\\d");
  EXPECT_FALSE(folders.Add(u"sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN, false))
      << "always false";
  EXPECT_EQ(folders.Item(0), nullptr);
  EXPECT_EQ(folders.Item(2), nullptr);
  hook.ClearJournal();
  const auto sub = folders.Item(1);
  EXPECT_EQ(sub->Path(), u"C:\\d\\sub\\");
  EXPECT_TRUE(sub->IsHidden());
  EXPECT_FALSE(sub->IsJunction());
  EXPECT_EQ(sub->EnumerationStatus(), cFSXFolder::NotEnumerated);
  EXPECT_NE(sub, folders.Item(1));
  EXPECT_TRUE(hook.Journal().empty());
}

TEST_F(FilesCollection, RecursiveAddReadsTheFolderAtOnceAndKeepsItByExactName) {
  machine.AddDrive({.root = u"E:\\", .caseSensitive = true});
  machine.AddFile(u"E:\\d\\sub\\deep\\1.txt");
  machine.AddFile(u"E:\\d\\SUB\\2.txt");
  machine.AddFile(u"E:\\d\\SUB\\3.txt");
  cFSXFolder folder;
  folder.SetPath(u"E:\\d\\");
  ASSERT_TRUE(folder.Enumerate(true));
  const auto folders = folder.SubFoldersAndJunctions();
  ASSERT_EQ(folders->Count(), 2);
  hook.ClearJournal();
  for (std::int32_t index = 1; index <= 2; ++index) {
    const auto sub = folders->Item(index);
    EXPECT_EQ(sub, folders->Item(index)) << "the one that was read";
    EXPECT_EQ(sub->EnumerationStatus(), cFSXFolder::Enumerated);
    EXPECT_EQ(sub->NumFiles(true), sub->Name() == u"SUB" ? 2 : 1);
  }
  EXPECT_EQ(Calls(Operation::FindFirstFileW), 0U);
}

}  // namespace
}  // namespace quillmarsh
