// SPDX-License-Identifier: MIT
// Masks are made of the table's extensions each time they are asked for, which is rare.
#include "filetypes/DefaultFileMasks.h"

#include <algorithm>
#include <iterator>

#include "filetypes/ListText.h"
#include "fsobjects/clsStringAppend.h"

namespace quillmarsh {
namespace {

struct DefaultMasksRow {
  std::int32_t number;
  TextView extensions;
};

constexpr DefaultMasksRow kRows[] = {
#include "filetypes/DefaultFileMaskRows.inc"
};

// A row is found by its place.
static_assert(std::size(kRows) == 10);
static_assert([] {
  std::int32_t place = 0;
  return std::ranges::all_of(kRows,
                             [&](const DefaultMasksRow& row) { return row.number == place++; });
}());

}  // namespace

Text DefaultFileMasksOf(std::int32_t number, TextView separator) {
  if (number < 0 || number >= std::ssize(kRows)) return {};
  if (separator.empty()) separator = u",";
  clsStringAppend masks;
  for (const Text& extension : SplitText(kRows[number].extensions, u" ")) {
    if (masks.Length() > 0) masks.Append(separator);
    masks.Append(u"*.");
    masks.Append(extension);
  }
  return masks.CurrentString();
}

Text GetDefaultImageFileMasks(TextView separator) {
  return DefaultFileMasksOf(0, separator);
}
Text GetDefaultAudioFileMasks(TextView separator) {
  return DefaultFileMasksOf(1, separator);
}
Text GetDefaultVideoFileMasks(TextView separator) {
  return DefaultFileMasksOf(2, separator);
}
Text GetDefaultEmailFileMasks(TextView separator) {
  return DefaultFileMasksOf(3, separator);
}
Text GetDefaultDocumentFileMasks(TextView separator) {
  return DefaultFileMasksOf(4, separator);
}
Text GetDefaultExecutableFileMasks(TextView separator) {
  return DefaultFileMasksOf(5, separator);
}
Text GetDefaultWebFileMasks(TextView separator) {
  return DefaultFileMasksOf(6, separator);
}
Text GetDefaultFinancialFileMasks(TextView separator) {
  return DefaultFileMasksOf(7, separator);
}
Text GetDefaultAppDataFileMasks(TextView separator) {
  return DefaultFileMasksOf(9, separator);
}

}  // namespace quillmarsh
