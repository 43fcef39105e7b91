// SPDX-License-Identifier: MIT
// The text of a profile file: headings in brackets, lines "key=value", comments behind ';'. Changed
// in place: whatever a change does not name keeps its place and its bytes, line ends included.
// Time and memory grow with the length of the text alone, whatever stands in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/Text.h"

namespace quillmarsh {

class ProfileText {
 public:
  // UTF-16 where the little-endian mark comes first, else the 8-bit code page.
  explicit ProfileText(std::string_view bytes);
  // In the encoding that it came in. What that cannot express has become '?'.
  [[nodiscard]] std::string Bytes() const;

  // Names of sections and keys are compared without regard to case and to blanks around them.
  // Given names end before a line break or a NUL, and so do values. Of equal sections and of equal
  // keys in one section the first one counts.

  // The value as it stands, without the blanks around it; none where there is no such key. Lives as
  // long as the text is not changed.
  [[nodiscard]] std::optional<TextView> Find(TextView section, TextView key) const;

  // A new key goes behind the section's last one, a new section to the end. A line that says the
  // same already is left alone.
  void SetKey(TextView section, TextView key, TextView value);
  // With every line of that key.
  void RemoveKey(TextView section, TextView key);
  // Comments stay.
  void RemoveSection(TextView section);
  // Replaces a section's keys by lines that a NUL each ends, up to the first empty one.
  void SetSection(TextView section, TextView entries);

 private:
  struct Range;
  [[nodiscard]] Range FindSection(TextView section) const;
  [[nodiscard]] Text Expressible(TextView text) const;
  [[nodiscard]] Text NameOf(TextView given) const;
  void Insert(std::size_t place, Text lines);

  bool mIsUtf16 = false;
  Text mText;
  std::string mHalfUnit;  // a last byte that is no whole unit
};

}  // namespace quillmarsh
