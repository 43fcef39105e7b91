// SPDX-License-Identifier: MIT
// The differences of Wine 8. docs/windows-differences.md tells more of each.
#include "platform/KnownWineDifferences.h"

#include <algorithm>

namespace quillmarsh {

namespace {

using enum WineDifference::When;

constexpr WineDifference differences[] = {
    {"the listing of a file is 267", Always, "Wine answers 123"},
    {"a missing drive is 3 and a missing server 53", Always, "Wine answers 2 and 66"},
    {"a folder link tells its tag and is one behind a backslash too", Always,
     "Wine has no tags, and follows a link behind which a backslash stands"},
    {"a read-only file is not opened for writing", AsSuperuser,
     "Wine leaves it to the system below, which lets the superuser do it"},
    {"a move to a place that cannot be leaves all as it was", Always,
     "Wine has other codes for such places"},
    {"a move that replaces takes files only, and no read-only ones", Always,
     "Wine replaces read-only files too, and a file by a folder"},
    {"a move may change the case of a name alone", Always,
     "Wine takes it for a move onto itself and leaves the name as it was"},
    {"a read-only file is not replaced", AsSuperuser,
     "Wine leaves it to the system below, which lets the superuser do it"},
    {"of a link to a folder the link is removed, and a root never", Always,
     "Wine follows the link, and asks first whether a root is empty"},
    {"times are not set through a handle for reading", Always,
     "Wine does not ask what a handle was opened for"},
    {"native bytes keep the dot and the blank at the end of a name", Always,
     "Wine takes them off the path of a file that is open"},
};

}  // namespace

const WineDifference* KnownWineDifference(const MachineUnderTest& ground,
                                          std::string_view sentence) {
  if (!ground.IsWine()) return nullptr;
  const auto* const found = std::ranges::find(differences, sentence, &WineDifference::sentence);
  if (found == std::end(differences)) return nullptr;
  return found->when == Always || !ground.CanKeepOut() ? found : nullptr;
}

}  // namespace quillmarsh
