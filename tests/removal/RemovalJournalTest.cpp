// SPDX-License-Identifier: MIT
// The journal of removals: lines come back as they were written, and torn ones not at all.
#include "removal/history/RemovalJournal.h"

#include <limits>

#include "fsobjects/FsObjectsFixture.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kMostBits = std::numeric_limits<std::uint64_t>::max();

class RemovalJournal : public FsObjectsFixture {
 protected:
  RemovalJournal() { machine.SetShellFolder(CSIDL_LOCAL_APPDATA, u"C:\\Data"); }

  static std::vector<JournalLine> Lines() {
    std::vector<JournalLine> lines;
    EXPECT_TRUE(ForEachJournalLine([&](const JournalLine& line) { lines.push_back(line); }));
    return lines;
  }
  // The paths of what is unfinished, run by run.
  static std::vector<Text> Unfinished() {
    std::vector<Text> paths;
    const auto unfinished = ReadUnfinished();
    EXPECT_TRUE(unfinished.has_value());
    if (unfinished)
      for (const UnfinishedRemoval& removal : *unfinished) paths.push_back(removal.record.path);
    return paths;
  }
};

TEST_F(RemovalJournal, AnyNameComesBackAsItWas) {
  std::vector<Text> names{u"plain",        u"",       u" ",      u"%",         u"%25%2509%",
                          u"a\tb",         u"\n",     u"\r\n",   u"%0\n9\t\t", u"\xD800",
                          u"\xDC00\xD800", u"\xFEFF", u"\xFFFF", u"."};
  names.emplace_back(40'000, u'\xDBFF');
  names.emplace_back(40'000, u'%');
  std::vector<JournalRecord> records;
  for (const Text& name : names)
    records.push_back({std::ssize(records), u"C:\\" + name, name, name + u"\\x", kMost, -kMost - 1,
                       0, 7, kMostBits, kMostBits - 1});
  cRemovalJournal journal(RemoveMethod::MoveToDupesFolder);
  ASSERT_TRUE(journal.Begin());
  ASSERT_TRUE(journal.Plan(records));
  const auto unfinished = ReadUnfinished();
  ASSERT_TRUE(unfinished.has_value());
  ASSERT_EQ(unfinished->size(), records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    EXPECT_TRUE(unfinished->at(i).record == records[i]) << "name " << i;
    EXPECT_EQ(unfinished->at(i).method, RemoveMethod::MoveToDupesFolder);
  }
  journal.Done(3, JournalOutcome::Kept, names[8]);
  ASSERT_TRUE(journal.End());
  const std::vector<JournalLine> lines = Lines();
  ASSERT_EQ(lines.size(), records.size() + 3);
  const JournalLine& done = lines[lines.size() - 2];
  EXPECT_EQ(done.record.sequence, 3);
  EXPECT_EQ(done.record.target, names[8]);
  EXPECT_EQ(done.outcome, JournalOutcome::Kept);
}

TEST_F(RemovalJournal, KnowsWhatAKilledRunHadUnderWay) {
  EXPECT_EQ(Unfinished(), std::vector<Text>()) << "no journal";
  cRemovalJournal ended(RemoveMethod::Delete);
  cRemovalJournal killed(RemoveMethod::Recycle);
  const JournalRecord plans[] = {{1, u"removed"}, {2, u"kept"}, {3, u"lost"}, {4, u"last"}};
  ASSERT_TRUE(ended.Begin() && ended.Plan(plans) && ended.End());
  ASSERT_TRUE(killed.Begin() && killed.Plan(std::span(plans).first(3)));
  killed.Done(1, JournalOutcome::Removed);
  killed.Done(2, JournalOutcome::Kept);
  EXPECT_EQ(Unfinished().size(), 3U) << "what is done goes to the file with the next batch";
  ASSERT_TRUE(killed.Plan(std::span(plans).last(1)));
  EXPECT_EQ(Unfinished(), (std::vector<Text>{u"lost", u"last"}));
}

TEST_F(RemovalJournal, ATornLineIsNoneAndHarmsNoOther) {
  cRemovalJournal journal(RemoveMethod::Delete);
  const JournalRecord plans[] = {{1, u"first"}, {2, u"second", u".aside", u".target"}};
  ASSERT_TRUE(journal.Begin() && journal.Plan(std::span(plans).first(1)));
  const std::size_t begin = machine.ContentsOf(JournalFileSpec()).size();
  ASSERT_TRUE(journal.Plan(std::span(plans).last(1)));
  const std::string whole = machine.ContentsOf(JournalFileSpec());
  // A line that lacks but the half of its last character gets that back.
  for (std::size_t size = 1; size < whole.size() - 1; ++size) {
    SCOPED_TRACE(size);
    machine.SetContents(JournalFileSpec(), whole.substr(0, size));
    EXPECT_EQ(Unfinished().size(), size >= begin ? 1U : 0U);
    cRemovalJournal next(RemoveMethod::Delete);
    ASSERT_TRUE(next.Begin() && next.Plan(plans));
    EXPECT_EQ(Unfinished().size(), size >= begin - 1 ? 3U : 2U);
  }
}

TEST_F(RemovalJournal, WhatCannotBeWrittenIsSaid) {
  cRemovalJournal journal(RemoveMethod::Delete);
  const JournalRecord plans[] = {{1, Text(5000, u'x')}};
  machine.SetShellFolder(CSIDL_LOCAL_APPDATA, u"");
  EXPECT_FALSE(journal.Begin());
  machine.SetShellFolder(CSIDL_LOCAL_APPDATA, u"C:\\Data");
  ASSERT_TRUE(journal.Begin());
  machine.SetFreeBytes(u"C:\\", 6000);
  EXPECT_FALSE(journal.Plan(plans));
  EXPECT_EQ(machine.GetLastError(), ERROR_DISK_FULL);
  journal.Done(7, JournalOutcome::Kept);
  machine.SetFreeBytes(u"C:\\", 0);
  EXPECT_FALSE(journal.End());
  machine.SetFreeBytes(u"C:\\", 60'000);
  EXPECT_TRUE(journal.Plan(plans));
  const std::vector<JournalLine> lines = Lines();
  ASSERT_EQ(lines.size(), 3U) << "what was done is tried again";
  EXPECT_EQ(lines[1].record.sequence, 7);
  EXPECT_EQ(Unfinished(), std::vector<Text>{plans[0].path});
}

}  // namespace
}  // namespace quillmarsh
