// SPDX-License-Identifier: MIT
// Each record becomes an item of 128 bits of key and its index. Items are sorted by those bits;
// runs that are still equal take the next 128 bits (the next eight letters of the name, or the next
// two fields) and are sorted again, so that a name is touched once per eight letters and not at
// each comparison. The index as the last key makes the sort stable.
#include "search/results/RecordSort.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <span>
#include <thread>

#include "base/CaseMapping.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"

namespace quillmarsh {

namespace {

struct Item {
  std::uint64_t high;
  std::uint64_t low;
  std::uint32_t index;

  friend bool operator<(const Item& a, const Item& b) {
    if (a.high != b.high) return a.high < b.high;
    if (a.low != b.low) return a.low < b.low;
    return a.index < b.index;
  }
};

bool HaveEqualKeys(const Item& a, const Item& b) {
  return a.high == b.high && a.low == b.low;
}

enum class Field { Name, Size, Created, LastModified, Contents };

struct Stopped {};

constexpr std::size_t kUnitsPerKey = 8;
constexpr std::size_t kWorthTwoThreads = 50000;

// Signed numbers in an unsigned key.
std::uint64_t Biased(std::int64_t number) {
  return static_cast<std::uint64_t>(number) ^ (std::uint64_t{1} << 63U);
}

class Sorter {
 public:
  Sorter(std::span<const DupeFileUDT> records, const RecordFacts& facts,
         const SearchCriteria& criteria, const std::atomic<bool>& stop)
      : mRecords(records), mFacts(facts), mStop(stop) {
    if (criteria.namesMatch) mFields.push_back(Field::Name);
    if (criteria.sizesMatch) mFields.push_back(Field::Size);
    if (criteria.createTimeStampsMatch) mFields.push_back(Field::Created);
    if (criteria.lastModTimeStampsMatch) mFields.push_back(Field::LastModified);
    if (criteria.contentsMatch) mFields.push_back(Field::Contents);
    if (criteria.contentsMatch && !criteria.sizesMatch) mFields.push_back(Field::Size);
  }

  // The order of the records, as items whose index tells the record.
  std::vector<Item> Order() {
    std::vector<Item> items(mRecords.size());
    for (std::size_t i = 0; i < items.size(); ++i) items[i].index = static_cast<std::uint32_t>(i);
    if (mFields.empty()) return items;
    if (items.size() < kWorthTwoThreads) {
      SortRun(items, 0, 0);
    } else {
      SortByTwo(items);
    }
    return items;
  }

 private:
  // A stop leaves the sort as an exception out of the comparison, which standard sorts allow.
  [[nodiscard]] auto Less() const {
    return [this](const Item& a, const Item& b) {
      if (mStop.load(std::memory_order_relaxed)) throw Stopped{};
      return a < b;
    };
  }

  // Both halves are sorted by their first 128 bits at the same time and merged; then both threads
  // take the runs that are still equal, each in its half.
  void SortByTwo(std::vector<Item>& items) {
    const auto middle = items.begin() + static_cast<std::ptrdiff_t>(items.size() / 2);
    InParallel(
        [&] {
          TakeKeysAndSort({items.begin(), middle}, 0, 0);
        },
        [&] {
          TakeKeysAndSort({middle, items.end()}, 0, 0);
        });
    {
      std::vector<Item> merged(items.size());
      std::merge(items.begin(), middle, middle, items.end(), merged.begin(), Less());
      items.swap(merged);
    }
    auto split = items.begin() + static_cast<std::ptrdiff_t>(items.size() / 2);
    while (split != items.end() && HaveEqualKeys(*(split - 1), *split)) ++split;
    InParallel(
        [&] {
          SortEqualRuns({items.begin(), split}, 0, 0);
        },
        [&] {
          SortEqualRuns({split, items.end()}, 0, 0);
        });
  }

  template <typename First, typename Second>
  static void InParallel(First&& first, Second&& second) {
    std::exception_ptr failure;
    std::thread other([&] {
      try {
        second();
      } catch (...) {
        failure = std::current_exception();
      }
    });
    try {
      first();
    } catch (...) {
      other.join();
      throw;
    }
    other.join();
    if (failure) std::rethrow_exception(failure);
  }

  void SortRun(std::span<Item> run, std::size_t field, std::size_t depth) {
    TakeKeysAndSort(run, field, depth);
    SortEqualRuns(run, field, depth);
  }

  void TakeKeysAndSort(std::span<Item> run, std::size_t field, std::size_t depth) {
    for (Item& item : run) TakeKey(item, field, depth);
    std::sort(run.begin(), run.end(), Less());
  }

  void SortEqualRuns(std::span<Item> items, std::size_t field, std::size_t depth) {
    for (std::size_t begin = 0; begin < items.size();) {
      std::size_t end = begin + 1;
      while (end < items.size() && HaveEqualKeys(items[begin], items[end])) ++end;
      if (end - begin > 1) SortOnByNextKey(items.subspan(begin, end - begin), field, depth);
      begin = end;
    }
  }

  void SortOnByNextKey(std::span<Item> run, std::size_t field, std::size_t depth) {
    if (mFields[field] == Field::Name) {
      const bool isWholeName = (run.front().low & 0xFFFFU) == 0;
      if (!isWholeName) return SortRun(run, field, depth + kUnitsPerKey);
      field += 1;
    } else {
      field += 2;
    }
    if (field < mFields.size()) SortRun(run, field, 0);
  }

  void TakeKey(Item& item, std::size_t field, std::size_t depth) const {
    const DupeFileUDT& record = mRecords[item.index];
    if (mFields[field] == Field::Name) {
      const TextView name = mFacts.names.Get(record.Name);
      item.high = Letters(name, depth);
      item.low = Letters(name, depth + kUnitsPerKey / 2);
      return;
    }
    item.high = Number(record, mFields[field]);
    item.low = field + 1 < mFields.size() ? Number(record, mFields[field + 1]) : 0;
  }

  // Four upper-case units from `depth` on, padded with zeros, which no name holds.
  static std::uint64_t Letters(TextView name, std::size_t depth) {
    std::uint64_t letters = 0;
    for (std::size_t i = depth; i < depth + kUnitsPerKey / 2; ++i) {
      letters = (letters << 16U) | (i < name.size() ? UpperCase(name[i]) : 0U);
    }
    return letters;
  }

  std::uint64_t Number(const DupeFileUDT& record, Field field) const {
    if (field == Field::Size) return Biased(record.Size.Raw());
    if (field == Field::Contents) return Biased(ContentsKey(record, mFacts.unreadable));
    const SecondPasses passes = mFacts.SecondPassesOf(record);
    return Biased(field == Field::Created ? DateKey(record.CreatedDate, passes.created)
                                          : DateKey(record.LastModifiedDate, passes.lastModified));
  }

  std::span<const DupeFileUDT> mRecords;
  const RecordFacts mFacts;
  const std::atomic<bool>& mStop;
  std::vector<Field> mFields;
};

// Puts the record that items[i] names into place i, in place, along the cycles of the permutation.
void Permute(std::vector<DupeFileUDT>& records, std::vector<Item>& items) {
  for (std::uint32_t start = 0; start < items.size(); ++start) {
    if (items[start].index == start) continue;
    const DupeFileUDT first = records[start];
    std::uint32_t place = start;
    for (;;) {
      const std::uint32_t source = items[place].index;
      items[place].index = place;
      if (source == start) break;
      records[place] = records[source];
      place = source;
    }
    records[place] = first;
  }
}

}  // namespace

bool SortRecords(std::vector<DupeFileUDT>& records, const RecordFacts& facts,
                 const SearchCriteria& criteria, const std::atomic<bool>& stop) {
  try {
    std::vector<Item> order = Sorter(records, facts, criteria, stop).Order();
    if (stop) return false;
    Permute(records, order);
    return true;
  } catch (const Stopped&) {
    return false;
  }
}

bool SortRecordsWhilePumping(std::vector<DupeFileUDT>& records, const RecordFacts& facts,
                             const SearchCriteria& criteria) {
  std::atomic<bool> stop = false;
  bool isSorted = false;
  RunWhilePumping([&] { isSorted = SortRecords(records, facts, criteria, stop); },
                  [&] {
                    if (gUserAbort) stop = true;
                  },
                  [&] { stop = true; });
  return isSorted;
}

}  // namespace quillmarsh
