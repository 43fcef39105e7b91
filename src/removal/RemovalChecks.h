// SPDX-License-Identifier: MIT
// What must be true before a file is removed: it is still the file that the search found, a copy
// that stays is still there and is another file, and where contents were compared their bytes are
// equal now. Both are pinned and locked while that is found out, and stay so until the file is
// removed. It changes nothing on the disk.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "removal/PinnedFile.h"
#include "search/results/cSearchResults.h"

namespace quillmarsh {

// Why a file is not removed. With a code the system refused something.
struct Refusal {
  std::uint32_t code = 0;
  Text reason;  // a clause without a full stop
};

// A file that is to be removed and a copy that stays. Without a copy the user has allowed that the
// whole group is removed.
struct HeldPair {
  PinnedFile file;
  PinnedFile copy;
  Text copyPath;
  // Their numbers alone prove that they are two files. Else that shows when one has no name.
  bool isProven = false;
  bool isSameFile = false;  // two names of it

  [[nodiscard]] bool IsProofNeeded() const { return copy.IsHeld() && !isProven; }
};

class RemovalChecks {
 public:
  struct Options {
    bool comparesContents = true;
    // Asked at the first copy that only a file system in memory has, of a file on a disk.
    std::function<bool()> mayTrustMemory = [] { return false; };
  };

  RemovalChecks(const cSearchResults& results, Options options)
      : mResults(results), mOptions(std::move(options)) {}

  // Holds the file of a record (from 1) that is a member of the group (from 1) and a copy.
  [[nodiscard]] std::optional<Refusal> Hold(std::int32_t group, std::int32_t record,
                                            TextView asideName, HeldPair& pair);
  // Holds a file that is to give way to one of the same bytes, which is held already.
  [[nodiscard]] std::optional<Refusal> HoldReplaced(TextView existing, TextView asideName,
                                                    const PinnedFile& newcomer,
                                                    PinnedFile& replaced);
  // Whether the copy is what and where it was. After a file was taken aside this is also the proof
  // that the two are not one.
  [[nodiscard]] std::optional<Refusal> LookAtCopyAgain(const HeldPair& pair) const;
  // Before a permanent removal: has no one write to the copy, and brings it to the disk, once for
  // each file system where it can be done so.
  [[nodiscard]] std::optional<Refusal> SecureCopy(const HeldPair& pair);

 private:
  [[nodiscard]] std::optional<Refusal> HoldCopy(std::int32_t keeper, HeldPair& pair);
  [[nodiscard]] std::optional<Refusal> CompareContents(const PinnedFile& file,
                                                       const PinnedFile& copy);
  [[nodiscard]] bool MayTrust(const FileState& file, const FileState& copy);
  void FindKeepers(std::int32_t group);

  const cSearchResults& mResults;
  const Options mOptions;
  std::int32_t mGroup = 0;             // of the next two
  std::vector<std::int32_t> mKeepers;  // unmarked members that were not seen to have changed
  bool mHasKeepers = false;            // the group had any unmarked member at all
  std::optional<bool> mTrustsMemory;   // the answer
  std::map<std::uint64_t, std::int64_t> mSyncedAt;  // by volume, in ticks
  std::vector<std::byte> mFirst;
  std::vector<std::byte> mSecond;
};

}  // namespace quillmarsh
