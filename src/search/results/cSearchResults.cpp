// SPDX-License-Identifier: MIT
// Groups as ranges, cells on demand, and giving memory back.
#include "search/results/cSearchResults.h"

#include <algorithm>

#include "base/LocaleFormat.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {

namespace {

template <typename T>
void Release(std::vector<T>& array) {
  std::vector<T>().swap(array);
}

}  // namespace

cSearchResults::cSearchResults() {
  ulvwDupeGroups.SetFormatter(
      [this](std::int32_t group, int column) { return GroupCell(group, column); });
  ulvwDupeDetails.SetFormatter(
      [this](std::int32_t index, int column) { return DetailCell(index, column); });
}

std::int32_t cSearchResults::RecordCount() const {
  return std::min(mFileCount, static_cast<std::int32_t>(mDupeFiles.size()));
}

Text cSearchResults::FullPathOf(const DupeFileUDT& record) const {
  return GetFolderPathByIdx(record.ParentFolderIdx) + Text(NameOf(record));
}

void cSearchResults::AddGroup(std::int32_t firstRecord, std::int32_t count, Currency totalSize) {
  mGroupMembers.push_back({firstRecord, count});
  mGroupTotalSize.push_back(totalSize);
  mGroupFileCount.push_back(count);
  mGroupCount += 1;
  mDupeFileCount += count;
  mDupeTotalSize = Currency::SaturatingSum(mDupeTotalSize, totalSize);
}

std::vector<std::int32_t> cSearchResults::MembersOf(std::int32_t group) const {
  std::vector<std::int32_t> members;
  ReadMembers(group, members);
  return members;
}

void cSearchResults::ReadMembers(std::int32_t group, std::vector<std::int32_t>& members) const {
  members.clear();
  if (group < 1 || group > static_cast<std::int32_t>(mGroupMembers.size())) return;
  const MemberRange& range = mGroupMembers[static_cast<std::size_t>(group) - 1];
  for (std::int32_t i = 0; i < range.count; ++i) members.push_back(range.first + i);
}

Text cSearchResults::mGroupFileIndexes(std::int32_t group) const {
  Text text;
  for (const std::int32_t member : MembersOf(group)) {
    if (!text.empty()) text += u',';
    text += DecimalText(member);
  }
  return text;
}

Text cSearchResults::KeyTextOf(std::int32_t group) const {
  const std::vector<std::int32_t> members = MembersOf(group);
  if (members.empty()) return {};
  RecordKeyReader reader(Facts(), mCriteria);
  return KeyText(reader.Next(Record(members.front())), mCriteria);
}

Text cSearchResults::GroupCell(std::int32_t group, int column) const {
  if (group < 1 || group > static_cast<std::int32_t>(mGroupMembers.size())) return {};
  const auto row = static_cast<std::size_t>(group) - 1;
  const DupeFileUDT& first = Record(mGroupMembers[row].first);
  switch (column) {
    case 0:
      return mCriteria.namesMatch ? Text(NameOf(first))
                                  : FormatGrouped(first.Size, GetLocaleFacts());
    case 1:
      return DecimalText(mGroupFileCount[row]);
    case 2:
      return FormatGrouped(mGroupTotalSize[row], GetLocaleFacts());
    default:
      return {};
  }
}

void cSearchResults::ClearGroups() {
  Release(mGroupMembers);
  Release(mGroupTotalSize);
  Release(mGroupFileCount);
  mDupeFileCount = 0;
  mGroupCount = 0;
  mDupeTotalSize = {};
}

void cSearchResults::ResetModuleLevelArraysForNewSearch() {
  Release(mDupeFiles);
  ClearGroups();
  Release(mFileMarked);
  mNames.Clear();
  mSecondPasses.clear();
  mUnreadable.clear();
  mAreContentsKnown = false;
}

}  // namespace quillmarsh
