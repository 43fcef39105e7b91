// SPDX-License-Identifier: MIT
// A filter list while it is edited, masks that a person enters, and what is made of typed filters.
#include <gtest/gtest.h>

#include "filetypes/CustomFileMask.h"
#include "filetypes/ListText.h"
#include "filetypes/TypedFilters.h"
#include "filetypes/cFilterList.h"
#include "support/MachineFixture.h"

namespace quillmarsh {
namespace {

using enum cFilterList::AddResult;

// The entries between brackets, and behind them the text that is stored.
std::string Described(const cFilterList& list) {
  std::string text;
  for (const Text& entry : list.Entries()) text += "[" + ToUtf8(entry) + "]";
  return text + " " + ToUtf8(list.StoredText());
}

TEST(FilterList, TheStoredTextChangesOnlyWithItsEntries) {
  struct Row {
    TextView stored;
    std::string_view loaded;
    std::string_view afterAdding;    // "new"
    std::string_view afterRemoving;  // the first entry then
  };
  constexpr Row kRows[] = {
      {u"", " ", "[new] new", " "},
      {u"a<:>b", "[a][b] a<:>b", "[a][b][new] a<:>b<:>new", "[b][new] b<:>new"},
      {u" a , b", "[a][b]  a , b", "[a][b][new]  a , b<:>new", "[b][new] b<:>new"},
      {u"a<:>", "[a] a<:>", "[a][new] a<:>new", "[new] new"},
      {u"a,", "[a] a,", "[a][new] a,<:>new", "[new] new"},
      {u"a<:><:>b", "[a][][b] a<:><:>b", "[a][][b][new] a<:><:>b<:>new", "[][b][new] <:>b<:>new"},
      {u"x, y<:>x, y", "[x, y] x, y<:>x, y", "[x, y][new] x, y<:>x, y<:>new", "[new] new"},
      {u"a<:>a", "[a][a] a<:>a", "[a][a][new] a<:>a<:>new", "[a][new] a<:>new"},
  };
  for (const Row& row : kRows) {
    cFilterList list(FilterListKind::Folders, row.stored);
    EXPECT_EQ(Described(list), row.loaded);
    EXPECT_EQ(list.Add(u"new"), Added);
    EXPECT_EQ(Described(list), row.afterAdding);
    EXPECT_TRUE(list.Remove(0));
    EXPECT_EQ(Described(list), row.afterRemoving);
    EXPECT_FALSE(list.Remove(-1));
    EXPECT_FALSE(list.Remove(static_cast<int>(list.Entries().size())));
  }
}

TEST(FilterList, AnEntryWithACommaIsReadBackAsOne) {
  cFilterList list(FilterListKind::Folders, {});
  EXPECT_EQ(list.Add(u"C:\\Music, old\\"), Added);
  EXPECT_EQ(Described(cFilterList(FilterListKind::Folders, list.StoredText())),
            "[C:\\Music, old\\] C:\\Music, old\\<:>C:\\Music, old\\");
  for (const Text& piece : SplitListText(list.StoredText())) EXPECT_EQ(piece, u"C:\\Music, old\\");
  EXPECT_EQ(list.Add(u"b"), Added);
  EXPECT_TRUE(list.Remove(1));
  EXPECT_EQ(SplitListText(list.StoredText()).front(), u"C:\\Music, old\\");
}

TEST(FilterList, WhatIsThereAlreadyAndAllFilesAreIgnored) {
  cFilterList files(FilterListKind::Files, u"*.TXT");
  for (const TextView entry : {u"*.txt", u"*.*", u"*"}) EXPECT_EQ(files.Add(entry), Ignored);
  EXPECT_EQ(files.Add({}), Empty);
  EXPECT_EQ(Described(files), "[*.TXT] *.TXT");
  EXPECT_EQ(files.Add(u"*.*x"), Added);
  cFilterList folders(FilterListKind::Folders, {});
  EXPECT_EQ(folders.Add(u"*"), Added);
}

TEST(CustomFileMask, IsRefusedWithItsReason) {
  struct Row {
    TextView typed;
    std::string_view mask;
    std::string_view message;  // line breaks as '|'
  };
  constexpr Row kRows[] = {
      {u".mp9", "*.mp9", ""},
      {u" *.mp9 ", "*.mp9", ""},
      {u"*.x*", "*.x*", ""},
      {u"a.b.", "a.b.", ""},
      {u"", "", "No custom file mask entered"},
      {u"mp9", "mp9",
       "The custom file mask you entered is not valid.||The file mask should contain a 'dot' "
       "character.||See the Help File for details."},
      {u"*.", "*.",
       "The custom file mask you entered is not valid.||The file mask should contain text after "
       "the 'dot'.||See the Help File for details."},
      {u".", "*.",
       "The custom file mask you entered is not valid.||The file mask should contain text after "
       "the 'dot'.||See the Help File for details."},
      {u"*.*", "*.*",
       "The custom file mask you entered is not allowed.||You cannot include or exclude all files "
       "in this manner.||See the Help File for details."},
  };
  const auto shown = [](const Text& message) {
    std::string text;
    for (const char unit : ToUtf8(message))
      if (unit != '\r') text += unit == '\n' ? '|' : unit;
    return text;
  };
  Text message;
  for (const Row& row : kRows) {
    const Text mask = NormalizedFileMask(row.typed);
    EXPECT_EQ(ToUtf8(mask), row.mask);
    EXPECT_EQ(IsCustomFileMaskValid(mask, message), row.message.empty()) << row.mask;
    EXPECT_EQ(shown(message), row.message);
  }
  EXPECT_FALSE(IsCustomFileMaskValid(u".mp9", message)) << "not yet normalised";
  EXPECT_EQ(shown(message),
            "The custom file mask you entered is not valid.||The file mask should contain text "
            "before the 'dot'.|Consider adding an asterisk before the dot character.||See the Help "
            "File for details.");
}

TEST(CustomFileMask, IsDescribedByItsExtensionAndNotByAFile) {
  MachineFixture fixture;
  fixture.hook.ClearJournal();
  EXPECT_EQ(FileTypeDescOfMask(u"*.mp9"), u"MP9 File");
  EXPECT_EQ(FileTypeDescOfMask(u"a?.sla.gz"), u"GZ File");
  for (const TextView mask : {u"*.mp?", u"*.", u"none", u"*.x*", u""})
    EXPECT_EQ(FileTypeDescOfMask(mask), u"") << ToUtf8(mask);
  EXPECT_EQ(fixture.hook.Journal().size(), 2U);
}

TEST(TypedFilters, StayAsTheyAreWherePeopleWritePathsAsTheProgramDoes) {
  const MachineFixture fixture;
  for (const TextView mask : {u"*.txt", u"a?b*", u"x"}) {
    EXPECT_EQ(MaskFromTyped(mask), mask);
    EXPECT_EQ(ShownMask(mask), mask);
  }
  struct Row {
    TextView typed;
    TextView include;
    TextView exclude;
  };
  constexpr Row kRows[] = {
      {u"C:\\Data", u"C:\\Data", u"C:\\Data\\"},
      {u"\\\\server\\share\\x\\", u"\\\\server\\share\\x\\", u"\\\\server\\share\\x\\"},
      {u"photos\\2020", u"photos\\2020", u"photos\\2020\\"},
      {u"*", u"*", u"*"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(FolderFilterFromTyped(row.typed, FolderFilterUse::Include), row.include);
    EXPECT_EQ(FolderFilterFromTyped(row.typed, FolderFilterUse::Exclude), row.exclude);
    EXPECT_EQ(ShownFolderFilter(row.include), row.include);
  }
}

}  // namespace
}  // namespace quillmarsh
