// SPDX-License-Identifier: MIT
// The forest, the run and the check of what is left.
#include "removal/RemovalProgram.h"

#include "settings/OptionsFolder.h"

namespace quillmarsh {

RemovalProgram::RemovalProgram() {
  for (const TextView root : {u"D:\\", u"E:\\", u"\\\\nas\\public\\"}) {
    SimulatedDrive drive;
    drive.root = root;
    machine.AddDrive(drive);
  }
  mDupesFolderPath = kDupesFolder;
  gDupeSettings->SetUserDefinedMoveFolderPath(kOtherFolder);
  gDupeSettings->SetRemoveWarningShown(true);
}

void RemovalProgram::Put(const Text& path, std::uint64_t size, std::uint64_t seed,
                         std::uint32_t attributes) {
  const std::int64_t ticks =
      TicksOf(2026, 11, 1) + static_cast<std::int64_t>(seed % 1000) * 10'000'000;
  machine.AddFile(path, FileContents::Recipe(seed, size), {attributes, ticks, ticks, ticks});
}

void RemovalProgram::SearchAll() {
  for (const TextView folder : {u"C:\\data", u"D:\\data", u"\\\\nas\\public\\data"})
    if (!machine.Exists(folder)) machine.AddFolder(folder);
  ASSERT_EQ(Search({u"C:\\data", u"D:\\data", u"\\\\nas\\public\\data"}), SearchOutcome::Complete);
  results.mFileMarked.assign(results.mFileMarked.size(), false);
}

void RemovalProgram::Mark(std::int32_t record, bool isMarked) {
  results.mFileMarked[static_cast<std::size_t>(record) - 1] = isMarked;
}

void RemovalProgram::MarkPath(TextView path) {
  for (std::int32_t record = 1; record <= results.RecordCount(); ++record) {
    if (results.FullPathOf(results.Record(record)) == path) return Mark(record);
  }
  FAIL() << ToUtf8(path) << " was not found";
}

cRemovalRun::Outcome RemovalProgram::Remove(RemoveMethod method, const RemovalOptions& options) {
  gDupeSettings->SetRemoveMethod(method);
  gViews.messages = &patient;
  entries.clear();
  cRemovalRun run(results, *gDupeSettings, removalView, 0);
  return run.RemoveWithoutAsking(options,
                                 [this](const RemovalEntry& entry) { entries.push_back(entry); });
}

std::vector<std::string> RemovalProgram::Kept() const {
  std::vector<std::string> kept;
  for (const RemovalEntry& entry : entries)
    if (!entry.reason.empty()) kept.push_back(ToUtf8(entry.fileSpec) + ": " + ToUtf8(entry.reason));
  return kept;
}

RemovalProgram::Contents RemovalProgram::ContentsNow() const {
  Contents contents;
  for (const TextView root : {u"C:\\", u"D:\\", u"E:\\", u"\\\\nas\\public\\"}) {
    for (const Text& path : machine.TreeOf(root)) {
      if ((machine.AttributesOf(path) & FILE_ATTRIBUTE_DIRECTORY) == 0)
        contents[path] = machine.ContentsOf(path);
    }
  }
  return contents;
}

std::set<Text> RemovalProgram::MarkedPaths() const {
  std::set<Text> paths;
  for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
    for (const std::int32_t member : results.MembersOf(group)) {
      if (results.mFileMarked[static_cast<std::size_t>(member) - 1])
        paths.insert(results.FullPathOf(results.Record(member)));
    }
  }
  return paths;
}

void RemovalProgram::ExpectRemoved(const RemovalEntry& entry, const Contents& before,
                                   const Contents& after) {
  const std::string& bytes = before.at(entry.fileSpec);
  const std::string name = ToUtf8(entry.fileSpec);
  EXPECT_FALSE(after.contains(entry.fileSpec)) << name << " is still there";
  Text place = entry.target;
  if (entry.kind == log_kind::FileSentToRecycleBin) {
    for (const RecycledEntry& recycled : machine.Recycled())
      if (recycled.originalPath == entry.fileSpec) place = recycled.binPath;
  }
  if (place.empty()) return;  // deleted
  const auto found = after.find(place);
  ASSERT_NE(found, after.end()) << name << " is not at " << ToUtf8(place);
  EXPECT_EQ(found->second, bytes) << name << " has other bytes at " << ToUtf8(place);
}

void RemovalProgram::ExpectNothingLost(const Contents& before, const std::set<Text>& marked) {
  const Contents after = ContentsNow();
  std::set<Text> removed;
  for (const RemovalEntry& entry : entries) {
    const bool isError = entry.kind >= log_kind::DeleteError;
    if (isError) continue;
    EXPECT_TRUE(marked.contains(entry.fileSpec)) << ToUtf8(entry.fileSpec) << " was not marked";
    EXPECT_TRUE(removed.insert(entry.fileSpec).second) << "two entries for one file";
    if (!entry.isDeletedForGood) ExpectRemoved(entry, before, after);
  }
  for (const auto& [path, bytes] : before) {
    if (removed.contains(path)) continue;
    const auto found = after.find(path);
    ASSERT_NE(found, after.end()) << ToUtf8(path) << " is gone without a word";
    EXPECT_EQ(found->second, bytes) << ToUtf8(path) << " was changed";
  }
  ExpectCountsAgree();
}

void RemovalProgram::ExpectCountsAgree() {
  std::int32_t files = 0;
  std::int32_t groups = 0;
  Currency size;
  for (std::int32_t group = 1; group <= results.mGroupCount; ++group) {
    const auto row = static_cast<std::size_t>(group) - 1;
    const auto members = results.MembersOf(group);
    Currency groupSize;
    for (const std::int32_t member : members) groupSize += results.Record(member).Size;
    EXPECT_NE(members.size(), 1U);
    EXPECT_EQ(results.mGroupFileCount[row], static_cast<std::int32_t>(members.size()));
    EXPECT_EQ(results.mGroupTotalSize[row], groupSize);
    files += static_cast<std::int32_t>(members.size());
    groups += members.empty() ? 0 : 1;
    size += groupSize;
  }
  EXPECT_EQ(results.mDupeFileCount, files);
  EXPECT_EQ(results.mDupeTotalSize, size);
  EXPECT_EQ(results.ulvwDupeGroups.Count(), groups);
  EXPECT_FALSE(removalView.isLocked);
}

}  // namespace quillmarsh
