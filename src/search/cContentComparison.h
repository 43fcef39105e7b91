// SPDX-License-Identifier: MIT
// Gives every record that has a partner the checksum of its file's contents. A record has a partner
// when its neighbour in the sorted array agrees with it in all criteria but the contents; all
// others are never read and keep the checksum 0. A file that cannot be read is marked as such, told
// in the history, and equals no other. Owns nothing but its timer.
#pragma once

#include <vector>

#include "frame/Pump.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

class cContentComparison {
 public:
  // The records must be sorted by the criteria without the contents.
  explicit cContentComparison(cSearchResults& results);

  // Reads each candidate once. False when the user stopped it.
  [[nodiscard]] bool ComputeChecksums();

 private:
  // Both false when the user stopped it.
  [[nodiscard]] bool FindCandidates();
  [[nodiscard]] bool HandleCandidate(std::int32_t index, const Text& path);
  void ShowCandidate(std::int32_t index, const Text& path);

  cSearchResults& mResults;
  std::vector<std::int32_t> mCandidates;  // record indexes, ascending
  PumpTimer tmrCRCStatusCheck;
  bool mIsHintShown = false;  // in PANEL1, in place of a path
};

// A whole number from 0 to 32766, another one at each call.
[[nodiscard]] std::int32_t GetRandomCRC();

}  // namespace quillmarsh
