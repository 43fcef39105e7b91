// SPDX-License-Identifier: MIT
// One pass over the marks, or over the groups.
#include "selection/MarkedFiles.h"

#include <algorithm>

#include "base/LocaleFormat.h"
#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"

namespace quillmarsh {

namespace {

bool AreAllMarked(const cSearchResults& results, const std::vector<std::int32_t>& members) {
  return !members.empty() && std::ranges::all_of(members, [&results](std::int32_t member) {
    return IsMarked(results, member);
  });
}

}  // namespace

MarkedTotal GetTotalMarkedCountAndSize(const cSearchResults& results) {
  MarkedTotal total;
  Guarded(u"frmFindDuplicates.GetTotalMarkedCountAndSize", [&] {
    const std::int32_t count = results.RecordCount();
    for (std::int32_t index = 1; index <= count; ++index) {
      if (!IsMarked(results, index)) continue;
      total.count += 1;
      total.size = Currency::SaturatingSum(total.size, results.Record(index).Size);
    }
  });
  return total;
}

void ShowSelectedCountAndSizeInStatusBar(const MarkedTotal& total) {
  Guarded(u"frmFindDuplicates.ShowSelectedCountAndSizeInStatusBar", [&] {
    Text text = LoadResString(1123) + u":";
    if (total.count > 0) {
      text += FormatGrouped(std::int64_t{total.count}, GetLocaleFacts()) + u" (" +
              FormatByteSize(total.size) + u")";
    } else {
      text += u"0";
    }
    SetPanel(FILES_SELECTED, text);
  });
}

bool IsMarked(const cSearchResults& results, std::int32_t index) {
  const std::vector<bool>& marks = results.mFileMarked;
  return index >= 1 && static_cast<std::size_t>(index) <= marks.size() &&
         marks[static_cast<std::size_t>(index) - 1];
}

bool IsWhollyMarked(const cSearchResults& results, std::int32_t group) {
  return AreAllMarked(results, results.MembersOf(group));
}

std::int32_t WhollyMarkedGroupCount(const cSearchResults& results) {
  std::int32_t count = 0;
  std::vector<std::int32_t> members;
  for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
    results.ReadMembers(group, members);
    if (AreAllMarked(results, members)) count += 1;
  }
  return count;
}

}  // namespace quillmarsh
