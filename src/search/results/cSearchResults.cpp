// SPDX-License-Identifier: MIT
// Groups as ranges, cells on demand, and giving memory back.
#include "search/results/cSearchResults.h"

#include <algorithm>

#include "base/LocaleFormat.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

template <typename T>
void Release(std::vector<T>& array) {
  std::vector<T>().swap(array);
}

// Cuts the first occurrence of an index out of a group's text, as a plain piece of text: of 12 in
// 312,7,12 it leaves 37,12. Nothing lists, marks or removes by this text.
void CutFromText(Text& text, const Text& index) {
  for (const Text& piece : {index + u',', u',' + index, index}) {
    const std::size_t found = text.find(piece);
    if (found == Text::npos) continue;
    text.erase(found, piece.size());
    return;
  }
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

void cSearchResults::SetName(std::int32_t index, TextView name) {
  if (index < 1 || index > RecordCount()) return;
  DupeFileUDT& record = mDupeFiles[static_cast<std::size_t>(index) - 1];
  const NameHandle handle = mNames.Add(name);
  // Both are kept by the handle.
  if (const auto passes = mSecondPasses.extract(record.Name); !passes.empty())
    mSecondPasses.emplace(handle, passes.mapped());
  if (mUnreadable.erase(record.Name) > 0) mUnreadable.insert(handle);
  record.Name = handle;
}

void cSearchResults::AddGroup(std::int32_t firstRecord, std::int32_t count, Currency totalSize) {
  mGroupMembers.push_back({firstRecord, count});
  mGroupTotalSize.push_back(totalSize);
  mGroupFileCount.push_back(count);
  mGroupCount += 1;
  mDupeFileCount += count;
  mDupeTotalSize = Currency::SaturatingSum(mDupeTotalSize, totalSize);
}

bool cSearchResults::HasGroup(std::int32_t group) const {
  return group >= 1 && group <= static_cast<std::int32_t>(mGroupMembers.size());
}

std::vector<std::int32_t> cSearchResults::MembersOf(std::int32_t group) const {
  std::vector<std::int32_t> members;
  ReadMembers(group, members);
  return members;
}

void cSearchResults::ReadMembers(std::int32_t group, std::vector<std::int32_t>& members) const {
  members.clear();
  if (!HasGroup(group)) return;
  const MemberRange& range = mGroupMembers[static_cast<std::size_t>(group) - 1];
  for (std::int32_t record = range.first; record < range.first + range.count; ++record) {
    if (!IsTakenOut(record)) members.push_back(record);
  }
}

Text cSearchResults::mGroupFileIndexes(std::int32_t group) const {
  Text text;
  if (!HasGroup(group)) return text;
  const MemberRange& range = mGroupMembers[static_cast<std::size_t>(group) - 1];
  for (std::int32_t record = range.first; record < range.first + range.count; ++record) {
    if (!text.empty()) text += u',';
    text += DecimalText(record);
  }
  const auto cuts = mCuts.find(group);
  if (cuts == mCuts.end()) return text;
  for (const std::int32_t record : cuts->second) CutFromText(text, DecimalText(record));
  return text;
}

bool cSearchResults::IsTakenOut(std::int32_t record) const {
  const auto place = static_cast<std::size_t>(record) - 1;
  return place < mIsTakenOut.size() && mIsTakenOut[place];
}

void cSearchResults::MarkAsTakenOut(std::int32_t record) {
  if (record < 1 || record > RecordCount()) return;
  if (mIsTakenOut.empty()) mIsTakenOut.resize(static_cast<std::size_t>(RecordCount()));
  mIsTakenOut[static_cast<std::size_t>(record) - 1] = true;
}

void cSearchResults::TakeOut(std::int32_t group, std::int32_t record) {
  if (!HasGroup(group)) return;
  MarkAsTakenOut(record);
  mCuts[group].push_back(record);
}

void cSearchResults::EmptyGroup(std::int32_t group, std::int32_t record) {
  if (!HasGroup(group)) return;
  MarkAsTakenOut(record);
  mCuts.erase(group);
  const auto row = static_cast<std::size_t>(group) - 1;
  mGroupMembers[row] = {};
  mGroupTotalSize[row] = {};
  mGroupFileCount[row] = 0;
}

void cSearchResults::DropTakenOutRecords() {
  std::int32_t record = 0;
  const auto dropped =
      std::erase_if(mDupeFiles, [&](const DupeFileUDT&) { return IsTakenOut(++record); });
  mFileCount = std::max(mFileCount - static_cast<std::int32_t>(dropped), 0);
  mIsTakenOut.clear();
}

Text cSearchResults::KeyTextOf(std::int32_t group) const {
  const std::vector<std::int32_t> members = MembersOf(group);
  if (members.empty()) return {};
  RecordKeyReader reader(Facts(), mCriteria);
  return KeyText(reader.Next(Record(members.front())), mCriteria);
}

Text cSearchResults::GroupCell(std::int32_t group, int column) const {
  if (!HasGroup(group)) return {};
  const auto row = static_cast<std::size_t>(group) - 1;
  const std::int32_t firstRecord = mGroupMembers[row].first;
  if (firstRecord == 0) return {};  // emptied
  const DupeFileUDT& first = Record(firstRecord);
  switch (column) {
    case 0:
      return mCriteria.namesMatch ? TheMachine().Drives().ShownPath(NameOf(first))
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
  mCuts.clear();
  mDupeFileCount = 0;
  mGroupCount = 0;
  mDupeTotalSize = {};
}

void cSearchResults::ResetModuleLevelArraysForNewSearch() {
  Release(mDupeFiles);
  Release(mIsTakenOut);
  ClearGroups();
  Release(mFileMarked);
  mNames.Clear();
  mSecondPasses.clear();
  mUnreadable.clear();
  mAreContentsKnown = false;
}

}  // namespace quillmarsh
