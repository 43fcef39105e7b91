// SPDX-License-Identifier: MIT
// Sorting a results list by a click on a heading. Columns of text sort on themselves; numbers and
// dates sort on a hidden column that holds them as text of one width, which is filled anew at each
// such click. Clicking the column that was clicked last flips its order; every column keeps its
// own. The order of equal rows stays. Keys are made once per sort, and the sort pumps, so a click
// does nothing while another command runs.
#pragma once

#include <optional>
#include <vector>

#include "search/results/cSearchResults.h"

namespace quillmarsh {

enum class SortOrder { Ascending, Descending };
// How a column's text is turned into the text that is sorted.
enum class SortKind { PlainText, LongInteger, CurrencyValue, DateValue };

class ListSort {
 public:
  static constexpr int kNoColumn = -1;

  // `source` names the list's handler where an error is reported.
  ListSort(cResultsList& list, int columns, TextView source);
  virtual ~ListSort() = default;
  ListSort(const ListSort&) = delete;
  ListSort& operator=(const ListSort&) = delete;

  // A column that is not there does nothing.
  void ClickColumn(int column);
  // kNoColumn before the first click.
  [[nodiscard]] int LastColumn() const { return mLastColumn; }
  [[nodiscard]] SortOrder OrderOf(int column) const;
  // The text of the hidden column of an item, as the last sort by number or date left it.
  [[nodiscard]] Text HiddenText(std::int32_t itemData) const;

 private:
  [[nodiscard]] virtual SortKind KindOf(int column) const = 0;
  // What the text of a cell says in a column of dates; none where it is blank.
  [[nodiscard]] virtual std::optional<Date> DateOf(std::int32_t itemData, int column) const;

  void Sort(int column, SortOrder order);
  [[nodiscard]] std::vector<Text> TextKeys(int column) const;
  [[nodiscard]] std::vector<Text> ULVW_CopyClickedColDataToSortCol(int column, SortKind kind) const;

  cResultsList& mList;
  const TextView mSource;
  std::vector<SortOrder> mOrders;
  int mLastColumn = kNoColumn;
  // The hidden column: the text of the item whose data stands at the same place.
  std::vector<std::int32_t> mHiddenItems;
  std::vector<Text> mHiddenTexts;
};

class GroupListSort final : public ListSort {
 public:
  // The list's column 0 holds names when the caption says "File Name", else sizes.
  explicit GroupListSort(cSearchResults& results);
  void SetFirstColumnHoldsNames(bool holdsNames) { mHoldsNames = holdsNames; }

 private:
  [[nodiscard]] SortKind KindOf(int column) const override;
  bool mHoldsNames = true;
};

class DetailListSort final : public ListSort {
 public:
  explicit DetailListSort(cSearchResults& results);

 private:
  [[nodiscard]] SortKind KindOf(int column) const override;
  [[nodiscard]] std::optional<Date> DateOf(std::int32_t itemData, int column) const override;

  const cSearchResults& mResults;
};

}  // namespace quillmarsh
