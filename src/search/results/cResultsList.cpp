// SPDX-License-Identifier: MIT
// Items, the selection, and telling of changes.
#include "search/results/cResultsList.h"

namespace quillmarsh {

cResultsList::UpdateLock::UpdateLock(cResultsList& list) : mList(list) {
  // A view that has rows would ask for them during the fill.
  mList.mLocks += 1;
  if (mList.mLocks == 1 && mList.Count() > 0 && mList.mListener) mList.mListener(ListChange::Rows);
}

cResultsList::UpdateLock::~UpdateLock() {
  mList.mLocks -= 1;
  mList.TellChange(ListChange::Rows);
}

void cResultsList::Clear() {
  mItems.clear();
  mItems.shrink_to_fit();
  mSelected = NoItem;
  TellChange(ListChange::Rows);
}

void cResultsList::Add(std::int32_t itemData) {
  mItems.push_back(itemData);
  TellChange(ListChange::Rows);
}

void cResultsList::RemoveIf(const std::function<bool(std::int32_t itemData)>& predicate) {
  std::int32_t selected = NoItem;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < mItems.size(); ++i) {
    if (predicate(mItems[i])) continue;
    if (static_cast<std::int32_t>(i) == mSelected) selected = static_cast<std::int32_t>(kept);
    mItems[kept++] = mItems[i];
  }
  mItems.resize(kept);
  mSelected = selected;
  TellChange(ListChange::Rows);
}

bool cResultsList::Reorder(const std::vector<std::int32_t>& order) {
  if (order.size() != mItems.size()) return false;
  std::vector<bool> isTaken(order.size());
  for (const std::int32_t position : order) {
    if (position < 0 || position >= Count()) return false;
    const auto place = static_cast<std::size_t>(position);
    if (isTaken[place]) return false;
    isTaken[place] = true;
  }
  std::vector<std::int32_t> items(order.size());
  std::int32_t selected = NoItem;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (order[i] == mSelected) selected = static_cast<std::int32_t>(i);
    items[i] = mItems[static_cast<std::size_t>(order[i])];
  }
  mItems.swap(items);
  mSelected = selected;
  TellChange(ListChange::Rows);
  return true;
}

std::int32_t cResultsList::ItemData(std::int32_t position) const {
  if (position < 0 || position >= Count()) return NoItem;
  return mItems[static_cast<std::size_t>(position)];
}

Text cResultsList::CellText(std::int32_t position, int column) const {
  if (position < 0 || position >= Count() || !mFormatter) return {};
  return mFormatter(ItemData(position), column);
}

void cResultsList::Select(std::int32_t position) {
  mSelected = position >= 0 && position < Count() ? position : NoItem;
  TellChange(ListChange::Selection);
}

void cResultsList::TellChange(ListChange change) const {
  if (mLocks == 0 && mListener) mListener(change);
}

}  // namespace quillmarsh
