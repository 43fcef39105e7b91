// SPDX-License-Identifier: MIT
// Rows on opening, reading and writing files, and on making folders.
#include <cstring>

#include "platform/ConformanceRows.h"

namespace quillmarsh {

namespace {

constexpr std::uint32_t shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::uint32_t plain = FILE_ATTRIBUTE_NORMAL;

struct Opened {
  HANDLE handle = INVALID_HANDLE;
  std::uint32_t code = 0;  // the last error, also after a success
};

Opened Open(MachineUnderTest& ground, TextView relative, std::uint32_t access,
            std::uint32_t disposition, std::uint32_t flags = plain) {
  ground.Get().SetLastError(9999);
  Opened opened;
  opened.handle = ground.Get().Files().CreateFileW(ground.PathOf(relative), access, shareAll,
                                                   disposition, flags);
  opened.code = ground.Get().GetLastError();
  return opened;
}

// Opens, closes, and answers the last error of the opening.
std::uint32_t OpeningCode(MachineUnderTest& ground, TextView relative, std::uint32_t access,
                          std::uint32_t disposition, std::uint32_t flags = plain) {
  const Opened opened = Open(ground, relative, access, disposition, flags);
  if (opened.handle != INVALID_HANDLE) {
    EXPECT_TRUE(ground.Get().Files().CloseHandle(opened.handle));
  }
  return opened.code;
}

std::string ReadSome(MachineUnderTest& ground, HANDLE file, std::size_t count) {
  std::string bytes(count, '?');
  std::uint32_t done = 12345;
  const bool read =
      ground.Get().Files().ReadFile(file, std::as_writable_bytes(std::span(bytes)), done);
  EXPECT_TRUE(read) << ground.Get().GetLastError();
  bytes.resize(read ? done : 0);
  return bytes;
}

bool Write(MachineUnderTest& ground, HANDLE file, std::string_view bytes) {
  std::uint32_t done = 0;
  return ground.Get().Files().WriteFile(file, std::as_bytes(std::span(bytes)), done) &&
         done == bytes.size();
}

std::int64_t Seek(MachineUnderTest& ground, HANDLE file, std::int64_t distance,
                  std::uint32_t method) {
  std::int64_t position = -1;
  EXPECT_TRUE(ground.Get().Files().SetFilePointerEx(file, distance, position, method));
  return position;
}

std::string WholeFile(MachineUnderTest& ground, TextView relative) {
  const Opened opened = Open(ground, relative, GENERIC_READ, OPEN_EXISTING);
  if (opened.handle == INVALID_HANDLE) return "(not opened)";
  std::string bytes = ReadSome(ground, opened.handle, 1000);
  ground.Get().Files().CloseHandle(opened.handle);
  return bytes;
}

void OpenMissing(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "x");
  EXPECT_EQ(OpeningCode(ground, u"none", GENERIC_READ, OPEN_EXISTING), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(OpeningCode(ground, u"none\\file", GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(OpeningCode(ground, u"none\\file", GENERIC_WRITE, CREATE_NEW), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(OpeningCode(ground, u"file\\below", GENERIC_WRITE, CREATE_NEW), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(OpeningCode(ground, u"a?b", GENERIC_READ, OPEN_EXISTING), ERROR_INVALID_NAME);
  EXPECT_EQ(ground.Get().Files().GetFileAttributesW(ground.PathOf(u"none")),
            INVALID_FILE_ATTRIBUTES);
}

void Dispositions(MachineUnderTest& ground) {
  struct Row {
    const char* name;
    std::uint32_t disposition;
    bool exists;
    std::uint32_t code;
    const char* contents;
  };
  const Row table[] = {
      {"open existing", OPEN_EXISTING, true, 0, "before"},
      {"new on existing", CREATE_NEW, true, ERROR_FILE_EXISTS, "before"},
      {"new", CREATE_NEW, false, 0, ""},
      {"always on existing", CREATE_ALWAYS, true, ERROR_ALREADY_EXISTS, ""},
      {"always", CREATE_ALWAYS, false, 0, ""},
      {"open always on existing", OPEN_ALWAYS, true, ERROR_ALREADY_EXISTS, "before"},
      {"open always", OPEN_ALWAYS, false, 0, ""},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.name);
    const Text file = FromUtf8(row.name);
    if (row.exists) ground.MakeFile(file, "before");
    EXPECT_EQ(OpeningCode(ground, file, GENERIC_READ | GENERIC_WRITE, row.disposition), row.code);
    EXPECT_EQ(WholeFile(ground, file), row.contents);
  }
}

void WrongDisposition(MachineUnderTest& ground) {
  EXPECT_EQ(OpeningCode(ground, u"file", GENERIC_READ, 17), ERROR_INVALID_PARAMETER);
}

void ReadToTheEnd(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "0123456789");
  const Opened opened =
      Open(ground, u"file", GENERIC_READ, OPEN_EXISTING, plain | FILE_FLAG_SEQUENTIAL_SCAN);
  ASSERT_NE(opened.handle, INVALID_HANDLE);
  EXPECT_EQ(ReadSome(ground, opened.handle, 4), "0123");
  EXPECT_EQ(ReadSome(ground, opened.handle, 100), "456789");
  EXPECT_EQ(ReadSome(ground, opened.handle, 100), "");
  EXPECT_EQ(ReadSome(ground, opened.handle, 0), "");
  ground.Get().Files().CloseHandle(opened.handle);
}

void Positions(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "0123456789");
  const Opened opened = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  ASSERT_NE(opened.handle, INVALID_HANDLE);
  EXPECT_EQ(Seek(ground, opened.handle, 6, FILE_BEGIN), 6);
  EXPECT_EQ(Seek(ground, opened.handle, -2, FILE_CURRENT), 4);
  EXPECT_EQ(ReadSome(ground, opened.handle, 2), "45");
  EXPECT_EQ(Seek(ground, opened.handle, -3, FILE_END), 7);
  EXPECT_EQ(ReadSome(ground, opened.handle, 9), "789");
  EXPECT_EQ(Seek(ground, opened.handle, 100, FILE_END), 110);
  EXPECT_EQ(ReadSome(ground, opened.handle, 9), "");
  Seek(ground, opened.handle, 5, FILE_BEGIN);
  std::int64_t position = 0;
  EXPECT_FALSE(ground.Get().Files().SetFilePointerEx(opened.handle, -6, position, FILE_CURRENT));
  EXPECT_FALSE(ground.Get().Files().SetFilePointerEx(opened.handle, 0, position, 7));
  EXPECT_EQ(ReadSome(ground, opened.handle, 1), "5");
  ground.Get().Files().CloseHandle(opened.handle);
}

void ReadingAtAPosition(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "0123456789");
  const Opened opened = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  ASSERT_NE(opened.handle, INVALID_HANDLE);
  FileInputOutput& files = ground.Get().Files();
  EXPECT_EQ(ReadSome(ground, opened.handle, 2), "01");
  ground.Get().SetLastError(9999);
  std::string bytes(4, '-');
  std::uint32_t done = 0;
  const auto readAt = [&](std::int64_t position) {
    return files.ReadFileAt(opened.handle, position, std::as_writable_bytes(std::span(bytes)),
                            done);
  };
  EXPECT_EQ(readAt(7), 0U);
  EXPECT_EQ(bytes, "789-");
  EXPECT_EQ(done, 3U);
  EXPECT_EQ(readAt(10), 0U);
  EXPECT_EQ(done, 0U);
  EXPECT_EQ(ground.Get().GetLastError(), 9999U);
  EXPECT_EQ(ReadSome(ground, opened.handle, 2), "23");
  files.CloseHandle(opened.handle);
  EXPECT_EQ(readAt(0), ERROR_INVALID_HANDLE);
}

void PositionsBeyondFourGiB(MachineUnderTest& ground) {
  const std::int64_t size = 0x1'4000'0000;
  ground.MakeLongFile(u"file", static_cast<std::uint64_t>(size));
  const Opened opened = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  ASSERT_NE(opened.handle, INVALID_HANDLE);
  EXPECT_EQ(Seek(ground, opened.handle, size - 3, FILE_BEGIN), size - 3);
  EXPECT_EQ(ReadSome(ground, opened.handle, 10).size(), 3U);
  BY_HANDLE_FILE_INFORMATION information;
  EXPECT_TRUE(ground.Get().Files().GetFileInformationByHandle(opened.handle, information));
  EXPECT_EQ(information.nFileSizeHigh, 1U);
  EXPECT_EQ(information.nFileSizeLow, 0x4000'0000U);
  ground.Get().Files().CloseHandle(opened.handle);
}

void OwnPositions(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "abcdef");
  const Opened first = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  const Opened second = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  EXPECT_EQ(ReadSome(ground, first.handle, 4), "abcd");
  EXPECT_EQ(ReadSome(ground, second.handle, 2), "ab");
  EXPECT_EQ(ReadSome(ground, first.handle, 4), "ef");
  ground.Get().Files().CloseHandle(first.handle);
  EXPECT_EQ(ReadSome(ground, second.handle, 2), "cd");
  ground.Get().Files().CloseHandle(second.handle);
}

void InformationAgrees(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "abcdef");
  ground.MakeFile(u"other", "abcdef");
  ground.SetWritten(u"file", 133'000'000'120'000'000);
  const Opened opened = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  const Opened other = Open(ground, u"other", GENERIC_READ, OPEN_EXISTING);
  BY_HANDLE_FILE_INFORMATION information;
  BY_HANDLE_FILE_INFORMATION otherInformation;
  WIN32_FIND_DATAW entry;
  ASSERT_TRUE(ground.Get().Files().GetFileInformationByHandle(opened.handle, information));
  ASSERT_TRUE(ground.Get().Files().GetFileInformationByHandle(other.handle, otherInformation));
  const HANDLE search = ground.Get().Find().FindFirstFileW(ground.PathOf(u"file"), entry);
  ASSERT_NE(search, INVALID_HANDLE);
  EXPECT_EQ(information.dwFileAttributes, entry.dwFileAttributes);
  EXPECT_EQ(information.ftLastWriteTime.Ticks(), 133'000'000'120'000'000);
  EXPECT_EQ(information.ftLastWriteTime, entry.ftLastWriteTime);
  EXPECT_EQ(information.ftCreationTime, entry.ftCreationTime);
  EXPECT_EQ(information.nFileSizeLow, 6U);
  EXPECT_EQ(information.dwVolumeSerialNumber, otherInformation.dwVolumeSerialNumber);
  EXPECT_FALSE(information.nFileIndexLow == otherInformation.nFileIndexLow &&
               information.nFileIndexHigh == otherInformation.nFileIndexHigh);
  ground.Get().Find().FindClose(search);
  ground.Get().Files().CloseHandle(opened.handle);
  ground.Get().Files().CloseHandle(other.handle);
}

void FoldersAreNoFiles(MachineUnderTest& ground) {
  ground.MakeFolder(u"folder");
  EXPECT_EQ(OpeningCode(ground, u"folder", GENERIC_READ, OPEN_EXISTING), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(ground, u"folder", GENERIC_WRITE, OPEN_ALWAYS), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(ground, u"folder", GENERIC_WRITE, CREATE_ALWAYS), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(ground, u"folder", GENERIC_WRITE, CREATE_NEW), ERROR_FILE_EXISTS);
}

void ReadOnlyFiles(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "kept");
  ground.SetReadOnly(u"file", true);
  EXPECT_EQ(OpeningCode(ground, u"file", GENERIC_WRITE, OPEN_EXISTING), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(ground, u"file", GENERIC_WRITE, CREATE_ALWAYS), ERROR_ACCESS_DENIED);
  EXPECT_EQ(OpeningCode(ground, u"file", FILE_APPEND_DATA, OPEN_ALWAYS), ERROR_ACCESS_DENIED);
  EXPECT_EQ(WholeFile(ground, u"file"), "kept");
}

void AccessIsKept(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "kept");
  const Opened reading = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING);
  EXPECT_FALSE(Write(ground, reading.handle, "x"));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(ground.Get().Files().SetEndOfFile(reading.handle));
  ground.Get().Files().CloseHandle(reading.handle);
  const Opened writing = Open(ground, u"file", GENERIC_WRITE, OPEN_EXISTING);
  std::byte byte{};
  std::uint32_t done = 0;
  EXPECT_FALSE(ground.Get().Files().ReadFile(writing.handle, {&byte, 1}, done));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_ACCESS_DENIED);
  ground.Get().Files().CloseHandle(writing.handle);
  EXPECT_EQ(WholeFile(ground, u"file"), "kept");
}

void Appending(MachineUnderTest& ground) {
  for (const std::string_view part : {"one ", "two ", "three"}) {
    const Opened opened = Open(ground, u"log", FILE_APPEND_DATA, OPEN_ALWAYS);
    ASSERT_NE(opened.handle, INVALID_HANDLE);
    EXPECT_TRUE(Write(ground, opened.handle, part));
    ground.Get().Files().CloseHandle(opened.handle);
  }
  EXPECT_EQ(WholeFile(ground, u"log"), "one two three");
}

void WritingInPlace(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "0123456789");
  const Opened opened = Open(ground, u"file", GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
  ASSERT_NE(opened.handle, INVALID_HANDLE);
  Seek(ground, opened.handle, 3, FILE_BEGIN);
  EXPECT_TRUE(Write(ground, opened.handle, "abc"));
  EXPECT_EQ(ReadSome(ground, opened.handle, 2), "67");
  Seek(ground, opened.handle, 12, FILE_BEGIN);
  EXPECT_TRUE(Write(ground, opened.handle, "z"));
  EXPECT_TRUE(ground.Get().Files().FlushFileBuffers(opened.handle));
  ground.Get().Files().CloseHandle(opened.handle);
  EXPECT_EQ(WholeFile(ground, u"file"), std::string("012abc6789\0\0z", 13));
}

void SettingTheEnd(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "0123456789");
  const Opened opened = Open(ground, u"file", GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
  ASSERT_NE(opened.handle, INVALID_HANDLE);
  Seek(ground, opened.handle, 4, FILE_BEGIN);
  EXPECT_TRUE(ground.Get().Files().SetEndOfFile(opened.handle));
  Seek(ground, opened.handle, 6, FILE_BEGIN);
  EXPECT_TRUE(ground.Get().Files().SetEndOfFile(opened.handle));
  ground.Get().Files().CloseHandle(opened.handle);
  EXPECT_EQ(WholeFile(ground, u"file"), std::string("0123\0\0", 6));
}

void ClosedFile(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "x");
  const HANDLE file = Open(ground, u"file", GENERIC_READ, OPEN_EXISTING).handle;
  EXPECT_TRUE(ground.Get().Files().CloseHandle(file));
  std::byte byte{};
  std::uint32_t done = 0;
  std::int64_t position = 0;
  BY_HANDLE_FILE_INFORMATION information;
  EXPECT_FALSE(ground.Get().Files().ReadFile(file, {&byte, 1}, done));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_FALSE(ground.Get().Files().SetFilePointerEx(file, 0, position, FILE_BEGIN));
  EXPECT_FALSE(ground.Get().Files().GetFileInformationByHandle(file, information));
  EXPECT_FALSE(ground.Get().Files().CloseHandle(file));
}

void CompressedSize(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "abc");
  std::uint32_t high = 77;
  ground.Get().SetLastError(9999);
  EXPECT_NE(ground.Get().Files().GetCompressedFileSizeW(ground.PathOf(u"file"), high), 0xFFFFFFFFU);
  EXPECT_EQ(high, 0U);
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_SUCCESS);
  EXPECT_EQ(ground.Get().Files().GetCompressedFileSizeW(ground.PathOf(u"none"), high), 0xFFFFFFFFU);
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_FILE_NOT_FOUND);
}

void ShortPaths(MachineUnderTest& ground) {
  ground.MakeFile(u"a long folder name\\a long file name.text", "abc");
  const Text path = ground.PathOf(u"a long folder name\\a long file name.text");
  const Text shortened = ground.Get().Files().GetShortPathNameW(path);
  ASSERT_FALSE(shortened.empty());
  WIN32_FIND_DATAW entry;
  const HANDLE search = ground.Get().Find().FindFirstFileW(shortened, entry);
  ASSERT_NE(search, INVALID_HANDLE) << ToUtf8(shortened);
  EXPECT_EQ(entry.cFileName, u"a long file name.text");
  ground.Get().Find().FindClose(search);
  EXPECT_EQ(ground.Get().Files().GetShortPathNameW(path + u"x"), u"");
}

void NoProgram(MachineUnderTest& ground) {
  ground.MakeFile(u"text.exe", "MZ is how this text begins");
  EXPECT_EQ(ground.Get().Files().GetBinaryTypeW(ground.PathOf(u"text.exe")), std::nullopt);
  EXPECT_EQ(ground.Get().Files().GetBinaryTypeW(ground.PathOf(u"none.exe")), std::nullopt);
  EXPECT_EQ(ground.Get().Versions().GetFileVersionInfoSizeW(ground.PathOf(u"text.exe")), 0U);
}

void MakingFolders(MachineUnderTest& ground) {
  const auto code = [&](TextView relative) {
    return ground.Get().Disk().CreateDirectoryW(ground.PathOf(relative))
               ? 0U
               : ground.Get().GetLastError();
  };
  ground.MakeFile(u"file", "x");
  EXPECT_EQ(code(u"new"), 0U);
  EXPECT_EQ(code(u"new"), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(code(u"new\\below\\"), 0U);
  EXPECT_EQ(code(u"file"), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(code(u"none\\below"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(code(u"file\\below"), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(code(u"what?"), ERROR_INVALID_NAME);
  EXPECT_EQ(ListFolder(ground.Get(), ground.PathOf(u"new\\*")).names, std::vector<Text>{u"below"});
}

void KeptOutOfFile(MachineUnderTest& ground) {
  if (!ground.CanKeepOut()) GTEST_SKIP() << "nobody can be kept out here";
  ground.MakeFile(u"shut", "secret");
  ground.KeepOut(u"shut");
  EXPECT_EQ(OpeningCode(ground, u"shut", GENERIC_READ, OPEN_EXISTING), ERROR_ACCESS_DENIED);
  EXPECT_NE(ground.Get().Files().GetFileAttributesW(ground.PathOf(u"shut")),
            INVALID_FILE_ATTRIBUTES);
}

constexpr ConformanceRow rows[] = {
    {"cFSXFile.LoadFileInfo", "opening what is missing says what is missing and makes nothing",
     OpenMissing},
    {"cBinaryFileStream.OpenFile", "each disposition makes, keeps or empties as its name says",
     Dispositions},
    {"cBinaryFileStream.OpenFile", "an unknown disposition is 87", WrongDisposition},
    {"PB_GetFileCrc32", "reading in sequence ends with a success of no bytes", ReadToTheEnd},
    {"cBinaryFileStream.ReadFromFile", "positions count from the beginning, here or the end",
     Positions},
    {"PB_GetFileCrc32", "reading at a position moves nothing and answers its code",
     ReadingAtAPosition},
    {"cBinaryFileStream.ReadFromFile", "positions above 4 GiB are reached", PositionsBeyondFourGiB},
    {"GetEncodingOfFile", "two handles of one file have positions of their own", OwnPositions},
    {"cFSXFile.LoadFileInfo", "facts by handle are those of the listing", InformationAgrees},
    {"cFSXFileSystemObject.GetFile", "a folder is not opened as a file", FoldersAreNoFiles},
    {"RemoveFile", "a read-only file is not opened for writing", ReadOnlyFiles},
    {"cBinaryFileStream.WriteToFile", "a handle does only what it was opened for", AccessIsKept},
    {"AppendStringToFile", "append access writes at the end", Appending},
    {"cBinaryFileStream.WriteToFile", "writing replaces in place and fills a gap with zeros",
     WritingInPlace},
    {"cBinaryFileStream.SetFileSize", "the end of a file is set both ways", SettingTheEnd},
    {"cBinaryFileStream", "a closed file is an invalid handle", ClosedFile},
    {"cFSXFile.CompressedSize", "the size on disk clears the last error", CompressedSize},
    {"GetShortPath", "a short path names the same file", ShortPaths},
    {"cFSXFile.IsEXE", "a text named as a program is none and has no version", NoProgram},
    {"MakeSureDirectoryPathExists", "folders are made one level at a time", MakingFolders},
    {"cFSXFile.HasReadPermission", "a file that keeps one out is 5 and still described",
     KeptOutOfFile},
};

}  // namespace

std::span<const ConformanceRow> FileRows() {
  return rows;
}

}  // namespace quillmarsh
