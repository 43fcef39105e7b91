// SPDX-License-Identifier: MIT
// Before a file goes, it and a copy that stays must still be what the search saw, and two files;
// where contents were a criterion, their bytes are compared once more. A file in the DUPES folder
// is only replaced by one of the same bytes, unless a person sees to it. It changes nothing and
// keeps nothing open.
#pragma once

#include <functional>
#include <vector>

#include "removal/RemovalGuard.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

class VerifyingGuard final : public RemovalGuard {
 public:
  // Takes the path of a file that is left alone and the reason, a clause without a full stop.
  using Teller = std::function<void(TextView fileSpec, TextView reason)>;
  enum class Checks { FilesThatGo, Replacements, Both };

  VerifyingGuard(const cSearchResults& results, Checks checks, Teller teller)
      : mResults(results), mChecks(checks), mTeller(std::move(teller)) {}

  [[nodiscard]] bool MayRemove(std::int32_t group, std::int32_t record) override;
  [[nodiscard]] bool MayReplace(TextView fileSpec, TextView existing) override;

 private:
  // Both answer the reason to leave the file alone, empty for none.
  [[nodiscard]] Text WhyNotRemoved(std::int32_t group, std::int32_t record);
  [[nodiscard]] Text WhyNotCopyOf(const Text& fileSpec, std::int32_t keeper) const;
  void FindKeepers(std::int32_t group);

  const cSearchResults& mResults;
  const Checks mChecks;
  const Teller mTeller;
  std::int32_t mGroup = 0;             // of the next two
  std::vector<std::int32_t> mKeepers;  // unmarked members that were not seen to have changed
  bool mHasKeepers = false;            // the group had any unmarked member at all
};

}  // namespace quillmarsh
