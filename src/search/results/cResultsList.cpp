// SPDX-License-Identifier: MIT
// Items, the selection, and telling of changes.
#include "search/results/cResultsList.h"

namespace quillmarsh {

void cResultsList::Clear() {
  mItems.clear();
  mItems.shrink_to_fit();
  mSelected = NoItem;
  TellChange();
}

void cResultsList::Add(std::int32_t itemData) {
  mItems.push_back(itemData);
  TellChange();
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
  TellChange();
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
  TellChange();
}

void cResultsList::TellChange() const {
  if (!mIsLocked && mListener) mListener();
}

}  // namespace quillmarsh
