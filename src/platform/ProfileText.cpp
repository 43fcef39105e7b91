// SPDX-License-Identifier: MIT
// Lines end with CR LF, or with one of the two alone. Leading blanks of a line do not count.
#include "platform/ProfileText.h"

#include <algorithm>

#include "base/TextEquality.h"

namespace quillmarsh {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr TextView kLineBreak = u"\r\n";

enum class LineKind { Blank, Comment, Heading, Key, Other };

struct Line {
  std::size_t begin = 0;
  std::size_t end = 0;  // behind its line break
  LineKind kind = LineKind::Blank;
  TextView name;   // of a heading or a key
  TextView value;  // of a key
};

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\v';
}

TextView WithoutBlanks(TextView text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool EndsLine(char16_t unit) {
  return unit == u'\r' || unit == u'\n';
}

bool IsSameName(TextView a, TextView b) {
  return AreStringsEqual(a, b, true);
}

// What an interface of zero-terminated texts would pass, as far as it fits into one line.
TextView OneLine(TextView text) {
  std::size_t size = 0;
  while (size < text.size() && text[size] != u'\0' && !EndsLine(text[size])) ++size;
  return text.substr(0, size);
}

// A heading ends at the last bracket of its line, since a section's name may hold one. Without any
// it is a line like others.
void Classify(TextView content, Line& line) {
  content = WithoutBlanks(content);
  if (content.empty()) return;
  line.kind = LineKind::Other;
  if (content.front() == u';') {
    line.kind = LineKind::Comment;
    return;
  }
  const std::size_t bracket = content.front() == u'[' ? content.rfind(u']') : TextView::npos;
  if (bracket != TextView::npos) {
    line.kind = LineKind::Heading;
    line.name = WithoutBlanks(content.substr(1, bracket - 1));
    return;
  }
  const std::size_t sign = content.find(u'=');
  if (sign == TextView::npos) return;
  line.kind = LineKind::Key;
  line.name = WithoutBlanks(content.substr(0, sign));
  line.value = WithoutBlanks(content.substr(sign + 1));
}

Line LineAt(TextView text, std::size_t begin) {
  std::size_t end = begin;
  while (end < text.size() && !EndsLine(text[end])) ++end;
  Line line;
  line.begin = begin;
  Classify(text.substr(begin, end - begin), line);
  const bool isPair = text.substr(end).starts_with(kLineBreak);
  line.end = end + (end == text.size() ? 0 : isPair ? 2 : 1);
  return line;
}

Text KeyLine(TextView key, TextView value) {
  return Text(key).append(u"=").append(value).append(kLineBreak);
}

Text HeadingLine(TextView section) {
  return Text(u"[").append(section).append(u"]").append(kLineBreak);
}

}  // namespace

// From the heading's line to the next heading or the end; `body` is where the heading's line ends.
struct ProfileText::Range {
  bool found = false;
  std::size_t begin = 0;
  std::size_t body = 0;
  std::size_t end = 0;
};

ProfileText::ProfileText(std::string_view bytes) : mIsUtf16(bytes.starts_with(kUtf16Mark)) {
  if (!mIsUtf16) {
    mText = FromCodePage1252(bytes);
    return;
  }
  bytes.remove_prefix(kUtf16Mark.size());
  mText.resize(bytes.size() / 2);
  for (std::size_t i = 0; i < mText.size(); ++i)
    mText[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                     static_cast<unsigned char>(bytes[2 * i + 1]) << 8U);
  mHalfUnit = bytes.substr(2 * mText.size());
}

std::string ProfileText::Bytes() const {
  if (!mIsUtf16) return ToCodePage1252(mText);
  std::string bytes(kUtf16Mark);
  bytes.reserve(bytes.size() + 2 * mText.size() + mHalfUnit.size());
  for (const char16_t unit : mText) {
    bytes += static_cast<char>(unit & 0xFFU);
    bytes += static_cast<char>(unit >> 8U);
  }
  return bytes + mHalfUnit;
}

Text ProfileText::Expressible(TextView text) const {
  return mIsUtf16 ? Text(text) : FromCodePage1252(ToCodePage1252(text));
}

Text ProfileText::NameOf(TextView given) const {
  return Expressible(WithoutBlanks(OneLine(given)));
}

ProfileText::Range ProfileText::FindSection(TextView section) const {
  Range range;
  const Text name = NameOf(section);
  for (std::size_t place = 0; place < mText.size();) {
    const Line line = LineAt(mText, place);
    place = line.end;
    if (line.kind != LineKind::Heading) continue;
    if (range.found) {
      range.end = line.begin;
      return range;
    }
    if (!IsSameName(line.name, name)) continue;
    range = {true, line.begin, line.end, mText.size()};
  }
  return range;
}

std::optional<TextView> ProfileText::Find(TextView section, TextView key) const {
  const Range range = FindSection(section);
  const Text name = NameOf(key);
  for (std::size_t place = range.body; place < range.end;) {
    const Line line = LineAt(mText, place);
    if (line.kind == LineKind::Key && IsSameName(line.name, name)) return line.value;
    place = line.end;
  }
  return std::nullopt;
}

// Whole lines, which begin on a line of their own also behind a last line without an end.
void ProfileText::Insert(std::size_t place, Text lines) {
  if (place > 0 && !EndsLine(mText[place - 1])) lines.insert(0, kLineBreak);
  mText.insert(place, lines);
}

void ProfileText::SetKey(TextView section, TextView key, TextView value) {
  const Text name = NameOf(key);
  const Text newValue = Expressible(OneLine(value));
  const Range range = FindSection(section);
  if (!range.found) {
    Insert(mText.size(), HeadingLine(NameOf(section)) + KeyLine(name, newValue));
    return;
  }
  std::size_t lastKey = range.body;
  for (std::size_t place = range.body; place < range.end;) {
    const Line line = LineAt(mText, place);
    place = line.end;
    if (line.kind != LineKind::Key) continue;
    lastKey = line.end;
    if (!IsSameName(line.name, name)) continue;
    if (line.value == WithoutBlanks(newValue)) return;
    mText.replace(line.begin, line.end - line.begin, KeyLine(Text(line.name), newValue));
    return;
  }
  Insert(lastKey, KeyLine(name, newValue));
}

void ProfileText::RemoveKey(TextView section, TextView key) {
  const Range range = FindSection(section);
  const Text name = NameOf(key);
  Text kept;
  for (std::size_t place = range.body; place < range.end;) {
    const Line line = LineAt(mText, place);
    const bool goes = line.kind == LineKind::Key && IsSameName(line.name, name);
    if (!goes) kept.append(mText, line.begin, line.end - line.begin);
    place = line.end;
  }
  mText.replace(range.body, range.end - range.body, kept);
}

void ProfileText::RemoveSection(TextView section) {
  const Range range = FindSection(section);
  Text kept;
  for (std::size_t place = range.body; place < range.end;) {
    const Line line = LineAt(mText, place);
    if (line.kind == LineKind::Comment) kept.append(mText, line.begin, line.end - line.begin);
    place = line.end;
  }
  mText.replace(range.begin, range.end - range.begin, kept);
}

void ProfileText::SetSection(TextView section, TextView entries) {
  Text lines;
  while (!entries.empty() && entries.front() != u'\0') {
    const TextView entry = entries.substr(0, entries.find(u'\0'));
    entries.remove_prefix(std::min(entry.size() + 1, entries.size()));
    lines.append(Expressible(OneLine(entry))).append(kLineBreak);
  }
  const Range range = FindSection(section);
  if (!range.found) {
    Insert(mText.size(), HeadingLine(NameOf(section)) + lines);
    return;
  }
  Text kept;
  for (std::size_t place = range.body; place < range.end;) {
    const Line line = LineAt(mText, place);
    const bool stays = line.kind == LineKind::Comment || line.kind == LineKind::Blank;
    if (stays) kept.append(mText, line.begin, line.end - line.begin);
    place = line.end;
  }
  mText.replace(range.body, range.end - range.body, kept);
  if (!lines.empty()) Insert(range.body, lines);
}

}  // namespace quillmarsh
