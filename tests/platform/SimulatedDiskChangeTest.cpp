// SPDX-License-Identifier: MIT
// What only the simulated machine can refuse when files are deleted, moved and copied: share modes,
// access lists, write-protected media, volumes without room, and case folding.
#include <gtest/gtest.h>

#include "support/MachineFixture.h"

namespace quillmarsh {

namespace {

constexpr std::uint32_t replace = MOVEFILE_REPLACE_EXISTING;
constexpr std::uint32_t copyAllowed = MOVEFILE_COPY_ALLOWED;

class SimulatedDiskChangeTest : public testing::Test, protected MachineFixture {
 protected:
  SimulatedDiskChangeTest() {
    SimulatedDrive other;
    other.root = u"E:\\";
    machine.AddDrive(other);
    machine.AddFile(u"C:\\f\\a", "aaa", {FILE_ATTRIBUTE_ARCHIVE, 11, 12, 13});
    machine.AddFile(u"C:\\f\\b", "bb");
    machine.AddFile(u"E:\\f\\b", "b");
  }
  std::uint32_t Delete(TextView path) {
    return machine.Disk().DeleteFileW(path) ? 0 : machine.GetLastError();
  }
  std::uint32_t Move(TextView from, TextView to, std::uint32_t flags = 0) {
    return machine.Disk().MoveFileExW(from, to, flags) ? 0 : machine.GetLastError();
  }
  std::uint32_t Copy(TextView from, TextView to, bool failIfExists = false) {
    return machine.Disk().CopyFileW(from, to, failIfExists) ? 0 : machine.GetLastError();
  }
  // Whether everything is as the fixture made it.
  bool IsUntouched() {
    return machine.TreeOf(u"C:\\f").size() == 2 && machine.TreeOf(u"E:\\f").size() == 1 &&
           machine.ContentsOf(u"C:\\f\\a") == "aaa" && machine.ContentsOf(u"C:\\f\\b") == "bb" &&
           machine.ContentsOf(u"E:\\f\\b") == "b";
  }
};

TEST_F(SimulatedDiskChangeTest, AFileThatIsHeldOpenAllowsWhatItsHolderShares) {
  struct Row {
    const char* name;
    std::uint32_t share;
    std::uint32_t deleted, moved, copiedFrom, copiedOnto;
  };
  constexpr std::uint32_t busy = ERROR_SHARING_VIOLATION;
  const Row table[] = {
      {"nothing", 0, busy, busy, busy, busy},
      {"reading", FILE_SHARE_READ, busy, busy, 0, busy},
      {"writing", FILE_SHARE_READ | FILE_SHARE_WRITE, busy, busy, 0, 0},
      {"deleting", FILE_SHARE_READ | FILE_SHARE_DELETE, 0, 0, 0, busy},
  };
  for (const Row& row : table) {
    SCOPED_TRACE(row.name);
    const auto whileHeld = [&](const auto& change) {
      machine.AddFile(u"C:\\g\\held", "held");
      const HANDLE held = machine.HoldOpen(u"C:\\g\\held", row.share);
      const std::uint32_t code = change();
      machine.LetGo(held);
      EXPECT_EQ(code == 0, !machine.Exists(u"C:\\g\\held") ||
                               machine.ContentsOf(u"C:\\g\\held") == "aaa" ||
                               machine.Exists(u"C:\\g\\copy"));
      machine.Remove(u"C:\\g");
      return code;
    };
    EXPECT_EQ(whileHeld([&] { return Copy(u"C:\\g\\held", u"C:\\g\\copy"); }), row.copiedFrom);
    EXPECT_EQ(whileHeld([&] { return Copy(u"C:\\f\\a", u"C:\\g\\held"); }), row.copiedOnto);
    EXPECT_EQ(whileHeld([&] { return Move(u"C:\\g\\held", u"E:\\held", copyAllowed | replace); }),
              row.moved);
    EXPECT_EQ(whileHeld([&] {
                return Move(u"C:\\f\\b", u"C:\\g\\held", replace) == 0
                           ? Move(u"C:\\g\\held", u"C:\\f\\b")
                           : machine.GetLastError();
              }),
              row.deleted)
        << "replaced";
    EXPECT_EQ(whileHeld([&] { return Delete(u"C:\\g\\held"); }), row.deleted);
  }
  EXPECT_TRUE(machine.Exists(u"C:\\f\\a"));
}

TEST_F(SimulatedDiskChangeTest, AFolderWithAnOpenFileIsNotMoved) {
  constexpr std::uint32_t all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE held = machine.HoldOpen(u"C:\\f\\a", all);
  EXPECT_EQ(Move(u"C:\\f", u"C:\\g"), ERROR_ACCESS_DENIED);
  machine.LetGo(held);
  EXPECT_EQ(Move(u"C:\\f", u"C:\\g"), 0U);
  EXPECT_EQ(machine.ContentsOf(u"C:\\g\\a"), "aaa");
}

TEST_F(SimulatedDiskChangeTest, AccessListsRefuseWith5) {
  machine.DenyAccess(u"C:\\f\\a", 0x10000);  // to delete it
  EXPECT_EQ(Delete(u"C:\\f\\a"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(u"C:\\f\\a", u"C:\\f\\new"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(u"C:\\f\\b", u"C:\\f\\a", replace), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(Move(u"C:\\f\\a", u"E:\\f\\a", copyAllowed), 0U) << "copied, the source stays";
  EXPECT_EQ(machine.ContentsOf(u"E:\\f\\a"), "aaa");
  machine.Remove(u"E:\\f\\a");
  machine.DenyAccess(u"C:\\f\\a");
  EXPECT_EQ(Copy(u"C:\\f\\a", u"C:\\f\\new"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Copy(u"C:\\f\\b", u"C:\\f\\a"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(u"C:\\f\\a", u"E:\\f\\a", copyAllowed), ERROR_ACCESS_DENIED);
  machine.DenyAccess(u"E:\\f", 0x2, false);  // to add a file
  EXPECT_EQ(Copy(u"C:\\f\\b", u"E:\\f\\new"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(u"C:\\f\\b", u"E:\\f\\new", copyAllowed), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(IsUntouched());
}

TEST_F(SimulatedDiskChangeTest, AWriteProtectedMediumRefusesWith19) {
  machine.SetReadOnlyMedium(u"E:\\", true);
  EXPECT_EQ(Delete(u"E:\\f\\b"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(Move(u"E:\\f\\b", u"E:\\f\\c"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"E:\\f\\b"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"E:\\f\\new"), ERROR_WRITE_PROTECT);
  EXPECT_EQ(Move(u"C:\\f\\a", u"E:\\f\\new", copyAllowed), ERROR_WRITE_PROTECT);
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(Move(u"E:\\f\\b", u"C:\\f\\c", copyAllowed), 0U) << "copied, the source stays";
  EXPECT_EQ(machine.ContentsOf(u"C:\\f\\c"), "b");
  EXPECT_TRUE(machine.Exists(u"E:\\f\\b"));
}

TEST_F(SimulatedDiskChangeTest, AFullVolumeKeepsBothAsTheyWere) {
  machine.SetFreeBytes(u"E:\\", 1);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"E:\\f\\new"), ERROR_DISK_FULL);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"E:\\f\\b"), ERROR_DISK_FULL);
  EXPECT_EQ(Move(u"C:\\f\\a", u"E:\\f\\b", copyAllowed | replace), ERROR_DISK_FULL);
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(Move(u"C:\\f\\b", u"E:\\f\\b", copyAllowed | replace), 0U) << "the old one makes room";
  EXPECT_EQ(Delete(u"E:\\f\\b"), 0U);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"E:\\f\\new"), ERROR_DISK_FULL) << "two bytes are free";
}

TEST_F(SimulatedDiskChangeTest, TimesAndAttributesOfMovesAndCopies) {
  machine.SetClock(1000);
  machine.SetAttributes(u"C:\\f\\a", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"C:\\f\\copy"), 0U);
  EXPECT_EQ(machine.FactsOf(u"C:\\f\\copy").created, 1000);
  EXPECT_EQ(machine.FactsOf(u"C:\\f\\copy").written, 13);
  EXPECT_EQ(machine.AttributesOf(u"C:\\f\\copy"),
            FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE);
  machine.SetAttributes(u"C:\\f\\b", FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"C:\\f\\b"), ERROR_ACCESS_DENIED) << "hidden ones stay";
  EXPECT_EQ(Move(u"C:\\f\\a", u"E:\\a", copyAllowed), 0U);
  EXPECT_EQ(machine.FactsOf(u"E:\\a").created, 11) << "a moved file is as old as it was";
  EXPECT_EQ(Move(u"E:\\a", u"E:\\moved"), 0U);
  EXPECT_EQ(machine.FactsOf(u"E:\\moved").written, 13);
  EXPECT_FALSE(machine.Exists(u"C:\\f\\a"));
}

TEST_F(SimulatedDiskChangeTest, AnotherCaseIsTheSameNameAndLinksAreMovedThemselves) {
  EXPECT_EQ(Move(u"C:\\f\\a", u"C:\\f\\B"), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"C:\\f\\A"), ERROR_SHARING_VIOLATION);
  EXPECT_TRUE(IsUntouched());
  machine.AddJunction(u"C:\\door", u"C:\\f");
  EXPECT_EQ(Move(u"C:\\door", u"E:\\door", copyAllowed), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(Delete(u"C:\\door"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(u"C:\\door", u"C:\\gate"), 0U);
  EXPECT_EQ(Delete(u"C:\\gate\\a"), 0U);
  EXPECT_EQ(machine.TreeOf(u"C:\\f"), std::vector<Text>{u"C:\\f\\b"});
  EXPECT_EQ(Move(u"C:\\", u"C:\\x"), ERROR_ACCESS_DENIED);
}

TEST_F(SimulatedDiskChangeTest, AHookFailsAChangeWithoutItsHavingHappened) {
  hook.Fail({Operation::DeleteFileW}, ERROR_SHARING_VIOLATION);
  hook.Fail({Operation::MoveFileExW, 1, u"C:\\f\\a"}, ERROR_DISK_FULL);
  hook.Fail({Operation::CopyFileW, 2}, ERROR_ACCESS_DENIED);
  EXPECT_EQ(Delete(u"C:\\f\\a"), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(Move(u"C:\\f\\a", u"C:\\f\\b", replace), ERROR_DISK_FULL);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"C:\\f\\b", true), ERROR_FILE_EXISTS);
  EXPECT_EQ(Copy(u"C:\\f\\a", u"C:\\f\\b"), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(IsUntouched());
  EXPECT_EQ(hook.OrdersNotMet(), 0U);
}

}  // namespace

}  // namespace quillmarsh
