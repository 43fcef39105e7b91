// SPDX-License-Identifier: MIT
// The three times of a file object and the dates of the search's record.
#include <random>

#include "FsObjectsFixture.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFiles.h"

namespace quillmarsh {
namespace {

class FileTimes : public FsObjectsFixture {
 protected:
  FileTimes() { file.SetPath(u"C:\\d\\a.txt"); }
  cFSXFile file;
};

constexpr std::int64_t kMost = 0x7FFF'FFFF'FFFF'FFFF;

TEST_F(FileTimes, RawTimesAreLocalTicksOfTheDisk) {
  machine.SetTimeZoneBias(-60);
  machine.AddFile(u"C:\\d\\a.txt", {},
                  {.created = TicksOf(2020, 1, 1, 23, 30),
                   .accessed = TicksOf(2021, 1, 1),
                   .written = TicksOf(2022, 1, 1)});
  EXPECT_EQ(file.CreatedDateAsCurr().Raw(), TicksOf(2020, 1, 2, 0, 30));
  EXPECT_EQ(file.LastAccessedDateAsCurr().Raw(), TicksOf(2021, 1, 1, 1));
  EXPECT_EQ(file.LastModifiedDate().ToCivil().hour, 1);
  EXPECT_EQ(Calls(Operation::CreateFileW), 1U);
}

// Required as it is: the date keeps its minutes, the raw time loses them.
TEST_F(FileTimes, SettingADateLaysDownARawTimeWithoutMinutes) {
  const Date date = Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 20));
  file.SetLastModifiedDate(date);
  EXPECT_EQ(file.LastModifiedDateAsCurr().Raw(), TicksOf(2026, 11, 21, 10, 0, 20));
  EXPECT_EQ(file.LastModifiedDate().ToCivil().minute, 37);
  file.SetLastModifiedDateAsCurr(Currency::FromRaw(1));
  file.SetLastModifiedDate(Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 20) + 4'000'000));
  EXPECT_EQ(file.LastModifiedDateAsCurr().Raw(), 1) << "no whole second's difference, no change";
  EXPECT_EQ(file.LastModifiedDate().ToCivil().minute, 37) << "a raw time leaves the date alone";
  file.SetLastModifiedDate(Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 21)));
  EXPECT_EQ(file.LastModifiedDateAsCurr().Raw(), TicksOf(2026, 11, 21, 10, 0, 21));
}

// Required as it is: only the last-write time has halves, the others wipe what they touch.
TEST_F(FileTimes, HalvesOfTheOtherTwoTimesAreZeroAndWipeTheRawTime) {
  const auto raw = Currency::FromRaw(0x1'0000'0002);
  file.SetLastModifiedDateAsCurr(raw);
  EXPECT_EQ(file.LastModifiedDateFTHigh(), 1U);
  EXPECT_EQ(file.LastModifiedDateFTLow(), 2U);
  EXPECT_EQ(file.LastModifiedDateAsCurr(), raw);
  file.SetCreatedDateAsCurr(raw);
  EXPECT_EQ(file.CreatedDateFTHigh(), 0U);
  EXPECT_EQ(file.CreatedDateAsCurr().Raw(), 0);
  file.SetCreatedDateAsCurr(raw);
  EXPECT_EQ(file.CreatedDateFTLow(), 0U);
  EXPECT_EQ(file.CreatedDateAsCurr().Raw(), 0);
  file.SetLastAccessedDateAsCurr(raw);
  EXPECT_EQ(file.LastAccessedDateFTLow() + file.LastAccessedDateFTHigh(), 0U);
  EXPECT_EQ(file.LastAccessedDateAsCurr().Raw(), 0);
  EXPECT_EQ(Calls(Operation::CreateFileW), 0U) << "it goes on counting as known";
}

TEST_F(FileTimes, ImpossibleDateIsReportedAndBecomesTheZeroDate) {
  file.SetLastModifiedDateAsCurr(Currency::FromRaw(kMost));
  EXPECT_EQ(file.LastModifiedDate().Days(), 0.0);
  EXPECT_EQ(TakeReportedSource(), "cFSXFile.ConvertDateTimeCurrToVBDateTime");
  EXPECT_NE(
      ReportedDetail().find("DateTime value = 922,337,203,685,478\r\nFile = C:\\d\\a.txt\r\n"),
      std::string::npos)
      << ReportedDetail();
  file.SetCreatedDateAsCurr(Currency());
  NameArena names;
  const DupeFileUDT record = file.DupeFileUDT(names);
  EXPECT_EQ(record.LastModifiedDate.Days(), 0.0) << "and is not reported twice";
  EXPECT_EQ(record.CreatedDate.Days(), -109205.0);
}

TEST_F(FileTimes, RecordDatesAreCutToTheSecondByTheTicks) {
  const std::int64_t second = TicksOf(2026, 11, 21, 10, 37, 20);
  const Date whole = Date::FromTicks(second);
  NameArena names;
  for (const std::int64_t beyond : {0, 1, 4'999'999, 5'000'000, 9'999'999}) {
    cFSXFile primed;
    primed.SetPath(u"C:\\d\\a.txt");
    primed.SetAttributes(0);
    primed.SetSize({});
    primed.SetCreatedDateAsCurr(Currency::FromRaw(second + beyond));
    primed.SetLastModifiedDateAsCurr(Currency::FromRaw(second + beyond));
    if (beyond == 9'999'999) static_cast<void>(primed.CreatedDate());
    const DupeFileUDT record = primed.DupeFileUDT(names);
    EXPECT_EQ(record.CreatedDate.Days(), whole.Days()) << beyond;
    EXPECT_EQ(record.LastModifiedDate.Days(), whole.Days()) << beyond;
  }
}

TEST_F(FileTimes, RecordTakesTheDateThatASetterLaidDown) {
  file.SetAttributes(0);
  file.SetSize({});
  file.SetCreatedDate(Date::FromTicks(TicksOf(2026, 11, 21, 10, 37, 20)));
  file.SetLastModifiedDate(Date::FromTicks(TicksOf(1700, 2, 3, 4, 5, 6)));
  NameArena names;
  const DupeFileUDT record = file.DupeFileUDT(names);
  EXPECT_EQ(record.CreatedDate.ToCivil().minute, 37);
  EXPECT_EQ(record.LastModifiedDate.ToCivil().year, 1700);
  EXPECT_EQ(record.LastModifiedDate.ToCivil().second, 6);
}

TEST_F(FileTimes, RecordWithoutAnObjectIsTheRecordOfTheObject) {
  std::mt19937_64 random(20261121);
  cFSXFiles files;
  files.SetParentFolderPath(u"C:\\d");
  const std::int64_t last = TicksOf(9999, 12, 31, 23, 59, 59) + 9'999'999;
  for (int i = 0; i < 2000; ++i) {
    const auto raw = [&] {
      return Currency::FromRaw(
          static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(last)));
    };
    const Currency created = raw(), modified = raw();
    files.Add(u"n" + DecimalText(i) + u".x",
              Currency::FromInteger(static_cast<std::int64_t>(random() % 1'000'000)), created,
              modified, static_cast<std::uint32_t>(random()));
  }
  NameArena names;
  for (std::int32_t index = 1; index <= files.Count(); ++index) {
    const DupeFileUDT object = files.Item(index)->DupeFileUDT(names);
    DupeFileUDT record;
    ASSERT_TRUE(MakeDupeFileUDT(files.Facts(index), files.ParentFolderIdx(), names, record));
    ASSERT_EQ(names.Get(record.Name), names.Get(object.Name));
    ASSERT_EQ(record.Size, object.Size);
    ASSERT_EQ(record.Attributes, object.Attributes);
    ASSERT_EQ(record.CRC32, 0);
    ASSERT_EQ(record.ParentFolderIdx, object.ParentFolderIdx);
    ASSERT_EQ(record.CreatedDate.Days(), object.CreatedDate.Days());
    ASSERT_EQ(record.LastModifiedDate.Days(), object.LastModifiedDate.Days());
  }
}

TEST_F(FileTimes, FullArenaEndsTheRecordWithAReport) {
  cFSXFiles files;
  files.SetParentFolderPath(u"C:\\d");
  files.Add(u"a long enough name", {}, {}, {}, 3);
  NameArena names(8);
  DupeFileUDT record;
  EXPECT_FALSE(MakeDupeFileUDT(files.Facts(1), files.ParentFolderIdx(), names, record));
  EXPECT_EQ(TakeReportedSource(), "cFSXFile.DupeFileUDT");
  EXPECT_EQ(record.Attributes, 3U);
  EXPECT_EQ(record.ParentFolderIdx, 0);
}

}  // namespace
}  // namespace quillmarsh
