// SPDX-License-Identifier: MIT
// The read-only attribute of a file, which here is the missing write permission of its owner. It
// belongs to the file and not to its name: a removal that lifts it to take one of several names
// away gives it back to the others. Functions and values; any thread may use them.
#pragma once

#include <optional>

#include "platform/posix/FolderEntry.h"

namespace quillmarsh {

// A file with several names that was read-only a moment ago.
struct LiftedBit {
  std::uint64_t file = 0;  // its number on its file system
  std::uint32_t deviceMajor = 0;
  std::uint32_t deviceMinor = 0;
};

// Sets or lifts the bit of a file and makes sure of it: 50 where the file system does not keep it.
// Folders and links have none, which is no failure. Answers a code, and what was lifted where the
// file has other names.
[[nodiscard]] std::uint32_t SetReadOnlyBit(OpenFolders& folders, const Located& located,
                                           bool readOnly, ChangePermit& permit,
                                           std::optional<LiftedBit>& lifted);

// Holds the file under a name that is about to go while it does, if it is the one whose bit was
// lifted.
class OtherNames {
 public:
  OtherNames(OpenFolders& folders, const Located& located, const std::optional<LiftedBit>& lifted);
  [[nodiscard]] bool HoldFile() const { return static_cast<bool>(mFile); }
  // Gives the bit back where the file still has a name, be it because the removal has failed. Best
  // effort: what cannot be given back stays as it is.
  void Protect(ChangePermit& permit) const;

 private:
  UniqueFd mFile;
};

}  // namespace quillmarsh
