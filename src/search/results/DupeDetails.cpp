// SPDX-License-Identifier: MIT
// The details list: one group's files, a cell made from the record when it is drawn.
#include <iterator>

#include "base/LocaleFormat.h"
#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/AttributeLetters.h"
#include "fsobjects/LocaleFormats.h"
#include "platform/Machine.h"
#include "search/results/DetailColumns.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

namespace {

// The item data of the line that stands for an emptied group.
constexpr std::int32_t kNoRecord = 0;

constexpr TextId kHeadings[] = {102, 486, 349, 487, 488, 352};

Text SizeText(Currency size) {
  if (size == Currency::FromInteger(-1)) return u"(" + LoadResString(353) + u")";
  return FormatGrouped(size, GetLocaleFacts());
}

Text DateText(Date date) {
  return date.IsValid() ? FormatGeneralDate(date, GetLocaleFacts()) : Text();
}

}  // namespace

int GetDupeDetailColCount() {
  return static_cast<int>(std::size(kHeadings)) + 1;
}

Text GetDupeDetailColLabelFromColNumber(int number) {
  if (number >= 0 && number < static_cast<int>(std::size(kHeadings)))
    return LoadResString(kHeadings[number]);
  ShowMessageBox({u"Ooops.  Unsupported case in GetDupeDetailColLabelFromColNumber", {}});
  return {};
}

void cSearchResults::DisplayDupeGroupDetails(std::int32_t group, bool force) {
  Guarded(u"frmFindDuplicates.DisplayDupeGroupDetails", [&] {
    // mCurrentGroup stays behind when the list goes on to the line of an emptied group.
    const bool isShown = group == mCurrentGroup && ulvwDupeDetails.ItemData(0) != kNoRecord;
    if (!force && isShown) return;
    const std::vector<std::int32_t> members = MembersOf(group);
    const cResultsList::UpdateLock lock(ulvwDupeDetails);
    ulvwDupeDetails.Clear();
    if (members.empty()) return ulvwDupeDetails.Add(kNoRecord);
    for (const std::int32_t member : members) ulvwDupeDetails.Add(member);
    mCurrentGroup = group;
  });
}

Text cSearchResults::DetailCell(std::int32_t index, int column) const {
  if (index == kNoRecord && column == 0) return LoadResString(492);
  if (index < 1 || index > RecordCount()) return {};
  const DupeFileUDT& record = Record(index);
  switch (column) {
    case 0:
      return TheMachine().Drives().ShownPath(NameOf(record));
    case 1:
      return TheMachine().Drives().ShownPath(FullPathOf(record));
    case 2:
      return SizeText(record.Size);
    case 3:
      return DateText(record.CreatedDate);
    case 4:
      return DateText(record.LastModifiedDate);
    case 5:
      return AttributeLetters(record.Attributes);
    default:
      return {};
  }
}

}  // namespace quillmarsh
