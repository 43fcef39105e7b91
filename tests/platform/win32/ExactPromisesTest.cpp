// SPDX-License-Identifier: MIT
// What the Windows machine promises beyond the system's own calls: a path means exactly the name
// that it says, a move to another drive is whole or has not happened, and nothing is sent to a
// Recycle Bin that would not keep it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "platform/MachineUnderTest.h"
#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

namespace {

constexpr std::uint32_t kMove = MOVEFILE_COPY_ALLOWED;
constexpr std::uint32_t kReplace = MOVEFILE_COPY_ALLOWED | MOVEFILE_REPLACE_EXISTING;

// 0 or the code of the failure.
std::uint32_t Move(Machine& machine, const Text& from, const Text& to, std::uint32_t flags) {
  return machine.Disk().MoveFileExW(from, to, flags) ? 0 : machine.GetLastError();
}

std::set<Text> NamesIn(Machine& machine, const Text& folder) {
  const FolderListing listing = ListFolder(machine, folder + u"\\*");
  return {listing.names.begin(), listing.names.end()};
}

std::string BytesOf(Machine& machine, const Text& path) {
  FileInputOutput& files = machine.Files();
  const HANDLE file = files.CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
  if (file == INVALID_HANDLE) return "(not opened)";
  std::string bytes(4'000'000, '\0');
  std::uint32_t done = 0;
  EXPECT_TRUE(files.ReadFile(file, std::as_writable_bytes(std::span(bytes)), done));
  files.CloseHandle(file);
  return bytes.substr(0, done);
}

std::int32_t Recycle(Machine& machine, const Text& path) {
  SHFILEOPSTRUCTW operation;
  operation.wFunc = FO_DELETE;
  operation.pFrom = path + Text(2, u'\0');
  operation.fFlags = FOF_NOERRORUI | FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_SILENT;
  return machine.Desktop().SHFileOperationW(operation);
}

TEST(ExactNames, NamesThatTheSystemWouldReadAsOthersMeanThemselves) {
  const auto ground = MakeWin32UnderTest();
  Machine& machine = ground->Get();
  const std::set<Text> names = {u"a", u"a.", u"b", u"b ", u"c", u"c. .", u"NUL.txt", u"com1"};
  for (const Text& name : names) ground->MakeFile(name, ToUtf8(name));
  ground->MakeFolder(u"moved");
  for (const Text& name : names) {
    EXPECT_EQ(BytesOf(machine, ground->PathOf(name)), ToUtf8(name));
    EXPECT_EQ(Move(machine, ground->PathOf(name), ground->PathOf(u"moved\\" + name), kMove), 0U);
  }
  EXPECT_EQ(NamesIn(machine, ground->Base()), std::set<Text>{u"moved"});
  EXPECT_EQ(NamesIn(machine, ground->PathOf(u"moved")), names);
  for (const Text name : {u"a.", u"b ", u"c. .", u"NUL.txt"})
    EXPECT_TRUE(machine.Disk().DeleteFileW(ground->PathOf(u"moved\\" + name))) << ToUtf8(name);
  EXPECT_EQ(NamesIn(machine, ground->PathOf(u"moved")),
            (std::set<Text>{u"a", u"b", u"c", u"com1"}));
}

TEST(ExactNames, ANameThatTheShellWouldReadAsAnotherIsNotSentToTheBin) {
  const auto ground = MakeWin32UnderTest();
  for (const TextView name : {u"a", u"a.", u"b", u"b "}) ground->MakeFile(name, "kept");
  EXPECT_EQ(Recycle(ground->Get(), ground->PathOf(u"a.")), DE_INVALIDFILES);
  EXPECT_EQ(Recycle(ground->Get(), ground->PathOf(u"b ")), DE_INVALIDFILES);
  EXPECT_EQ(NamesIn(ground->Get(), ground->Base()), (std::set<Text>{u"a", u"a.", u"b", u"b "}));
}

// For the time of its life this program sees a user who has these settings and no others.
class SettingsOfTheUser {
 public:
  SettingsOfTheUser() {
    ::RegCreateKeyExW(HKEY_CURRENT_USER, kPlace, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &mKey,
                      nullptr);
    mIsSet = ::RegOverridePredefKey(HKEY_CURRENT_USER, mKey) == ERROR_SUCCESS;
  }
  ~SettingsOfTheUser() {
    ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    ::RegCloseKey(mKey);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
  }
  SettingsOfTheUser(const SettingsOfTheUser&) = delete;
  SettingsOfTheUser& operator=(const SettingsOfTheUser&) = delete;
  [[nodiscard]] bool Set(const wchar_t* key, const wchar_t* name, DWORD value) const {
    return mIsSet && ::RegSetKeyValueW(HKEY_CURRENT_USER, key, name, REG_DWORD, &value,
                                       sizeof(value)) == ERROR_SUCCESS;
  }

 private:
  static constexpr const wchar_t* kPlace = L"Software\\QuillmarshTest";
  HKEY mKey = nullptr;
  bool mIsSet = false;
};

TEST(RecycleBin, AFileThatTheShellWouldDeleteForGoodIsRefusedAndStays) {
  const auto ground = MakeWin32UnderTest();
  ground->MakeFile(u"a", "kept");
  {
    const SettingsOfTheUser settings;
    ASSERT_TRUE(settings.Set(L"Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer",
                             L"NoRecycleFiles", 1));
    EXPECT_EQ(Recycle(ground->Get(), ground->PathOf(u"a")), 50);
  }
  EXPECT_EQ(BytesOf(ground->Get(), ground->PathOf(u"a")), "kept");
  EXPECT_EQ(ground->RecycledBytes(u"a"), "(none)");
}

// The environment names the root of a drive to which a test may write (QUILLMARSH_OTHER_DRIVE);
// below Wine "E:\" is made for that.
Text OtherDrive(bool isWine) {
  const char* const named = std::getenv("QUILLMARSH_OTHER_DRIVE");
  if (named != nullptr) return FromUtf8(named);
  return isWine ? u"E:\\" : u"";
}

class AnotherDrive : public testing::Test {
 protected:
  void SetUp() override {
    const Text root = OtherDrive(mGround->IsWine());
    if (root.empty() || !The().Disk().CreateDirectoryW(root + FolderName()))
      GTEST_SKIP() << "there is no other drive to write to";
    mFolder = root + FolderName();
  }
  void TearDown() override {
    if (mFolder.empty()) return;
    for (const Text& name : NamesIn(The(), mFolder)) {
      static_cast<void>(The().Disk().SetFileAttributesW(There(name), FILE_ATTRIBUTE_NORMAL));
      EXPECT_TRUE(The().Disk().DeleteFileW(There(name))) << ToUtf8(name);
    }
    EXPECT_TRUE(The().Disk().RemoveDirectoryW(mFolder));
  }
  [[nodiscard]] Machine& The() { return mGround->Get(); }
  [[nodiscard]] Text Here(TextView name) const { return mGround->PathOf(name); }
  [[nodiscard]] Text There(TextView name) const { return mFolder + u"\\" + Text(name); }

  const std::unique_ptr<MachineUnderTest> mGround = MakeWin32UnderTest();
  Text mFolder;

 private:
  static Text FolderName() { return u"quillmarsh-other-" + DecimalText(::GetCurrentProcessId()); }
};

TEST_F(AnotherDrive, AMoveKeepsBytesTimeAndAttributesAndLeavesNothingElse) {
  std::string bytes(3'000'001, 'x');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 / 7);
  mGround->MakeFile(u"a.", bytes);
  mGround->SetWritten(u"a.", 133'000'000'120'000'000);
  mGround->SetReadOnly(u"a.", true);
  const WIN32_FIND_DATAW before = ListFolder(The(), Here(u"*")).records.at(0);
  EXPECT_EQ(Move(The(), Here(u"a."), There(u"a."), 0), ERROR_NOT_SAME_DEVICE);
  EXPECT_EQ(Move(The(), Here(u"a."), There(u"a."), kMove), 0U);
  EXPECT_TRUE(NamesIn(The(), mGround->Base()).empty());
  const FolderListing after = ListFolder(The(), There(u"*"));
  ASSERT_EQ(after.names, std::vector<Text>{u"a."});
  EXPECT_EQ(after.records[0].dwFileAttributes, before.dwFileAttributes);
  EXPECT_EQ(after.records[0].ftLastWriteTime, before.ftLastWriteTime);
  if (!mGround->IsWine()) {  // which lets nobody set it
    EXPECT_EQ(after.records[0].ftCreationTime, before.ftCreationTime);
  }
  EXPECT_TRUE(BytesOf(The(), There(u"a.")) == bytes) << "other bytes";
}

TEST_F(AnotherDrive, AMoveOrACopyThatIsRefusedLeavesBothAsTheyWere) {
  for (const TextView name : {u"new", u"taken", u"kept"}) mGround->MakeFile(name, ToUtf8(name));
  mGround->MakeFolder(u"folder");
  mGround->SetReadOnly(u"kept", true);
  ASSERT_EQ(Move(The(), Here(u"taken"), There(u"taken"), kMove), 0U);
  ASSERT_EQ(Move(The(), Here(u"kept"), There(u"kept"), kMove), 0U);
  EXPECT_EQ(Move(The(), Here(u"new"), There(u"taken"), kMove), ERROR_ALREADY_EXISTS);
  EXPECT_EQ(Move(The(), Here(u"new"), There(u"kept"), kReplace), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Move(The(), Here(u"new"), There(u"none\\x"), kMove), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Move(The(), Here(u"folder"), There(u"folder"), kMove), ERROR_NOT_SAME_DEVICE);
  EXPECT_FALSE(The().Disk().CopyFileW(Here(u"new"), There(u"kept"), false));
  EXPECT_EQ(NamesIn(The(), mGround->Base()), (std::set<Text>{u"folder", u"new"}));
  EXPECT_EQ(NamesIn(The(), mFolder), (std::set<Text>{u"kept", u"taken"}));
  EXPECT_EQ(BytesOf(The(), There(u"taken")), "taken");
  EXPECT_EQ(BytesOf(The(), There(u"kept")), "kept");
  EXPECT_EQ(Move(The(), Here(u"new"), There(u"taken"), kReplace), 0U);
  EXPECT_EQ(BytesOf(The(), There(u"taken")), "new");
}

// Somebody who writes to the file meanwhile could lose what he wrote.
TEST_F(AnotherDrive, AFileThatIsBeingWrittenToIsNotMoved) {
  mGround->MakeFile(u"a", "1");
  const HANDLE writer = The().Files().CreateFileW(
      Here(u"a"), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
      OPEN_EXISTING, 0);
  EXPECT_EQ(Move(The(), Here(u"a"), There(u"a"), kMove), ERROR_SHARING_VIOLATION);
  The().Files().CloseHandle(writer);
  EXPECT_EQ(BytesOf(The(), Here(u"a")), "1");
  EXPECT_EQ(ListFolder(The(), There(u"*")).names.size(), 0U);
}

}  // namespace

}  // namespace quillmarsh
