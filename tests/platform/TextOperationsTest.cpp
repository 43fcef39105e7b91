// SPDX-License-Identifier: MIT
// The portable routines of the platform: masks, roots, byte sizes, the hash, times, error texts.
#include "platform/TextOperations.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

#include "platform/Machine.h"

namespace quillmarsh {
namespace {

TEST(PathMatchSpecTest, TheWholeTextIsHeldAgainstEachMask) {
  struct Case {
    TextView text;
    TextView masks;
    bool matches;
  };
  constexpr Case Cases[] = {
      {u"c:\\foo\\bar\\filename.ext", u"*.e?t", true},
      {u"c:\\foo\\bar\\filename.ext", u"*bar*", true},
      {u"c:\\foo\\bar\\filename.ext", u"filename.ext", false},
      {u"c:\\foo\\bar\\filename.ext", u".ext", false},
      {u"c:\\foo\\bar\\filename.ext", u" foo; *.ext", true},
      {u"c:\\foo\\bar\\filename.ext", u"*.ext ", false},
      {u"name.ext ", u"*.ext ", true},
      {u"a.TXT", u"A.t?t", true},
      {u"\u00c9t\u00e9", u"\u00e9T\u00c9", true},
      {u"name", u"*.*", true},
      {u"name", u"*.txt;*.*", false},  // only alone it stands for every name
      {u"", u"*.*", true},
      {u"", u"*", true},
      {u"", u"", false},
      {u"a", u"", false},
      {u"a", u";;", false},
      {u"a", u";a", true},
      {u"a", u"  ;  ", false},
      {u"ab", u"?", false},
      {u"ab", u"??*", true},
      {u"ab", u"???", false},
      {u"a*b", u"a?b", true},
      {u"mississippi", u"m*si*pi", true},
      {u"mississippi", u"m*si*sip", false},
      {u"aab", u"*ab", true},
      {u"[a]", u"[a]", true},
  };
  for (const Case& row : Cases)
    EXPECT_EQ(PathMatchSpecW(row.text, row.masks), row.matches)
        << ToUtf8(row.text) << " against " << ToUtf8(row.masks);
}

// The plainest definition of a mask, exponential in time.
bool MatchesByDefinition(TextView text, TextView mask) {
  if (mask.empty()) return text.empty();
  if (mask[0] == u'*')
    return MatchesByDefinition(text, mask.substr(1)) ||
           (!text.empty() && MatchesByDefinition(text.substr(1), mask));
  return !text.empty() && (mask[0] == u'?' || mask[0] == text[0]) &&
         MatchesByDefinition(text.substr(1), mask.substr(1));
}

TEST(PathMatchSpecTest, MatchingAgreesWithTheDefinition) {
  std::mt19937 random(1);
  for (int round = 0; round < 50000; ++round) {
    Text text;
    Text mask;
    for (std::size_t i = random() % 7; i > 0; --i) text += u"AB"[random() % 2];
    for (std::size_t i = 1 + random() % 6; i > 0; --i) mask += u"AB*?"[random() % 4];
    ASSERT_EQ(PathMatchSpecW(text, mask), MatchesByDefinition(text, mask))
        << ToUtf8(text) << " against " << ToUtf8(mask);
  }
}

TEST(PathMatchSpecTest, AMaskOfManyStarsEndsSoon) {
  Text mask;
  for (int i = 0; i < 200; ++i) mask += u"*a";
  EXPECT_FALSE(PathMatchSpecW(Text(5000, u'a') + u"b", mask + u"c"));
}

TEST(PathStripToRootTest, EachKindOfPathHasItsRoot) {
  struct Case {
    TextView path;
    TextView root;
  };
  constexpr Case Cases[] = {
      {u"Q:\\t1\\t2", u"Q:\\"},
      {u"q:\\", u"q:\\"},
      {u"Q:", u"Q:"},
      {u"Q:/a/b", u"Q:"},
      {u"Q:a\\b", u"Q:"},
      {u"1:\\a", u""},
      {u"\\a", u"\\"},
      {u"\\\\a\\b\\c", u"\\\\a\\b"},
      {u"\\\\a\\b\\", u"\\\\a\\b"},
      {u"\\\\a\\b", u"\\\\a\\b"},
      {u"\\\\a", u"\\\\a"},
      {u"\\\\a\\", u"\\\\a"},
      {u"\\\\a\\\\b", u"\\\\a"},
      {u"\\\\", u"\\\\"},
      {u"\\\\?\\Q:\\a", u"\\\\?\\Q:\\"},
      {u"\\\\?\\Q:", u"\\\\?\\Q:"},
      {u"\\\\?\\UNC\\a\\b\\c", u"\\\\?\\UNC\\a\\b"},
      {u"\\\\?\\unc\\a", u"\\\\?\\unc\\a"},
      {u"\\\\?\\Volume{1-2}\\a", u"\\\\?\\Volume{1-2}\\"},
      {u"\\\\?\\", u""},
      {u"\\\\?\\a", u""},
      {u"test", u""},
      {u"/a", u""},
      {u"", u""},
  };
  for (const Case& row : Cases) EXPECT_EQ(PathStripToRootW(row.path), row.root) << ToUtf8(row.path);
}

TEST(StrFormatByteSizeTest, ThreeDigitsAreCutAndNotRounded) {
  struct Case {
    std::int64_t bytes;
    TextView text;
  };
  constexpr Case Cases[] = {
      {0, u"0 bytes"},
      {532, u"532 bytes"},
      {1023, u"1023 bytes"},
      {-1023, u"-1023 bytes"},
      {-1, u"-1 bytes"},
      {1024, u"1.00 KB"},
      {1340, u"1.30 KB"},
      {10239, u"9.99 KB"},
      {10240, u"10.0 KB"},
      {23506, u"22.9 KB"},
      {102400, u"100 KB"},
      {1022286, u"998 KB"},
      {1023999, u"999 KB"},
      {1024000, u"0.97 MB"},
      {1046862, u"0.99 MB"},
      {2400016, u"2.28 MB"},
      {1048574619, u"999 MB"},
      {1073741775, u"0.99 GB"},
      {2400000000, u"2.23 GB"},
      {1LL << 40, u"1.00 TB"},
      {1LL << 50, u"1.00 PB"},
      {1000LL << 50, u"0.97 EB"},
      {std::numeric_limits<std::int64_t>::max(), u"7.99 EB"},
      {std::numeric_limits<std::int64_t>::min(), u"-9223372036854775808 bytes"},
  };
  for (const Case& row : Cases) EXPECT_EQ(StrFormatByteSizeW(row.bytes), row.text);
  EXPECT_EQ(StrFormatByteSizeW(1340, u","), u"1,30 KB");
}

std::int32_t HashOf(std::string_view text) {
  return HashData(std::as_bytes(std::span(text.data(), text.size())));
}

TEST(HashDataTest, TheHashIsTheSameOnEveryMachineAndNeverAMark) {
  EXPECT_EQ(static_cast<std::uint32_t>(HashOf("")), 0x02CC5D05U);
  EXPECT_EQ(static_cast<std::uint32_t>(HashOf("a")), 0x550D7456U);
  EXPECT_EQ(HashOf("thtSraa"), 1);
  EXPECT_EQ(HashOf("KpaN_ba"), 2);
}

TEST(MapGenericMaskTest, GenericRightsGiveWayToTheirMapping) {
  const GENERIC_MAPPING mapping{FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE,
                                FILE_ALL_ACCESS};
  EXPECT_EQ(MapGenericMask(GENERIC_READ, mapping), FILE_GENERIC_READ);
  EXPECT_EQ(MapGenericMask(GENERIC_WRITE | 0x20000000U | 1U, mapping),
            FILE_GENERIC_WRITE | FILE_GENERIC_EXECUTE | 1U);
  EXPECT_EQ(MapGenericMask(0x10000000U, mapping), FILE_ALL_ACCESS);
  EXPECT_EQ(MapGenericMask(0x1F0000U, mapping), 0x1F0000U);
}

TEST(SystemTimeTest, FileTimesComeBackToTheMillisecond) {
  std::mt19937_64 random(2);
  std::uniform_int_distribution<std::int64_t> anyTicks(0, 9214646399LL * 100000000);
  for (int round = 0; round < 20000; ++round) {
    const std::int64_t ticks = anyTicks(random);
    SYSTEMTIME system;
    FILETIME file;
    ASSERT_TRUE(FileTimeToSystemTime(FILETIME::FromTicks(ticks), system)) << ticks;
    ASSERT_TRUE(SystemTimeToFileTime(system, file)) << ticks;
    ASSERT_EQ(file.Ticks(), ticks - ticks % 10000);
  }
  SYSTEMTIME system;
  ASSERT_TRUE(FileTimeToSystemTime(FILETIME::FromTicks(125911584000000000), system));
  EXPECT_EQ(system.wYear, 2000);
  EXPECT_EQ(system.wMonth, 1);
  EXPECT_EQ(system.wDay, 1);
  EXPECT_EQ(system.wDayOfWeek, 6);
  EXPECT_EQ(system.wHour, 0);
}

TEST(SystemTimeTest, ATimeOfNoCalendarIsRefused) {
  struct Case {
    const char* name;
    SYSTEMTIME system;
    bool taken;
  };
  // Year, month, day of week (never looked at), day, hour, minute, second, milliseconds.
  constexpr Case Cases[] = {
      {"first", {1601, 1, 9, 1, 0, 0, 0, 0}, true},
      {"last", {30827, 12, 0, 31, 23, 59, 59, 999}, true},
      {"year before", {1600, 12, 0, 31, 0, 0, 0, 0}, false},
      {"year behind", {30828, 1, 0, 1, 0, 0, 0, 0}, false},
      {"month 0", {2000, 0, 0, 1, 0, 0, 0, 0}, false},
      {"month that fits in 8 bits only cut", {2000, 257, 0, 1, 0, 0, 0, 0}, false},
      {"no leap day", {2100, 2, 0, 29, 0, 0, 0, 0}, false},
      {"day that fits in 8 bits only cut", {2000, 1, 0, 257, 0, 0, 0, 0}, false},
      {"hour 24", {2000, 1, 0, 1, 24, 0, 0, 0}, false},
      {"millisecond 1000", {2000, 1, 0, 1, 0, 0, 0, 1000}, false},
  };
  for (const Case& row : Cases) {
    FILETIME file;
    EXPECT_EQ(SystemTimeToFileTime(row.system, file), row.taken) << row.name;
  }
  SYSTEMTIME system;
  EXPECT_TRUE(FileTimeToSystemTime(FILETIME::FromTicks(INT64_MAX), system));
  EXPECT_FALSE(FileTimeToSystemTime(FILETIME::FromTicks(-1), system));
}

TEST(SystemErrorTextTest, EveryCodeThatAMachineGivesHasItsText) {
  constexpr std::uint32_t Codes[] = {ERROR_SUCCESS,
                                     ERROR_INVALID_FUNCTION,
                                     ERROR_FILE_NOT_FOUND,
                                     ERROR_PATH_NOT_FOUND,
                                     ERROR_TOO_MANY_OPEN_FILES,
                                     ERROR_ACCESS_DENIED,
                                     ERROR_INVALID_HANDLE,
                                     ERROR_NOT_ENOUGH_MEMORY,
                                     ERROR_INVALID_DATA,
                                     ERROR_INVALID_DRIVE,
                                     ERROR_NOT_SAME_DEVICE,
                                     ERROR_NO_MORE_FILES,
                                     ERROR_WRITE_PROTECT,
                                     ERROR_NOT_READY,
                                     ERROR_SEEK,
                                     ERROR_SHARING_VIOLATION,
                                     ERROR_HANDLE_EOF,
                                     ERROR_NOT_SUPPORTED,
                                     ERROR_BAD_NETPATH,
                                     ERROR_FILE_EXISTS,
                                     ERROR_INVALID_PARAMETER,
                                     ERROR_DISK_FULL,
                                     ERROR_INSUFFICIENT_BUFFER,
                                     ERROR_INVALID_NAME,
                                     ERROR_MOD_NOT_FOUND,
                                     ERROR_DIR_NOT_EMPTY,
                                     ERROR_BAD_PATHNAME,
                                     ERROR_ALREADY_EXISTS,
                                     ERROR_BAD_EXE_FORMAT,
                                     ERROR_FILENAME_EXCED_RANGE,
                                     ERROR_DIRECTORY,
                                     ERROR_OPERATION_ABORTED,
                                     ERROR_IO_DEVICE,
                                     ERROR_RESOURCE_DATA_NOT_FOUND,
                                     ERROR_RESOURCE_TYPE_NOT_FOUND,
                                     ERROR_NOT_A_REPARSE_POINT};
  for (const std::uint32_t code : Codes)
    EXPECT_TRUE(EnglishSystemErrorText(code).ends_with(u"\r\n")) << code;
  EXPECT_EQ(EnglishSystemErrorText(5), u"Access is denied.\r\n");
  EXPECT_EQ(EnglishSystemErrorText(34567), u"");
  EXPECT_EQ(EnglishSystemErrorText(0xFFFFFFFF), u"");
}

TEST(CallHookTest, NamesStandInTheOrderOfTheOperations) {
  EXPECT_STREQ(NameOf(Operation::FindFirstFileW), "FindFirstFileW");
  EXPECT_STREQ(NameOf(Operation::GetLogicalDriveStringsW), "GetLogicalDriveStringsW");
  EXPECT_STREQ(NameOf(Operation::MoveFileExW), "MoveFileExW");
  EXPECT_STREQ(NameOf(Operation::GetQueueStatus), "GetQueueStatus");
}

}  // namespace
}  // namespace quillmarsh
