// SPDX-License-Identifier: MIT
// What a removal is going to do, found out without changing the disk: each marked file in the order
// of the list, how it is removed, where it is moved to, and what is in the way of it. The question
// before a removal, the dry run and the run itself all go by it. A value; results that it was made
// of must live as long and not be sorted meanwhile.
#pragma once

#include <vector>

#include "base/Text.h"
#include "search/results/cSearchResults.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

enum class Obstacle : std::uint8_t {
  None,
  AlreadyThere,  // it is in the folder that it is to be moved to
  NameNotHeld,   // the target's file system cannot hold its name
  NoRecycleBin,  // its drive has none
};

// A clause without a full stop; empty for none.
[[nodiscard]] TextView ReasonOf(Obstacle obstacle);

struct PlannedRemoval {
  std::int32_t group = 0;   // from 1
  std::int32_t record = 0;  // from 1
  Obstacle obstacle = Obstacle::None;
  Text newName;  // in the other folder, where its own name is taken
};

class RemovalPlan {
 public:
  RemovalPlan(const cSearchResults& results, const clsDupeSettings& settings);

  [[nodiscard]] RemoveMethod Method() const { return mMethod; }
  // Of the two that move, with its final backslash; else empty.
  [[nodiscard]] const Text& Folder() const { return mFolder; }
  [[nodiscard]] const std::vector<PlannedRemoval>& Files() const { return mFiles; }
  [[nodiscard]] Text FileSpecOf(const PlannedRemoval& file) const;
  // Where it is moved to; empty for a file that is not moved.
  [[nodiscard]] Text TargetOf(const PlannedRemoval& file) const;
  [[nodiscard]] std::int32_t CountOf(Obstacle obstacle) const;

  // Bytes that the target's volume has to take, and has; a volume that does not say has room.
  [[nodiscard]] std::uint64_t BytesToCopy() const { return mBytesToCopy; }
  [[nodiscard]] bool HasRoom() const { return mBytesToCopy <= mFreeBytes; }
  [[nodiscard]] std::uint64_t FreeBytes() const { return mFreeBytes; }

 private:
  class Builder;

  const cSearchResults* mResults;
  RemoveMethod mMethod;
  Text mFolder;
  std::vector<PlannedRemoval> mFiles;
  std::uint64_t mBytesToCopy = 0;
  std::uint64_t mFreeBytes;
};

// Whether this method moves files to a folder.
[[nodiscard]] bool IsMove(RemoveMethod method);

// The plan for the marks and the options of this moment. Pumps; a stop leaves it short.
[[nodiscard]] RemovalPlan PlanRemoval(const cSearchResults& results,
                                      const clsDupeSettings& settings);

}  // namespace quillmarsh
