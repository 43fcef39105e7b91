// SPDX-License-Identifier: MIT
// One type's masks, a set of types, and the sort of names.
#include "FileTypesFixture.h"
#include "filetypes/modQuickSortStringArray.h"

namespace quillmarsh {
namespace {

using FileMasks = FileTypesFixture;
using FileTypeSet = FileTypesFixture;

TEST_F(FileMasks, AListComesBackWithTheSeparatorOfTheTextThatWasAssigned) {
  struct Row {
    TextView assigned;
    std::int32_t count;
    TextView afterAdding;  // "*.new"
  };
  constexpr Row kRows[] = {
      {u"*.aac,*.mp3", 2, u"*.aac,*.mp3,*.new"},
      {u"*.aac<:>*.mp3", 2, u"*.aac<:>*.mp3<:>*.new"},
      {u"*.a,b<:>*.c", 2, u"*.a,b<:>*.c<:>*.new"},
      // One mask holds no "<:>", so its list is one of commas from then on.
      {u"*.tmp", 1, u"*.tmp,*.new"},
      {u"*.a,*.a,*.A", 3, u"*.a,*.a,*.A,*.new"},
      {u"", 0, u"*.new"},
      {u",", 2, u",,*.new"},
      {u"<:>", 2, u"<:><:>*.new"},
      {u",,<:>,<:><:>", 4, u",,<:>,<:><:><:>*.new"},
      {u"<:<:>:>", 2, u"<:<:>:><:>*.new"},
      {u"<:", 1, u"<:,*.new"},
  };
  for (const Row& row : kRows) {
    cCommonFileType type;
    type.SetFileMasksList(u"*.old<:>*.new");
    type.SetFileMasksList(row.assigned);
    EXPECT_EQ(type.FileMasks().Count(), row.count) << ToUtf8(row.assigned);
    EXPECT_EQ(type.FileMasksList(), row.assigned);
    EXPECT_TRUE(type.AddFileMask(u"*.new"));
    EXPECT_EQ(type.FileMasksList(), row.afterAdding);
  }
}

TEST_F(FileMasks, AMaskIsRefusedOnlyWhereItWasAddedBefore) {
  cCommonFileType type;
  type.SetFileMasksList(u"*.a,*.b");
  // The masks of an assigned list bear no key: the editor looks with DoesThisFileMaskExist.
  EXPECT_TRUE(type.AddFileMask(u"*.A"));
  EXPECT_FALSE(type.AddFileMask(u"*.a"));
  EXPECT_EQ(type.FileMasksList(), u"*.a,*.b,*.A");
  // The first one goes; the key stays with the one that was added.
  EXPECT_TRUE(type.RemoveFileMask(u"*.a"));
  EXPECT_FALSE(type.AddFileMask(u"*.a"));
  EXPECT_TRUE(type.RemoveFileMask(u"*.a"));
  EXPECT_TRUE(type.AddFileMask(u"*.a"));
  EXPECT_EQ(type.FileMasksList(), u"*.b,*.a");
  type.SetFileMasksList(u"*.a");
  EXPECT_TRUE(type.AddFileMask(u"*.a")) << "a new list has no keys";
  EXPECT_FALSE(type.RemoveFileMask(u"*.c"));
}

TEST_F(FileMasks, AreFoundInAnyCaseAndRenamedToTheEnd) {
  cCommonFileType type;
  type.SetFileMasksList(u"*.a<:>*.b<:>*.\u00e9<:>*.b");
  EXPECT_EQ(type.GetFileMaskIndexBasedOnKey(u"*.B"), 2);
  EXPECT_EQ(type.GetFileMaskIndexBasedOnKey(u"*.\u00c9"), 3);
  EXPECT_EQ(type.GetFileMaskIndexBasedOnKey(u"*.bb"), -1);
  EXPECT_TRUE(type.DoesThisFileMaskExist(u"*.A"));
  EXPECT_TRUE(type.RenameFileMask(type.FileMasks().Item(1), type.FileMasks().Item(3)));
  EXPECT_EQ(type.FileMasksList(), u"*.b<:>*.\u00e9<:>*.b<:>*.\u00e9");
  EXPECT_FALSE(type.RenameFileMask(u"*.a", u"*.x"));
  EXPECT_FALSE(type.DoesThisFileMaskExist(u"*.x"));
  // Required as it is: the old mask goes before the new one is asked for.
  EXPECT_FALSE(type.RenameFileMask(u"*.b", u"*.\u00c9"));
  EXPECT_EQ(type.FileMasksList(), u"*.\u00e9<:>*.b<:>*.\u00e9");
}

TEST_F(FileMasks, AnyTextIsTakenInProportionToItsLength) {
  cCommonFileType type;
  for (const char16_t unit : {u',', u';', u'<', u'*', u'\0', u'\xd800'}) {
    const Text list(16383, unit);
    type.SetFileMasksList(list);
    EXPECT_EQ(type.FileMasks().Count(), unit == u',' ? 16384 : 1);
    EXPECT_EQ(type.FileMasksList(), list);
  }
  const Text separators(500'000, u',');
  type.SetFileMasksList(separators);
  EXPECT_EQ(type.FileMasksList(), separators);
  for (int i = 0; i < 200'000; ++i) ASSERT_TRUE(type.AddFileMask(DecimalText(i)));
  EXPECT_FALSE(type.AddFileMask(u"199999"));
}

TEST_F(FileTypeSet, NamesAreUniqueInAnyCase) {
  cCommonFileTypes types;
  types.SetCommonFileTypesList(u"b;A;B;;a");
  EXPECT_EQ(types.CommonFileTypesList(), u"b;A;");
  types.SetCommonFileTypesList(u"");
  EXPECT_EQ(types.Count(), 3) << "an empty text changes nothing";
  EXPECT_FALSE(types.AddByName(u"a"));
  EXPECT_TRUE(types.AddByName(u"c"));
  EXPECT_FALSE(types.Add(nullptr));
  auto own = std::make_shared<cCommonFileType>();
  own->SetName(u"C");
  EXPECT_FALSE(types.Add(own));
  EXPECT_TRUE(types.Remove(u"C"));
  EXPECT_FALSE(types.Remove(u"C"));
  EXPECT_TRUE(types.Add(own));
  EXPECT_EQ(types.GetCommonFileTypeIndexBasedOnKey(u"c"), 4);
  EXPECT_FALSE(types.DoesThisCFTExist(u"cc"));
}

TEST_F(FileTypeSet, ATypeIsRenamedWithItsMasksAndToTheEnd) {
  cCommonFileTypes types;
  types.SetCommonFileTypesList(u"a;b;c");
  types.CommonFileTypes().Item(1)->SetFileMasksList(u"*.x<:>*.y");
  types.CommonFileTypes().Item(2)->SetFileMasksList(u"*.z");
  EXPECT_TRUE(types.Rename(u"A", u"d"));
  EXPECT_EQ(types.CommonFileTypesList(), u"b;c;d");
  EXPECT_EQ(types.CommonFileTypes().Item(3)->FileMasksList(), u"*.x<:>*.y");
  EXPECT_FALSE(types.Rename(u"a", u"e"));
  EXPECT_FALSE(types.Rename(u"d", u"B"));
  EXPECT_EQ(types.CommonFileTypesList(), u"b;c");
  EXPECT_EQ(types.CommonFileTypes().Item(1)->FileMasksList(), u"*.z");
}

TEST_F(FileTypeSet, ACopyIsAnImageOfItsOwn) {
  ASSERT_TRUE(RestoreDefaultFileTypeMasks());
  Member(2).SetFileMasksList(u"*.one");
  ASSERT_TRUE(Member(2).AddFileMask(u"*.two"));
  cCommonFileTypes copy;
  copy.SetCommonFileTypesList(u"left over;Audio Files");
  CopyCFTsObject(*gCommonFileTypes, &copy);
  EXPECT_EQ(copy.CommonFileTypesList(), GetDefaultCFTList());
  for (std::int32_t position = 1; position <= 10; ++position)
    EXPECT_EQ(copy.CommonFileTypes().Item(position)->FileMasksList(),
              Member(position).FileMasksList());
  EXPECT_TRUE(copy.CommonFileTypes().Item(2)->RemoveFileMask(u"*.one"));
  EXPECT_EQ(Member(2).FileMasksList(), u"*.one,*.two");

  CopyCFTsObject(*gCommonFileTypes, nullptr);
  CopyCFTsObject(*gCommonFileTypes, gCommonFileTypes.get());
  EXPECT_EQ(Member(2).FileMasksList(), u"*.one,*.two") << "copied onto itself";
}

TEST_F(FileTypeSet, ACopyThatCannotFindAMemberAgainIsReported) {
  cCommonFileTypes types;
  ASSERT_TRUE(types.AddByName(u"one;two"));  // the list of names splits it
  cCommonFileTypes copy;
  CopyCFTsObject(types, &copy);
  EXPECT_NE(TakeBoxes().find("Source: modCommonFileTypes.CopyCFTsObject\r\nNumber: 9\r\n"),
            std::string::npos);
}

TEST_F(FileTypeSet, NamesAreListedInAscendingOrderWithoutRegardToCase) {
  cCommonFileTypes types;
  std::vector<Text> names = {u"kept"};
  types.GetSortedCFTListArray(names);
  EXPECT_EQ(names, std::vector<Text>{u"kept"});
  types.SetCommonFileTypesList(u"b;C;a;\u00c9;\u00e8;B2");
  types.GetSortedCFTListArray(names);
  EXPECT_EQ(names, (std::vector<Text>{u"a", u"b", u"B2", u"C", u"\u00e8", u"\u00c9"}));
}

TEST(QuickSortStringArray, IsSwiftWhateverTheOrderOfItsTexts) {
  constexpr int kCount = 200'000;
  std::vector<Text> texts(kCount, u"same");
  QuickSortStringArray(texts);
  // Rising to the middle and falling from there, and each key twice: bad for plain quicksorts.
  for (int i = 0; i < kCount; ++i)
    texts[static_cast<std::size_t>(i)] =
        (i % 2 == 0 ? u"X" : u"x") + DecimalText(1'000'000 + std::min(i, kCount - 1 - i));
  QuickSortStringArray(texts);
  ASSERT_EQ(texts.size(), std::size_t{kCount});
  for (std::size_t i = 0; i < texts.size(); ++i)
    ASSERT_EQ(TextView(texts[i]).substr(1), DecimalText(1'000'000 + static_cast<int>(i / 2)));
}

}  // namespace
}  // namespace quillmarsh
