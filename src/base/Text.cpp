// SPDX-License-Identifier: MIT
// Conversions of text at the program's edges: UTF-8, code page 1252, decimal numbers.
#include "base/Text.h"

#include <array>
#include <charconv>

namespace quillmarsh {
namespace {

constexpr char32_t Replacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string& bytes, char32_t point) {
  const auto tail = [](char32_t bits) { return static_cast<char>(0x80U | (bits & 0x3FU)); };
  if (point < 0x80) {
    bytes += static_cast<char>(point);
  } else if (point < 0x800) {
    bytes += {static_cast<char>(0xC0U | (point >> 6U)), tail(point)};
  } else if (point < 0x10000) {
    bytes += {static_cast<char>(0xE0U | (point >> 12U)), tail(point >> 6U), tail(point)};
  } else {
    bytes += {static_cast<char>(0xF0U | (point >> 18U)), tail(point >> 12U), tail(point >> 6U),
              tail(point)};
  }
}

enum class LoneSurrogates { Replaced, Kept };

struct Decoded {
  char32_t point = Replacement;
  std::size_t length = 1;
};

// The code point at the front of not empty bytes; the replacement and length 1 for what is no
// UTF-8: a stray or missing tail byte, a longer form than needed, a surrogate that is not to be
// kept, beyond U+10FFFF.
Decoded DecodeFront(std::string_view bytes, LoneSurrogates surrogates) {
  static constexpr std::array<char32_t, 5> Smallest = {0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(bytes.front());
  if (lead < 0x80) return {lead, 1};
  std::size_t length = 0;
  if (lead >= 0xC2 && lead <= 0xDF) length = 2;
  if (lead >= 0xE0 && lead <= 0xEF) length = 3;
  if (lead >= 0xF0 && lead <= 0xF4) length = 4;
  if (length == 0 || bytes.size() < length) return {};
  char32_t point = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto tail = static_cast<unsigned char>(bytes[i]);
    if ((tail & 0xC0U) != 0x80U) return {};
    point = (point << 6U) | (tail & 0x3FU);
  }
  const bool isSurrogate = IsHighSurrogate(point) || IsLowSurrogate(point);
  if (point < Smallest[length] || point > 0x10FFFF ||
      (isSurrogate && surrogates == LoneSurrogates::Replaced))
    return {};
  return {point, length};
}

// What code page 1252 has at 0x80 to 0x9F; all other codes are those of U+0000 to U+00FF.
constexpr std::array<char16_t, 32> CodePage1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char ByteOfCodePage1252(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<char>(unit);
  for (std::size_t i = 0; i < CodePage1252High.size(); ++i)
    if (CodePage1252High[i] == unit) return static_cast<char>(0x80U + i);
  return '?';
}

std::string Encoded(TextView text, LoneSurrogates surrogates) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t point = text[i];
    if (IsHighSurrogate(point) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      point = 0x10000 + ((point - 0xD800) << 10U) + (static_cast<char32_t>(text[++i]) - 0xDC00);
    } else if (surrogates == LoneSurrogates::Replaced &&
               (IsHighSurrogate(point) || IsLowSurrogate(point))) {
      point = Replacement;
    }
    AppendUtf8(bytes, point);
  }
  return bytes;
}

Text DecodedText(std::string_view bytes, LoneSurrogates surrogates) {
  Text text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Decoded decoded = DecodeFront(bytes, surrogates);
    if (decoded.point < 0x10000) {
      text += static_cast<char16_t>(decoded.point);
    } else {
      text += static_cast<char16_t>(0xD800 + ((decoded.point - 0x10000) >> 10U));
      text += static_cast<char16_t>(0xDC00 + ((decoded.point - 0x10000) & 0x3FFU));
    }
    bytes.remove_prefix(decoded.length);
  }
  return text;
}

}  // namespace

std::string ToUtf8(TextView text) {
  return Encoded(text, LoneSurrogates::Replaced);
}

Text FromUtf8(std::string_view bytes) {
  return DecodedText(bytes, LoneSurrogates::Replaced);
}

std::string ToWtf8(TextView text) {
  return Encoded(text, LoneSurrogates::Kept);
}

Text FromWtf8(std::string_view bytes) {
  return DecodedText(bytes, LoneSurrogates::Kept);
}

Text DecimalText(std::int64_t number) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return Text(digits.data(), end);
}

Text FromCodePage1252(std::string_view bytes) {
  Text text(bytes.size(), u'\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text[i] = byte >= 0x80 && byte <= 0x9F ? CodePage1252High[byte - 0x80U] : byte;
  }
  return text;
}

std::string ToCodePage1252(TextView text) {
  std::string bytes(text.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) bytes[i] = ByteOfCodePage1252(text[i]);
  return bytes;
}

TextView TrimBlanks(TextView text) {
  while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

}  // namespace quillmarsh
