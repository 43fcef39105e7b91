// SPDX-License-Identifier: MIT
// What the options of the selection rules make of a drive and of a size.
#include "selection/clsMarkForRemovalWizard.h"

#include <gtest/gtest.h>

#include <functional>

#include "base/RuntimeError.h"

namespace quillmarsh {
namespace {

TEST(MarkForRemovalWizard, ADriveIsCutToTwoCharactersAndAShareLosesItsFinalBackslash) {
  struct Row {
    TextView given;
    TextView stored;
  };
  // In this order on one object: an empty value keeps what is there.
  constexpr Row kRows[] = {
      {u"", u""},
      {u"C", u"C"},
      {u"", u"C"},
      {u"C:", u"C:"},
      {u"d:\\", u"d:"},
      {u"E: [System]", u"E:"},
      {u"F:\\Data\\more\\", u"F:"},
      {u"", u"F:"},
      {u"\\\\server\\share\\", u"\\\\server\\share"},
      {u"\\\\server\\share\\\\", u"\\\\server\\share\\"},
      {u"no drive: here", u"no drive: here"},
      {u"\\", u""},
  };
  clsMarkForRemovalWizard options;
  for (const Row& row : kRows) {
    options.SetDriveSpec(row.given);
    EXPECT_EQ(options.DriveSpec(), row.stored) << ToUtf8(row.given);
  }
}

std::int32_t NumberRaisedBy(const std::function<void()>& action) {
  try {
    action();
    return 0;
  } catch (const RuntimeError& error) {
    return error.Number();
  }
}

TEST(MarkForRemovalWizard, TheSizeInBytesFollowsBothTheNumberAndTheUnit) {
  struct Row {
    double size;
    std::int32_t unit;
    std::int64_t rawBytes;  // in ten-thousandths
  };
  constexpr Row kRows[] = {
      {300, 0, 3'000'000},      {300, 1, 3'072'000'000},
      {1.5, 2, 15'728'640'000}, {2, 3, 21'474'836'480'000},
      {0.0001, 1, 1024},        {0, 3, 0},
      {-1, 1, -10'240'000},     {858993.4591, 3, 9'223'372'035'781'033'984},
  };
  for (const Row& row : kRows) {
    clsMarkForRemovalWizard sizeFirst;
    sizeFirst.SetFileSize(Currency::FromDouble(row.size));
    sizeFirst.SetSizeIncrement(row.unit);
    EXPECT_EQ(sizeFirst.FileSizeInBytes().Raw(), row.rawBytes);
    clsMarkForRemovalWizard unitFirst;
    unitFirst.SetSizeIncrement(row.unit);
    unitFirst.SetFileSize(Currency::FromDouble(row.size));
    EXPECT_EQ(unitFirst.FileSizeInBytes().Raw(), row.rawBytes);
  }
}

TEST(MarkForRemovalWizard, AUnitThatIsNoneLeavesTheBytesAsTheyWere) {
  clsMarkForRemovalWizard options;
  options.SetSizeIncrement(1);
  options.SetFileSize(Currency::FromInteger(2));
  for (const std::int32_t unit : {-1, 4, 2147483647}) {
    options.SetSizeIncrement(unit);
    options.SetFileSize(Currency::FromInteger(5));
    EXPECT_EQ(options.SizeIncrement(), unit);
    EXPECT_EQ(options.FileSizeInBytes(), Currency::FromInteger(2048));
  }
  options.SetSizeIncrement(0);
  EXPECT_EQ(options.FileSizeInBytes(), Currency::FromInteger(5));
}

TEST(MarkForRemovalWizard, ANumberOfBytesBeyondTheRangeIsAnOverflowAndTheOldNumberStays) {
  clsMarkForRemovalWizard options;
  options.SetSizeIncrement(3);
  options.SetFileSize(Currency::FromInteger(1));
  const Currency oneGigabyte = options.FileSizeInBytes();
  // One ten-thousandth of a byte too many, and far too many.
  for (const double size : {858993.4592, 9e14}) {
    EXPECT_EQ(NumberRaisedBy([&] { options.SetFileSize(Currency::FromDouble(size)); }), 6);
    EXPECT_EQ(options.FileSize(), Currency::FromDouble(size));
    EXPECT_EQ(options.FileSizeInBytes(), oneGigabyte);
  }
  for (const std::int32_t unit : {1, 2, 3})
    EXPECT_EQ(NumberRaisedBy([&] { options.SetSizeIncrement(unit); }), 6);
  options.SetSizeIncrement(0);
  EXPECT_EQ(options.FileSizeInBytes(), Currency::FromDouble(9e14));
}

}  // namespace
}  // namespace quillmarsh
