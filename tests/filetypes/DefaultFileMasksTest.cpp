// SPDX-License-Identifier: MIT
// The built-in lists against what is known of them: how many, how many different, how long, where
// they fall back in the alphabet and what comes three times or more. What is known is written down
// here and not worked out from the table.
#include "filetypes/DefaultFileMasks.h"

#include <map>

#include "FileTypesFixture.h"
#include "base/TextEquality.h"
#include "filetypes/ListText.h"

namespace quillmarsh {
namespace {

struct KnownList {
  TextView type;
  Text (*routine)(TextView separator);  // none for the one list that has no routine
  std::size_t masks;
  std::size_t differentMasks;
  std::size_t joinedLength;      // with "<:>"
  std::string_view first, last;  // masks, without "*."
  std::string_view fallsBack;    // each place where a mask stands before a smaller one
  std::string_view oftenest;     // masks that come three times or more, and how often
};

constexpr KnownList kKnownLists[] = {
    {u"Image Files", GetDefaultImageFileMasks, 816, 768, 6727, "3d", "zgm", "zt>001 zif>abc ",
     "anim:3 ink:3 pat:3 pic:3 "},
    {u"Audio Files", GetDefaultAudioFileMasks, 505, 483, 4127, "4mp", "zvr",
     "acd-zip>acd jo-7z>jo mp_>mp1 ", "snd:3 "},
    {u"Video Files", GetDefaultVideoFileMasks, 344, 335, 2910, "264", "zmv",
     "dv-avi>dv dvr-ms>dvr ", ""},
    {u"Email Files", GetDefaultEmailFileMasks, 18, 18, 145, "abc", "wab", "", ""},
    {u"Document/Spreadsheet/Presentation Files", GetDefaultDocumentFileMasks, 282, 268, 2385, "1st",
     "ppt", "zw>123 xltm>ppt ", "xwp:3 "},
    {u"Executable Files", GetDefaultExecutableFileMasks, 159, 151, 1318, "0xe", "zl9", "ex_>ex4 ",
     ""},
    {u"HTML/Web Files", GetDefaultWebFileMasks, 203, 203, 1812, "a5w", "zvz", "", ""},
    {u"Financial Files", GetDefaultFinancialFileMasks, 7, 7, 53, "qdf", "qbw", "qsd>mny tax>qbw ",
     ""},
    {u"Application Data Files", GetDefaultAppDataFileMasks, 502, 470, 4481, "256", "zpi", "",
     "avs:3 cfg:5 ini:3 mnu:3 prf:5 "},
    {u"Temporary Files", nullptr, 1, 1, 5, "tmp", "tmp", "", ""},
};

// The masks without "*.", in their order.
std::vector<std::string> ExtensionsOf(TextView type) {
  std::vector<std::string> extensions;
  for (const Text& mask : SplitText(GetDefaultFileMasksFromCFTName(type, u"<:>"), u"<:>")) {
    EXPECT_TRUE(mask.starts_with(u"*.")) << ToUtf8(mask);
    extensions.push_back(ToUtf8(TextView(mask).substr(2)));
    EXPECT_EQ(extensions.back().find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_-."),
              std::string::npos)
        << extensions.back();
  }
  return extensions;
}

TEST(DefaultFileMasks, HaveTheirCountsLengthsOrderAndRepeats) {
  for (const KnownList& known : kKnownLists) {
    SCOPED_TRACE(ToUtf8(known.type));
    EXPECT_EQ(GetDefaultFileMasksFromCFTName(known.type, u"<:>").size(), known.joinedLength);
    const std::vector<std::string> extensions = ExtensionsOf(known.type);
    ASSERT_EQ(extensions.size(), known.masks);
    EXPECT_EQ(extensions.front(), known.first);
    EXPECT_EQ(extensions.back(), known.last);

    std::map<std::string, int> counts;
    std::string fallsBack;
    for (std::size_t i = 0; i < extensions.size(); ++i) {
      counts[extensions[i]] += 1;
      if (i > 0 && extensions[i] < extensions[i - 1])
        fallsBack += extensions[i - 1] + ">" + extensions[i] + " ";
    }
    EXPECT_EQ(fallsBack, known.fallsBack);
    EXPECT_EQ(counts.size(), known.differentMasks);
    std::string oftenest;
    for (const auto& [extension, count] : counts)
      if (count >= 3) oftenest += extension + ":" + std::to_string(count) + " ";
    EXPECT_EQ(oftenest, known.oftenest);
  }
}

TEST(DefaultFileMasks, DifferOnlyInTheSeparatorWhichIsACommaWhereNoneIsGiven) {
  for (const KnownList& known : kKnownLists) {
    SCOPED_TRACE(ToUtf8(known.type));
    const Text list = GetDefaultFileMasksFromCFTName(known.type, u"<:>");
    const Text withCommas = ReplaceAll(list, u"<:>", u",");
    EXPECT_EQ(GetDefaultFileMasksFromCFTName(known.type, u","), withCommas);
    EXPECT_EQ(GetDefaultFileMasksFromCFTName(known.type), withCommas);
    if (known.routine == nullptr) continue;
    EXPECT_EQ(known.routine(u"<:>"), list);
    EXPECT_EQ(known.routine(u""), withCommas);
  }
}

TEST(DefaultFileMasks, AnUnknownNameHasNone) {
  for (const TextView name : {u"", u"image files", u"Document Files"})
    EXPECT_EQ(GetDefaultFileMasksFromCFTName(name, u"<:>"), u"");
}

TEST_F(FileTypesFixture, RestoringGivesEveryMemberItsOwnMasksWithAllRepeats) {
  ASSERT_TRUE(gCommonFileTypes->AddByName(u"Mine"));
  for (const auto& type : gCommonFileTypes->CommonFileTypes()) type->SetFileMasksList(u"*.mine");
  EXPECT_TRUE(RestoreDefaultFileTypeMasks());
  std::int32_t all = 0;
  for (const KnownList& known : kKnownLists) {
    const std::int32_t position = gCommonFileTypes->GetCommonFileTypeIndexBasedOnKey(known.type);
    EXPECT_EQ(Member(position).FileMasks().Count(), static_cast<std::int32_t>(known.masks));
    EXPECT_EQ(Member(position).FileMasksList(), GetDefaultFileMasksFromCFTName(known.type, u"<:>"));
    all += Member(position).FileMasks().Count();
  }
  EXPECT_EQ(all, 2837);
  EXPECT_EQ(Member(11).FileMasksList(), u"") << "a name without built-in masks is left with none";
  // An editor shows the five in a row; nothing may filter them.
  EXPECT_NE(Member(10).FileMasksList().find(u"*.cfg<:>*.cfg<:>*.cfg<:>*.cfg<:>*.cfg<:>*.cgr"),
            Text::npos);

  gCommonFileTypes.reset();
  EXPECT_FALSE(RestoreDefaultFileTypeMasks());
}

}  // namespace
}  // namespace quillmarsh
