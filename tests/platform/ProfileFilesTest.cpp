// SPDX-License-Identifier: MIT
// The profile calls on a simulated machine: what is read, the bytes of each change, and that a file
// is whole whatever fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>

#include "platform/AtomicFiles.h"
#include "platform/ProfileFiles.h"
#include "support/MachineFixture.h"

namespace quillmarsh {

namespace {

constexpr TextView file = u"C:\\d\\f.ini";

std::string Wide(TextView text) {
  return FileContents::Utf16(text).StoredBytes();
}

class ProfileFilesTest : public testing::Test, protected MachineFixture {
 protected:
  ProfileFilesTest() { machine.AddFolder(u"C:\\d"); }
  void TearDown() override {
    EXPECT_EQ(machine.OpenHandles(), openHandles);
    EXPECT_EQ(hook.OrdersNotMet(), 0U);
  }

  std::size_t openHandles = 0;  // expected at the end

  void SetFile(const std::string& bytes) {
    if (machine.Exists(file))
      machine.SetContents(file, bytes);
    else
      machine.AddFile(file, bytes);
  }
  std::string Bytes() { return machine.Exists(file) ? machine.ContentsOf(file) : "(none)"; }
  // Files in the folder besides the profile.
  std::size_t Litter() { return machine.TreeOf(u"C:\\d").size() - (machine.Exists(file) ? 1 : 0); }
  Text Get(TextView section, TextView key, TextView otherwise = u"(none)",
           std::size_t size = 16384) {
    Text buffer(size, u'?');
    const std::uint32_t count =
        GetPrivateProfileStringW(machine, section, key, otherwise, buffer, file);
    EXPECT_EQ(buffer[count], u'\0');
    return buffer.substr(0, count);
  }
  bool Set(TextView section, std::optional<TextView> key, std::optional<TextView> value) {
    return WritePrivateProfileStringW(machine, section, key, value, file);
  }
};

TEST_F(ProfileFilesTest, FindsValuesAsTheyStand) {
  SetFile(
      "early=0\r\n"
      "; [S]\r\n"
      "[Other]\r\nkey=other\r\n"
      " [ S ] \r\n"
      ";key=commented\r\n"
      "# key=no comment\r\n"
      "key = \t first \v \r\n"
      "KEY=second\r\n"
      "no sign\n"
      "semi=;not a comment ; nor this\r"
      "quoted= \"  in quotes \" \n"
      "single='it''s'\r\n"
      "half=\"open\r\n"
      "mixed=\"a'\r\n"
      "one=\"\r\n"
      "empty=\r\n"
      "sign=a=b\r\n"
      "[open\r\nbehind=1\r\n"
      "\xFC=\xE4\xDF\x80\r\n"
      "nul=a" +
      std::string(1, '\0') +
      "b\r\n"
      "[a]b]\r\nkey=bracket\r\n"
      "[S]\r\nkey=third\r\nlate=1");
  struct Row {
    TextView section, key, value;
  };
  const Row table[] = {
      {u"S", u"key", u"first"},
      {u" s\t", u" Key ", u"first"},
      {u"other", u"key", u"other"},
      {u"S", u"early", u"(none)"},
      {u"", u"early", u"(none)"},
      {u"S", u"# key", u"no comment"},
      {u"S", u"no sign", u"(none)"},
      {u"S", u"semi", u";not a comment ; nor this"},
      {u"S", u"quoted", u"  in quotes "},
      {u"S", u"single", u"it''s"},
      {u"S", u"half", u"\"open"},
      {u"S", u"mixed", u"\"a'"},
      {u"S", u"one", u"\""},
      {u"S", u"empty", u""},
      {u"S", u"sign", u"a=b"},
      {u"S", u"behind", u"1"},
      {u"s", u"\u00DC", u"\u00E4\u00DF\u20AC"},
      {u"S", u"nul", TextView(u"a\0b", 3)},
      {u"a]b", u"key", u"bracket"},
      {u"S", u"late", u"(none)"},
      {u"none", u"key", u"(none)"},
  };
  for (const Row& row : table)
    EXPECT_EQ(ToUtf8(Get(row.section, row.key)), ToUtf8(row.value))
        << ToUtf8(row.section) << " " << ToUtf8(row.key);
}

TEST_F(ProfileFilesTest, CutsWhatTheBufferCannotHoldAndTrimsTheDefault) {
  SetFile("[S]\r\nkey=" + std::string(20000, 'x') + "\r\n");
  EXPECT_EQ(Get(u"S", u"key", u"", 16384).size(), 16383U);
  EXPECT_EQ(Get(u"S", u"key", u"", 1), u"");
  EXPECT_EQ(GetPrivateProfileStringW(machine, u"S", u"key", u"d", {}, file), 0U);
  EXPECT_EQ(Get(u"S", u"none", u"  a b \t  "), u"  a b \t");
  EXPECT_EQ(Get(u"S", u"none", u"abc", 3), u"ab");
}

TEST_F(ProfileFilesTest, AnUnreadableFileReadsAsDefaultsAndABareNameLiesInTheSystemsFolder) {
  EXPECT_EQ(Get(u"S", u"key", u"d"), u"d");
  EXPECT_EQ(machine.GetLastError(), ERROR_FILE_NOT_FOUND);
  SetFile("[S]\r\nkey=v\r\n");
  hook.Fail({Operation::ReadFile}, ERROR_IO_DEVICE);
  EXPECT_EQ(Get(u"S", u"key", u"d"), u"d");
  machine.AddFile(u"C:\\Windows\\bare.ini", "[S]\r\nkey=7\r\n");
  EXPECT_EQ(GetPrivateProfileIntW(machine, u"S", u"key", 1, u"bare.ini"), 7);
  EXPECT_EQ(GetPrivateProfileIntW(machine, u"S", u"key", 1, u""), 1);
}

TEST_F(ProfileFilesTest, NumbersAreWhatAValueBeginsWith) {
  struct Row {
    const char* value;
    std::int32_t number;
  };
  const Row table[] = {{"12", 12},         {"-12", -12},  {"+7", 7},      {"12abc", 12},
                       {"abc", 0},         {"", 99},      {"\"\"", 99},   {"0x1fG", 31},
                       {"4294967295", -1}, {"'5'", 5},    {"1.9", 1},     {" 3 ", 3},
                       {"0X1f", 0},        {"0b1012", 5}, {"-0o178", -15}};
  for (const Row& row : table) {
    SetFile("[S]\r\nkey=" + std::string(row.value) + "\r\n");
    EXPECT_EQ(GetPrivateProfileIntW(machine, u"s", u"key", 99, file), row.number) << row.value;
  }
  EXPECT_EQ(GetPrivateProfileIntW(machine, u"S", u"none", 99, file), 99);
}

struct ChangeRow {
  const char* name;
  std::string before;
  TextView section;
  std::optional<TextView> key, value;
  std::string after;
};

TEST_F(ProfileFilesTest, AChangeLeavesEverythingElseByteForByte) {
  const std::optional<TextView> none;
  const std::string noise = "x\r\n;c\n\n[A]\rk=1\nK = 2 \r\n; tail\r\n\r\n[B]\r\nk=b";
  const ChangeRow table[] = {
      {"missing file", "(none)", u"S", u"k", u"v", "[S]\r\nk=v\r\n"},
      {"empty file", "", u"S", u"k", u"v", "[S]\r\nk=v\r\n"},
      {"changed key", noise, u"a", u"K", u"new",
       "x\r\n;c\n\n[A]\rk=new\r\nK = 2 \r\n; tail\r\n\r\n[B]\r\nk=b"},
      {"spelling stays", "[S]\n  KeY  = old ;x\nz=1\n", u"s", u"key", u"v", "[S]\nKeY=v\r\nz=1\n"},
      {"same value", "[S]\n  KeY  =\tv  \nz=1\n", u"s", u"key", u"v", "[S]\n  KeY  =\tv  \nz=1\n"},
      {"new key behind the last one", noise, u"A", u"n", u"v",
       "x\r\n;c\n\n[A]\rk=1\nK = 2 \r\nn=v\r\n; tail\r\n\r\n[B]\r\nk=b"},
      {"new key at the very end", noise, u"B", u"n", u"v",
       "x\r\n;c\n\n[A]\rk=1\nK = 2 \r\n; tail\r\n\r\n[B]\r\nk=b\r\nn=v\r\n"},
      {"in a section without keys", "[S]\r\n;c\r\n[T]\r\n", u"S", u"k", u"v",
       "[S]\r\nk=v\r\n;c\r\n[T]\r\n"},
      {"behind a heading without end", "[S]", u"S", u"k", u"v", "[S]\r\nk=v\r\n"},
      {"new section", noise, u"C d", u"k", u"v",
       "x\r\n;c\n\n[A]\rk=1\nK = 2 \r\n; tail\r\n\r\n[B]\r\nk=b\r\n[C d]\r\nk=v\r\n"},
      {"key before any section", "k=0\r\n[S]\r\nk=1\r\n", u"S", u"k", u"v",
       "k=0\r\n[S]\r\nk=v\r\n"},
      {"unclosed heading is a line", "[S]\r\n[T\r\nk=1\r\n", u"S", u"k", u"v",
       "[S]\r\n[T\r\nk=v\r\n"},
      {"second equal section", "[S]\r\na=1\r\n[s]\r\nk=1\r\n", u"S", u"k", u"v",
       "[S]\r\na=1\r\nk=v\r\n[s]\r\nk=1\r\n"},
      {"empty value", "[S]\r\nk=1\r\n", u"S", u"k", u"", "[S]\r\nk=\r\n"},
      {"quotes are kept", "[S]\r\nk=v\r\n", u"S", u"k", u"\"v\"", "[S]\r\nk=\"v\"\r\n"},
      {"a line break ends the value", "", u"S", u"k", u"v\r\n[T]\r\nx=1", "[S]\r\nk=v\r\n"},
      {"beyond the code page", "", u"\u0416", u"k", u"\u20AC\u0416", "[?]\r\nk=\x80?\r\n"},
      {"again beyond it", "[?]\r\nk=\x80?\r\n", u"\u0416", u"K", u"\u20AC\u0416",
       "[?]\r\nk=\x80?\r\n"},
      {"key deleted", noise, u"A", u"k", none, "x\r\n;c\n\n[A]\r; tail\r\n\r\n[B]\r\nk=b"},
      {"last key deleted", "[S]\r\nk=1", u"S", u"k", none, "[S]\r\n"},
      {"nothing to delete", noise, u"A", u"none", none, noise},
      {"no section to delete in", noise, u"none", u"k", none, noise},
      {"section deleted", noise, u"a", none, none, "x\r\n;c\n\n; tail\r\n[B]\r\nk=b"},
      {"last section deleted", noise, u"B", none, u"ignored",
       "x\r\n;c\n\n[A]\rk=1\nK = 2 \r\n; tail\r\n\r\n"},
      {"no section to delete", noise, u"none", none, none, noise},
      {"nothing deleted in no file", "(none)", u"S", u"k", none, "(none)"},
      {"UTF-8 mark spoils line 1", "\xEF\xBB\xBF[S]\r\nk=1\r\n", u"S", u"k", u"v",
       "\xEF\xBB\xBF[S]\r\nk=1\r\n[S]\r\nk=v\r\n"},
      {"UTF-16", Wide(u"[S]\nk=\u0416\n"), u"s", u"K", u"\u0418", Wide(u"[S]\nk=\u0418\r\n")},
      {"only the mark", "\xFF\xFE", u"S", u"k", u"\u0416", Wide(u"[S]\r\nk=\u0416\r\n")},
      {"half a unit", Wide(u"[S]\r\nk=1") + "z", u"S", u"n", u"2",
       Wide(u"[S]\r\nk=1\r\nn=2\r\n") + "z"},
      {"surrogates", Wide(u"[S]\r\n\xD800=1\r\n"), u"S", u"k", u"\xDC00",
       Wide(u"[S]\r\n\xD800=1\r\nk=\xDC00\r\n")},
      {"big-endian is not known", std::string("\xFE\xFF\0[", 4), u"S", u"k", u"v",
       std::string("\xFE\xFF\0[", 4) + "\r\n[S]\r\nk=v\r\n"},
  };
  for (const ChangeRow& row : table) {
    SCOPED_TRACE(row.name);
    if (machine.Exists(file)) machine.Remove(file);
    if (row.before != "(none)") SetFile(row.before);
    hook.ClearJournal();
    EXPECT_TRUE(Set(row.section, row.key, row.value));
    EXPECT_EQ(Bytes(), row.after);
    EXPECT_EQ(Litter(), 0U);
    EXPECT_EQ(hook.CountOf(Operation::WriteFile) == 0, row.before == row.after);
  }
}

TEST_F(ProfileFilesTest, AWholeSectionIsReplacedAndItsCommentsStay) {
  const TextView entries(u"a=1\0Bad\r\nline=2\0c=\0\0d=4\0", 25);
  const std::string written = "a=1\r\nBad\r\nc=\r\n";
  struct Row {
    const char* name;
    std::string before, after;
  };
  const Row table[] = {
      {"missing", "(none)", "[S]\r\n" + written},
      {"replaced", "[s]\nx=1\n;c\n\ny\n[T]\nz=1", "[s]\n" + written + ";c\n\n[T]\nz=1"},
      {"at the end", "[T]\r\nz=1", "[T]\r\nz=1\r\n[S]\r\n" + written},
      {"behind a heading without end", "[S]", "[S]\r\n" + written},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.name);
    if (machine.Exists(file)) machine.Remove(file);
    if (row.before != "(none)") SetFile(row.before);
    EXPECT_TRUE(WritePrivateProfileSectionW(machine, u"S", entries, file));
    EXPECT_EQ(Bytes(), row.after);
  }
  EXPECT_TRUE(WritePrivateProfileSectionW(machine, u"S", u"", file));
  EXPECT_EQ(Bytes(), "[S]\r\n") << "emptied, the heading stays";
}

TEST_F(ProfileFilesTest, WhatCannotBeWrittenKeepsItsCodeAndItsBytes) {
  SetFile("[S]\r\nk=1\r\n");
  const auto code = [&](TextView path) {
    return WritePrivateProfileStringW(machine, u"S", u"k", u"2", path) ? 0 : machine.GetLastError();
  };
  EXPECT_EQ(code(u"C:\\none\\f.ini"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(code(u""), ERROR_ACCESS_DENIED);
  machine.SetAttributes(file, FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(code(file), ERROR_ACCESS_DENIED);
  machine.SetAttributes(file, FILE_ATTRIBUTE_ARCHIVE);
  const HANDLE held = machine.HoldOpen(file, FILE_SHARE_READ);
  EXPECT_EQ(code(file), ERROR_SHARING_VIOLATION);
  machine.LetGo(held);
  machine.SetFreeBytes(u"C:\\", 5);
  EXPECT_EQ(code(file), ERROR_DISK_FULL);
  machine.SetFreeBytes(u"C:\\", 500);
  machine.SetReadOnlyMedium(u"C:\\", true);
  EXPECT_EQ(code(file), ERROR_WRITE_PROTECT);
  machine.SetReadOnlyMedium(u"C:\\", false);
  machine.DenyAccess(file, 0x2, false);
  EXPECT_EQ(code(file), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Bytes(), "[S]\r\nk=1\r\n");
  EXPECT_EQ(Litter(), 0U);
}

TEST_F(ProfileFilesTest, WhateverFailsTheFileIsWholeAndNothingLiesBesideIt) {
  const std::string before = "[S]\r\nk=1\r\n" + std::string(600'000, 'x');
  constexpr Operation operations[] = {Operation::CreateFileW, Operation::ReadFile,
                                      Operation::WriteFile,   Operation::FlushFileBuffers,
                                      Operation::CloseHandle, Operation::MoveFileExW};
  for (const Operation operation : operations) {
    for (std::size_t nth = 1;; ++nth) {
      SCOPED_TRACE(std::string(NameOf(operation)) + " " + std::to_string(nth));
      SetFile(before);
      FaultHook faults;
      faults.Fail({operation, nth}, ERROR_IO_DEVICE);
      machine.SetHook(&faults);
      const bool written = Set(u"S", u"k", u"2");
      const std::uint32_t code = machine.GetLastError();
      machine.SetHook(&hook);
      const std::string after = "[S]\r\nk=2\r\n" + std::string(600'000, 'x');
      EXPECT_TRUE(Bytes() == (written ? after : before));
      EXPECT_EQ(Litter(), 0U);
      EXPECT_TRUE(written || code == ERROR_IO_DEVICE) << code;
      // A handle whose closing failed stays open. Only the closing of what was written counts.
      if (operation == Operation::CloseHandle) openHandles = machine.OpenHandles();
      if (faults.OrdersNotMet() != 0) {
        EXPECT_TRUE(written);
        EXPECT_GT(nth, 1U) << "the operation does not occur";
        break;
      }
    }
  }
}

TEST_F(ProfileFilesTest, LeftoversOfKilledWritersAreNotInTheWay) {
  SetFile("[S]\r\nk=1\r\n");
  hook.Fail({Operation::MoveFileExW}, ERROR_ACCESS_DENIED);
  hook.Fail({Operation::DeleteFileW}, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(Set(u"S", u"k", u"2"));
  EXPECT_EQ(machine.GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Litter(), 1U) << "what the machine does not let go of";
  EXPECT_TRUE(Set(u"S", u"k", u"3"));
  EXPECT_EQ(Bytes(), "[S]\r\nk=3\r\n");
  EXPECT_EQ(Litter(), 1U);
  FaultHook taken;
  taken.Fail({Operation::CreateFileW, 3}, ERROR_FILE_EXISTS);
  machine.SetHook(&taken);
  EXPECT_TRUE(Set(u"S", u"k", u"4")) << "another name is tried";
  machine.SetHook(&hook);
  EXPECT_EQ(taken.OrdersNotMet(), 0U);
}

TEST_F(ProfileFilesTest, APathAtTheLimitIsReplacedTooThroughALongerNeighbour) {
  const Text folder = u"C:\\" + Text(100, u'a') + u"\\" + Text(139, u'b');  // 243
  const Text path = folder + u"\\f.i";
  machine.AddFolder(folder);
  EXPECT_TRUE(ReplaceFileContents(machine, path, "bytes"));
  EXPECT_EQ(machine.ContentsOf(path), "bytes");
  EXPECT_EQ(machine.TreeOf(folder).size(), 1U);
}

TEST_F(ProfileFilesTest, WhatWasWrittenIsReadBackWhateverElseChanges) {
  std::mt19937 random(20261121);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const TextView units = u"aZ09 .\\:;=[]'\"#\u00E9\u0416\u4E2D\u2026\U0001F600";
  const auto word = [&](bool isName) {
    Text text;
    for (std::size_t size = 1 + below(12); size > 0; --size) text += units[below(units.size())];
    // What reading takes off, and what makes a name another kind of line.
    if (isName) std::erase_if(text, [](char16_t unit) { return unit == u'=' || unit == u';'; });
    return u"x" + text + u"y";
  };
  for (int round = 0; round < 20; ++round) {
    SetFile(round % 2 == 0 ? Wide(u"; made by hand\n\njunk") : "\xFF\xFE");
    std::map<Text, std::map<Text, Text>> expected;
    std::vector<Text> sections;
    std::vector<Text> keys;
    for (int i = 0; i < 4; ++i) sections.push_back(word(true) + DecimalText(i));
    for (int i = 0; i < 6; ++i) keys.push_back(word(true) + DecimalText(i));
    for (int step = 0; step < 60; ++step) {
      const Text& section = sections[below(4)];
      const Text& key = keys[below(6)];
      const std::size_t kind = below(12);
      if (kind == 0) {
        ASSERT_TRUE(Set(section, {}, {}));
        expected.erase(section);
      } else if (kind <= 2) {
        ASSERT_TRUE(Set(section, key, {}));
        expected[section].erase(key);
      } else {
        const Text value = word(false);
        ASSERT_TRUE(Set(section, key, value));
        expected[section][key] = value;
      }
      for (const Text& name : sections)
        for (const Text& entry : keys) {
          const bool isThere = expected[name].contains(entry);
          ASSERT_EQ(ToUtf8(Get(name, entry)), isThere ? ToUtf8(expected[name][entry]) : "(none)")
              << "round " << round << " step " << step;
        }
    }
  }
}

TEST_F(ProfileFilesTest, NoiseIsSurvivedInTimeThatGrowsWithItsLengthAlone) {
  std::string lines;
  for (int i = 0; i < 100'000; ++i) lines += "key" + std::to_string(i) + "=" + "v\n";
  std::mt19937 random(7);
  std::string noise(10'000'000, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  const std::string table[] = {lines,
                               noise,
                               "\xFF\xFE" + noise,
                               std::string(3'000'000, '['),
                               std::string(3'000'000, '\r'),
                               std::string(3'000'000, ' '),
                               std::string(3'000'000, '=') + "[",
                               "[S]\n" + lines};
  const auto begin = std::chrono::steady_clock::now();
  for (const std::string& bytes : table) {
    SetFile(bytes);
    EXPECT_TRUE(Set(u"S", u"key99999", u"new"));
    EXPECT_EQ(Get(u"S", u"key99999"), u"new");
    EXPECT_TRUE(Set(u"S", u"key99999", {}));
    EXPECT_TRUE(Set(u"S", {}, {}));
    EXPECT_EQ(Get(u"S", u"key99999"), u"(none)");
  }
  // Anything that grew with the square would take hours.
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

}  // namespace

}  // namespace quillmarsh
