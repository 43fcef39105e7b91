// SPDX-License-Identifier: MIT
// Rows on drives, locations and the rest of the system.
#include <algorithm>

#include "platform/ConformanceRows.h"

namespace quillmarsh {

namespace {

Text RootOf(const MachineUnderTest& ground) {
  return ground.Base().substr(0, 3);
}

Text MissingRoot(MachineUnderTest& ground) {
  const Text drives = ground.Get().Drives().GetLogicalDriveStringsW();
  Text missing = u"Z:\\";
  while (drives.find(missing[0]) != Text::npos) --missing[0];
  return missing;
}

void DriveStrings(MachineUnderTest& ground) {
  const Text drives = ground.Get().Drives().GetLogicalDriveStringsW();
  ASSERT_EQ(drives.size() % 4, 0U);
  bool found = false;
  for (std::size_t i = 0; i < drives.size(); i += 4) {
    EXPECT_EQ(drives.substr(i + 1, 3), Text(u":\\\0", 3));
    found = found || drives.substr(i, 3) == RootOf(ground);
  }
  EXPECT_TRUE(found);
}

void DriveTypes(MachineUnderTest& ground) {
  EXPECT_NE(ground.Get().Drives().GetDriveTypeW(RootOf(ground)), DRIVE_NO_ROOT_DIR);
  EXPECT_EQ(ground.Get().Drives().GetDriveTypeW(MissingRoot(ground)), DRIVE_NO_ROOT_DIR);
}

void VolumeFacts(MachineUnderTest& ground) {
  VolumeInformation information;
  ASSERT_TRUE(ground.Get().Drives().GetVolumeInformationW(RootOf(ground), information));
  EXPECT_FALSE(information.fileSystemName.empty());
  EXPECT_GE(information.maximumComponentLength, 8U);
  EXPECT_FALSE(ground.Get().Drives().GetVolumeInformationW(MissingRoot(ground), information));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_PATH_NOT_FOUND);
}

void Space(MachineUnderTest& ground) {
  DiskSpace space;
  ASSERT_TRUE(ground.Get().Drives().GetDiskFreeSpaceExW(RootOf(ground), space));
  EXPECT_GT(space.totalNumberOfBytes, 0U);
  EXPECT_LE(space.freeBytesAvailableToCaller, space.totalNumberOfFreeBytes);
  EXPECT_LE(space.totalNumberOfFreeBytes, space.totalNumberOfBytes);
  EXPECT_FALSE(ground.Get().Drives().GetDiskFreeSpaceExW(MissingRoot(ground), space));
}

void OneCanonicalForm(MachineUnderTest& ground) {
  ground.MakeFolder(u"target\\below");
  ground.MakeFolderLink(u"link", u"target");
  Volumes& drives = ground.Get().Drives();
  const Text expected = ground.PathOf(u"target\\below");
  for (const TextView spelling : {u"target\\below", u"target\\below\\", u"target\\.\\below",
                                  u"target\\below\\..\\below", u"link\\below"}) {
    SCOPED_TRACE(ToUtf8(spelling));
    const CanonicalLocation location = drives.LocationFromNative(ground.NativeOf(spelling));
    EXPECT_EQ(location.error, 0U);
    EXPECT_EQ(ToUtf8(location.path), ToUtf8(expected));
  }
}

void MissingLocation(MachineUnderTest& ground) {
  const auto location = ground.Get().Drives().LocationFromNative(ground.NativeOf(u"none"));
  EXPECT_EQ(location.path, u"");
  EXPECT_EQ(location.error, ERROR_FILE_NOT_FOUND);
  const auto deeper = ground.Get().Drives().LocationFromNative(ground.NativeOf(u"none\\below"));
  EXPECT_EQ(deeper.path, u"");
  EXPECT_NE(deeper.error, ERROR_SUCCESS);
}

void LeadsBack(MachineUnderTest& ground, TextView name) {
  Volumes& drives = ground.Get().Drives();
  EXPECT_EQ(drives.NativePath(ground.PathOf(name)), ground.NativeOf(name));
  EXPECT_EQ(drives.LocationFromNative(ground.NativeOf(name)).path, ground.PathOf(name));
}

void NativeAndBack(MachineUnderTest& ground) {
  const TextView name = u"\u00FC \U0001F4BE %20;";
  ground.MakeFile(name, "x");
  LeadsBack(ground, name);
}

void DotsAndBack(MachineUnderTest& ground) {
  for (const TextView name : {u"a", u"a.", u"a "}) ground.MakeFile(name, "x");
  for (const TextView name : {u"a", u"a.", u"a "}) LeadsBack(ground, name);
}

void ShownPathsAreClean(MachineUnderTest& ground) {
  const Text shown = ground.Get().Drives().ShownPath(RootOf(ground) + u"a\nb\x1Bc");
  EXPECT_TRUE(std::ranges::none_of(shown, [](char16_t unit) { return unit < 0x20; }))
      << ToUtf8(shown);
  EXPECT_FALSE(shown.empty());
}

void TimesThereAndBack(MachineUnderTest& ground) {
  LocaleAndTime& locale = ground.Get().Locale();
  for (std::int64_t utc = 133'485'408'001'234'567; utc < 133'800'768'000'000'000;
       utc += 18'000'000'000) {  // every half hour of a year
    FILETIME local;
    FILETIME back;
    ASSERT_TRUE(locale.FileTimeToLocalFileTime(FILETIME::FromTicks(utc), local));
    ASSERT_TRUE(locale.LocalFileTimeToFileTime(local, back));
    ASSERT_NEAR(static_cast<double>(back.Ticks() - utc), 0.0, 10.0) << utc;
  }
}

void LocaleAnswers(MachineUnderTest& ground) {
  LocaleAndTime& locale = ground.Get().Locale();
  for (const std::uint32_t type : {LOCALE_SDECIMAL, LOCALE_SSHORTDATE, LOCALE_STIMEFORMAT,
                                   LOCALE_SDAYNAME1, LOCALE_SMONTHNAME1 + 11})
    EXPECT_FALSE(locale.GetLocaleInfoW(type).empty()) << type;
  EXPECT_FALSE(locale.FormatMessageW(ERROR_ACCESS_DENIED).empty());
}

// A volume without access lists is never asked for them.
bool KeepsAccessLists(MachineUnderTest& ground) {
  VolumeInformation information;
  return ground.Get().Drives().GetVolumeInformationW(RootOf(ground), information) &&
         (information.fileSystemFlags & FS_PERSISTENT_ACLS) != 0;
}

void SecurityOfMissing(MachineUnderTest& ground) {
  if (!KeepsAccessLists(ground)) GTEST_SKIP() << "no access lists here";
  Access& access = ground.Get().Security();
  std::vector<std::byte> descriptor;
  std::uint32_t needed = 77;
  EXPECT_FALSE(access.GetFileSecurityW(ground.PathOf(u"none"), 7, descriptor, needed));
  EXPECT_EQ(needed, 0U);
  ground.MakeFile(u"file", "x");
  EXPECT_FALSE(access.GetFileSecurityW(ground.PathOf(u"file"), 7, descriptor, needed));
  EXPECT_GT(needed, 0U);
}

void AccessGranted(MachineUnderTest& ground) {
  if (!KeepsAccessLists(ground)) GTEST_SKIP() << "no access lists here";
  ground.MakeFile(u"file", "x");
  Access& access = ground.Get().Security();
  std::vector<std::byte> descriptor;
  std::uint32_t needed = 0;
  (void)access.GetFileSecurityW(ground.PathOf(u"file"), 7, descriptor, needed);
  descriptor.resize(needed);
  ASSERT_TRUE(access.GetFileSecurityW(ground.PathOf(u"file"), 7, descriptor, needed));
  ASSERT_TRUE(access.ImpersonateSelf(SecurityDelegation));
  const HANDLE token = access.OpenThreadToken(TOKEN_QUERY, false);
  ASSERT_NE(token, NULL_HANDLE);
  AccessCheckAnswer answer;
  const GENERIC_MAPPING mapping{FILE_GENERIC_READ, FILE_GENERIC_WRITE, FILE_GENERIC_EXECUTE,
                                FILE_ALL_ACCESS};
  EXPECT_TRUE(access.AccessCheck(descriptor, token, FILE_GENERIC_READ, mapping, answer));
  EXPECT_TRUE(answer.accessStatus);
  EXPECT_EQ(answer.grantedAccess, FILE_GENERIC_READ);
  access.CloseToken(token);
  EXPECT_TRUE(access.RevertToSelf());
}

void TempFolder(MachineUnderTest& ground) {
  const Text folder = ground.Get().Desktop().GetTempPathW();
  ASSERT_GE(folder.size(), 3U);
  EXPECT_TRUE(folder.ends_with(u'\\'));
  EXPECT_EQ(ground.Get().Desktop().SHGetFolderPathW(0x7777), u"");
}

constexpr ConformanceRow rows[] = {
    {"GetMappedDrivesCollection", "drive strings are steps of four characters", DriveStrings},
    {"cFSXDrive.DriveType", "a letter that is not there has type 1", DriveTypes},
    {"cFSXDrive.UpdateVolumeInfo", "a volume tells its file system and a missing one is 3",
     VolumeFacts},
    {"cFSXDrive.UpdateFreeSpace", "the three spaces are in order", Space},
    {"IsCriteriaValid", "all spellings of a location have one canonical form", OneCanonicalForm},
    {"IsCriteriaValid", "a location that is missing has a code and no path", MissingLocation},
    {"the list of the console", "native bytes lead back to the same path", NativeAndBack},
    {"the list of the console", "native bytes keep the dot and the blank at the end of a name",
     DotsAndBack},
    {"the list of the console", "no control character is shown", ShownPathsAreClean},
    {"ConvertDateTimeCurrToVBDateTime", "local time leads back to the UTC time", TimesThereAndBack},
    {"GetDateTimeFormat", "locale facts and error texts are there", LocaleAnswers},
    {"GetGrantedAccess", "the length of a security descriptor is told by a failing call",
     SecurityOfMissing},
    {"GetGrantedAccess", "an access check grants reading of an ordinary file", AccessGranted},
    {"GetSpecialFolder", "the temporary folder ends in a backslash and unknown ones are empty",
     TempFolder},
};

}  // namespace

std::span<const ConformanceRow> VolumeRows() {
  return rows;
}

}  // namespace quillmarsh
