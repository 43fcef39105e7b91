// SPDX-License-Identifier: MIT
// Comparison by the table of upper-case mappings. Most texts that are compared are equal unit by
// unit or differ soon, so whole words are compared first and the table is asked only where they
// differ.
#include "base/TextEquality.h"

#include <cstdint>
#include <cstring>

#include "base/CaseMapping.h"

namespace quillmarsh {
namespace {

constexpr std::size_t UnitsPerWord = sizeof(std::uint64_t) / sizeof(char16_t);

std::uint64_t WordAt(const char16_t* units) {
  std::uint64_t word = 0;
  std::memcpy(&word, units, sizeof(word));
  return word;
}

// The place of the first unit in which two stretches differ when case is ignored, `count` if none.
std::size_t FirstDifference(const char16_t* a, const char16_t* b, std::size_t count) {
  std::size_t place = 0;
  while (place < count) {
    if (count - place >= UnitsPerWord && WordAt(a + place) == WordAt(b + place)) {
      place += UnitsPerWord;
      continue;
    }
    const std::size_t stop = count - place < UnitsPerWord ? count : place + UnitsPerWord;
    for (; place < stop; ++place)
      if (a[place] != b[place] && UpperCase(a[place]) != UpperCase(b[place])) return place;
  }
  return count;
}

}  // namespace

bool AreStringsEqual(TextView a, TextView b, bool textMode) {
  if (a.size() != b.size()) return false;
  if (!textMode) return a == b;
  return FirstDifference(a.data(), b.data(), a.size()) == a.size();
}

int CompareIgnoringCase(TextView a, TextView b) {
  const std::size_t common = a.size() < b.size() ? a.size() : b.size();
  const std::size_t place = FirstDifference(a.data(), b.data(), common);
  if (place < common) return UpperCase(a[place]) < UpperCase(b[place]) ? -1 : 1;
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool StartsWithIgnoringCase(TextView text, TextView part) {
  return text.size() >= part.size() &&
         FirstDifference(text.data(), part.data(), part.size()) == part.size();
}

bool ContainsIgnoringCase(TextView text, TextView part) {
  if (part.empty()) return true;
  if (part.size() > text.size()) return false;
  const char16_t first = UpperCase(part.front());
  const std::size_t lastStart = text.size() - part.size();
  for (std::size_t start = 0; start <= lastStart; ++start) {
    if (UpperCase(text[start]) != first) continue;
    if (FirstDifference(text.data() + start, part.data(), part.size()) == part.size()) return true;
  }
  return false;
}

Text ReplaceAll(TextView text, TextView from, TextView to) {
  Text result;
  if (from.empty()) return result = text;
  std::size_t begin = 0;
  for (std::size_t found = text.find(from); found != TextView::npos;
       found = text.find(from, begin)) {
    result.append(text.substr(begin, found - begin)).append(to);
    begin = found + from.size();
  }
  return result.append(text.substr(begin));
}

}  // namespace quillmarsh
