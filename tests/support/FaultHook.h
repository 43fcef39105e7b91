// SPDX-License-Identifier: MIT
// A hook for tests: makes chosen calls of the platform fail with a code, runs something of the
// test's before or after a call (a file vanishes, the user stops), and keeps a journal of all
// calls. Set it with Machine::SetHook; it must outlive its use there.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/CallHook.h"

namespace quillmarsh {

class FaultHook final : public CallHook {
 public:
  // Which calls an order is for. A subject is compared ignoring case and a prefix "\\?\"; an empty
  // one stands for every call of the operation. Calls are counted from 1, from the order on, and
  // only those that the subject fits; 0 stands for every one of them.
  struct Which {
    Operation operation;
    std::size_t nth = 1;
    Text subject = {};
  };

  void Fail(const Which& which, std::uint32_t code);
  void RunBefore(const Which& which, std::function<void()> action);
  void RunAfter(const Which& which, std::function<void()> action);

  struct Call {
    Operation operation;
    Text subject;
    bool succeeded;
  };
  [[nodiscard]] const std::vector<Call>& Journal() const { return mJournal; }
  void ClearJournal() { mJournal.clear(); }
  // One line a call: "CreateFileW C:\a.txt" and " failed" where it did.
  [[nodiscard]] std::vector<std::string> JournalLines() const;
  [[nodiscard]] std::size_t CountOf(Operation operation, TextView subject = {}) const;
  // Orders that no call has met yet: a test that ends with some has tested nothing.
  [[nodiscard]] std::size_t OrdersNotMet() const;

  std::optional<std::uint32_t> Before(Operation operation, TextView subject) override;
  void After(Operation operation, TextView subject, bool succeeded) override;

 private:
  enum class Moment : std::uint8_t { Instead, Before, After };
  struct Order {
    Which which;
    Moment moment;
    std::uint32_t code = 0;
    std::function<void()> action;
    std::size_t seen = 0;
    bool met = false;
  };
  // Counts the call for the orders of this moment. A failing order's code, if one is due.
  std::optional<std::uint32_t> Meet(Moment moment, Operation operation, TextView subject);

  std::vector<Order> mOrders;
  std::vector<Call> mJournal;
};

}  // namespace quillmarsh
