// SPDX-License-Identifier: MIT
// Items in the order in which they were added, read by index from 1 to Count. An item may bear a
// key; no two keys are equal when case is ignored, and the key of an item goes with it. Keys are
// not items: the same item may stand in the collection any number of times without one.
#pragma once

#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/CaseMapping.h"
#include "base/RuntimeError.h"

namespace quillmarsh {

template <typename T>
class KeyedCollection {
 public:
  [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(mItems.size()); }
  // Error 9 outside 1 to Count. Valid until the next change.
  [[nodiscard]] const T& Item(std::int32_t index) const { return mItems[PlaceOf(index)]; }

  void Add(T item) {
    mItems.push_back(std::move(item));
    mKeys.emplace_back();
  }
  // False, and nothing added, where the key is taken.
  [[nodiscard]] bool Add(T item, TextView key) {
    Text folded = UpperCaseText(key);
    if (!mTakenKeys.insert(folded).second) return false;
    mItems.push_back(std::move(item));
    mKeys.emplace_back(std::move(folded));
    return true;
  }
  // Error 9 outside 1 to Count.
  void Remove(std::int32_t index) {
    const auto place = static_cast<std::ptrdiff_t>(PlaceOf(index));
    if (const auto& key = *(mKeys.begin() + place)) mTakenKeys.erase(*key);
    mKeys.erase(mKeys.begin() + place);
    mItems.erase(mItems.begin() + place);
  }

  [[nodiscard]] auto begin() const { return mItems.begin(); }
  [[nodiscard]] auto end() const { return mItems.end(); }

 private:
  [[nodiscard]] std::size_t PlaceOf(std::int32_t index) const {
    if (index < 1 || index > Count()) throw RuntimeError(runtime_error::SubscriptOutOfRange);
    return static_cast<std::size_t>(index) - 1;
  }

  std::vector<T> mItems;
  std::vector<std::optional<Text>> mKeys;  // in upper case, one per item
  std::unordered_set<Text> mTakenKeys;
};

}  // namespace quillmarsh
