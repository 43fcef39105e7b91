// SPDX-License-Identifier: MIT
// Orders are walked by index, since an action may give new ones.
#include "support/FaultHook.h"

#include <algorithm>

#include "base/TextEquality.h"

namespace quillmarsh {

namespace {

TextView WithoutPrefix(TextView path) {
  return path.starts_with(u"\\\\?\\") ? path.substr(4) : path;
}

bool Fits(TextView wanted, TextView subject) {
  return wanted.empty() || CompareIgnoringCase(WithoutPrefix(wanted), WithoutPrefix(subject)) == 0;
}

}  // namespace

void FaultHook::Fail(const Which& which, std::uint32_t code) {
  mOrders.push_back({which, Moment::Instead, code, {}});
}
void FaultHook::RunBefore(const Which& which, std::function<void()> action) {
  mOrders.push_back({which, Moment::Before, 0, std::move(action)});
}
void FaultHook::RunAfter(const Which& which, std::function<void()> action) {
  mOrders.push_back({which, Moment::After, 0, std::move(action)});
}

std::optional<std::uint32_t> FaultHook::Meet(Moment moment, Operation operation, TextView subject) {
  std::optional<std::uint32_t> code;
  const std::size_t count = mOrders.size();
  for (std::size_t i = 0; i < count; ++i) {
    Order& order = mOrders[i];
    if (order.moment != moment || order.which.operation != operation ||
        !Fits(order.which.subject, subject))
      continue;
    ++order.seen;
    if (order.which.nth != 0 && order.which.nth != order.seen) continue;
    order.met = true;
    if (moment == Moment::Instead) {
      code = order.code;
    } else {
      const auto action = order.action;
      action();
    }
  }
  return code;
}

std::optional<std::uint32_t> FaultHook::Before(Operation operation, TextView subject) {
  (void)Meet(Moment::Before, operation, subject);
  const auto code = Meet(Moment::Instead, operation, subject);
  if (code) mJournal.push_back({operation, Text(subject), false});
  return code;
}

void FaultHook::After(Operation operation, TextView subject, bool succeeded) {
  mJournal.push_back({operation, Text(subject), succeeded});
  (void)Meet(Moment::After, operation, subject);
}

std::vector<std::string> FaultHook::JournalLines() const {
  std::vector<std::string> lines;
  for (const Call& call : mJournal) {
    std::string line = NameOf(call.operation);
    if (!call.subject.empty()) line += " " + ToUtf8(call.subject);
    if (!call.succeeded) line += " failed";
    lines.push_back(std::move(line));
  }
  return lines;
}

std::size_t FaultHook::CountOf(Operation operation, TextView subject) const {
  return static_cast<std::size_t>(std::ranges::count_if(mJournal, [&](const Call& call) {
    return call.operation == operation && Fits(subject, call.subject);
  }));
}

std::size_t FaultHook::OrdersNotMet() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(mOrders, [](const Order& order) { return !order.met; }));
}

}  // namespace quillmarsh
