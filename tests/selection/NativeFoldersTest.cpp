// SPDX-License-Identifier: MIT
// Folders of a rule on a machine whose people write paths otherwise than the program does.
#include <gtest/gtest.h>

#include "fsobjects/modPaths.h"
#include "platform/posix/PosixMachine.h"
#include "selection/RuleOptions.h"

namespace quillmarsh {
namespace {

TEST(NativeFolders, BecomeThoseOfTheProgramWithTheFinalSlashAsItWasTyped) {
  PosixOptions withoutHome;
  withoutHome.dataHome = "";
  PosixMachine machine(withoutHome);
  UseMachine(&machine);
  const Text known = machine.Drives().LocationFromNative("/tmp").path;
  EXPECT_EQ(FolderSpecFromTyped(u"/tmp", {}), known);
  EXPECT_EQ(FolderSpecFromTyped(u"/tmp/", {}), AddBackslash(known));
  EXPECT_EQ(FolderSpecFromTyped(u"/no such place/a:b", {}), u"\\no such place\\a\uF03Ab");
  EXPECT_EQ(FolderSpecFromTyped(u"plain text", {}), u"plain text");
  // Nobody can type what is shown for this one.
  const Text odd = known + u"\\line\uF00Abreak\xDCFF\\";
  EXPECT_EQ(FolderSpecFromTyped(machine.Drives().ShownPath(odd), odd), odd);
  UseMachine(nullptr);
}

TEST(NativeFolders, DrivesAreShownByTheirPlaceAndKeptByTheirLetter) {
  PosixOptions withoutHome;
  withoutHome.dataHome = "";
  PosixMachine machine(withoutHome);
  UseMachine(&machine);
  const std::vector<RuleDrive> drives = GetRuleDrives();
  ASSERT_FALSE(drives.empty());
  EXPECT_EQ(drives[0].drive, u"C:");
  EXPECT_TRUE(drives[0].shown == u"/" || drives[0].shown.starts_with(u"/ [")) << "its label";
  for (const RuleDrive& drive : drives) EXPECT_TRUE(drive.shown.starts_with(u'/'));
  UseMachine(nullptr);
}

}  // namespace
}  // namespace quillmarsh
