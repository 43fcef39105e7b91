// SPDX-License-Identifier: MIT
// The Recycle Bin of a simulated machine: each volume has its own, a hidden folder below its root.
#include "platform/simulated/SimulatedSystemRoles.h"

namespace quillmarsh::simulated {

namespace {

constexpr TextView binName = u"$Recycle.Bin";
constexpr std::uint32_t hiddenSystemFolder =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY;

std::int32_t ShellCodeOf(std::uint32_t error) {
  return error == ERROR_ACCESS_DENIED ? DE_ACCESSDENIEDSRC : static_cast<std::int32_t>(error);
}

}  // namespace

std::int32_t SimulatedShell::SendToBin(TextView path) {
  if (path.starts_with(u"\\\\?\\") || path.find_first_of(u"*?") != TextView::npos)
    return DE_INVALIDFILES;
  if (path.size() >= UsualPathLimit) return DE_PATHTOODEEP;
  const Resolved place = mWorld->Look(path, LastLink::Keep);
  if (place.error != 0) return ShellCodeOf(place.error);
  // The shell would take the final dots and blanks off a name.
  if (place.parent == nullptr || !IsPlainName(place.node->Name())) return DE_INVALIDFILES;
  if (const std::uint32_t refusal = mWorld->WhyNotTakenAway(place)) return ShellCodeOf(refusal);
  Node& root = *place.volume->root;
  Node* bin = mWorld->disk.FindChild(root, binName);
  if (bin == nullptr) bin = &mWorld->AddNow(root, binName, hiddenSystemFolder, true);
  const Text name = u"$R" + DecimalText(static_cast<std::int64_t>(mWorld->recycled.size()) + 1);
  place.parent->written = mWorld->clock;
  mWorld->lastFolder = nullptr;
  mWorld->disk.Move(*place.node, *bin, name);
  const Text& drive = place.volume->roots.front();
  mWorld->recycled.push_back({Text(path), drive + Text(binName) + u"\\" + name});
  return 0;
}

// What was sent before a refusal stays sent.
std::int32_t SimulatedShell::DoFileOperation(SHFILEOPSTRUCTW& operation) {
  if (operation.wFunc != FO_DELETE || (operation.fFlags & FOF_ALLOWUNDO) == 0)
    return static_cast<std::int32_t>(ERROR_INVALID_PARAMETER);
  if (mWorld->binAnswer != 0) return mWorld->binAnswer;
  TextView rest = operation.pFrom;
  while (!rest.empty() && rest.front() != u'\0') {
    const TextView path = rest.substr(0, rest.find(u'\0'));
    if (const std::int32_t code = SendToBin(path)) return code;
    rest.remove_prefix(std::min(path.size() + 1, rest.size()));
  }
  return 0;
}

}  // namespace quillmarsh::simulated
