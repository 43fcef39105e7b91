// SPDX-License-Identifier: MIT
// The access check: its early outs in the user's favour, and what happens when it runs to its end.
#include "DelegatingMachine.h"
#include "FsObjectsFixture.h"
#include "fsobjects/modFileEncryptionStatus.h"

namespace quillmarsh {
namespace {

class AccessCheck : public FsObjectsFixture {
 protected:
  AccessCheck() { machine.AddFile(u"C:\\f\\a.txt"); }
};

// A check that gets past its first call, as it does where a system tells the length at once.
class ScriptedAccess final : public Access {
 public:
  using Access::Access;

  std::uint32_t length = 8;
  bool secondCall = true;
  bool token = true;
  std::uint32_t granted = 0;
  int calls = 0, impersonations = 0, tokensClosed = 0, reverts = 0;

 private:
  bool DoGetSecurity(TextView, std::uint32_t information, std::vector<std::byte>& descriptor,
                     std::uint32_t& lengthNeeded) override {
    EXPECT_EQ(information, OWNER_GROUP_DACL_SECURITY_INFORMATION);
    EXPECT_EQ(descriptor.size(), ++calls == 1 ? 0 : length);
    lengthNeeded = length;
    return calls == 1 || secondCall;
  }
  bool DoImpersonate(std::uint32_t level) override {
    EXPECT_EQ(level, SecurityDelegation);
    ++impersonations;
    return true;
  }
  HANDLE DoOpenToken(std::uint32_t access, bool openAsSelf) override {
    EXPECT_EQ(access, TOKEN_QUERY);
    EXPECT_FALSE(openAsSelf);
    return token ? HANDLE{77} : NULL_HANDLE;
  }
  void DoCloseToken(HANDLE closed) override {
    EXPECT_EQ(closed, HANDLE{77});
    ++tokensClosed;
  }
  bool DoRevert() override {
    ++reverts;
    return true;
  }
  bool DoAccessCheck(const std::vector<std::byte>&, HANDLE, std::uint32_t desired,
                     const GENERIC_MAPPING& mapping, AccessCheckAnswer& answer) override {
    EXPECT_EQ(mapping.GenericAll, FILE_ALL_ACCESS);
    answer = {desired & granted, (desired & granted) == desired};
    return true;
  }
  std::optional<std::uint32_t> DoEncryptionStatus(TextView) override { return std::nullopt; }
};

class MachineWithAccess final : public DelegatingMachine {
 public:
  using DelegatingMachine::DelegatingMachine;
  ScriptedAccess access{mCalls};
  Access& Security() override { return access; }
};

TEST_F(AccessCheck, RunsToItsEndWhereTheLengthIsTold) {
  const struct {
    const char* name;
    std::uint32_t length;
    bool secondCall, token;
    std::uint32_t granted, expected;
    bool impersonates;
  } rows[] = {
      {"no length", 0, true, true, FILE_ALL_ACCESS, 0, false},
      {"second call fails", 8, false, true, 0, FILE_GENERIC_READ, false},
      {"no token", 8, true, false, FILE_ALL_ACCESS, 0, true},
      {"refused", 8, true, true, 0, 0, true},
      {"granted", 8, true, true, FILE_ALL_ACCESS, FILE_GENERIC_READ, true},
      {"granted in part", 8, true, true, 1, 1, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    MachineWithAccess scripted(machine);
    scripted.access.length = row.length;
    scripted.access.secondCall = row.secondCall;
    scripted.access.token = row.token;
    scripted.access.granted = row.granted;
    EXPECT_EQ(GetGrantedAccess(u"C:\\f\\a.txt", FILE_GENERIC_READ), row.expected);
    EXPECT_EQ(scripted.access.impersonations, row.impersonates ? 1 : 0);
    EXPECT_EQ(scripted.access.reverts, row.impersonates ? 1 : 0);
    EXPECT_EQ(scripted.access.tokensClosed, row.impersonates && row.token ? 1 : 0);
  }
}

TEST_F(AccessCheck, VolumeWithoutAccessListsGrantsWithoutASecurityCall) {
  machine.AddDrive({.root = u"D:\\", .fileSystem = u"FAT32"});
  machine.AddFile(u"D:\\a.txt");
  EXPECT_TRUE(UserHasWritePermission(u"D:\\a.txt"));
  EXPECT_EQ(Calls(Operation::GetFileSecurityW), 0U);
}

TEST_F(AccessCheck, UnreadableVolumeAndOtherSystemsGrant) {
  EXPECT_TRUE(UserHasReadPermission(u"X:\\nothing.txt"));
  EXPECT_EQ(Calls(Operation::GetFileSecurityW), 0U);
  machine.SetVersion({.dwMajorVersion = 4, .dwPlatformId = 1});
  ResetIsWindowsNT();
  hook.ClearJournal();
  EXPECT_TRUE(UserHasReadPermission(u"C:\\f\\a.txt"));
  EXPECT_EQ(Calls(Operation::GetVolumeInformationW), 0U);
}

// Required as it is: the search reads what it can instead of believing a descriptor.
TEST_F(AccessCheck, BufferThatIsTooSmallEndsTheCheckInTheUsersFavour) {
  machine.DenyAccess(u"C:\\f", 0x3);  // reading and writing, but not the descriptor
  EXPECT_TRUE(UserHasReadPermission(u"C:\\f\\a.txt"));
  EXPECT_TRUE(UserHasFolderEnumPermission(u"C:\\f\\"));
  EXPECT_TRUE(UserHasWritePermission(u"C:\\f\\a.txt"));
  EXPECT_EQ(Calls(Operation::GetFileSecurityW), 3U);
  EXPECT_EQ(Calls(Operation::AccessCheck), 0U);
}

TEST_F(AccessCheck, VersionIsAskedOnce) {
  static_cast<void>(UserHasReadPermission(u"C:\\f\\a.txt"));
  static_cast<void>(UserHasReadPermission(u"C:\\f\\a.txt"));
  EXPECT_EQ(Calls(Operation::GetVersionExW), 1U);
}

// Reported under the label of the read check; a label of its own would be a repair.
TEST_F(AccessCheck, WriteCheckReportsUnderTheNameOfTheReadCheck) {
  hook.RunBefore({.operation = Operation::GetVolumeInformationW},
                 [] { throw RuntimeError(runtime_error::InvalidProcedureCall); });
  EXPECT_FALSE(UserHasWritePermission(u"C:\\f\\a.txt"));
  EXPECT_EQ(TakeReportedSource(), "modAccessCheck.UserHasReadPermission()");
}

TEST_F(AccessCheck, SecondOpinionReallyReadsTheFolder) {
  machine.AddFolder(u"C:\\empty\\sub");
  machine.AddFile(u"C:\\denied\\a.txt");
  machine.DenyAccess(u"C:\\denied");
  EXPECT_TRUE(FolderCanBeListed(u"C:\\f\\"));
  EXPECT_TRUE(FolderCanBeListed(u"C:\\empty"));
  EXPECT_FALSE(FolderCanBeListed(u"C:\\denied\\"));
  EXPECT_FALSE(FolderCanBeListed(u"C:\\missing\\"));
  EXPECT_FALSE(FolderCanBeListed(u"C:\\f\\a.txt"));
  hook.Fail({.operation = Operation::FindNextFileW}, ERROR_IO_DEVICE);
  EXPECT_FALSE(FolderCanBeListed(u"C:\\empty\\"));
}

TEST_F(AccessCheck, EncryptionStatusOfWhatCannotBeAskedIsMinus1) {
  machine.AddFile(u"C:\\secret", {}, {.attributes = FILE_ATTRIBUTE_ENCRYPTED});
  EXPECT_EQ(GetFileEncryptionStatus(u"C:\\secret"), 1);
  EXPECT_EQ(GetFileEncryptionStatus(u"C:\\f\\a.txt"), 0);
  EXPECT_EQ(GetFileEncryptionStatus(u"C:\\missing"), -1);
}

}  // namespace
}  // namespace quillmarsh
