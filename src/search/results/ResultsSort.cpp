// SPDX-License-Identifier: MIT
// The keys are made on the thread of the logic, which pumps between two rows; a helper then sorts
// positions by them while this thread waits and pumps.
#include "search/results/ResultsSort.h"

#include <algorithm>
#include <numeric>

#include "base/CaseMapping.h"
#include "base/TextEquality.h"
#include "base/ValueText.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/Pump.h"
#include "fsobjects/LocaleFormats.h"

namespace quillmarsh {

namespace {

constexpr std::size_t kDigits = 20;

Text PaddedWithZeros(Text digits, std::size_t width) {
  if (digits.size() < width) digits.insert(0, width - digits.size(), u'0');
  return digits;
}

bool IsPlainNumber(TextView text) {
  constexpr std::size_t kAlwaysInRange = 9;
  return !text.empty() && text.size() <= kAlwaysInRange && text.front() != u'0' &&
         text.find_first_not_of(u"0123456789") == TextView::npos;
}

// The separator of thousands goes first: "1.234" is a thousand and more where it is a dot.
Text NumberKey(Text text, SortKind kind, const LocaleFacts& locale) {
  if (text.find(locale.thousandsSeparator) != Text::npos && !locale.thousandsSeparator.empty())
    text = ReplaceAll(text, locale.thousandsSeparator, {});
  if (IsPlainNumber(text)) return PaddedWithZeros(std::move(text), kDigits);
  // A size that is not known stands with the blank cells.
  if (!NumberFromText(text, locale)) return Text(kDigits, u'0');
  return PaddedWithZeros(kind == SortKind::LongInteger ? DecimalText(LongFromText(text, locale))
                                                       : CurrencyFromText(text, locale).ToText(),
                         kDigits);
}

// yyyy/mm/dd Hh:Nn:Ss
Text DateKeyText(Date date, const LocaleFacts& locale) {
  const CivilTime civil = date.ToCivil();
  const auto two = [](std::int32_t number) { return PaddedWithZeros(DecimalText(number), 2); };
  Text text = PaddedWithZeros(DecimalText(civil.year), 4);
  text += locale.dateSeparator + two(civil.month) + locale.dateSeparator + two(civil.day) + u' ';
  text += two(civil.hour) + locale.timeSeparator + two(civil.minute) + locale.timeSeparator;
  return text + two(civil.second);
}

// The positions of the keys in their order; positions of equal keys ascend either way.
std::vector<std::int32_t> OrderOfKeys(const std::vector<Text>& keys, SortOrder order) {
  std::vector<std::int32_t> positions(keys.size());
  std::iota(positions.begin(), positions.end(), 0);
  const auto keyAt = [&keys](std::int32_t position) -> const Text& {
    return keys[static_cast<std::size_t>(position)];
  };
  if (order == SortOrder::Ascending) {
    std::ranges::stable_sort(positions,
                             [&](std::int32_t a, std::int32_t b) { return keyAt(a) < keyAt(b); });
  } else {
    std::ranges::stable_sort(positions,
                             [&](std::int32_t a, std::int32_t b) { return keyAt(b) < keyAt(a); });
  }
  return positions;
}

}  // namespace

ListSort::ListSort(cResultsList& list, int columns, TextView source)
    : mList(list), mSource(source), mOrders(static_cast<std::size_t>(std::max(columns, 0))) {}

SortOrder ListSort::OrderOf(int column) const {
  if (column < 0 || static_cast<std::size_t>(column) >= mOrders.size()) return SortOrder::Ascending;
  return mOrders[static_cast<std::size_t>(column)];
}

Text ListSort::HiddenText(std::int32_t itemData) const {
  const auto found = std::ranges::find(mHiddenItems, itemData);
  if (found == mHiddenItems.end()) return {};
  return mHiddenTexts[static_cast<std::size_t>(found - mHiddenItems.begin())];
}

std::optional<Date> ListSort::DateOf(std::int32_t /*itemData*/, int /*column*/) const {
  return std::nullopt;
}

void ListSort::ClickColumn(int column) {
  if (column < 0 || static_cast<std::size_t>(column) >= mOrders.size()) return;
  const CommandScope command;
  if (!command.IsEntered()) return;
  Guarded(mSource, [&] {
    DoEvents();
    const BusyPointer busy;
    SortOrder& order = mOrders[static_cast<std::size_t>(column)];
    if (column == mLastColumn)
      order = order == SortOrder::Ascending ? SortOrder::Descending : SortOrder::Ascending;
    Sort(column, order);
    mLastColumn = column;
  });
  DoEvents();
}

// Nothing in it takes long without a pump but the last step, where the view takes the new order.
void ListSort::Sort(int column, SortOrder order) {
  std::vector<std::int32_t> items = mList.Items();
  const SortKind kind = KindOf(column);
  if (kind != SortKind::PlainText) {
    std::vector<Text>().swap(mHiddenTexts);
    mHiddenItems.clear();
    DoEvents_Fast();
  }
  std::vector<Text> keys = kind == SortKind::PlainText
                               ? TextKeys(column)
                               : ULVW_CopyClickedColDataToSortCol(column, kind);
  if (keys.size() != items.size()) return;
  std::vector<std::int32_t> positions;
  RunWhilePumping([&] { positions = OrderOfKeys(keys, order); });
  DoEvents_Fast();
  // While it pumped the window may have been closed, which empties the lists.
  if (mList.Items() != items || !mList.Reorder(positions)) return;
  DoEvents_Fast();
  if (kind == SortKind::PlainText) return;
  mHiddenItems.swap(items);
  mHiddenTexts.swap(keys);
}

// Texts are compared without regard to case, by the table by which names are: unit by unit in upper
// case, as everywhere in the program, so that the order is the same in every locale.
std::vector<Text> ListSort::TextKeys(int column) const {
  std::vector<Text> keys;
  keys.reserve(mList.Items().size());
  for (std::int32_t position = 0; position < mList.Count(); ++position) {
    keys.push_back(UpperCaseText(mList.CellText(position, column)));
    DoEvents_Fast();
  }
  return keys;
}

// A blank date takes that of the row before, and of the first row the zero date: rows without a
// date keep their neighbours. Dates come from the record and not from the cell's text, which says
// the same in a form of which not every locale's can be read back.
std::vector<Text> ListSort::ULVW_CopyClickedColDataToSortCol(int column, SortKind kind) const {
  const LocaleFacts& locale = GetLocaleFacts();
  std::vector<Text> keys;
  keys.reserve(mList.Items().size());
  Text lastDate = DateKeyText(Date(), locale);
  for (std::int32_t position = 0; position < mList.Count(); ++position) {
    if (kind == SortKind::DateValue) {
      if (const auto date = DateOf(mList.ItemData(position), column))
        lastDate = DateKeyText(*date, locale);
      keys.push_back(lastDate);
    } else {
      keys.push_back(NumberKey(mList.CellText(position, column), kind, locale));
    }
    DoEvents_Fast();
  }
  return keys;
}

GroupListSort::GroupListSort(cSearchResults& results)
    : ListSort(results.ulvwDupeGroups, 3, u"frmFindDuplicates.ulvwDupeGroups_ColumnClick") {}

SortKind GroupListSort::KindOf(int column) const {
  if (column == 0 && mHoldsNames) return SortKind::PlainText;
  return column == 1 ? SortKind::LongInteger : SortKind::CurrencyValue;
}

DetailListSort::DetailListSort(cSearchResults& results)
    : ListSort(results.ulvwDupeDetails, 6, u"frmFindDuplicates.ulvwDupeDetails_ColumnClick"),
      mResults(results) {}

SortKind DetailListSort::KindOf(int column) const {
  if (column == 2) return SortKind::CurrencyValue;
  return column == 3 || column == 4 ? SortKind::DateValue : SortKind::PlainText;
}

std::optional<Date> DetailListSort::DateOf(std::int32_t itemData, int column) const {
  if (itemData < 1 || itemData > mResults.RecordCount()) return std::nullopt;
  const DupeFileUDT& record = mResults.Record(itemData);
  const Date date = column == 3 ? record.CreatedDate : record.LastModifiedDate;
  return date.IsValid() ? std::optional(date) : std::nullopt;
}

}  // namespace quillmarsh
