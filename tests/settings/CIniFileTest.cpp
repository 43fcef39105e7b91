// SPDX-License-Identifier: MIT
// The INI file object: its checks and messages, what it reads and writes, and its way to UTF-16.
#include "settings/CIniFile.h"

#include "fsobjects/FsObjectsFixture.h"

namespace quillmarsh {
namespace {

constexpr TextView kFile = u"C:\\options\\q.ini";

class CIniFileTest : public FsObjectsFixture {
 protected:
  CIniFileTest() {
    machine.AddFolder(u"C:\\options");
    ini.SetPath(u"C:\\options");
    ini.SetName(u"q.ini");
    ini.SetSection(u"Options");
    ini.SetKey(u"Key");
  }
  std::string Bytes() const { return machine.ContentsOf(kFile); }

  CIniFile ini;
};

struct Use {
  const char* name;
  void (*use)(CIniFile&);
  bool needsKey;
  const char* fullStop;
};
const Use kUses[] = {
    {"GetIntegerValue", [](CIniFile& f) { EXPECT_EQ(f.GetIntegerValue(-3), -3); }, true, ""},
    {"GetStringValue", [](CIniFile& f) { EXPECT_EQ(f.GetStringValue(u"d"), u"d"); }, true, ""},
    {"SetStringValue", [](CIniFile& f) { f.SetStringValue(u"v"); }, true, "."},
    {"DeleteKey", [](CIniFile& f) { f.DeleteKey(); }, true, "."},
    {"WriteSection", [](CIniFile& f) { f.WriteSection(u"a=1"); }, false, "."},
    {"DeleteSection", [](CIniFile& f) { f.DeleteSection(); }, false, "."},
};

// The two forms of the message are both wanted: people search for the texts as they know them.
TEST_F(CIniFileTest, WhatIsNotSetIsToldInOrderAndTheFileIsNotTouched) {
  for (const Use& row : kUses) {
    SCOPED_TRACE(row.name);
    CIniFile empty;
    const auto expect = [&](const std::string& text) {
      hook.ClearJournal();
      row.use(empty);
      const MessageBoxRequest box = TakeBox();
      EXPECT_EQ(ToUtf8(box.text), text);
      EXPECT_EQ(box.title, u"CIniFile Error");
      EXPECT_EQ(box.icon, MessageBoxIcon::Stop);
      EXPECT_TRUE(hook.Journal().empty());
    };
    empty.SetPath(u"");
    expect("Path property must be set first");
    empty.SetPath(u"C:\\options");
    expect("Name property must be set first");
    empty.SetName(u"q.ini");
    expect(std::string("Section property must be set first") + row.fullStop);
    empty.SetSection(u"Options");
    if (row.needsKey) expect(std::string("Key property must be set first") + row.fullStop);
  }
  EXPECT_FALSE(machine.Exists(kFile));
}

TEST_F(CIniFileTest, ASecondNameIsRefusedAndTheFirstOneStays) {
  ini.SetName(u"other.ini");
  const MessageBoxRequest box = TakeBox();
  EXPECT_EQ(ToUtf8(box.text),
            "This IniFile Object is already in use by C:\\options\\q.ini\r\nCreate a new object.");
  EXPECT_EQ(box.icon, MessageBoxIcon::Exclamation);
  EXPECT_EQ(ini.Name(), u"q.ini");
  ini.SetStringValue(u"v");
  EXPECT_TRUE(machine.Exists(kFile));
}

TEST_F(CIniFileTest, ANewObjectPointsIntoTheProgramsFolder) {
  EXPECT_EQ(CIniFile().Path(), u"C:\\Program Files\\Quillmarsh\\");
  ini.SetPath(u"C:\\moved");
  machine.AddFile(u"C:\\moved\\q.ini", "[Options]\r\nKey=there\r\n");
  EXPECT_EQ(ini.GetStringValue(u""), u"there") << "the path may change, the name not";
}

TEST_F(CIniFileTest, ReadsValuesAndDefaults) {
  EXPECT_EQ(ini.GetStringValue(u"default  "), u"default  ") << "without a file";
  machine.AddFile(kFile, "[OPTIONS]\r\nKey=\r\nLong=" + std::string(16384, 'x') +
                             "\r\nFits=" + std::string(16383, 'y') + "\r\nPath=C:\\a\\\r\n");
  EXPECT_EQ(ini.GetStringValue(u"default"), u"default") << "an empty value reads as a missing key";
  EXPECT_EQ(ini.GetStringValue(u""), u"");
  ini.SetKey(u"long");
  EXPECT_EQ(ini.GetStringValue(u"d"), Text(16383, u'x'));
  ini.SetKey(u"fits");
  EXPECT_EQ(ini.GetStringValue(u"d"), Text(16383, u'y'));
  ini.SetKey(u"path");
  EXPECT_EQ(ini.GetStringValue(u"d"), u"C:\\a\\");
}

// The bare name is what the system gets: the file beside it in the options folder is not looked at.
TEST_F(CIniFileTest, NumbersAreLookedForInTheSystemsOwnFolder) {
  machine.AddFile(kFile, "[Options]\r\nKey=5\r\n");
  EXPECT_EQ(ini.GetIntegerValue(9), 9);
  machine.AddFile(u"C:\\Windows\\q.ini", "[Options]\r\nKey=-77\r\nBig=32768\r\n");
  EXPECT_EQ(ini.GetIntegerValue(9), -77);
  ini.SetKey(u"Big");
  EXPECT_THROW((void)ini.GetIntegerValue(9), RuntimeError);
}

TEST_F(CIniFileTest, WritesAndDeletesKeysAndSections) {
  ini.SetStringValue(u"1");
  ini.SetKey(u"Other");
  ini.SetStringValue(u"2");
  EXPECT_EQ(Bytes(), "[Options]\r\nKey=1\r\nOther=2\r\n");
  ini.DeleteKey();
  ini.SetSection(u"Second");
  ini.WriteSection(TextView(u"a=1\0b=2\0", 8));
  EXPECT_EQ(Bytes(), "[Options]\r\nKey=1\r\n[Second]\r\na=1\r\nb=2\r\n");
  ini.SetSection(u"options");
  ini.DeleteSection();
  EXPECT_EQ(Bytes(), "[Second]\r\na=1\r\nb=2\r\n");
  EXPECT_TRUE(ini.DeleteINI());
  EXPECT_FALSE(ini.DeleteINI()) << "not there any more";
  ini.DeleteKey();
  EXPECT_FALSE(machine.Exists(kFile)) << "deleting makes no file";
}

TEST_F(CIniFileTest, AFailedWriteIsToldOnceForEachOperationAndObject) {
  machine.AddFile(kFile, "[Options]\r\nKey=1\r\n");
  machine.SetAttributes(kFile, FILE_ATTRIBUTE_READONLY);
  for (const Use& row : kUses) {
    if (*row.fullStop == '\0') continue;
    SCOPED_TRACE(row.name);
    row.use(ini);
    const MessageBoxRequest box = TakeBox();
    EXPECT_EQ(ToUtf8(box.title), "Error Writing to INI file - Quillmarsh");
    EXPECT_EQ(box.icon, MessageBoxIcon::Exclamation);
    EXPECT_EQ(ToUtf8(box.text),
              std::string("An error occurred while saving your settings to the application INI "
                          "file!\r\n\r\nSource: CIniFile.") +
                  row.name + "()\r\nError Number: 5\r\nError Description: " +
                  ToUtf8(GetSystemErrorText(ERROR_ACCESS_DENIED)));
    row.use(ini);  // without a word
  }
  CIniFile other;
  other.SetPath(u"C:\\nowhere\\");
  other.SetName(u"q.ini");
  other.SetSection(u"Options");
  other.SetKey(u"Key");
  other.SetStringValue(u"v");
  EXPECT_NE(TakeBox().text.find(u"Error Number: 3\r\n"), Text::npos);
  EXPECT_EQ(Bytes(), "[Options]\r\nKey=1\r\n");
}

TEST_F(CIniFileTest, ConvertingMakesWideValuesPossible) {
  EXPECT_FALSE(ini.IsUTF16());
  machine.AddFile(kFile, "[Options]\r\nKey=\x80\r\n");
  ini.SetStringValue(u"\u0416");
  EXPECT_EQ(ini.GetStringValue(u""), u"?");
  EXPECT_TRUE(ini.ConvertToUTF16());
  EXPECT_TRUE(ini.IsUTF16());
  ini.SetStringValue(u"\u0416\u20AC");
  EXPECT_EQ(ini.GetStringValue(u""), u"\u0416\u20AC");
  EXPECT_EQ(Bytes(), FileContents::Utf16(u"[Options]\r\nKey=\u0416\u20AC\r\n").StoredBytes());
}

// Two bytes are too short for the test of the encoding, so that a second conversion takes the mark
// for text. Whoever converts writes something next, and after that the file is known.
TEST_F(CIniFileTest, AConvertedMissingFileIsTheMarkAloneAndNotYetKnownAsUTF16) {
  EXPECT_TRUE(ini.ConvertToUTF16());
  EXPECT_EQ(Bytes(), "\xFF\xFE");
  EXPECT_FALSE(ini.IsUTF16());
  ini.SetStringValue(u"\u0416");
  EXPECT_TRUE(ini.IsUTF16());
  EXPECT_EQ(ini.GetStringValue(u""), u"\u0416");
  machine.SetContents(kFile, "\xFF\xFE");
  EXPECT_TRUE(ini.ConvertToUTF16());
  EXPECT_EQ(Bytes(), FileContents::Utf16(u"\u00FF\u00FE").StoredBytes());
}

TEST_F(CIniFileTest, AFailedConversionLeavesTheFileAsItWas) {
  machine.AddFile(kFile, "[Options]\r\nKey=1\r\n");
  const HANDLE held = machine.HoldOpen(kFile, FILE_SHARE_READ | FILE_SHARE_WRITE);
  EXPECT_FALSE(ini.ConvertToUTF16()) << "another program has it open";
  machine.LetGo(held);
  for (const Operation operation :
       {Operation::CreateFileW, Operation::ReadFile, Operation::WriteFile,
        Operation::FlushFileBuffers, Operation::MoveFileExW}) {
    SCOPED_TRACE(NameOf(operation));
    hook.Fail({operation}, ERROR_IO_DEVICE);
    EXPECT_FALSE(ini.ConvertToUTF16());
    EXPECT_EQ(Bytes(), "[Options]\r\nKey=1\r\n");
    EXPECT_EQ(machine.TreeOf(u"C:\\options").size(), 1U);
  }
  gIsWow64 = true;
  machine.SetWow64(true);
  EXPECT_TRUE(ini.ConvertToUTF16());
  EXPECT_EQ(Calls(Operation::Wow64DisableWow64FsRedirection), 1U);
}

}  // namespace
}  // namespace quillmarsh
