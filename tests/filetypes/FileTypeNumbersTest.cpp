// SPDX-License-Identifier: MIT
// The two numberings with their names, the way between them, and what choosing a search file type
// does to the filters.
#include "FileTypesFixture.h"
#include "filetypes/SFT_CFT_Interface.h"
#include "filetypes/SearchFileTypeFilters.h"
#include "filetypes/modSearchFileTypes.h"

namespace quillmarsh {
namespace {

TEST_F(FileTypesFixture, TheTenCommonTypesKeepTheirNumbersAndPositions) {
  EXPECT_EQ(GetDefaultCFTList(),
            u"Image Files;Audio Files;Video Files;Email Files;"
            u"Document/Spreadsheet/Presentation Files;Executable Files;HTML/Web Files;"
            u"Financial Files;Temporary Files;Application Data Files");
  ASSERT_EQ(gCommonFileTypes->Count(), 10);
  for (std::int32_t number = 0; number < 10; ++number) {
    const Text name = CFTNameFromEnum(number);
    EXPECT_EQ(Member(number + 1).Name(), name);
    EXPECT_EQ(Member(number + 1).EnumType(), number);
    EXPECT_EQ(CFTEnumFromName(name), number);
  }
  for (const std::int32_t number : {-1, 10, 2147483647}) EXPECT_EQ(CFTNameFromEnum(number), u"");
  for (const TextView name : {u"", u"audio files", u"Document Files"}) {
    EXPECT_EQ(CFTEnumFromName(name), -1);
    Member(1).SetName(name);
    EXPECT_EQ(Member(1).EnumType(), -1);
  }
}

TEST_F(FileTypesFixture, TheSearchTypesStandForFourOfThem) {
  struct Row {
    std::int32_t number;
    TextView name;
    std::int32_t commonNumber;
    TextView commonName;
  };
  constexpr Row kRows[] = {
      {0, u"All File Types", -1, u""},
      {1, u"Audio Files", 1, u"Audio Files"},
      {2, u"Document Files", 4, u"Document/Spreadsheet/Presentation Files"},
      {3, u"Image Files", 0, u"Image Files"},
      {4, u"Video Files", 2, u"Video Files"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(SFTNameFromEnum(row.number), row.name);
    EXPECT_EQ(SFTEnumFromName(row.name), row.number);
    EXPECT_EQ(CFTEnumFromSFTEnum(row.number), row.commonNumber);
    EXPECT_EQ(CFTNameFromSFTName(row.name), row.commonName);
  }
  // An unknown name means all file types, without a word; an unknown number is told.
  for (const TextView name : {u"", u"audio files", u"Email Files"}) {
    EXPECT_EQ(SFTEnumFromName(name), 0);
    EXPECT_EQ(CFTNameFromSFTName(name), u"");
  }
  EXPECT_EQ(TakeBoxes(), "");
  for (const std::int32_t number : {-1, 5}) {
    EXPECT_EQ(CFTEnumFromSFTEnum(number), -1);
    EXPECT_EQ(SFTNameFromEnum(number), u"");
    EXPECT_EQ(TakeBoxes(), "Ooops, unaccounted for option in SFTNameFromEnum Select Case");
  }
}

class ChoosingASearchFileType : public FileTypesFixture {
 protected:
  // The four filters after the choice, which found the user's own in place.
  static Text FiltersAfter(std::int32_t number) {
    clsDupeSettings& settings = *gDupeSettings;
    settings.SetIncludeFolders(u"a");
    settings.SetIncludeFiles(u"b");
    settings.SetExcludeFolders(u"c");
    settings.SetExcludeFiles(u"d");
    PopulateIncludeExcludeFiltersBasedOnSearchFileType(number);
    return settings.IncludeFolders() + u"|" + settings.IncludeFiles() + u"|" +
           settings.ExcludeFolders() + u"|" + settings.ExcludeFiles();
  }
};

TEST_F(ChoosingASearchFileType, OverwritesAllFourFiltersWithTheMasksOfOneOfFourPositions) {
  for (std::int32_t position = 1; position <= 10; ++position) {
    Member(position).SetFileMasksList(u"*.p" + DecimalText(position) + u"<:>*.x");
    Member(position).SetName(u"renamed");  // the position counts, not the name
  }
  EXPECT_EQ(FiltersAfter(0), u"|||");
  EXPECT_EQ(FiltersAfter(1), u"|*.p2<:>*.x||");
  EXPECT_EQ(FiltersAfter(2), u"|*.p5<:>*.x||");
  EXPECT_EQ(FiltersAfter(3), u"|*.p1<:>*.x||");
  EXPECT_EQ(FiltersAfter(4), u"|*.p3<:>*.x||");
  EXPECT_EQ(TakeBoxes(), "");
  for (const std::int32_t number : {-1, 5}) {
    EXPECT_EQ(FiltersAfter(number), u"|||");
    EXPECT_EQ(TakeBoxes(),
              "Ooops.  Uncoded option is Select Case "
              "PopulateIncludeExcludeFiltersBasedOnSearchFileType");
  }
}

TEST_F(ChoosingASearchFileType, LeavesTheFiltersAloneWhereThereAreNoTypes) {
  gCommonFileTypes = std::make_unique<cCommonFileTypes>();
  EXPECT_EQ(FiltersAfter(1), u"a|b|c|d");
  EXPECT_NE(TakeBoxes().find("Number: 9\r\n"), std::string::npos);
  gCommonFileTypes.reset();
  EXPECT_EQ(FiltersAfter(1), u"a|b|c|d");
  EXPECT_NE(TakeBoxes().find("Number: 91\r\n"), std::string::npos);
  EXPECT_EQ(FiltersAfter(0), u"|||");
}

}  // namespace
}  // namespace quillmarsh
