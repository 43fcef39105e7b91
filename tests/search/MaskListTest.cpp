// SPDX-License-Identifier: MIT
// The compiled list against asking for one mask after another.
#include "search/MaskList.h"

#include <gtest/gtest.h>

#include <random>

#include "filetypes/ListText.h"
#include "platform/TextOperations.h"

namespace quillmarsh {
namespace {

Text RandomText(std::mt19937& random, TextView letters, std::size_t longest) {
  Text text;
  for (std::size_t length = random() % (longest + 1); text.size() < length;) {
    text += letters[random() % letters.size()];
  }
  return text;
}

TEST(MaskList, AnswersWhatAskingForOneMaskAfterAnotherWould) {
  std::mt19937 random(20261121);
  std::size_t hits = 0;
  for (int round = 0; round < 4000; ++round) {
    std::vector<Text> masks;
    for (std::size_t count = random() % 6; masks.size() < count;) {
      // Few letters, so that masks and names meet; every kind of mask comes up.
      Text mask = RandomText(random, round % 2 == 0 ? u"aAb.*?; \u00e9" : u"aA*.", 9);
      if (random() % 3 == 0) mask = u"*." + RandomText(random, u"aB", 3);
      masks.push_back(mask);
    }
    const MaskList list(masks);
    for (int i = 0; i < 25; ++i) {
      const Text name = RandomText(random, u"aAbB. \u00c9\u00e9", 7);
      bool expected = false;
      std::string text;
      for (const Text& mask : masks) {
        expected = expected || PathMatchSpecW(name, mask);
        text += "[" + ToUtf8(mask) + "]";
      }
      hits += expected ? 1 : 0;
      ASSERT_EQ(list.DoesFileMatchAnyMask(name), expected) << text << " on " << ToUtf8(name);
    }
  }
  EXPECT_GT(hits, 5000U);
}

TEST(MaskList, AListTextIsSplitAtItsSeparatorOrElseAtCommas) {
  using Pieces = std::vector<Text>;
  EXPECT_EQ(SplitListText(u""), Pieces());
  EXPECT_EQ(SplitListText(u"*.a,*.b"), (Pieces{u"*.a", u"*.b"}));
  EXPECT_EQ(SplitListText(u"x,y<:>*.b<:>"), (Pieces{u"x,y", u"*.b", u""}));
}

}  // namespace
}  // namespace quillmarsh
