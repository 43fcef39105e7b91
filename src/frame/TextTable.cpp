// SPDX-License-Identifier: MIT
// Look-up in the text table by binary search: the rows stand in ascending order of id.
#include "frame/TextTable.h"

#include <algorithm>
#include <iterator>

#include "base/RuntimeError.h"
#include "base/TextEquality.h"

namespace quillmarsh {

namespace {

constexpr std::int32_t kResourceNotFound = 326;

constexpr bool IdsAscend() {
  for (std::size_t i = 1; i < std::size(kTextTable); ++i) {
    if (kTextTable[i - 1].id >= kTextTable[i].id) return false;
  }
  return true;
}
static_assert(IdsAscend(), "ids are unique and in order");

}  // namespace

Text LoadResStringAt(int id) {
  const auto* row =
      std::lower_bound(std::begin(kTextTable), std::end(kTextTable), id,
                       [](const TextTableRow& r, int wanted) { return r.id < wanted; });
  if (row == std::end(kTextTable) || row->id != id) {
    throw RuntimeError(kResourceNotFound, u"LoadResString",
                       u"Resource with identifier '" + DecimalText(id) + u"' not found");
  }
  return Text(row->text);
}

Text LoadResString(TextId id) {
  return LoadResStringAt(id.Number());
}

Text BoolToText(bool value) {
  return value ? LoadResString(181) : LoadResString(182);
}

bool TextToBool(TextView text) {
  return AreStringsEqual(text, LoadResString(181), true);
}

}  // namespace quillmarsh
