// SPDX-License-Identifier: MIT
// The stream by position: its ends, its odd numbers above 4 GiB, and what it holds on to.
#include "FsObjectsFixture.h"
#include "fsobjects/cBinaryFileStream.h"

namespace quillmarsh {
namespace {

constexpr TextView kPath = u"C:\\d\\a.bin";
constexpr std::int64_t kFourGiB = 4294967296;
constexpr std::uint32_t kReadAndWrite = GENERIC_READ | GENERIC_WRITE;

class BinaryFileStream : public FsObjectsFixture {
 protected:
  BinaryFileStream() { machine.AddFolder(u"C:\\d"); }
  // Reads `length` bytes into a buffer of eight marks, and answers the whole buffer.
  std::string Read(std::int32_t length, std::int32_t expectedCount) {
    std::string buffer(8, '#');
    EXPECT_EQ(stream.ReadFromFile(std::as_writable_bytes(std::span(buffer)), length),
              expectedCount);
    return buffer;
  }
  std::int32_t Write(std::string_view bytes, std::int32_t length) {
    return stream.WriteToFile(std::as_bytes(std::span(bytes)), length);
  }
  void Open(std::uint32_t access, TextView path = kPath) {
    stream.SetFile(path);
    stream.OpenFile(access);
  }

  cBinaryFileStream stream;
};

TEST_F(BinaryFileStream, ReadsUpToTheEndAndLeavesTheRestOfTheBuffer) {
  machine.AddFile(kPath, "0123456789");
  Open(GENERIC_READ);
  EXPECT_TRUE(stream.AccessGranted());
  EXPECT_EQ(stream.FileSize(), Currency::FromInteger(10));
  EXPECT_EQ(Read(7, 7), "0123456#");
  EXPECT_FALSE(stream.IsEOF());
  EXPECT_EQ(Read(8, 3), "789#####");
  EXPECT_TRUE(stream.IsEOF());
  EXPECT_EQ(Read(8, 0), "########");
  stream.SetFile({});
}

TEST_F(BinaryFileStream, NeverLeavesTheBufferWhateverTheLength) {
  machine.AddFile(kPath, "0123456789abcdef");
  Open(kReadAndWrite);
  EXPECT_EQ(Read(2147483647, 8), "01234567");
  EXPECT_EQ(Read(-1, 0), "########");
  EXPECT_EQ(Write("XY", 2147483647), 2);
  EXPECT_EQ(Write("XY", -5), 0);
  EXPECT_EQ(machine.ContentsOf(kPath), "01234567XYabcdef");
  Text text;
  EXPECT_EQ(stream.ReadStringFromFile(text, 2147483647), 6)
      << "and no memory of 2 GiB is asked for";
  EXPECT_EQ(text, u"abcdef");
  EXPECT_EQ(stream.ReadStringFromFile(text, 1), 0);
  EXPECT_EQ(text, u"");
  stream.SetFile({});
}

TEST_F(BinaryFileStream, TextIsReadByTheEightBitCodePage) {
  machine.AddFile(kPath, "caf\xE9 5\x80");
  Open(GENERIC_READ);
  Text text = u"old";
  EXPECT_EQ(stream.ReadStringFromFile(text, 4), 4);
  EXPECT_EQ(text, u"caf\u00E9");
  EXPECT_EQ(stream.ReadStringFromFile(text, 9), 3);
  EXPECT_EQ(text, u" 5\u20AC");
  stream.SetFile({});
}

// Required as it is: the two conversions of the stream take 4,294,967,295 for a high word.
TEST_F(BinaryFileStream, SizesAreTooLowByTheHighWord) {
  const struct {
    std::int64_t size, told;
  } rows[] = {{2147483648, 2147483648},
              {kFourGiB - 1, kFourGiB - 1},
              {kFourGiB, kFourGiB - 1},
              {kFourGiB + 10, kFourGiB + 9},
              {3 * kFourGiB + 5, 3 * kFourGiB + 2}};
  for (const auto& row : rows) {
    const Text path = u"C:\\" + DecimalText(row.size);
    machine.AddFile(path, FileContents::Recipe(1, static_cast<std::uint64_t>(row.size)));
    Open(GENERIC_READ, path);
    EXPECT_EQ(stream.FileSize(), Currency::FromInteger(row.told)) << row.size;
  }
  stream.SetFile({});
}

TEST_F(BinaryFileStream, SizeBeyondTheCurrencyIsAnErrorOfTheCaller) {
  machine.AddFile(kPath, FileContents::Recipe(1, std::uint64_t{1} << 60U));
  stream.SetFile(kPath);
  EXPECT_THROW(stream.OpenFile(GENERIC_READ), RuntimeError);
  stream.SetFile({});
}

// Required as it is, both: the position grows by what was asked for although nothing could be read,
// and above 4 GiB it stands for a place that is too far by the high word.
TEST_F(BinaryFileStream, PositionsGrowByTheCountAskedForAndAreTooFarByTheHighWord) {
  constexpr std::size_t kBlock = std::size_t{1} << 26U;
  constexpr std::size_t kBlocks = kFourGiB / kBlock;
  machine.AddFile(kPath, FileContents::Recipe(7, kFourGiB + 100));
  for (std::size_t nth = 1; nth <= kBlocks; ++nth)
    hook.Fail({Operation::ReadFile, nth}, ERROR_IO_DEVICE);
  Open(GENERIC_READ);
  std::vector<std::byte> block(kBlock);
  for (std::size_t i = 0; i < kBlocks; ++i)
    EXPECT_EQ(stream.ReadFromFile(block, static_cast<std::int32_t>(kBlock)), 0);

  std::string expected(8, '\0');
  FillFromRecipe(7, kFourGiB + 1, std::as_writable_bytes(std::span(expected)));
  EXPECT_EQ(Read(8, 8), expected);
  EXPECT_FALSE(stream.IsEOF());
  stream.SetFile({});
}

TEST_F(BinaryFileStream, WritingMovesThePositionAndNotTheSizeThatIsTold) {
  Open(kReadAndWrite);
  EXPECT_TRUE(machine.Exists(kPath)) << "a missing file is made";
  EXPECT_EQ(Write("12345", 5), 5);
  EXPECT_EQ(Write("67890", 3), 3);
  EXPECT_EQ(machine.ContentsOf(kPath), "12345678");
  EXPECT_EQ(stream.FileSize(), Currency());
  EXPECT_TRUE(stream.IsEOF());
  stream.SetFileSize(Currency::FromInteger(2));
  EXPECT_EQ(machine.ContentsOf(kPath), "12");
  EXPECT_EQ(Write("x", 1), 1);
  EXPECT_EQ(machine.ContentsOf(kPath), std::string("12\0\0\0\0\0\0x", 9)) << "the position stayed";
  EXPECT_THROW(stream.SetFileSize(Currency::FromInteger(-1)), RuntimeError);

  cBinaryFileStream second;
  second.SetFile(kPath);
  EXPECT_EQ(second.OpenFile(kReadAndWrite), INVALID_HANDLE) << "one writer at a time";
  EXPECT_EQ(second.WriteToFile(std::as_bytes(std::span("y", 1)), 1), 0);
  stream.OpenFile(GENERIC_READ);
  stream.SetFileSize({});
  EXPECT_EQ(machine.SizeOf(kPath), 9U) << "a file that is only read keeps its size";
  stream.SetFile({});
}

TEST_F(BinaryFileStream, OpeningAgainKeepsThePositionAndAnotherNameDoesNot) {
  machine.AddFile(kPath, "0123456789");
  Open(GENERIC_READ);
  EXPECT_EQ(Read(3, 3), "012#####");
  stream.OpenFile(GENERIC_READ);
  EXPECT_EQ(machine.OpenHandles(), 1U) << "the first opening is not left behind";
  EXPECT_EQ(Read(3, 3), "345#####");
  Open(GENERIC_READ);
  EXPECT_EQ(Read(3, 3), "012#####");
  {
    cBinaryFileStream gone;
    gone.SetFile(kPath);
    gone.OpenFile(GENERIC_READ);
    EXPECT_EQ(machine.OpenHandles(), 2U);
  }
  EXPECT_EQ(machine.OpenHandles(), 1U);
  stream.SetFile({});
  EXPECT_FALSE(stream.AccessGranted());
}

TEST_F(BinaryFileStream, SizeThatCannotBeHadIsZero) {
  machine.AddFile(kPath, "0123456789");
  hook.Fail({Operation::GetFileInformationByHandle}, ERROR_IO_DEVICE);
  Open(GENERIC_READ);
  EXPECT_EQ(stream.FileSize(), Currency());
  EXPECT_EQ(Read(8, 0), "########");
  stream.SetFile({});
}

TEST_F(BinaryFileStream, MissingBytesOfAFileThatShrankReadAsZero) {
  machine.AddFile(kPath, "0123456789");
  Open(GENERIC_READ);
  EXPECT_EQ(Read(4, 4), "0123####");
  machine.SetContents(kPath, "01234");
  EXPECT_EQ(Read(7, 1), std::string("4\0\0\0\0\0##", 8));
  stream.SetFile({});
}

// Required as it is: a failed opening leaves the redirection off, and a later close takes back only
// its own.
TEST_F(BinaryFileStream, RedirectionIsOffWhileTheFileIsOpen) {
  machine.SetWow64(true);
  gIsWow64 = true;
  machine.AddFile(kPath, "0123456789");
  Open(GENERIC_READ);
  EXPECT_EQ(machine.RedirectionDepth(), 1);
  stream.SetFile({});
  EXPECT_EQ(machine.RedirectionDepth(), 0);

  Open(GENERIC_READ, u"C:\\missing");
  EXPECT_FALSE(stream.AccessGranted());
  stream.SetFile({});
  EXPECT_EQ(machine.RedirectionDepth(), 1);
  Open(GENERIC_READ);
  stream.SetFile({});
  EXPECT_EQ(machine.RedirectionDepth(), 1);
  machine.Process().Wow64RevertWow64FsRedirection();
}

}  // namespace
}  // namespace quillmarsh
