// SPDX-License-Identifier: MIT
// Where the prefix of long paths begins and ends, and the decoding of marked and unmarked text.
// Only the look at a file's first bytes asks the disk.
#include "fsobjects/modUnicode.h"

#include <algorithm>
#include <array>

#include "fsobjects/Handles.h"
#include "platform/Machine.h"

namespace quillmarsh {
namespace {

constexpr TextView kPrefix = u"\\\\?\\";
constexpr TextView kUncPrefix = u"\\\\?\\UNC\\";
// Backup semantics, sequential scan and every ordinary attribute.
constexpr std::uint32_t kProbeFlags = 0xA0001A7;

std::uint32_t Unit(std::byte byte) {
  return std::to_integer<std::uint32_t>(byte);
}

std::string_view Chars(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

Text ToLongPath(TextView path) {
  if (path.size() <= kLongPathLimit || path.starts_with(kPrefix)) return Text(path);
  if (IsUNCPath(path)) return Text(kUncPrefix).append(path.substr(2));
  return Text(kPrefix).append(path);
}

// The limit counts here too, although the prefix takes part of it: GetShortPathNameW may shorten a
// prefixed path below the limit, and what it gave is then passed on to calls that want the prefix.
Text FromLongPath(TextView path) {
  if (path.size() <= kLongPathLimit || !path.starts_with(kPrefix)) return Text(path);
  path.remove_prefix(kPrefix.size());
  if (!path.starts_with(u"UNC")) return Text(path);
  return Text(u"\\").append(path.substr(3));
}

bool IsUNCPath(TextView path) {
  return path.starts_with(u"\\\\");
}

bool ContainsUnicodeChars(TextView text) {
  return std::ranges::any_of(text, [](char16_t unit) { return unit > 0xFF; });
}

Text TrimAtNull(TextView buffer) {
  return Text(buffer.substr(0, buffer.find(u'\0')));
}

Text GetStringFromPointer(const char16_t* pointer) {
  return pointer == nullptr ? Text() : Text(pointer);
}

// Fewer than four bytes have no mark: a file that holds nothing but its mark reads as an empty
// 8-bit text, to which the writers put the mark again.
TextEncoding DetectBOM(std::span<const std::byte> bytes) {
  if (bytes.size() < 4) return TextEncoding::None;
  if (Unit(bytes[0]) == 0xEF && Unit(bytes[1]) == 0xBB && Unit(bytes[2]) == 0xBF)
    return TextEncoding::Utf8;
  if (Unit(bytes[0]) == 0xFF && Unit(bytes[1]) == 0xFE) return TextEncoding::Utf16LittleEndian;
  return TextEncoding::None;
}

TextEncoding GetEncodingOfFile(TextView path) {
  const RedirectionOff redirection;
  FileInputOutput& files = TheMachine().Files();
  const FileHandle file(
      files.CreateFileW(ToLongPath(path), GENERIC_READ, 0, OPEN_EXISTING, kProbeFlags));
  if (!file.IsValid()) return TextEncoding::None;
  BY_HANDLE_FILE_INFORMATION information;
  if (!files.GetFileInformationByHandle(file.Get(), information)) return TextEncoding::None;
  if (information.nFileSizeHigh == 0 && information.nFileSizeLow < 3) return TextEncoding::None;
  // Four bytes of which three are read, so that a file of three bytes can have a mark.
  std::array<std::byte, 4> head{};
  std::uint32_t done = 0;
  if (!files.ReadFile(file.Get(), std::span(head).first(3), done)) return TextEncoding::None;
  return DetectBOM(head);
}

Text BytesToStringANSI(std::span<const std::byte> bytes, std::size_t count) {
  return FromCodePage1252(Chars(bytes.first(std::min(count, bytes.size()))));
}

std::string StringToUTF8(TextView text) {
  return ToUtf8(text);
}

// Knows the lead bytes 0xE1 (three bytes) and 0xC3 to 0xC6 (two bytes) and no other: every other
// byte is one character of the 8-bit code page. Files that earlier versions wrote as UTF-8 and as
// 8-bit text both read back by it, so a general decoder would garble the second kind. One byte
// alone is the upper bound of an array that holds nothing, and gives nothing.
Text UTF8BytesToString(std::span<const std::byte> bytes) {
  Text text;
  if (bytes.size() < 2) return text;
  text.reserve(bytes.size());
  for (std::size_t place = 0; place < bytes.size();) {
    const std::uint32_t lead = Unit(bytes[place]);
    std::size_t length = lead == 0xE1 ? 3 : lead >= 0xC3 && lead <= 0xC6 ? 2 : 1;
    if (place + length > bytes.size()) length = 1;  // cut off by the end
    const auto sequence = bytes.subspan(place, length);
    if (length > 1) {
      text += DecodeUTF8Sequence(sequence);
    } else {
      text += FromCodePage1252(Chars(sequence));
    }
    place += length;
  }
  return text;
}

char16_t DecodeUTF8Sequence(std::span<const std::byte> bytes) {
  switch (bytes.size()) {
    case 0:
      return u'\0';
    case 1:
      return static_cast<char16_t>(Unit(bytes[0]));
    case 2:
      return static_cast<char16_t>((Unit(bytes[0]) & ~0xE0U) * 64 + (Unit(bytes[1]) & 63U));
    default:
      return static_cast<char16_t>(((Unit(bytes[0]) & ~0xF0U) * 64 + (Unit(bytes[1]) & 63U)) * 64 +
                                   (Unit(bytes[2]) & 63U));
  }
}

}  // namespace quillmarsh
