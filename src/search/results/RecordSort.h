// SPDX-License-Identifier: MIT
// The multi-key sort of a search's records: stable, in place, ascending on the criteria's fields in
// their order. Names that differ only by case sort together. It is pure work and touches nothing
// but the records, so it may run beside the thread that waits for it.
#pragma once

#include <atomic>
#include <vector>

#include "search/results/RecordKeys.h"

namespace quillmarsh {

// Sorts. When `stop` becomes true meanwhile the records are left exactly as they were and the
// answer is false. Memory for up to 48 bytes a record is needed meanwhile.
[[nodiscard]] bool SortRecords(std::vector<DupeFileUDT>& records, const RecordFacts& facts,
                               const SearchCriteria& criteria, const std::atomic<bool>& stop);

// The same on a helper thread, while the calling thread goes on pumping. A stop by the user during
// the pump stops the sort. Failures of the helper (no memory) are raised here.
[[nodiscard]] bool SortRecordsWhilePumping(std::vector<DupeFileUDT>& records,
                                           const RecordFacts& facts,
                                           const SearchCriteria& criteria);

}  // namespace quillmarsh
