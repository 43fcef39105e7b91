// SPDX-License-Identifier: MIT
// What a removal asks, tells, writes to the history and keeps in step.
#include "frame/ProgramFlags.h"
#include "removal/RemovalProgram.h"
#include "removal/history/RemovalJournal.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

using Strings = std::vector<std::string>;

class RemovalRun : public testing::Test {
 protected:
  // Groups by name and size: a of three files of 10 bytes, b of two of 20, c of three of 30.
  RemovalRun() {
    for (const TextView name : {u"1\\a", u"2\\a", u"3\\a"}) Put(name, 10);
    for (const TextView name : {u"1\\b", u"2\\b"}) Put(name, 20);
    for (const TextView name : {u"1\\c", u"2\\c", u"3\\c"}) Put(name, 30);
    program->SearchAll();
    program->log->lines.clear();
  }

  void Put(TextView name, std::uint64_t size) { program->Put(PathOf(name), size, mSeed++); }
  [[nodiscard]] static Text PathOf(TextView name) { return u"C:\\data\\" + Text(name); }
  [[nodiscard]] bool Exists(TextView name) const { return program->machine.Exists(PathOf(name)); }
  void Mark(std::initializer_list<TextView> names) {
    for (const TextView name : names) program->MarkPath(PathOf(name));
  }
  // Answers the boxes in turn and gives their texts.
  Strings Run(RemoveMethod method, std::initializer_list<MessageBoxResult> answers,
              bool listOnly = false) {
    for (const MessageBoxResult answer : answers) program->messages.Expect(answer);
    program->messages.shown.clear();
    gDupeSettings->SetRemoveMethod(method);
    cRemovalRun(program->results, *gDupeSettings, program->removalView, 8)
        .RemoveMarkedFilesAllGroups(listOnly);
    Strings texts;
    for (const MessageBoxRequest& request : program->messages.shown)
      texts.push_back(ToUtf8(request.text));
    return texts;
  }
  // The kinds of the history's entries.
  [[nodiscard]] std::string Kinds() const {
    std::string kinds;
    for (const std::string& line : program->log->lines)
      kinds += (kinds.empty() ? "" : " ") + line.substr(0, line.find(' '));
    return kinds;
  }
  // "5 files, 110 bytes, groups: 1,2 - 3,4,5"
  [[nodiscard]] std::string Totals() const {
    std::string text = std::to_string(program->results.mDupeFileCount) + " files, " +
                       ToUtf8(program->results.mDupeTotalSize.ToText()) + " bytes, groups:";
    for (std::int32_t group = 1; group <= program->results.mGroupCount; ++group)
      text += " [" + ToUtf8(program->results.mGroupFileIndexes(group)) + "]";
    return text;
  }

  static constexpr auto Yes = MessageBoxResult::Yes;
  static constexpr auto No = MessageBoxResult::No;
  static constexpr auto Ok = MessageBoxResult::Ok;
  std::uint64_t mSeed = 1;
  // The program-wide objects are one program's at a time.
  RemovalProgram& Renew() {
    program.reset();
    program = std::make_unique<RemovalProgram>();
    return *program;
  }
  std::unique_ptr<RemovalProgram> program = std::make_unique<RemovalProgram>();
};

constexpr const char* kCompleted = "Duplicate removal completed successfully";

TEST_F(RemovalRun, TheGuidelinesStandInForTheFirstConfirmation) {
  Mark({u"1\\a"});
  gDupeSettings->SetRemoveWarningShown(false);
  program->removalView.answer = kRemovalWarningCancel;
  EXPECT_EQ(Run(RemoveMethod::Delete, {}), Strings{});
  EXPECT_EQ(Kinds(), "3");  // an end without a begin
  EXPECT_TRUE(gDupeSettings->RemoveWarningShown());
  EXPECT_TRUE(Exists(u"1\\a"));

  gDupeSettings->SetRemoveWarningShown(false);
  program->removalView.answer = kRemovalWarningContinue;
  EXPECT_EQ(Run(RemoveMethod::Delete, {}), Strings{});
  EXPECT_EQ(Kinds(), "3 2 4 3");
  EXPECT_FALSE(Exists(u"1\\a"));
  EXPECT_EQ(program->removalView.warnings, 2);
}

TEST_F(RemovalRun, NothingGoesWithoutAMarkOrAYes) {
  EXPECT_EQ(Run(RemoveMethod::Delete, {Ok}), Strings{"No files selected for removal"});
  Mark({u"1\\a", u"2\\c"});
  EXPECT_EQ(Run(RemoveMethod::MoveToDupesFolder, {No}),
            Strings{"Number of files to remove: 2\r\nRemoval Method: Move to folder \\DUPES\r\n\r\n"
                    "Do you wish to continue?"});
  EXPECT_EQ(program->messages.shown.at(0).defaultButton, MessageBoxResult::No);
  EXPECT_EQ(Kinds(), "3 3");
  EXPECT_TRUE(Exists(u"1\\a"));
  EXPECT_EQ(Totals(), "8 files, 160 bytes, groups: [1,2,3] [4,5] [6,7,8]");
}

TEST_F(RemovalRun, AGroupIsNotLeftWithoutACopyUnasked) {
  Mark({u"1\\b", u"2\\b", u"1\\a"});
  const Strings refused = Run(RemoveMethod::Delete, {Yes, No});
  ASSERT_EQ(refused.size(), 2U);
  EXPECT_NE(refused[1].find("no copy stays in its place: 1\r\n"), std::string::npos);
  EXPECT_EQ(program->messages.shown.at(1).defaultButton, MessageBoxResult::No);
  EXPECT_TRUE(Exists(u"1\\a") && Exists(u"1\\b") && Exists(u"2\\b"));
  EXPECT_EQ(Kinds(), "3");

  EXPECT_EQ(Run(RemoveMethod::Delete, {Yes, Yes, Ok}).back(), kCompleted);
  EXPECT_FALSE(Exists(u"1\\b") || Exists(u"2\\b"));

  // The guidelines ask about no number, so they do not stand in for this question.
  gDupeSettings->SetRemoveWarningShown(false);
  Mark({u"1\\c", u"2\\c", u"3\\c"});
  EXPECT_EQ(Run(RemoveMethod::Delete, {No}).size(), 1U);
  EXPECT_TRUE(Exists(u"1\\c"));
}

TEST_F(RemovalRun, GroupsListsAndTotalsKeepInStep) {
  struct Row {
    const char* name;
    std::vector<Text> marked;
    const char* totals;
    const char* rows;  // of the group list
  };
  const std::vector<Row> rows = {
      {"one of three",
       {u"2\\a"},
       "7 files, 150 bytes, groups: [1,3] [4,5] [6,7,8]",
       "2 20|2 40|3 90"},
      {"one of two", {u"1\\b"}, "6 files, 120 bytes, groups: [1,2,3] [] [6,7,8]", "3 30|3 90"},
      {"two of three",
       {u"1\\a", u"2\\a"},
       "5 files, 130 bytes, groups: [] [4,5] [6,7,8]",
       "2 40|3 90"},
      {"all of three",
       {u"1\\a", u"2\\a", u"3\\a"},
       "5 files, 130 bytes, groups: [] [4,5] [6,7,8]",
       "2 40|3 90"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RemovalProgram& fresh = Renew();
    for (const auto& [path, size] : std::map<Text, std::uint64_t>{{u"1\\a", 10},
                                                                  {u"2\\a", 10},
                                                                  {u"3\\a", 10},
                                                                  {u"1\\b", 20},
                                                                  {u"2\\b", 20},
                                                                  {u"1\\c", 30},
                                                                  {u"2\\c", 30},
                                                                  {u"3\\c", 30}})
      fresh.Put(PathOf(path), size, 1);
    fresh.SearchAll();
    for (const Text& path : row.marked) fresh.MarkPath(PathOf(path));
    EXPECT_EQ(fresh.Remove(RemoveMethod::Delete).failedCount, 0);
    std::string text = std::to_string(fresh.results.mDupeFileCount) + " files, " +
                       ToUtf8(fresh.results.mDupeTotalSize.ToText()) + " bytes, groups:";
    for (std::int32_t group = 1; group <= 3; ++group)
      text += " [" + ToUtf8(fresh.results.mGroupFileIndexes(group)) + "]";
    EXPECT_EQ(text, row.totals);
    std::string listed;
    const cResultsList& list = fresh.results.ulvwDupeGroups;
    for (std::int32_t i = 0; i < list.Count(); ++i)
      listed +=
          (i == 0 ? "" : "|") + ToUtf8(list.CellText(i, 1)) + " " + ToUtf8(list.CellText(i, 2));
    EXPECT_EQ(listed, row.rows);
  }
}

TEST_F(RemovalRun, AFileThatCannotGoStaysMarkedInItsGroup) {
  Mark({u"1\\b", u"1\\c"});
  static_cast<void>(program->machine.HoldOpen(PathOf(u"1\\c"), FILE_SHARE_READ));
  EXPECT_EQ(
      Run(RemoveMethod::Delete, {Yes, Ok}).back(),
      "Duplicate removal is complete.  Some files were not removed due to errors.    View the "
      "History Log for details.");
  EXPECT_EQ(Kinds(), "2 4 8 3");
  EXPECT_EQ(program->MarkedPaths(), std::set<Text>{PathOf(u"1\\c")});
  EXPECT_EQ(Totals(), "6 files, 120 bytes, groups: [1,2,3] [] [6,7,8]");
  EXPECT_TRUE(Exists(u"1\\c"));

  // Of two marked files the second goes where the first could not, and the group goes with it.
  RemovalProgram& other = Renew();
  other.Put(PathOf(u"1\\x"), 5, 1);
  other.Put(PathOf(u"2\\x"), 5, 2);
  other.SearchAll();
  other.Mark(1);
  other.Mark(2);
  static_cast<void>(other.machine.HoldOpen(PathOf(u"1\\x"), FILE_SHARE_READ));
  EXPECT_EQ(other.Remove(RemoveMethod::Delete).removedCount, 1);
  EXPECT_EQ(other.results.ulvwDupeGroups.Count(), 0);
  EXPECT_TRUE(other.machine.Exists(PathOf(u"1\\x")));
}

TEST_F(RemovalRun, WhatTheBinRefusesStaysAndWithoutABinTheUserIsAskedOnce) {
  Mark({u"1\\b", u"1\\c"});
  program->machine.SetBinAnswer(120);
  EXPECT_TRUE(
      Run(RemoveMethod::Recycle, {Yes, Ok}).back().starts_with("Duplicate removal is comp"));
  EXPECT_EQ(Kinds(), "2 8 8 3");
  EXPECT_TRUE(Exists(u"1\\b") && Exists(u"1\\c"));

  for (const MessageBoxResult answer : {No, Yes}) {
    SCOPED_TRACE(static_cast<int>(answer));
    RemovalProgram& fresh = Renew();
    SimulatedDrive server;
    server.root = u"F:\\";
    server.type = DRIVE_REMOTE;
    fresh.machine.AddDrive(server);
    for (const Text& path : {Text(u"C:\\data\\x"), Text(u"F:\\1\\x"), Text(u"F:\\2\\x")})
      fresh.Put(path, 10, 1);
    ASSERT_EQ(fresh.Search({u"C:\\data", u"F:\\"}), SearchOutcome::Complete);
    fresh.results.mFileMarked.assign(3, false);
    fresh.MarkPath(u"F:\\1\\x");
    fresh.MarkPath(u"F:\\2\\x");
    const Strings texts = Run(RemoveMethod::Recycle, {Yes, answer, Ok});
    EXPECT_TRUE(texts[1].starts_with("Files on drives that have no Recycle Bin: 2")) << texts[1];
    EXPECT_EQ(fresh.messages.shown.at(1).defaultButton, MessageBoxResult::No);
    EXPECT_EQ(fresh.machine.Exists(u"F:\\1\\x"), answer == No);
  }
}

TEST_F(RemovalRun, EscEndsItBehindTheFileThatWasUnderWay) {
  Mark({u"1\\a", u"2\\a", u"1\\c"});
  program->hook.RunAfter({Operation::SetFileInformationByHandle, 1}, [] { gUserAbort = true; });
  EXPECT_EQ(Run(RemoveMethod::Delete, {Yes, Ok}).back(), "Duplicate removal cancelled by user");
  EXPECT_EQ(Kinds(), "2 4 13 3");
  EXPECT_TRUE(!Exists(u"1\\a") && Exists(u"2\\a") && Exists(u"1\\c"));
  EXPECT_EQ(Totals(), "7 files, 150 bytes, groups: [2,3] [4,5] [6,7,8]");
  EXPECT_FALSE(program->removalView.isLocked);
}

TEST_F(RemovalRun, ListOnlyTakesMarkedFilesOutOfTheListsAndTouchesNone) {
  Mark({u"1\\a", u"1\\b"});
  EXPECT_EQ(Run(RemoveMethod::Delete, {}, true), Strings{});
  EXPECT_EQ(Kinds(), "2 3");
  EXPECT_EQ(Totals(), "5 files, 110 bytes, groups: [2,3] [] [6,7,8]");
  EXPECT_TRUE(Exists(u"1\\a") && Exists(u"1\\b"));
}

// The marks of removed files stay set, but only files that are still listed count.
TEST_F(RemovalRun, ASecondRunFindsNothingMore) {
  Mark({u"1\\a", u"1\\c"});
  EXPECT_EQ(Run(RemoveMethod::Delete, {Yes, Ok}).back(), kCompleted);
  program->log->lines.clear();
  EXPECT_EQ(Run(RemoveMethod::Delete, {Ok}), Strings{"No files selected for removal"});
  EXPECT_EQ(Kinds(), "3");
}

TEST_F(RemovalRun, ARefusedStartBringsNoRemovedFileBack) {
  Mark({u"1\\a", u"2\\b"});
  Run(RemoveMethod::Delete, {Yes, Ok});
  program->messages.Expect();
  EXPECT_EQ(program->Search({}), SearchOutcome::Refused);
  EXPECT_EQ(program->Groups(),
            (std::vector<Strings>{{"C:\\data\\2\\a", "C:\\data\\3\\a"},
                                  {"C:\\data\\1\\c", "C:\\data\\2\\c", "C:\\data\\3\\c"}}));
}

TEST_F(RemovalRun, AReadOnlyFileIsRemovedAndStaysReadOnlyWhereItStays) {
  constexpr std::uint32_t readOnly = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE;
  program->machine.SetAttributes(PathOf(u"1\\a"), readOnly);
  program->machine.SetAttributes(PathOf(u"1\\c"), readOnly);
  program->hook.Fail({Operation::SetFileInformationByHandle, 2}, ERROR_ACCESS_DENIED);
  Mark({u"1\\a", u"1\\c"});
  Run(RemoveMethod::Delete, {Yes, Ok});
  EXPECT_EQ(Kinds(), "2 4 8 3");
  EXPECT_EQ(program->machine.AttributesOf(PathOf(u"1\\c")), readOnly);
}

// A copy on another volume whose original stays is no removal, whatever the system calls it.
TEST_F(RemovalRun, AMoveCountsOnlyWhenTheFileIsGone) {
  Mark({u"1\\a"});
  program->machine.DenyAccess(PathOf(u"1\\a"), 0x10000);  // the right to delete
  EXPECT_EQ(program->Remove(RemoveMethod::MoveToOtherFolder).removedCount, 0);
  EXPECT_EQ(Kinds(), "2 9 3");
  EXPECT_TRUE(Exists(u"1\\a"));
}

class Checks : public RemovalRun {
 protected:
  // What was kept and why, without the common beginning of the paths.
  Strings Remove(RemoveMethod method) {
    mOutcome = program->Remove(method);
    Strings kept = program->Kept();
    for (std::string& line : kept) line.erase(0, 8);
    return kept;
  }
  cRemovalRun::Outcome mOutcome;
};

TEST_F(Checks, WhatChangedSinceTheSearchIsLeftAlone) {
  struct Row {
    const char* name;
    std::function<void(SimulatedMachine&)> change;
    Strings told;
  };
  const std::int64_t later = TicksOf(2026, 11, 2);
  const Strings noCopy = {"1\\a: every copy you are keeping has changed since the search",
                          "2\\a: every copy you are keeping has changed since the search"};
  const std::vector<Row> rows = {
      {"nothing", [](SimulatedMachine&) {}, {}},
      {"vanished",
       [](SimulatedMachine& m) { m.Remove(u"C:\\data\\1\\a"); },
       {"1\\a: it is not there any more"}},
      {"a folder in its place",
       [](SimulatedMachine& m) {
         m.Remove(u"C:\\data\\1\\a");
         m.AddFolder(u"C:\\data\\1\\a");
       },
       {"1\\a: it has changed since the search"}},
      {"written to",
       [later](SimulatedMachine& m) { m.SetTimes(u"C:\\data\\1\\a", 0, 0, later); },
       {"1\\a: it has changed since the search"}},
      {"longer",
       [](SimulatedMachine& m) {
         const SimulatedFacts facts = m.FactsOf(u"C:\\data\\2\\a");
         m.SetContents(u"C:\\data\\2\\a", FileContents::Recipe(7, 11));
         m.SetTimes(u"C:\\data\\2\\a", facts.created, facts.accessed, facts.written);
       },
       {"2\\a: it has changed since the search"}},
      {"the copy that stays vanished", [](SimulatedMachine& m) { m.Remove(u"C:\\data\\3\\a"); },
       noCopy},
      {"the copy that stays was written to",
       [later](SimulatedMachine& m) { m.SetTimes(u"C:\\data\\3\\a", later, 0, later); }, noCopy},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RemovalProgram& fresh = Renew();
    for (const TextView name : {u"1\\a", u"2\\a", u"3\\a"}) fresh.Put(PathOf(name), 10, 1);
    fresh.SearchAll();
    fresh.MarkPath(PathOf(u"1\\a"));
    fresh.MarkPath(PathOf(u"2\\a"));
    row.change(fresh.machine);
    EXPECT_EQ(Remove(RemoveMethod::Delete), row.told);
    EXPECT_EQ(mOutcome.removedCount, 2 - static_cast<std::int32_t>(row.told.size()));
    EXPECT_EQ(mOutcome.keptCount, static_cast<std::int32_t>(row.told.size()));
  }
}

TEST_F(Checks, BytesAreComparedWhereContentsWereACriterion) {
  Mark({u"1\\b"});
  program->results.mCriteria.contentsMatch = true;
  EXPECT_EQ(Remove(RemoveMethod::Delete),
            Strings{"1\\b: the contents differ; it was compared with \"C:\\data\\2\\b\""});
  SimulatedMachine& machine = program->machine;
  const HANDLE held = machine.HoldOpen(PathOf(u"2\\b"), 0);
  const Strings told = Remove(RemoveMethod::Delete);
  ASSERT_EQ(told.size(), 1U);
  EXPECT_TRUE(told[0].starts_with("1\\b: the copy to keep, \"C:\\data\\2\\b\", cannot be"))
      << told[0];
  machine.LetGo(held);
  program->hook.RunBefore({Operation::ReadFile, 1}, [] { gUserAbort = true; });
  Remove(RemoveMethod::Delete);
  EXPECT_TRUE(mOutcome.isStopped && Exists(u"1\\b"));
  const SimulatedFacts facts = machine.FactsOf(PathOf(u"2\\b"));
  machine.SetContents(PathOf(u"2\\b"), std::string(machine.ContentsOf(PathOf(u"1\\b"))));
  machine.SetTimes(PathOf(u"2\\b"), facts.created, facts.accessed, facts.written);
  EXPECT_EQ(Remove(RemoveMethod::Delete), Strings{});
  EXPECT_FALSE(Exists(u"1\\b"));
}

TEST_F(Checks, WhatIsInTheDupesFolderGivesWayOnlyToItsLikeAndNeverWhenItIsListed) {
  Mark({u"1\\a", u"1\\c"});
  const Text dupes = Text(kDupesFolder) + u"[C DRIVE]\\data\\1\\";
  program->machine.AddFile(dupes + u"a", "others");
  program->machine.AddFile(dupes + u"c", std::string(program->machine.ContentsOf(PathOf(u"1\\c"))));
  EXPECT_EQ(Remove(RemoveMethod::MoveToDupesFolder), Strings{});
  EXPECT_EQ(program->entries[0].target, dupes + u"(1)");
  EXPECT_EQ(program->entries[1].target, dupes + u"c");
  EXPECT_EQ(program->machine.ContentsOf(dupes + u"a"), "others");
  EXPECT_FALSE(Exists(u"1\\a") || Exists(u"1\\c"));

  // The DUPES folder has come to be one that was searched.
  RemovalProgram& fresh = Renew();
  const Text kept = u"D:\\data\\[C DRIVE]\\data\\1\\x";
  fresh.Put(kept, 10, 1);
  for (const TextView name : {u"1\\x", u"2\\x"}) fresh.Put(PathOf(name), 10, 1);
  fresh.SearchAll();
  mDupesFolderPath = u"D:\\data\\";
  Mark({u"1\\x"});
  EXPECT_EQ(Remove(RemoveMethod::MoveToDupesFolder), Strings{});
  EXPECT_TRUE(fresh.machine.Exists(kept));
  EXPECT_NE(fresh.entries.at(0).target, kept);
}

TEST_F(Checks, CopiesAreOnTheDiskBeforeAFileIsDeletedAndNotInMemory) {
  struct Row {
    const char* name;
    RemoveMethod method;
    std::int64_t copyTime;  // of the second pair
    std::uint32_t copyDrive;
    RemovalOptions options;
    std::size_t flushes;
    std::int32_t removed;
  };
  const std::int64_t old = TicksOf(2026, 1, 1);
  const RemovalOptions plain{.keepsHistory = false};
  const RemovalOptions trusting{.trustsMemory = true, .keepsHistory = false};
  const std::vector<Row> rows = {
      {"once for a volume", RemoveMethod::Delete, old, DRIVE_FIXED, plain, 1, 2},
      {"again for a younger copy", RemoveMethod::Delete, TicksOf(2099, 1, 1), DRIVE_FIXED, plain, 2,
       2},
      {"never for what can be taken back", RemoveMethod::Recycle, old, DRIVE_FIXED, plain, 0, 2},
      {"a copy in memory", RemoveMethod::Delete, old, DRIVE_RAMDISK, plain, 0, 0},
      {"a copy in memory that is allowed", RemoveMethod::Delete, old, DRIVE_RAMDISK, trusting, 0,
       2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RemovalProgram& fresh = Renew();
    SimulatedDrive drive;
    drive.root = u"M:\\";
    drive.type = row.copyDrive;
    fresh.machine.AddDrive(drive);
    const auto put = [&](const Text& path, std::uint64_t size, std::int64_t time) {
      fresh.machine.AddFile(path, FileContents::Recipe(1, size),
                            {FILE_ATTRIBUTE_ARCHIVE, time, time, time});
    };
    for (const Text& path : {PathOf(u"1\\x"), Text(u"M:\\x")}) put(path, 10, old);
    put(PathOf(u"1\\y"), 20, old);
    put(u"M:\\y", 20, row.copyTime);
    ASSERT_EQ(fresh.Search({u"C:\\data", u"M:\\"}), SearchOutcome::Complete);
    fresh.results.mFileMarked.assign(4, false);
    Mark({u"1\\x", u"1\\y"});
    fresh.hook.ClearJournal();
    EXPECT_EQ(fresh.Remove(row.method, row.options).removedCount, row.removed);
    EXPECT_EQ(fresh.hook.CountOf(Operation::FlushFileBuffers), row.flushes);
  }
}

// As where the folder of the copy has become a link to that of the file, or a server's folder is
// mounted twice.
TEST_F(Checks, AFileThatIsItsOwnCopyIsKept) {
  Renew();
  program->Put(PathOf(u"1\\x"), 10, 1);
  program->Put(PathOf(u"2\\x"), 10, 1);
  program->SearchAll();
  Mark({u"1\\x"});
  program->machine.Remove(PathOf(u"2"));
  program->machine.AddJunction(PathOf(u"2"), PathOf(u"1"));
  const Strings kept = Remove(RemoveMethod::Delete);
  ASSERT_EQ(kept.size(), 1U);
  EXPECT_TRUE(kept[0].starts_with("1\\x: the copy to keep")) << kept[0];
  EXPECT_TRUE(Exists(u"1\\x"));
}

TEST_F(RemovalRun, NothingBeginsThatCannotBeWrittenDownOrHasNoRoom) {
  struct Row {
    const char* name;
    std::function<void(RemovalProgram&)> prepare;
    RemovalOptions options;
    const char* problem;  // empty: it runs
  };
  const auto noHistory = [](RemovalProgram& p) { p.machine.AddFolder(JournalFileSpec()); };
  const auto full = [](RemovalProgram& p) {
    SimulatedDrive small;
    small.root = u"G:\\";
    small.freeBytes = 5;
    p.machine.AddDrive(small);
    gDupeSettings->SetUserDefinedMoveFolderPath(u"G:\\moved\\");
  };
  const std::vector<Row> rows = {
      {"no history", noHistory, {}, "The history cannot be written"},
      {"no history wanted", noHistory, {.keepsHistory = false}, ""},
      {"no room", full, {}, "The drive of \"G:\\moved\\\" has 5 bytes free"},
      {"its own folder",
       [](RemovalProgram&) { gDupeSettings->SetUserDefinedMoveFolderPath(u"C:\\data\\1\\"); },
       {},
       "-"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RemovalProgram& fresh = Renew();
    for (const TextView name : {u"1\\x", u"2\\x"}) fresh.Put(PathOf(name), 10, 1);
    fresh.SearchAll();
    row.prepare(fresh);
    Mark({u"1\\x"});
    const auto outcome = fresh.Remove(RemoveMethod::MoveToOtherFolder, row.options);
    const std::string problem = row.problem;
    const bool isKept = problem == "-";
    EXPECT_EQ(outcome.isRefused, !problem.empty() && !isKept);
    EXPECT_TRUE(isKept || ToUtf8(outcome.problem).starts_with(problem)) << ToUtf8(outcome.problem);
    EXPECT_EQ(Exists(u"1\\x"), !problem.empty());
    if (isKept) {
      EXPECT_EQ(fresh.Kept(), Strings{"C:\\data\\1\\x: it is already in that folder"});
    }
  }
}

}  // namespace
}  // namespace quillmarsh
