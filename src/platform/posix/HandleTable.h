// SPDX-License-Identifier: MIT
// Handles as numbers that are checked at each use: a handle that was closed, or never given, finds
// nothing. Owns what the handles stand for. A second thread may use a handle while the first opens
// and closes others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/SystemTypes.h"

namespace quillmarsh {

template <typename Value>
class HandleTable {
 public:
  [[nodiscard]] HANDLE Add(std::unique_ptr<Value> value) {
    const std::lock_guard lock(mMutex);
    if (mFree.empty()) {
      mFree.push_back(mSlots.size());
      mSlots.emplace_back();
    }
    const std::size_t index = mFree.back();
    mFree.pop_back();
    Slot& slot = mSlots[index];
    slot.value = std::move(value);
    return HANDLE{static_cast<std::intptr_t>(slot.round * Rounds + index + 1)};
  }
  // Null for a handle that is not open.
  [[nodiscard]] Value* Find(HANDLE handle) const {
    const std::lock_guard lock(mMutex);
    const Slot* slot = SlotOf(handle);
    return slot == nullptr ? nullptr : slot->value.get();
  }
  [[nodiscard]] std::unique_ptr<Value> Remove(HANDLE handle) {
    const std::lock_guard lock(mMutex);
    Slot* slot = const_cast<Slot*>(SlotOf(handle));
    if (slot == nullptr || slot->value == nullptr) return nullptr;
    ++slot->round;
    mFree.push_back(static_cast<std::size_t>(slot - mSlots.data()));
    return std::move(slot->value);
  }

 private:
  // A handle is the slot plus the number of times that the slot was used before.
  static constexpr std::size_t Rounds = std::size_t{1} << 24U;
  struct Slot {
    std::unique_ptr<Value> value;
    std::size_t round = 0;
  };

  [[nodiscard]] const Slot* SlotOf(HANDLE handle) const {
    const auto number = static_cast<std::size_t>(static_cast<std::intptr_t>(handle));
    const std::size_t index = number % Rounds - 1;
    if (number == 0 || index >= mSlots.size() || mSlots[index].round != number / Rounds)
      return nullptr;
    return &mSlots[index];
  }

  mutable std::mutex mMutex;
  std::vector<Slot> mSlots;
  std::vector<std::size_t> mFree;
};

}  // namespace quillmarsh
