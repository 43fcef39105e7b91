// SPDX-License-Identifier: MIT
// The times of a file, and writing back what was changed in a file object.
#include "FsObjectsFixture.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"

namespace quillmarsh {
namespace {

class PropertyChanges : public FsObjectsFixture {
 protected:
  PropertyChanges() {
    machine.SetTimeZoneBias(-60);
    Make();
    file.SetPath(u"C:\\d\\a.txt");
  }
  void Make() { machine.AddFile(u"C:\\d\\a.txt", "a", {FILE_ATTRIBUTE_ARCHIVE, 11, 12, 13}); }
  static Date LocalDate(std::int64_t utcTicks) {
    return Date::FromTicks(utcTicks + std::int64_t{3600} * 10'000'000);
  }
  const std::int64_t moment = TicksOf(2026, 2, 28, 23, 37, 20);
  cFSXFile file;
};

TEST_F(PropertyChanges, ADateIsSetForTheChosenTimesInOneCall) {
  for (const std::int32_t which : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}) {
    SCOPED_TRACE(which);
    machine.SetTimes(u"C:\\d\\a.txt", 11, 12, 13);
    hook.ClearJournal();
    const bool isAnyChosen = which != 0 && which != 8;
    EXPECT_EQ(ChangeFileDate(u"C:\\d\\a.txt", LocalDate(moment + 5), which), isAnyChosen);
    EXPECT_EQ(Calls(Operation::SetFileTime), isAnyChosen ? 1U : 0U);
    const SimulatedFacts facts = machine.FactsOf(u"C:\\d\\a.txt");
    EXPECT_EQ(facts.created, (which & kCreationTime) != 0 ? moment : 11);
    EXPECT_EQ(facts.written, (which & kLastWriteTime) != 0 ? moment : 13);
    EXPECT_EQ(facts.accessed, (which & kLastAccessTime) != 0 ? moment : 12);
  }
  EXPECT_FALSE(ChangeFileDate(u"C:\\d\\a.txt", Date(1e9), 7)) << "no date";
  EXPECT_FALSE(ChangeFileDate(u"C:\\d\\a.txt", Date(-200000), 7)) << "none that files have";
  for (const Operation step : {Operation::CreateFileW, Operation::GetFileInformationByHandle,
                               Operation::LocalFileTimeToFileTime, Operation::SetFileTime}) {
    hook.Fail({step}, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(ChangeFileDate(u"C:\\d\\a.txt", LocalDate(moment), 7)) << NameOf(step);
  }
}

TEST_F(PropertyChanges, OnlyWhatDiffersIsWrittenAndTheFirstFailureEndsIt) {
  struct Step {
    Operation operation;
    std::size_t nth;
  };
  const Step steps[] = {{Operation::FindFirstFileW, 1}, {Operation::MoveFileW, 1},
                        {Operation::SetFileTime, 1},    {Operation::SetFileTime, 2},
                        {Operation::SetFileTime, 3},    {Operation::SetFileAttributesW, 1}};
  for (std::size_t failing = 0; failing <= std::size(steps); ++failing) {
    SCOPED_TRACE(failing);
    machine.Remove(u"C:\\d");
    Make();
    cFSXFile changed;
    changed.SetPath(u"C:\\d\\a.txt");
    changed.SetAttributes(FILE_ATTRIBUTE_HIDDEN);
    changed.SetName(u"b.txt");
    changed.SetLastAccessedDate(LocalDate(moment));
    changed.SetLastModifiedDate(LocalDate(moment));
    changed.SetCreatedDate(LocalDate(moment));
    const bool fails = failing < std::size(steps);
    if (fails) hook.Fail({steps[failing].operation, steps[failing].nth}, ERROR_ACCESS_DENIED);
    EXPECT_EQ(SaveFilePropertyChanges(changed), !fails);
    const Text path = failing > 1 ? u"C:\\d\\b.txt" : u"C:\\d\\a.txt";
    const SimulatedFacts facts = machine.FactsOf(path);
    EXPECT_EQ(facts.accessed, failing > 2 ? moment : 12);
    EXPECT_EQ(facts.written, failing > 3 ? moment : 13);
    EXPECT_EQ(facts.created, failing > 4 ? moment : 11);
    EXPECT_EQ(facts.attributes, failing > 5 ? FILE_ATTRIBUTE_HIDDEN : FILE_ATTRIBUTE_ARCHIVE);
  }
  machine.Remove(u"C:\\d");
  Make();
  file.SetName(u"A.TXT");
  hook.ClearJournal();
  EXPECT_TRUE(SaveFilePropertyChanges(file)) << "another case alone is no other name";
  file.SetIsReadOnly(true);
  EXPECT_TRUE(SaveFilePropertyChanges(file));
  EXPECT_EQ(Calls(Operation::SetFileTime) + Calls(Operation::MoveFileW), 0U);
  EXPECT_EQ(machine.AttributesOf(u"C:\\d\\a.txt"),
            FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY);
}

// Required as it is: what reads as read-only is never written, a new read-only bit included.
TEST_F(PropertyChanges, SaveWritesNothingForWhatReadsAsReadOnly) {
  file.SetIsReadOnly(true);
  EXPECT_FALSE(file.SaveChanges());
  EXPECT_EQ(file.Path(), u"C:\\d\\a.txt");
  EXPECT_EQ(machine.AttributesOf(u"C:\\d\\a.txt"), FILE_ATTRIBUTE_ARCHIVE);
  file.SetIsReadOnly(false);
  file.SetIsHidden(true);
  EXPECT_TRUE(file.SaveChanges());
  EXPECT_EQ(machine.AttributesOf(u"C:\\d\\a.txt"), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(file.Path(), u"") << "the object is not to be used again";
}

}  // namespace
}  // namespace quillmarsh
