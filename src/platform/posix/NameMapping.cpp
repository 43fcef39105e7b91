// SPDX-License-Identifier: MIT
// The mapping of names, by one decoder that both the exact and the shown form walk with.
#include "platform/posix/NameMapping.h"

#include <array>
#include <cstdint>

namespace quillmarsh {
namespace {

constexpr char16_t ForbiddenBase = 0xF000;  // + the character
constexpr char16_t ByteBase = 0xDC00;       // + a byte of 0x80 to 0xFF

constexpr std::array<bool, 128> ForbiddenTable = [] {
  std::array<bool, 128> table{};
  for (std::size_t unit = 1; unit < 32; ++unit) table[unit] = true;
  for (const char unit : {'"', '*', ':', '<', '>', '?', '\\', '|'})
    table[static_cast<unsigned char>(unit)] = true;
  return table;
}();

constexpr bool IsForbidden(char32_t point) {
  return point < 128 && ForbiddenTable[point];
}
constexpr bool IsPlain(char16_t unit) {
  return unit != 0 && unit != u'/' && unit < 128 && !ForbiddenTable[unit];
}
// Whether the mapping itself uses this code point for a forbidden character.
constexpr bool IsTaken(char32_t point) {
  return point >= ForbiddenBase && IsForbidden(point - ForbiddenBase);
}

struct Decoded {
  char32_t point = 0;
  std::size_t length = 0;  // 0: the first byte begins no UTF-8 sequence
};

// One sequence of strict UTF-8: shortest form, no surrogates, nothing above U+10FFFF.
Decoded DecodeOne(std::string_view bytes) {
  const auto at = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  const unsigned char lead = at(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {};
  char32_t point = lead & (0x7FU >> length);
  for (std::size_t index = 1; index < length; ++index) {
    if ((at(index) & 0xC0U) != 0x80U) return {};
    point = (point << 6U) | (at(index) & 0x3FU);
  }
  const bool tooLong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
  const bool outside = point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF);
  return tooLong || outside ? Decoded{} : Decoded{point, length};
}

std::size_t PutPoint(char32_t point, char16_t* out) {
  if (point < 0x10000) {
    *out = static_cast<char16_t>(point);
    return 1;
  }
  out[0] = static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10U));
  out[1] = static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FFU));
  return 2;
}

void AppendUtf8(char32_t point, std::string& bytes) {
  const auto tail = [&](unsigned shift) {
    bytes += static_cast<char>(0x80U | ((point >> shift) & 0x3FU));
  };
  if (point < 0x80) {
    bytes += static_cast<char>(point);
  } else if (point < 0x800) {
    bytes += static_cast<char>(0xC0U | (point >> 6U));
    tail(0);
  } else if (point < 0x10000) {
    bytes += static_cast<char>(0xE0U | (point >> 12U));
    tail(6);
    tail(0);
  } else {
    bytes += static_cast<char>(0xF0U | (point >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

constexpr bool IsHigh(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLow(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

char16_t ShownUnit(char32_t point) {
  if (point < 0x20) return static_cast<char16_t>(0x2400 + point);
  if (point == 0x7F) return 0x2421;
  const bool breaksLines = (point >= 0x80 && point < 0xA0) || point == 0x2028 || point == 0x2029;
  return breaksLines ? u'\uFFFD' : static_cast<char16_t>(point);
}

}  // namespace

std::size_t MapName(std::string_view name, char16_t* out) {
  char16_t* const begin = out;
  std::size_t place = 0;
  while (place < name.size()) {
    const auto byte = static_cast<unsigned char>(name[place]);
    if (byte < 128) [[likely]] {
      *out++ = static_cast<char16_t>(ForbiddenTable[byte] ? ForbiddenBase + byte : byte);
      ++place;
      continue;
    }
    const Decoded one = DecodeOne(name.substr(place));
    if (one.length == 0 || IsTaken(one.point)) {
      // A taken code point is carried by its three bytes, none of which begins a sequence of its
      // own when it stands where the decoder looks next: only the first needs to be told here.
      *out++ = static_cast<char16_t>(ByteBase + byte);
      ++place;
      continue;
    }
    out += PutPoint(one.point, out);
    place += one.length;
  }
  return static_cast<std::size_t>(out - begin);
}

void AppendMappedName(std::string_view name, Text& text) {
  const std::size_t before = text.size();
  text.resize(before + name.size());
  text.resize(before + MapName(name, text.data() + before));
}

bool AppendNameBytes(TextView name, std::string& bytes) {
  const std::size_t before = bytes.size();
  bool carriesBytes = false;
  bool isName = true;
  std::size_t plain = 0;  // most names are nothing else
  bytes.resize(before + name.size());
  for (; plain < name.size() && IsPlain(name[plain]); ++plain)
    bytes[before + plain] = static_cast<char>(name[plain]);
  bytes.resize(before + plain);
  for (std::size_t place = plain; place < name.size() && isName; ++place) {
    const char16_t unit = name[place];
    if (unit < 128) {
      isName = unit != 0 && unit != u'/' && !IsForbidden(unit);
      bytes += static_cast<char>(unit);
    } else if (IsTaken(unit)) {
      bytes += static_cast<char>(unit - ForbiddenBase);
    } else if (IsHigh(unit) && place + 1 < name.size() && IsLow(name[place + 1])) {
      AppendUtf8(0x10000 + ((unit - 0xD800U) << 10U) + (name[place + 1] - 0xDC00U), bytes);
      ++place;
    } else if (unit >= ByteBase + 0x80 && unit <= ByteBase + 0xFF) {
      bytes += static_cast<char>(unit - ByteBase);
      carriesBytes = true;
    } else {
      isName = !IsHigh(unit) && !IsLow(unit);
      AppendUtf8(unit, bytes);
    }
  }
  // Carried bytes that together are good UTF-8 would be a second text for one name.
  if (isName && carriesBytes) {
    Text again;
    AppendMappedName(std::string_view(bytes).substr(before), again);
    isName = again == name;
  }
  if (!isName) bytes.resize(before);
  return isName;
}

Text ShownText(std::string_view bytes) {
  Text shown;
  shown.reserve(bytes.size());
  for (std::size_t place = 0; place < bytes.size();) {
    const Decoded one = DecodeOne(bytes.substr(place));
    place += one.length == 0 ? 1 : one.length;
    if (one.length == 0) {
      shown += u'\uFFFD';
    } else if (one.point >= 0x10000) {
      char16_t pair[2];
      shown.append(pair, PutPoint(one.point, pair));
    } else {
      shown += ShownUnit(one.point);
    }
  }
  return shown;
}

}  // namespace quillmarsh
