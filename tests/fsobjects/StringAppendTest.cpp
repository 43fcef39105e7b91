// SPDX-License-Identifier: MIT
// The string builder: its told sizes, its edges, and its time in proportion to the text.
#include "FsObjectsFixture.h"
#include "fsobjects/clsStringAppend.h"

namespace quillmarsh {
namespace {

class StringAppend : public FsObjectsFixture {
 protected:
  clsStringAppend builder;
};

template <typename Action>
std::int32_t NumberRaisedBy(Action&& action) {
  try {
    action();
    return 0;
  } catch (const RuntimeError& error) {
    return error.Number();
  }
}

TEST_F(StringAppend, TellsItsCapacityInWholeChunks) {
  EXPECT_EQ(builder.ChunkSize(), 8192);
  EXPECT_EQ(builder.Capacity(), 0);
  EXPECT_EQ(builder.CurrentString(), u"");
  builder.Append(Text(8000, u'a'));
  EXPECT_EQ(builder.Capacity(), 8192);
  builder.Append(Text(192, u'b'));
  EXPECT_EQ(builder.Capacity(), 8192) << "exactly the remaining room does not grow it";
  builder.AppendByVal(Text(8193, u'c'));
  EXPECT_EQ(builder.Capacity(), 3 * 8192);
  EXPECT_EQ(builder.Length(), 8192 + 8193);
  EXPECT_EQ(builder.StringByteSize(), 2 * (8192 + 8193));
  builder.SetInitialString(u"new");
  EXPECT_EQ(builder.CurrentString(), u"new");
  builder.HeapMinimize();
  EXPECT_EQ(builder.Capacity(), 8192);
  builder.SetInitialString(u"");
  EXPECT_EQ(builder.Capacity(), 0);
}

TEST_F(StringAppend, ChunksOfNothingDoNotHang) {
  builder.SetChunkSize(0);
  builder.Append(u"abc");
  EXPECT_EQ(builder.CurrentString(), u"abc");
  builder.Reset();
  EXPECT_EQ(builder.ChunkSize(), 1) << "a reset keeps it";
}

TEST_F(StringAppend, InsertsAndRemovesWithinTheTextOnly) {
  builder.SetChunkSize(4);
  builder.Append(u"ad");
  builder.Insert(1, u"bc");
  builder.InsertByVal(4, Text(100, u'e'));
  EXPECT_EQ(builder.CurrentString(), u"abcd" + Text(100, u'e'));
  builder.Remove(4, 100);
  builder.Remove(4, 0);
  builder.Remove(0, 1);
  EXPECT_EQ(builder.CurrentString(), u"bcd");
  EXPECT_EQ(NumberRaisedBy([&] { builder.Insert(4, u"x"); }), 9);
  EXPECT_EQ(NumberRaisedBy([&] { builder.Insert(-1, u"x"); }), 9);
  EXPECT_EQ(NumberRaisedBy([&] { builder.Remove(3, 1); }), 9);
  EXPECT_EQ(NumberRaisedBy([&] { builder.Remove(1, 2147483647); }), 9);
}

TEST_F(StringAppend, FindsByPositionFrom1ButNotAtTheLastCharacter) {
  using enum clsStringAppend::Compare;
  builder.Append(u"one, Two, two");
  EXPECT_EQ(builder.Find(u"two", 1, Binary), 11);
  EXPECT_EQ(builder.Find(u"two", 1, IgnoreCase), 6);
  EXPECT_EQ(builder.Find(u"two", -3, IgnoreCase), 6);
  EXPECT_EQ(builder.Find(u"two", 7, IgnoreCase), 11);
  EXPECT_EQ(builder.Find(u"two", 12, IgnoreCase), 0);
  EXPECT_EQ(builder.Find(u"two", 99, IgnoreCase), 0);
  EXPECT_EQ(builder.Find(u"four", 1, Binary), 0);
  // Required as it is: the last "o" stands at 13 of 13.
  EXPECT_EQ(builder.Find(u"o", 12, Binary), 0);
}

TEST_F(StringAppend, AppendsAMillionPiecesInProportion) {
  for (int i = 0; i < 1'000'000; ++i) builder.Append(u"0123456789012345678901234567890123456789");
  EXPECT_EQ(builder.Length(), 40'000'000);
}

}  // namespace
}  // namespace quillmarsh
