// SPDX-License-Identifier: MIT
// One walk over the marked files. What is the same for all files of a folder or of a drive is asked
// once for each.
#include "removal/RemovalPlan.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <unordered_map>
#include <unordered_set>

#include "base/CaseMapping.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "removal/DupesFolder.h"
#include "search/results/modDupe.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

// What names on Linux have for characters that these file systems cannot hold, and for bytes that
// are no text.
bool HasForbidden(TextView name) {
  char16_t before = 0;
  for (const char16_t unit : name) {
    const bool isSecondHalf = before >= 0xD800 && before <= 0xDBFF;
    if (unit > 0xF000 && unit < 0xF080) return true;
    if (unit >= 0xDC80 && unit <= 0xDCFF && !isSecondHalf) return true;
    before = unit;
  }
  return false;
}

// The names of the file systems are those of Linux.
bool IsOneOf(TextView fileSystem, std::initializer_list<TextView> kinds) {
  const Text name = UpperCaseText(fileSystem);
  return std::ranges::find(kinds, TextView(name)) != kinds.end();
}

bool CanHold(const VolumeInformation& volume, TextView name) {
  if (name.size() > volume.maximumComponentLength) return false;
  if (IsOneOf(volume.fileSystemName, {u"VFAT", u"MSDOS"}) &&
      (name.ends_with(u'.') || name.ends_with(u' ')))
    return false;
  return !IsOneOf(volume.fileSystemName, {u"VFAT", u"MSDOS", u"EXFAT", u"NTFS3"}) ||
         !HasForbidden(name);
}

}  // namespace

TextView ReasonOf(Obstacle obstacle) {
  switch (obstacle) {
    case Obstacle::AlreadyThere:
      return u"it is already in that folder";
    case Obstacle::NameNotHeld:
      return u"the drive of the target folder cannot hold its name";
    case Obstacle::NoRecycleBin:
      return u"its drive has no Recycle Bin";
    case Obstacle::None:
      break;
  }
  return {};
}

bool IsMove(RemoveMethod method) {
  return method == RemoveMethod::MoveToDupesFolder || method == RemoveMethod::MoveToOtherFolder;
}

class RemovalPlan::Builder {
 public:
  explicit Builder(RemovalPlan& plan) : mPlan(plan), mRoot(Root(plan.mFolder)) {
    if (plan.mFolder.empty()) return;
    mTarget = LookAtFolder(plan.mFolder);
    if (!TheMachine().Drives().GetVolumeInformationW(mRoot, mVolume))
      mVolume.maximumComponentLength = std::numeric_limits<std::uint32_t>::max();
    DiskSpace space;
    if (TheMachine().Drives().GetDiskFreeSpaceExW(mRoot, space))
      plan.mFreeBytes = space.freeBytesAvailableToCaller;
  }

  void Add(std::int32_t group, std::int32_t record) {
    PlannedRemoval file{group, record, Obstacle::None, {}};
    const DupeFileUDT& facts = mPlan.mResults->Record(record);
    if (mPlan.mMethod == RemoveMethod::Recycle && !HasBin(facts.ParentFolderIdx))
      file.obstacle = Obstacle::NoRecycleBin;
    if (!mPlan.mFolder.empty()) PlanMove(facts, file);
    mPlan.mFiles.push_back(std::move(file));
  }

 private:
  static Text Root(const Text& path) { return AddBackslash(StripToRoot(path)); }

  void PlanMove(const DupeFileUDT& facts, PlannedRemoval& file) {
    const Text name(mPlan.mResults->NameOf(facts));
    if (!CanHold(mVolume, name)) file.obstacle = Obstacle::NameNotHeld;
    if (mPlan.mMethod == RemoveMethod::MoveToOtherFolder) {
      if (IsTargetItself(facts.ParentFolderIdx)) file.obstacle = Obstacle::AlreadyThere;
      if (file.obstacle == Obstacle::None) FindFreeName(name, file);
    }
    const bool isCopied = Root(GetFolderPathByIdx(facts.ParentFolderIdx)) != mRoot;
    if (file.obstacle == Obstacle::None && isCopied && facts.Size > Currency())
      mPlan.mBytesToCopy += static_cast<std::uint64_t>(facts.Size.ToInteger());
  }

  // By its identity too: one folder may have two paths.
  bool IsTargetItself(std::int32_t folder) {
    const auto [known, isNew] = mIsTarget.try_emplace(folder, false);
    if (!isNew) return known->second;
    const Text path = AddBackslash(GetFolderPathByIdx(folder));
    const EntryLook look = mTarget.IsPresent() ? LookAtFolder(path) : EntryLook();
    known->second =
        path == mPlan.mFolder || (look.IsPresent() && look.state.IsSameFileAs(mTarget.state));
    return known->second;
  }

  bool HasBin(std::int32_t folder) {
    const Text path = GetFolderPathByIdx(folder);
    const auto [known, isNew] = mHasBin.try_emplace(Root(path), false);
    // In doubt the Recycle Bin itself refuses the file, and it is kept.
    if (isNew)
      known->second = TheMachine().Pins().HasRecycleBin(path) ||
                      TheMachine().GetLastError() != ERROR_NOT_SUPPORTED;
    return known->second;
  }

  bool IsTaken(TextView path) {
    if (mTaken.contains(AsNamed(path.substr(mPlan.mFolder.size())))) return true;
    return !mTarget.IsAbsent() && !LookAtEntry(path).IsAbsent();
  }

  Text AsNamed(TextView name) const {
    const bool tellsCaseApart = (mVolume.fileSystemFlags & FS_CASE_SENSITIVE) != 0;
    return tellsCaseApart ? Text(name) : UpperCaseText(name);
  }

  void FindFreeName(const Text& name, PlannedRemoval& file) {
    Text path = mPlan.mFolder + name;
    if (IsTaken(path)) {
      path = ResolveNextFileNameCollision(name, mPlan.mFolder, mLastNames[name],
                                          [this](TextView tried) { return IsTaken(tried); });
      file.newName = path.substr(std::min(path.size(), mPlan.mFolder.size()));
    }
    mTaken.insert(AsNamed(path.substr(mPlan.mFolder.size())));
  }

  RemovalPlan& mPlan;
  const Text mRoot;
  VolumeInformation mVolume;
  EntryLook mTarget;
  std::unordered_map<std::int32_t, bool> mIsTarget;
  std::unordered_map<Text, bool> mHasBin;
  std::unordered_set<Text> mTaken;
  std::unordered_map<Text, Text> mLastNames;
};

RemovalPlan::RemovalPlan(const cSearchResults& results, const clsDupeSettings& settings)
    : mResults(&results),
      mMethod(settings.RemoveMethod()),
      mFreeBytes(std::numeric_limits<std::uint64_t>::max()) {
  if (mMethod == RemoveMethod::MoveToDupesFolder) mFolder = DupesFolderPathWithoutMaking();
  if (mMethod == RemoveMethod::MoveToOtherFolder) mFolder = settings.UserDefinedMoveFolderPath();
  Builder builder(*this);
  const cResultsList& list = results.ulvwDupeGroups;
  std::vector<std::int32_t> members;
  for (std::int32_t position = 0; position < list.Count() && !gUserAbort; ++position) {
    DoEvents_Fast();
    const std::int32_t group = list.ItemData(position);
    results.ReadMembers(group, members);
    for (const std::int32_t record : members)
      if (results.mFileMarked[static_cast<std::size_t>(record) - 1]) builder.Add(group, record);
  }
}

Text RemovalPlan::FileSpecOf(const PlannedRemoval& file) const {
  return mResults->FullPathOf(mResults->Record(file.record));
}

Text RemovalPlan::TargetOf(const PlannedRemoval& file) const {
  if (mFolder.empty()) return {};
  if (mMethod == RemoveMethod::MoveToDupesFolder)
    return PathInDupesFolder(FileSpecOf(file), mFolder);
  if (!file.newName.empty()) return mFolder + file.newName;
  return mFolder + Text(mResults->NameOf(mResults->Record(file.record)));
}

std::int32_t RemovalPlan::CountOf(Obstacle obstacle) const {
  return static_cast<std::int32_t>(std::ranges::count(mFiles, obstacle, &PlannedRemoval::obstacle));
}

RemovalPlan PlanRemoval(const cSearchResults& results, const clsDupeSettings& settings) {
  return {results, settings};
}

}  // namespace quillmarsh
