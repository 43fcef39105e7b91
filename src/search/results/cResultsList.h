// SPDX-License-Identifier: MIT
// One of the two lists of results as plain data: items with their data, and which one is selected.
// It owns no text: a cell is formatted when somebody asks for it. A view that shows the list is
// told when it changes; while the list is locked for a mass fill the view sees an empty list, and
// is told at its beginning and its end only.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

// What a view of a list has to do anew: everything, the texts and marks of its rows, or which row
// is the selected one.
enum class ListChange { Rows, Cells, Selection };

class cResultsList {
 public:
  // Makes the text of a cell from an item's data and the column, from 0.
  using CellFormatter = std::function<Text(std::int32_t itemData, int column)>;
  using ChangeListener = std::function<void(ListChange)>;

  static constexpr std::int32_t NoItem = -1;

  void SetFormatter(CellFormatter formatter) { mFormatter = std::move(formatter); }
  void SetListener(ChangeListener listener) { mListener = std::move(listener); }

  void Clear();
  // Adds an item at the end.
  void Add(std::int32_t itemData);

  // Removes every item whose data the predicate is true for, in one pass. The selection stays with
  // its item, or is gone with it.
  void RemoveIf(const std::function<bool(std::int32_t itemData)>& predicate);
  // Puts the items in the order in which `order` names their positions. The selection stays with
  // its item. False, with the list as it was, for what does not name each position once.
  [[nodiscard]] bool Reorder(const std::vector<std::int32_t>& order);
  // The cells or marks of items have changed, without the list having.
  void TellItemsChanged() const { TellChange(ListChange::Cells); }

  // What a view sees: nothing while the list is locked.
  [[nodiscard]] std::int32_t VisibleCount() const { return mLocks > 0 ? 0 : Count(); }
  [[nodiscard]] const std::vector<std::int32_t>& Items() const { return mItems; }
  [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(mItems.size()); }
  // `position` from 0 to Count() - 1; anything else gives NoItem or an empty text.
  [[nodiscard]] std::int32_t ItemData(std::int32_t position) const;
  [[nodiscard]] Text CellText(std::int32_t position, int column) const;

  void Select(std::int32_t position);
  [[nodiscard]] std::int32_t SelectedPosition() const { return mSelected; }

  // The window-update lock for a mass fill: taken when made, released when destroyed.
  class UpdateLock {
   public:
    explicit UpdateLock(cResultsList& list);
    ~UpdateLock();
    UpdateLock(const UpdateLock&) = delete;
    UpdateLock& operator=(const UpdateLock&) = delete;

   private:
    cResultsList& mList;
  };

 private:
  void TellChange(ListChange change) const;

  std::vector<std::int32_t> mItems;
  std::int32_t mSelected = NoItem;
  int mLocks = 0;
  CellFormatter mFormatter;
  ChangeListener mListener;
};

}  // namespace quillmarsh
