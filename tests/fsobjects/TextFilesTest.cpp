// SPDX-License-Identifier: MIT
// Whole text files: what stands on the disk for each encoding, what comes back, and what is left
// when a step fails.
#include "FsObjectsFixture.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modAPIReadWriteFile.h"

namespace quillmarsh {
namespace {

using enum TextEncoding;

constexpr TextView kPath = u"C:\\d\\a.txt";
constexpr std::uint64_t kTwoGiB = 2147483648;

class TextFiles : public FsObjectsFixture {
 protected:
  TextFiles() { machine.AddFolder(u"C:\\d"); }
  std::string OnDisk() const { return machine.ContentsOf(kPath); }
};

// A literal with its zero bytes.
template <std::size_t Size>
std::string Raw(const char (&literal)[Size]) {
  return std::string(literal, Size - 1);
}

TEST_F(TextFiles, AreWrittenInTheirEncodingBehindItsMark) {
  const struct {
    const char* name;
    Text text;
    TextEncoding encoding;
    std::string bytes;
  } rows[] = {
      {"8-bit", u"caf\u00E9 5\u20AC \u4E2D", None, "caf\xE9 5\x80 ?"},
      {"UTF-16", u"a\u4E2D", Utf16LittleEndian,
       Raw("\xFF\xFE"
           "a\0\x2D\x4E")},
      {"UTF-8 that is shorter than two bytes a character", u"abc", Utf8,
       "\xEF\xBB\xBF"
       "abc"},
      // Required as it is: six bytes stand for three characters, whatever they need.
      {"UTF-8 that is longer", u"\u4E2D\u4E2D\u4E2D", Utf8, "\xEF\xBB\xBF\xE4\xB8\xAD\xE4\xB8\xAD"},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(WriteStringToFile(kPath, row.text, true, row.encoding)) << row.name;
    EXPECT_EQ(OnDisk(), row.bytes) << row.name;
  }
  EXPECT_TRUE(cFSXFileSystemObject().WriteTextToFile(kPath, u"x", true, None));
  EXPECT_EQ(OnDisk(), "x");
  EXPECT_FALSE(WriteStringToFile(kPath, u"y", true, TextEncoding{7})) << "no such encoding";
}

TEST_F(TextFiles, AreOverwrittenOnlyWhenAskedAndDeletedByAnEmptyText) {
  EXPECT_TRUE(WriteStringToFile(kPath, u"", true, None));
  EXPECT_FALSE(machine.Exists(kPath));
  EXPECT_TRUE(WriteStringToFile(kPath, u"first", false, None));
  EXPECT_FALSE(WriteStringToFile(kPath, u"second", false, None));
  EXPECT_FALSE(WriteStringToFile(kPath, u"", false, None));
  EXPECT_EQ(OnDisk(), "first");

  const HANDLE held = machine.HoldOpen(kPath, 0);
  EXPECT_FALSE(WriteStringToFile(kPath, u"third", true, None));
  EXPECT_TRUE(WriteStringToFile(kPath, u"", true, None)) << "told, and yet a success";
  const MessageBoxRequest box = TakeBox();
  EXPECT_EQ(box.text, u"Unable to delete C:\\d\\a.txt\r\nPlease delete this file manually.");
  EXPECT_EQ(box.title, u"Write String To File");
  EXPECT_EQ(box.icon, MessageBoxIcon::Exclamation);
  machine.LetGo(held);
  EXPECT_EQ(OnDisk(), "first");
  EXPECT_TRUE(WriteStringToFile(kPath, u"", true, None));
  EXPECT_FALSE(machine.Exists(kPath));
}

TEST_F(TextFiles, GrowByAppendingWithOneMark) {
  EXPECT_TRUE(AppendStringToFile(kPath, u"", Utf16LittleEndian));
  EXPECT_FALSE(machine.Exists(kPath));
  EXPECT_TRUE(AppendStringToFile(kPath, u"a\r\n", Utf16LittleEndian));
  EXPECT_TRUE(AppendStringToFile(kPath, u"\u4E2D", Utf16LittleEndian));
  EXPECT_EQ(OnDisk(), Raw("\xFF\xFE"
                          "a\0\r\0\n\0\x2D\x4E"));
}

TEST_F(TextFiles, AppendGoesOnWithWholeCharactersBehindABatchThatBrokeOff) {
  machine.AddFile(kPath, Raw("\xFF\xFE"
                             "a\0b"));
  EXPECT_TRUE(AppendStringToFile(kPath, u"cd", Utf16LittleEndian));
  EXPECT_EQ(OnDisk(), Raw("\xFF\xFE"
                          "a\0b\0c\0d\0"));
}

// Required as it is: whatever the encoding, it is the UTF-16 form that is written, for 8-bit text
// its first half.
TEST_F(TextFiles, AppendWritesUtf16InEveryEncoding) {
  EXPECT_TRUE(AppendStringToFile(kPath, u"abcd", None));
  EXPECT_EQ(OnDisk(), Raw("a\0b\0"));
  machine.SetContents(kPath, {});
  EXPECT_TRUE(AppendStringToFile(kPath, u"ab", Utf8));
  EXPECT_EQ(OnDisk(), Raw("\xEF\xBB\xBF"
                          "a\0b\0"));
}

TEST_F(TextFiles, EveryStepThatFailsMakesTheAnswerFalse) {
  const struct {
    Operation operation;
    std::size_t nth;
    bool append;
  } rows[] = {
      {Operation::CreateFileW, 1, true},      {Operation::GetFileInformationByHandle, 1, true},
      {Operation::WriteFile, 1, true},        {Operation::WriteFile, 2, true},
      {Operation::FlushFileBuffers, 1, true}, {Operation::CreateFileW, 1, false},
      {Operation::WriteFile, 1, false},       {Operation::WriteFile, 2, false},
      {Operation::FlushFileBuffers, 1, false}};
  for (const auto& row : rows) {
    if (machine.Exists(kPath)) machine.Remove(kPath);
    hook.Fail({row.operation, row.nth}, ERROR_IO_DEVICE);
    const bool done = row.append ? AppendStringToFile(kPath, u"text", Utf16LittleEndian)
                                 : WriteStringToFile(kPath, u"text", true, Utf16LittleEndian);
    EXPECT_FALSE(done) << NameOf(row.operation) << row.nth << row.append;
    EXPECT_EQ(machine.OpenHandles(), 0U) << NameOf(row.operation) << row.nth << row.append;
  }
  EXPECT_FALSE(WriteBOM(INVALID_HANDLE, None));
}

TEST_F(TextFiles, AreReadByTheirMark) {
  const struct {
    const char* name;
    std::string bytes;
    Text text;
  } rows[] = {
      {"empty", "", u""},
      {"8-bit", "caf\xE9 5\x80", u"caf\u00E9 5\u20AC"},
      {"UTF-16 keeps its mark",
       Raw("\xFF\xFE"
           "a\0\x2D\x4E"),
       u"\uFEFFa\u4E2D"},
      {"UTF-16 with half a character at the end",
       Raw("\xFF\xFE"
           "a\0\x2D"),
       u"\uFEFFa"},
      {"UTF-8 keeps its mark too", "\xEF\xBB\xBF\xC3\xA9", u"\u00EF\u00BB\u00BF\u00E9"},
      {"the mark of UTF-8 alone", "\xEF\xBB\xBF", u"\u00EF\u00BB\u00BF"},
      {"the mark of UTF-16 alone", "\xFF\xFE", u"\u00FF\u00FE"},
  };
  EXPECT_EQ(ReadStringFromFile(kPath), u"") << "missing";
  machine.AddFile(kPath);
  for (const auto& row : rows) {
    machine.SetContents(kPath, row.bytes);
    EXPECT_EQ(ReadStringFromFile(kPath), row.text) << row.name;
  }
  EXPECT_FALSE(IsFileUTF16(kPath)) << "the mark alone";
  machine.SetContents(kPath, FileContents::Utf16(u"x"));
  EXPECT_TRUE(IsFileUTF16(kPath));
  const HANDLE held = machine.HoldOpen(kPath, FILE_SHARE_READ);
  EXPECT_EQ(ReadStringFromFile(kPath), u"") << "open elsewhere";
  machine.LetGo(held);
}

TEST_F(TextFiles, ThatAreTooLargeAreToldAndNoBeginningIsTakenForTheWhole) {
  machine.AddFile(kPath);
  for (const std::uint64_t size : {kTwoGiB, 2 * kTwoGiB - 1, 2 * kTwoGiB + 10, kTwoGiB << 20U}) {
    machine.SetContents(kPath, FileContents::Recipe(1, size));
    EXPECT_EQ(ReadStringFromFile(kPath), u"") << size;
    const MessageBoxRequest box = TakeBox();
    EXPECT_EQ(box.title, u"Read File Error");
    EXPECT_EQ(box.text,
              u"Error Number: 7\r\nError Description: Out of Memory\r\n"
              u"Error Module: modAPIReadWriteFile.ReadStringFromFile\r\n\r\n"
              u"File: C:\\d\\a.txt\r\n\r\nThe file is too large to read into memory at one time.  "
              u"To correct this problem, reduce the file's size, if possible.");
    EXPECT_FALSE(ConvertASCIIFileToUTF16(kPath)) << size;
    EXPECT_EQ(TakeReportedSource(), "modAPIReadWriteFile.ConvertASCIIFileToUTF16");
    EXPECT_EQ(machine.SizeOf(kPath), size);
  }
}

// Required as it is.
TEST_F(TextFiles, LongSizesAreTheLowWordLessTheHighWord) {
  EXPECT_EQ(GetFileSizeLong(kPath), 0);
  machine.AddFile(kPath);
  const struct {
    std::uint64_t size;
    std::int32_t told;
  } rows[] = {{5, 5},
              {kTwoGiB - 1, 2147483647},
              {kTwoGiB, -2147483647 - 1},
              {2 * kTwoGiB - 1, -1},
              {2 * kTwoGiB + 10, 9},
              {6 * kTwoGiB + 1, -2}};
  for (const auto& row : rows) {
    machine.SetContents(kPath, FileContents::Recipe(1, row.size));
    EXPECT_EQ(GetFileSizeLong(kPath), row.told) << row.size;
  }
  machine.SetContents(kPath, FileContents::Recipe(1, 3 * kTwoGiB));
  EXPECT_THROW(static_cast<void>(GetFileSizeLong(kPath)), RuntimeError) << "fits no word";
}

TEST_F(TextFiles, EightBitFilesAreWidenedAndMissingOnesMade) {
  EXPECT_TRUE(ConvertASCIIFileToUTF16(kPath));
  EXPECT_EQ(OnDisk(), "\xFF\xFE");
  machine.SetContents(kPath, {});
  EXPECT_TRUE(ConvertASCIIFileToUTF16(kPath));
  EXPECT_EQ(OnDisk(), "\xFF\xFE") << "an empty one";
  machine.SetContents(kPath, "[a]\r\n\x80=\xE9");
  EXPECT_TRUE(ConvertASCIIFileToUTF16(kPath));
  EXPECT_EQ(OnDisk(), Raw("\xFF\xFE[\0a\0]\0\r\0\n\0\xAC\x20=\0\xE9\0"));
  EXPECT_EQ(machine.TreeOf(u"C:\\d"), std::vector<Text>{Text(kPath)}) << "and nothing beside it";
  EXPECT_FALSE(ConvertASCIIFileToUTF16(u"C:\\missing\\a.txt"));
}

TEST_F(TextFiles, ConversionThatFailsLeavesTheOldContents) {
  machine.AddFile(kPath, "old");
  const struct {
    Operation operation;
    std::size_t nth;
  } rows[] = {{Operation::CreateFileW, 1}, {Operation::GetFileInformationByHandle, 1},
              {Operation::ReadFile, 1},    {Operation::CreateFileW, 3},
              {Operation::WriteFile, 1},   {Operation::FlushFileBuffers, 1},
              {Operation::MoveFileExW, 1}};
  for (const auto& row : rows) {
    hook.Fail({row.operation, row.nth}, ERROR_DISK_FULL);
    EXPECT_FALSE(ConvertASCIIFileToUTF16(kPath)) << NameOf(row.operation) << row.nth;
    EXPECT_EQ(OnDisk(), "old") << NameOf(row.operation) << row.nth;
    EXPECT_EQ(machine.TreeOf(u"C:\\d").size(), 1U) << NameOf(row.operation) << row.nth;
  }
  const HANDLE held = machine.HoldOpen(kPath, FILE_SHARE_READ);
  EXPECT_FALSE(ConvertASCIIFileToUTF16(kPath));
  machine.LetGo(held);
  machine.SetAttributes(kPath, FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(ConvertASCIIFileToUTF16(kPath));
  EXPECT_EQ(OnDisk(), "old");
}

TEST_F(TextFiles, RedirectionIsOffAroundEachOfThem) {
  machine.SetWow64(true);
  gIsWow64 = true;
  const Text path = u"C:\\Windows\\System32\\a.txt";
  machine.AddFolder(u"C:\\Windows\\System32");
  machine.AddFolder(u"C:\\Windows\\SysWOW64");
  EXPECT_TRUE(AppendStringToFile(path, u"a", None));
  EXPECT_EQ(machine.ContentsOf(path), "a");
  EXPECT_EQ(GetFileSizeLong(path), 1);
  EXPECT_TRUE(WriteStringToFile(path, u"bc", true, None));
  EXPECT_EQ(ReadStringFromFile(path), u"bc");
  EXPECT_TRUE(ConvertASCIIFileToUTF16(path));
  EXPECT_TRUE(IsFileUTF16(path));
  EXPECT_TRUE(machine.TreeOf(u"C:\\Windows\\SysWOW64").empty());
  gIsWow64 = false;
}

}  // namespace
}  // namespace quillmarsh
