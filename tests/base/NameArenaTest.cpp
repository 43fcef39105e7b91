// SPDX-License-Identifier: MIT
// Names in the arena across blocks and at its limits.
#include "base/NameArena.h"

#include <gtest/gtest.h>

#include <random>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

constexpr std::size_t BlockUnits = 1U << 18U;

Text NameOfLength(std::size_t length, std::size_t number) {
  Text name(length, static_cast<char16_t>(u'a' + number % 26));
  const Text digits = DecimalText(static_cast<std::int64_t>(number));
  return name.replace(0, std::min(length, digits.size()), digits.substr(0, length));
}

std::int32_t ErrorOfAdding(NameArena& arena, TextView name) {
  try {
    (void)arena.Add(name);
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return 0;
}

TEST(NameArenaTest, NamesStayReadableAcrossBlocks) {
  NameArena arena;
  std::mt19937 random(3);
  std::vector<std::pair<NameHandle, Text>> names;
  for (std::size_t i = 0; i < 200; ++i) {
    Text name = NameOfLength(i % 50 == 0 ? 65535 : random() % 9000, i);
    const NameHandle handle = arena.Add(name);
    names.emplace_back(handle, std::move(name));
  }
  for (const auto& [handle, name] : names) ASSERT_EQ(arena.Get(handle), name);
  EXPECT_EQ(arena.Add(u""), 0U);
  EXPECT_EQ(arena.Get(0), u"");
}

TEST(NameArenaTest, ANameThatMissesTheEndOfABlockByOneGoesToTheNext) {
  // A length unit and 65,535 units four times, less the unused place 0, leave 65,534 for a name.
  for (const std::size_t length : {std::size_t{65534}, std::size_t{65535}}) {
    NameArena arena;
    for (int i = 0; i < 3; ++i) (void)arena.Add(NameOfLength(65535, 1));
    const NameHandle handle = arena.Add(NameOfLength(length, 2));
    EXPECT_EQ(handle == BlockUnits, length == 65535);
    EXPECT_EQ(arena.Get(handle), NameOfLength(length, 2));
  }
}

TEST(NameArenaTest, AFullArenaRaisesAnErrorAndStaysAsItWas) {
  NameArena arena(100);
  const NameHandle first = arena.Add(NameOfLength(97, 1));  // places 1 to 98
  EXPECT_EQ(ErrorOfAdding(arena, u"x"), runtime_error::OutOfMemory);
  EXPECT_EQ(arena.Get(first), NameOfLength(97, 1));
  EXPECT_EQ(arena.Add(u""), 0U);
  EXPECT_EQ(ErrorOfAdding(arena, NameOfLength(65536, 1)), runtime_error::InvalidProcedureCall);
}

TEST(NameArenaTest, AHandleThatNeverWasReadsNothingOutside) {
  NameArena arena;
  for (int i = 0; i < 4; ++i) (void)arena.Add(Text(60000, char16_t{0xFFFF}));
  std::size_t length = 0;
  for (NameHandle handle = 1; handle < 3 * BlockUnits; handle += 97)
    for (const char16_t unit : arena.Get(handle)) length += unit;
  EXPECT_GT(length, 0U);
  EXPECT_EQ(arena.Get(0xFFFFFFFF), u"");
}

}  // namespace
}  // namespace quillmarsh
