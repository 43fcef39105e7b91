// SPDX-License-Identifier: MIT
// Each routine is one open, one transfer and one close, under one guard.
#include "fsobjects/modAPIReadWriteFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <vector>

#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/FileTransfers.h"
#include "fsobjects/Handles.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "platform/AtomicFiles.h"

namespace quillmarsh {
namespace {

constexpr TextView kReadSource = u"modAPIReadWriteFile.ReadStringFromFile";
constexpr TextView kLineBreak = u"\r\n";
// Backup semantics, sequential scan and every ordinary attribute.
constexpr std::uint32_t kReadingFlags = 0xA0001A7;

using Bytes = std::span<const std::byte>;

constexpr std::array kUtf8Mark = {std::byte{0xEF}, std::byte{0xBB}, std::byte{0xBF}};
constexpr std::array kUtf16Mark = {std::byte{0xFF}, std::byte{0xFE}};

// The text's own memory is the file form of UTF-16 little-endian.
static_assert(std::endian::native == std::endian::little);
Bytes MemoryOf(TextView text) {
  return std::as_bytes(std::span(text));
}

std::string_view Chars(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// How many bytes a text counts for in a file of an encoding.
std::size_t CountedBytes(TextView text, TextEncoding encoding) {
  return encoding == TextEncoding::None ? text.size() : text.size() * sizeof(char16_t);
}

bool WriteAll(HANDLE file, Bytes bytes) {
  std::size_t done = 0;
  return WriteFully(file, bytes, done);
}

// Any step that failed makes the answer false, though the file is closed all the same.
bool FlushAndClose(FileHandle& file) {
  const bool flushed = TheMachine().Files().FlushFileBuffers(file.Get());
  return TheMachine().Files().CloseHandle(file.Release()) && flushed;
}

constexpr std::array<std::byte, 1> kMissingHalf{};

struct FileSizeWords {
  std::uint32_t high = 0;
  std::uint32_t low = 0;
};

FileSizeWords FindFileSize(TextView fileSpec) {
  const RedirectionOff redirection;
  WIN32_FIND_DATAW entry;
  const FindHandle search(TheMachine().Find().FindFirstFileW(ToLongPath(fileSpec), entry));
  if (!search.IsValid()) return {};
  return {entry.nFileSizeHigh, entry.nFileSizeLow};
}

std::int32_t SizeLong(FileSizeWords size) {
  const std::int64_t value = std::int64_t{static_cast<std::int32_t>(size.low)} -
                             std::int64_t{static_cast<std::int32_t>(size.high)};
  if (value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max())
    throw RuntimeError(runtime_error::Overflow);
  return static_cast<std::int32_t>(value);
}

// Room for a whole file. Error 7 where the size is none that fits: no such memory is asked for, and
// no beginning of a larger file is taken for all of it.
std::vector<std::byte> RoomForFile(FileSizeWords size, std::size_t mostBytes) {
  if (size.high != 0 || size.low > mostBytes) throw RuntimeError(runtime_error::OutOfMemory);
  return std::vector<std::byte>(size.low);
}

constexpr std::size_t kMostBytesRead = std::numeric_limits<std::int32_t>::max();
// Widened and with its mark the file must stay a file that can be read.
constexpr std::size_t kMostBytesConverted = (kMostBytesRead - kUtf16Mark.size()) / 2;

Text Utf16OfBytes(Bytes bytes) {
  Text text(bytes.size() / sizeof(char16_t), u'\0');
  const std::span<std::byte> memory = std::as_writable_bytes(std::span(text));
  std::ranges::copy(bytes.first(memory.size()), memory.begin());
  return text;
}

Text Decoded(Bytes bytes) {
  switch (DetectBOM(bytes)) {
    case TextEncoding::Utf16LittleEndian:
      return Utf16OfBytes(bytes);
    case TextEncoding::Utf8:
      return UTF8BytesToString(bytes);
    case TextEncoding::None:
      break;
  }
  return BytesToStringANSI(bytes, bytes.size());
}

Text ReadWholeText(TextView fileSpec) {
  const FileSizeWords size = FindFileSize(fileSpec);
  if (size.high == 0 && size.low == 0) return {};
  std::vector<std::byte> bytes = RoomForFile(size, kMostBytesRead);
  const RedirectionOff redirection;
  const FileHandle file(TheMachine().Files().CreateFileW(ToLongPath(fileSpec), GENERIC_READ, 0,
                                                         OPEN_EXISTING, kReadingFlags));
  std::size_t done = 0;
  if (!file.IsValid() || !ReadFully(file.Get(), bytes, done)) return {};
  return Decoded(Bytes(bytes).first(done));
}

void TellThatFileIsTooLarge(TextView fileSpec) {
  const Text lineBreak(kLineBreak);
  Text message = LoadResString(157) + u": 7" + lineBreak;
  message += LoadResString(158) + u": " + LoadResString(944) + lineBreak;
  message += LoadResString(945) + u": " + Text(kReadSource) + lineBreak + lineBreak;
  message += LoadResString(393) + u": " + TheMachine().Drives().ShownPath(fileSpec) + lineBreak;
  message += lineBreak + LoadResString(946);
  ShowMessageBox({message, LoadResString(947), MessageBoxIcon::Exclamation});
}

void DeleteForEmptyText(TextView fileSpec) {
  const RedirectionOff redirection;
  if (TheMachine().Disk().DeleteFileW(ToLongPath(fileSpec))) return;
  const Text shown = TheMachine().Drives().ShownPath(fileSpec);
  ShowMessageBox({LoadResString(128) + shown + Text(kLineBreak) + LoadResString(129),
                  LoadResString(130), MessageBoxIcon::Exclamation});
}

// UTF-8 is cut at the length that the text has in UTF-16, so a text of characters that take three
// bytes each loses its end: for such texts there is UTF-16. A form that is shorter is written as
// long as it is.
std::string NarrowForm(TextView text, TextEncoding encoding) {
  std::string form = encoding == TextEncoding::None ? ToCodePage1252(text) : StringToUTF8(text);
  form.resize(std::min(form.size(), CountedBytes(text, encoding)));
  return form;
}

bool AppendText(TextView fileSpec, TextView text, TextEncoding encoding, FlushToDisk flush) {
  const RedirectionOff redirection;
  FileInputOutput& files = TheMachine().Files();
  FileHandle file(files.CreateFileW(ToLongPath(fileSpec), FILE_APPEND_DATA, 0, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL));
  if (!file.IsValid()) return false;
  BY_HANDLE_FILE_INFORMATION information;
  if (!files.GetFileInformationByHandle(file.Get(), information)) return false;
  const bool isEmpty = information.nFileSizeHigh == 0 && information.nFileSizeLow == 0;
  if (isEmpty && !WriteBOM(file.Get(), encoding)) return false;
  // A batch that broke off within a character would shift all that follow.
  const bool isTorn =
      encoding == TextEncoding::Utf16LittleEndian && information.nFileSizeLow % 2 != 0;
  if (isTorn && !WriteAll(file.Get(), Bytes(kMissingHalf))) return false;
  const Bytes bytes = MemoryOf(text).first(CountedBytes(text, encoding));
  if (!WriteAll(file.Get(), bytes)) return false;
  return flush == FlushToDisk::Now ? FlushAndClose(file)
                                   : TheMachine().Files().CloseHandle(file.Release());
}

bool WriteNewFile(TextView fileSpec, TextView text, TextEncoding encoding) {
  const RedirectionOff redirection;
  FileHandle file(TheMachine().Files().CreateFileW(
      ToLongPath(fileSpec), GENERIC_READ | GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL));
  if (!file.IsValid() || !WriteBOM(file.Get(), encoding)) return false;
  const bool isWide = encoding == TextEncoding::Utf16LittleEndian;
  const std::string narrow = isWide ? std::string() : NarrowForm(text, encoding);
  const Bytes bytes = isWide ? MemoryOf(text) : std::as_bytes(std::span(narrow));
  return WriteAll(file.Get(), bytes) && FlushAndClose(file);
}

// The bytes of a file that nobody else has open and that may be written; a missing file has none.
// The size is taken while the file is held, so that nothing which is added meanwhile gets lost.
bool ReadForConversion(TextView fileSpec, std::vector<std::byte>& bytes) {
  FileInputOutput& files = TheMachine().Files();
  const FileHandle file(files.CreateFileW(ToLongPath(fileSpec), GENERIC_READ | GENERIC_WRITE, 0,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  if (!file.IsValid()) return TheMachine().GetLastError() == ERROR_FILE_NOT_FOUND;
  BY_HANDLE_FILE_INFORMATION information;
  if (!files.GetFileInformationByHandle(file.Get(), information)) return false;
  bytes = RoomForFile({information.nFileSizeHigh, information.nFileSizeLow}, kMostBytesConverted);
  std::size_t done = 0;
  if (!ReadFully(file.Get(), bytes, done)) return false;
  bytes.resize(done);
  return true;
}

bool ConvertFile(TextView fileSpec) {
  const RedirectionOff redirection;
  std::vector<std::byte> bytes;
  if (!ReadForConversion(fileSpec, bytes)) return false;
  const Text text = BytesToStringANSI(bytes, bytes.size());
  std::string wide(Chars(kUtf16Mark));
  wide += Chars(MemoryOf(text));
  return ReplaceFileContents(TheMachine(), ToLongPath(fileSpec), wide);
}

}  // namespace

bool AppendStringToFile(TextView fileSpec, TextView text, TextEncoding encoding,
                        FlushToDisk flush) {
  if (text.empty()) return true;
  bool appended = false;
  Guarded(u"modAPIReadWriteFile.AppendStringToFile",
          [&] { appended = AppendText(fileSpec, text, encoding, flush); });
  return appended;
}

bool WriteStringToFile(TextView fileSpec, TextView text, bool overwrite, TextEncoding encoding) {
  bool written = false;
  Guarded(u"modAPIReadWriteFile.WriteStringToFile", [&] {
    const bool exists = FSXFileExists(fileSpec);
    if (exists && !overwrite) return;
    if (text.empty()) {
      if (exists) DeleteForEmptyText(fileSpec);
      written = true;
    } else {
      written = WriteNewFile(fileSpec, text, encoding);
    }
  });
  return written;
}

Text ReadStringFromFile(TextView fileSpec) {
  try {
    return ReadWholeText(fileSpec);
  } catch (...) {
    TakePendingErrorFromException();
  }
  if (gPendingError.number == runtime_error::OutOfMemory) {
    Guarded(kReadSource, [&] { TellThatFileIsTooLarge(fileSpec); });
  } else {
    ReportError(kReadSource, {});
  }
  return {};
}

bool ConvertASCIIFileToUTF16(TextView fileSpec) {
  bool converted = false;
  Guarded(u"modAPIReadWriteFile.ConvertASCIIFileToUTF16",
          [&] { converted = ConvertFile(fileSpec); });
  return converted;
}

bool IsFileUTF16(TextView fileSpec) {
  return GetEncodingOfFile(fileSpec) == TextEncoding::Utf16LittleEndian;
}

bool WriteBOM(HANDLE file, TextEncoding encoding) {
  if (file == INVALID_HANDLE) return false;
  switch (encoding) {
    case TextEncoding::None:
      return true;
    case TextEncoding::Utf8:
      return WriteAll(file, kUtf8Mark);
    case TextEncoding::Utf16LittleEndian:
      return WriteAll(file, kUtf16Mark);
  }
  return false;
}

std::int32_t GetFileSizeLong(TextView fileSpec) {
  return SizeLong(FindFileSize(fileSpec));
}

}  // namespace quillmarsh
