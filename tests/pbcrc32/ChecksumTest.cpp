// SPDX-License-Identifier: MIT
// The checksum library over files that are not there, on one thread and on two.
#include <zlib.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <random>

#include "LendingProgram.h"
#include "pbcrc32/ProgressText.h"
#include "support/PlainCrc32.h"

namespace pbcrc32::test {
namespace {

using quillmarsh::PlainCrc32;
using quillmarsh::WithCrc32;
using std::chrono_literals::operator""s;

constexpr std::size_t Block = 128 * 1024;
constexpr std::size_t WorthTwo = std::size_t{4} << 20U;  // from here on two threads may read

std::string RandomBytes(std::size_t length) {
  static std::mt19937 random(7);
  std::string bytes(length, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

TEST(Checksum, IsTheStandardOneForEveryLengthInBothWays) {
  const std::string all = RandomBytes(WorthTwo + 3 * Block);
  std::vector<std::size_t> lengths = {
      0, 1, 7, Block - 1, Block, Block + 1, WorthTwo - 1, WorthTwo, WorthTwo + 1, all.size()};
  for (std::size_t odd = 4; odd < all.size(); odd = odd * 7 + 3) lengths.push_back(odd);
  for (const std::size_t length : lengths) {
    LendingProgram program;
    program.bytes = all.substr(all.size() - length);
    const Outcome expected{PlainCrc32(program.bytes), 0, ""};
    for (const bool onTwo : {false, true}) {
      program.mayReadOnTwoThreads = onTwo;
      EXPECT_EQ(program.Ask(), expected) << length << (onTwo ? " on two threads" : "");
      EXPECT_EQ(program.closes, 1);
      if (length < WorthTwo || !onTwo) {
        EXPECT_EQ(program.reads, static_cast<int>(length / Block) + 1);
        EXPECT_EQ(program.readers.size(), 1U);
      }
    }
  }
  LendingProgram program;
  program.bytes = "123456789";
  EXPECT_EQ(program.Ask("\xE9\x80 name").crc, 0xCBF43926U);
  EXPECT_EQ(program.openedPath, "\xE9\x80 name");
}

TEST(Checksum, ValuesThatLookLikeFailuresAreValues) {
  for (const std::uint32_t value : {0xFFFFFFFFU, 0xFFFFFFFEU, 0U}) {
    for (const std::string& beginning : {std::string(), RandomBytes(WorthTwo)}) {
      LendingProgram program;
      program.bytes = WithCrc32(beginning, value);
      program.mayReadOnTwoThreads = true;
      ASSERT_EQ(PlainCrc32(program.bytes), value);
      EXPECT_EQ(program.Ask(), (Outcome{value, 0, ""}));
    }
  }
}

// The library counts in `long`, which has 32 bits on some systems.
uLong CrcOfZeros(long count) {
  if (count == 0) return 0;
  if (count == 1) return PlainCrc32(std::string(1, '\0'));
  const uLong half = CrcOfZeros(count / 2);
  const uLong whole = crc32_combine(half, half, count / 2);
  return count % 2 == 0 ? whole : crc32_combine(whole, CrcOfZeros(1), 1);
}
uLong WithZerosBehind(uLong crc, std::int64_t count) {
  constexpr long piece = 1L << 30U;
  for (; count > piece; count -= piece) crc = crc32_combine(crc, CrcOfZeros(piece), piece);
  return crc32_combine(crc, CrcOfZeros(static_cast<long>(count)), static_cast<long>(count));
}

// Zeros, with a few other bytes where a position of 32 bits would lose its way.
TEST(Checksum, AFileBeyondFourGibibytesIsReadAtItsTruePlacesAndTellsItsProgress) {
  constexpr std::int64_t FourGiB = std::int64_t{1} << 32U;
  const std::string mark = "no zeros ";
  const std::vector<std::int64_t> places = {5, FourGiB - 4, FourGiB + 300'000};
  LendingProgram program;
  program.size = places.back() + static_cast<std::int64_t>(mark.size());
  program.filler = [&](std::int64_t position, std::span<char> out) {
    std::memset(out.data(), 0, out.size());
    for (const std::int64_t place : places) {
      for (std::size_t i = 0; i < mark.size(); ++i) {
        const std::int64_t at = place + static_cast<std::int64_t>(i) - position;
        if (at >= 0 && at < std::ssize(out)) out[static_cast<std::size_t>(at)] = mark[i];
      }
    }
  };
  uLong expected = 0;
  std::int64_t end = 0;
  for (const std::int64_t place : places) {
    expected = WithZerosBehind(expected, place - end);
    expected = crc32_combine(expected, PlainCrc32(mark), static_cast<long>(mark.size()));
    end = place + std::ssize(mark);
  }
  for (const bool onTwo : {false, true}) {
    program.mayReadOnTwoThreads = onTwo;
    program.progress.clear();
    EXPECT_EQ(program.Ask(), (Outcome{static_cast<std::uint32_t>(expected), 0, ""})) << onTwo;
    // A text comes every quarter of a second, so a fast machine gives few.
    int last = 0;
    for (const std::string& text : program.progress) {
      int share = -1;
      int read = 0;
      std::sscanf(text.c_str(), "%*f of 4.0 GB (%d %%), %*f %*[KMGT]B/s%n", &share, &read);
      ASSERT_EQ(read, std::ssize(text)) << text;
      EXPECT_GE(share, last) << text;
      last = share;
    }
    EXPECT_GE(program.pumps, onTwo ? 1 : FourGiB / static_cast<std::int64_t>(Block));
  }
}

TEST(Checksum, TwoThreadsReadAtTheSameTime) {
  LendingProgram program;
  program.bytes = RandomBytes(WorthTwo);
  program.mayReadOnTwoThreads = true;
  // The first read waits for a second one, which only another thread can begin.
  std::mutex mutex;
  std::condition_variable arrival;
  int arrived = 0;
  program.beforeRead = [&](std::int64_t, std::uint32_t&) {
    std::unique_lock lock(mutex);
    ++arrived;
    arrival.notify_all();
    EXPECT_TRUE(arrival.wait_for(lock, 30s, [&] { return arrived >= 2; }));
    return 0;
  };
  EXPECT_EQ(program.Ask(), (Outcome{PlainCrc32(program.bytes), 0, ""}));
  EXPECT_EQ(program.readers.size(), 2U);
}

TEST(Checksum, AFileThatCannotBeReadWholeFailsAndIsClosedOnce) {
  constexpr std::int32_t BadBlock = 23;
  const Outcome changed =
      Failed(PB_ERROR_FILE_CHANGED, "The file changed while it was being read.");
  const struct {
    const char* name;
    Outcome expected;
    std::int64_t toldTooMuch;  // bytes
    bool endsInTheMiddle, isBadInTheMiddle;
  } faults[] = {{"a bad block", Failed(BadBlock), 0, false, true},
                {"a read that ends before a bad block", Failed(BadBlock), 0, true, true},
                {"a read that ends early though there is more", changed, 0, true, false},
                {"shorter than when it was opened", changed, 1, false, false},
                {"longer than when it was opened", changed, -1, false, false}};
  for (const std::size_t length : {std::size_t{2}, Block, Block + 1, 3 * Block - 1, WorthTwo - 1,
                                   WorthTwo, WorthTwo + 1, 2 * WorthTwo + 3 * Block}) {
    for (const auto& fault : faults) {
      for (const bool onTwo : {false, true}) {
        SCOPED_TRACE(std::string(fault.name) + ", " + std::to_string(length) +
                     (onTwo ? ", on two threads" : ""));
        LendingProgram program;
        program.bytes.assign(length, 'x');
        program.size = static_cast<std::int64_t>(length) + fault.toldTooMuch;
        program.mayReadOnTwoThreads = onTwo;
        program.beforeRead = [&fault, middle = static_cast<std::int64_t>(length / 2) | 1](
                                 std::int64_t position, std::uint32_t& count) {
          const std::int64_t before = middle - position;
          if (fault.endsInTheMiddle && before > 0)
            count = static_cast<std::uint32_t>(std::min<std::int64_t>(count, before));
          return fault.isBadInTheMiddle && before < count ? BadBlock : 0;
        };
        EXPECT_EQ(program.Ask(), fault.expected);
        EXPECT_EQ(program.closes, 1);
      }
    }
  }
  LendingProgram program;
  program.openCode = 5;
  EXPECT_EQ(program.Ask(), Failed(5));
  EXPECT_EQ(program.reads + program.closes, 0);
}

// No disk is that large, but a file without blocks may say that it is.
TEST(Checksum, TheLargestSizeThereIsIsReadInWholeBlocks) {
  LendingProgram program;
  program.size = INT64_MAX;
  program.beforeRead = [](std::int64_t, std::uint32_t&) { return 23; };
  EXPECT_EQ(program.Ask(), Failed(23));
  EXPECT_EQ(program.longestRead, Block);
}

TEST(Checksum, AStopEndsItWithinTheBlock) {
  LendingProgram program;
  program.bytes = RandomBytes(2 * Block + 5);
  int asked = 0;
  int limit = 0;
  program.onPump = [&] { return ++asked < limit; };
  for (limit = 1; limit <= 3; ++limit) {
    asked = 0;
    EXPECT_EQ(program.Ask(), Failed(PB_ERROR_GIVEN_UP));
    EXPECT_EQ(program.reads, limit);
    EXPECT_EQ(program.closes, 1);
  }
  asked = 0;
  EXPECT_EQ(program.Ask(), (Outcome{PlainCrc32(program.bytes), 0, ""}));
}

// A read of the other thread that has begun is waited for; behind it none begins any more.
TEST(Checksum, AStopEndsBothThreads) {
  LendingProgram program;
  program.bytes.assign(4 * WorthTwo, 'x');
  program.mayReadOnTwoThreads = true;
  std::mutex mutex;
  std::condition_variable change;
  int refusals = 0;
  int readsOfTheOther = 0;
  int readsBehind = 0;
  int limit = 0;
  const std::thread::id asker = std::this_thread::get_id();
  program.onPump = [&] {
    const std::lock_guard lock(mutex);
    if (program.pumps < limit) return true;
    ++refusals;
    change.notify_all();
    return false;
  };
  // The other thread may not run through the file before the stop, and is held from the stop on
  // until the library has taken it in, which shows when it pumps again.
  program.beforeRead = [&](std::int64_t, std::uint32_t&) {
    std::unique_lock lock(mutex);
    if (refusals >= 2) ++readsBehind;
    if (std::this_thread::get_id() == asker) return 0;
    ++readsOfTheOther;
    change.wait_for(lock, 30s,
                    [&] { return refusals >= 2 || (refusals == 0 && readsOfTheOther <= 5); });
    return 0;
  };
  for (limit = 1; limit < 20; limit += 6) {
    refusals = readsOfTheOther = readsBehind = 0;
    EXPECT_EQ(program.Ask(), Failed(PB_ERROR_GIVEN_UP));
    EXPECT_LE(readsBehind, 1) << "one may have been on its way";
    EXPECT_EQ(program.closes, 1);
  }
}

TEST(Checksum, CallbacksOfAnotherShapeAreRefused) {
  LendingProgram program;
  const PB_Callbacks good = program.Lent();
  std::vector<PB_Callbacks> bad(7, good);
  bad[0].structSize -= 8;
  bad[1].structSize += 8;
  bad[2].Open = nullptr;
  bad[3].Read = nullptr;
  bad[4].Close = nullptr;
  bad[5].ShowProgress = nullptr;
  bad[6].PumpAndKeepGoing = nullptr;
  EXPECT_EQ(PB_SetCallbacks(nullptr), 1);
  for (const PB_Callbacks& lent : bad) {
    EXPECT_EQ(PB_SetCallbacks(&lent), 0);
    EXPECT_EQ(program.Ask(), Failed(PB_ERROR_NO_CALLBACKS));
  }
  EXPECT_EQ(PB_SetCallbacks(&good), 1);
  EXPECT_EQ(program.Ask(), (Outcome{0, 0, ""}));
}

TEST(Checksum, AnErrorTextIsCutToTheRoomThatIsGiven) {
  LendingProgram program;
  program.size = 1;
  EXPECT_EQ(program.Ask("", 8).text, "The file");
  EXPECT_EQ(program.Ask("", 0).text, "");
}

TEST(Progress, IsReadAsAmountShareAndRate) {
  constexpr std::int64_t MiB = 1 << 20;
  const struct {
    std::int64_t done, total;
    double seconds;
    const char* text;
  } rows[] = {{0, 0, 0, "0 of 0 bytes"},
              {0, 60 * MiB, 0.5, "0.0 of 60.0 MB (0 %)"},
              {999, 999, 1, "999 of 999 bytes (100 %), 999 bytes/s"},
              {30 * MiB, 120 * MiB, 0.5, "30.0 of 120 MB (25 %), 60.0 MB/s"},
              {1229 * MiB, 4096 * MiB, 2.4, "1.2 of 4.0 GB (30 %), 512 MB/s"},
              {4096 * MiB - 1, 4096 * MiB, 1, "4.0 of 4.0 GB (99 %), 4.0 GB/s"},
              // A file that grows: never more than all of it.
              {2 * MiB, MiB, 1, "2.0 of 2.0 MB (100 %), 2.0 MB/s"}};
  for (const auto& row : rows) EXPECT_EQ(ProgressText(row.done, row.total, row.seconds), row.text);
}

}  // namespace
}  // namespace pbcrc32::test
