// SPDX-License-Identifier: MIT
// A file object's facts: what it asks the disk for, what it never asks again, and what it answers
// when the disk refuses.
#include "DelegatingMachine.h"
#include "FsObjectsFixture.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFolder.h"
#include "support/ChecksumModule.h"

namespace quillmarsh {
namespace {

class FileObject : public FsObjectsFixture {
 protected:
  static cFSXFile At(TextView path) {
    cFSXFile file;
    file.SetPath(path);
    return file;
  }
  static cFSXFile Primed() {
    cFSXFile file = At(u"C:\\gone\\a.txt");
    file.SetSize(Currency::FromInteger(5));
    file.SetAttributes(FILE_ATTRIBUTE_HIDDEN);
    file.SetLastModifiedDateAsCurr(Currency::FromRaw(TicksOf(2020, 1, 2, 3, 4, 5)));
    file.SetCreatedDateAsCurr(Currency::FromRaw(TicksOf(2019, 1, 2, 3, 4, 5)));
    return file;
  }
};

TEST_F(FileObject, PrimedFactsNeverTouchTheDisk) {
  cFSXFile file = Primed();
  hook.ClearJournal();
  EXPECT_EQ(file.Size(), Currency::FromInteger(5));
  EXPECT_TRUE(file.IsHidden());
  EXPECT_EQ(file.LastModifiedDate().ToCivil().hour, 3);
  EXPECT_EQ(file.CreatedDate().ToCivil().year, 2019);
  EXPECT_EQ(file.CompressedSize(), Currency::FromInteger(5));
  NameArena names;
  EXPECT_EQ(file.DupeFileUDT(names).Size, Currency::FromInteger(5));
  EXPECT_TRUE(hook.Journal().empty());

  EXPECT_FALSE(file.Exists());
  EXPECT_FALSE(file.Exists());
  EXPECT_EQ(Calls(Operation::CreateFileW), 2U) << "a missing file is looked for again";
}

TEST_F(FileObject, PrimedFactsStayWhenTheDiskIsReadLater) {
  machine.AddFile(u"C:\\gone\\a.txt", "longer than five");
  cFSXFile file = Primed();
  EXPECT_TRUE(file.Exists());
  EXPECT_EQ(file.Size(), Currency::FromInteger(5));
}

TEST_F(FileObject, ReadsTheDiskOnceForAllFacts) {
  machine.AddFile(u"C:\\d\\a.txt", "12345", {.written = TicksOf(2021, 5, 6, 7, 8, 9)});
  cFSXFile file = At(u"C:\\d\\a.txt");
  hook.ClearJournal();
  EXPECT_EQ(file.Size(), Currency::FromInteger(5));
  EXPECT_TRUE(file.IsArchive());
  EXPECT_EQ(file.LastModifiedDateAsCurr().Raw(), TicksOf(2021, 5, 6, 7, 8, 9));
  EXPECT_TRUE(file.Exists());
  machine.Remove(u"C:\\d\\a.txt");
  EXPECT_TRUE(file.Exists()) << "a file that was found answers from memory";
  EXPECT_EQ(file.AttributesString(), u"A");
  EXPECT_EQ(Calls(Operation::CreateFileW), 1U);
  EXPECT_EQ(Calls(Operation::GetFileInformationByHandle), 1U);
}

TEST_F(FileObject, FileThatIsHeldWithoutSharingIsReadByASearch) {
  machine.AddFile(u"C:\\d\\a.txt", "12345");
  const HANDLE held = machine.HoldOpen(u"C:\\d\\a.txt", 0);
  cFSXFile file = At(u"C:\\d\\a.txt");
  EXPECT_TRUE(file.Exists());
  EXPECT_EQ(file.Size(), Currency::FromInteger(5));
  EXPECT_TRUE(file.InUse());
  machine.LetGo(held);
  EXPECT_TRUE(file.InUse()) << "known once";
  EXPECT_FALSE(At(u"C:\\d\\a.txt").InUse());
}

TEST_F(FileObject, FailedSearchTellsExistenceByItsErrorNumber) {
  const struct {
    std::uint32_t error;
    bool exists, readKnownAsDenied, inUse;
  } rows[] = {
      {ERROR_FILE_NOT_FOUND, false, false, false},  {ERROR_PATH_NOT_FOUND, false, false, false},
      {ERROR_INVALID_DATA, false, false, false},    {ERROR_ACCESS_DENIED, true, true, true},
      {ERROR_SHARING_VIOLATION, true, false, true}, {ERROR_NOT_READY, false, false, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.error);
    FaultHook faults;
    faults.Fail({.operation = Operation::CreateFileW, .nth = 0}, ERROR_ACCESS_DENIED);
    faults.Fail({.operation = Operation::FindFirstFileW, .nth = 0}, row.error);
    machine.SetHook(&faults);
    cFSXFile file = At(u"C:\\d\\a.txt");
    EXPECT_EQ(file.Exists(), row.exists);
    EXPECT_EQ(file.HasReadPermission(), !row.readKnownAsDenied);
    EXPECT_EQ(faults.CountOf(Operation::GetVersionExW) != 0 || !row.readKnownAsDenied,
              !row.readKnownAsDenied)
        << "a denial by the disk needs no further check";
    EXPECT_EQ(file.InUse(), row.inUse);
    machine.SetHook(&hook);
    ResetIsWindowsNT();
  }
}

TEST_F(FileObject, HandleWithoutInformationFallsBackOnTheSearch) {
  machine.AddFile(u"C:\\a.txt", "123");
  hook.Fail({.operation = Operation::GetFileInformationByHandle}, ERROR_INVALID_FUNCTION);
  EXPECT_EQ(At(u"C:\\a.txt").Size(), Currency::FromInteger(3));
  EXPECT_EQ(Calls(Operation::FindFirstFileW), 1U);
}

TEST_F(FileObject, NameIsSplitAtItsLastDot) {
  const struct {
    TextView name, bare, extension;
  } rows[] = {{u"a.b.c", u"a.b", u"c"}, {u"plain", u"plain", u""}, {u".hid", u"", u"hid"}};
  for (const auto& row : rows) {
    cFSXFile file = At(Text(u"C:\\d\\").append(row.name));
    EXPECT_EQ(file.NameWithoutExtension(), row.bare);
    EXPECT_EQ(file.Extension(), row.extension);
  }
  cFSXFile file = At(u"C:\\d\\a.txt");
  EXPECT_EQ(file.Extension(), u"txt");
  file.SetName(u"b.doc");
  EXPECT_EQ(file.Extension(), u"txt") << "a new name drops no cached part";
  EXPECT_EQ(file.OriginalName(), u"a.txt");
  EXPECT_EQ(file.Path(), u"C:\\d\\b.doc");
}

TEST_F(FileObject, TmpIsTemporaryWhateverTheAttributeSays) {
  cFSXFile file = At(u"C:\\d\\a.Tmp");
  file.SetAttributes(FILE_ATTRIBUTE_ARCHIVE);
  file.SetIsTemporary(false);
  EXPECT_TRUE(file.IsTemporary());
  cFSXFile other = At(u"C:\\d\\atmp");
  other.SetAttributes(FILE_ATTRIBUTE_TEMPORARY | FILE_ATTRIBUTE_COMPRESSED);
  other.SetIsTemporary(false);
  other.SetIsCompressed(false);
  EXPECT_TRUE(other.IsTemporary());
  EXPECT_TRUE(other.IsCompressed());
}

TEST_F(FileObject, AttributeSettersChangeOneBitAndTheObjectOnly) {
  machine.AddFile(u"C:\\a.txt");
  cFSXFile file = At(u"C:\\a.txt");
  file.SetIsReadOnly(true);
  file.SetIsHidden(true);
  file.SetIsSystem(true);
  file.SetIsArchive(false);
  EXPECT_EQ(file.Attributes(), 0x7U);
  file.SetIsHidden(false);
  EXPECT_EQ(file.AttributesString(), u"RS");
  EXPECT_EQ(machine.AttributesOf(u"C:\\a.txt"), FILE_ATTRIBUTE_ARCHIVE);
}

TEST_F(FileObject, CompressedSizeTellsATrueSizeFromTheMarkOfAFailure) {
  const struct {
    std::uint64_t onDisk;
    std::int64_t expected;
  } rows[] = {{4096, 4096},
              {0x1'FFFF'FFFF, 0x1'FFFF'FFFF},
              {0xFFFF'FFFF, -1}};  // required as it is: no high half, no true size
  for (const auto& row : rows) {
    machine.AddFile(u"C:\\a.txt", FileContents::Recipe(1, 0x2'0000'0000),
                    {.attributes = FILE_ATTRIBUTE_COMPRESSED});
    machine.SetCompressedSize(u"C:\\a.txt", row.onDisk);
    EXPECT_EQ(At(u"C:\\a.txt").CompressedSize(), Currency::FromInteger(row.expected));
    machine.Remove(u"C:\\a.txt");
  }
  cFSXFile missing = At(u"C:\\a.txt");
  missing.SetAttributes(FILE_ATTRIBUTE_COMPRESSED);
  EXPECT_EQ(missing.CompressedSize(), Currency::FromInteger(-1));
}

TEST_F(FileObject, KnowsShortcutsByExtensionAndTypeName) {
  machine.AddFile(u"C:\\a.LNK");
  machine.AddFile(u"C:\\b.txt");
  machine.SetTypeName(u"lnk", u"shortcut");
  machine.SetTypeName(u"txt", u"Shortcut");
  EXPECT_TRUE(At(u"C:\\a.LNK").IsShortcut());
  EXPECT_FALSE(At(u"C:\\b.txt").IsShortcut());
  EXPECT_FALSE(At(u"C:\\gone.lnk").IsShortcut());
  machine.SetTypeName(u"lnk", u"Verkn\u00FCpfung");
  EXPECT_FALSE(At(u"C:\\a.LNK").IsShortcut());
  EXPECT_EQ(At(u"C:\\gone.txt").FileTypeDesc(), u"Shortcut") << "by the name alone";
}

TEST_F(FileObject, IsLocalComparesTheRootWithTheProgramsOwn) {
  machine.AddDrive({.root = u"D:\\"});
  machine.AddFile(u"D:\\a.txt");
  machine.AddFile(u"C:\\a.txt");
  machine.SetProgramPath(u"d:\\Programs\\quillmarsh.exe");
  EXPECT_TRUE(At(u"D:\\a.txt").IsLocal());
  EXPECT_FALSE(At(u"C:\\a.txt").IsLocal());
  EXPECT_FALSE(At(u"D:\\missing.txt").IsLocal());
}

TEST_F(FileObject, KnowsProgramsAndEncryptedFilesByTheSystemsWord) {
  std::string program(0x200, '\0');
  program.replace(0, 2, "MZ");
  program[60] = '\x80';
  program.replace(0x80, 2, "PE");
  program[0x96] = '\x02';
  program.replace(0x98, 2, "\x0B\x01");
  machine.AddFile(u"C:\\a.exe", program);
  EXPECT_TRUE(At(u"C:\\a.exe").IsEXE());
  machine.AddFile(u"C:\\e.txt", {}, {.attributes = FILE_ATTRIBUTE_ENCRYPTED});
  EXPECT_FALSE(At(u"C:\\e.txt").IsEXE());
  EXPECT_TRUE(At(u"C:\\e.txt").IsEncrypted());
  EXPECT_FALSE(At(u"C:\\a.exe").IsEncrypted());
}

class ScriptedVersions final : public VersionResources {
 public:
  using VersionResources::VersionResources;
  std::uint32_t size = 100;
  std::size_t blockAsked = 0;
  std::optional<VS_FIXEDFILEINFO> root;

 private:
  std::uint32_t DoGetSize(TextView) override { return size; }
  bool DoGetBlock(TextView, std::vector<std::byte>& block) override {
    blockAsked = block.size();
    return true;
  }
  std::optional<VS_FIXEDFILEINFO> DoQueryRoot(const std::vector<std::byte>&) override {
    return root;
  }
};

class MachineWithVersions final : public DelegatingMachine {
 public:
  using DelegatingMachine::DelegatingMachine;
  ScriptedVersions versions{mCalls};
  VersionResources& Versions() override { return versions; }
};

// The divisor 65535 is required: a lower half of 65535 makes the upper one come out one higher.
TEST_F(FileObject, VersionTextIsBuiltFromTheHalvesOfTwoWords) {
  machine.AddFile(u"C:\\a.exe");
  const struct {
    std::uint32_t ms, ls, flags;
    TextView text;
  } rows[] = {
      {0x0001'0002, 0x0003'0004, 0, u"1.02.03.04"},
      {0x000A'000B, 0, 0, u"10.11.0000"},
      {0x0001'0002, 0x8000'0000, 0, u"1.02.0000"},
      {0x0001'FFFF, 0x0000'FFFF, 0, u"2.65535.01.65535"},
      {0x0001'0002, 0x0003'0004, VS_FF_PATCHED, u"1.02.03.04*"},
      {0xFFFF'0000, 1, 0, u"-2.00.00.01"},
  };
  for (const auto& row : rows) {
    MachineWithVersions scripted(machine);
    scripted.versions.root = {
        .dwFileVersionMS = row.ms, .dwFileVersionLS = row.ls, .dwFileFlags = row.flags};
    EXPECT_EQ(At(u"C:\\a.exe").VersionNumber(), row.text);
    EXPECT_EQ(At(u"C:\\missing.exe").VersionNumber(), u"");
  }
  MachineWithVersions scripted(machine);
  scripted.versions.size = 1'000'000;
  EXPECT_EQ(At(u"C:\\a.exe").VersionNumber(), u"") << "a block without a root";
  EXPECT_EQ(scripted.versions.blockAsked, 64000U);
}

TEST_F(FileObject, TellsItsPlaceAndMakesObjectsForIt) {
  cFSXFile file = At(u"c:\\one\\two\\a.txt");
  EXPECT_EQ(file.ParentFolderPath(), u"c:\\one\\two\\");
  EXPECT_EQ(file.ParentName(), u"two");
  EXPECT_EQ(file.DriveName(), u"c:\\");
  EXPECT_EQ(file.ParentFolder()->Path(), u"c:\\one\\two\\");
  EXPECT_EQ(file.Drive()->Name(), u"C:\\");
  EXPECT_FALSE(file.PathContainsUnicodeChars());
  EXPECT_TRUE(At(u"c:\\\u0416\\a").PathContainsUnicodeChars());
  EXPECT_FALSE(At(u"c:\\\u0416\\a").NameContainsUnicodeChars());
}

TEST_F(FileObject, WithoutAPathNothingHangs) {
  cFSXFile file;
  EXPECT_EQ(file.Path(), u"");
  EXPECT_EQ(file.ParentFolderPath(), u"");
  EXPECT_EQ(file.ParentFolderIdx(), -1);
  EXPECT_FALSE(file.Exists());
}

TEST_F(FileObject, DigestAndTextShareReadTheWholeFile) {
  const std::string text = "plain\ttext\r\n";
  machine.AddFile(u"C:\\t.txt", text + "\x01\x02\xE9\xEA");
  machine.AddFile(u"C:\\empty");
  machine.AddFile(u"C:\\big", FileContents::Recipe(7, 600'001));
  EXPECT_EQ(At(u"C:\\t.txt").FileASCIIPercentage(false), 75);
  EXPECT_EQ(At(u"C:\\t.txt").FileASCIIPercentage(true), 87) << "rounded down";
  EXPECT_EQ(At(u"C:\\empty").FileASCIIPercentage(true), 0);
  EXPECT_EQ(At(u"C:\\missing").FileASCIIPercentage(true), 0);
  EXPECT_EQ(At(u"C:\\empty").MD5(), u"d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(At(u"C:\\missing").MD5(), u"");
  const Text whole = At(u"C:\\big").MD5();
  machine.SetContents(u"C:\\big", FileContents::Recipe(7, 600'001).ChangedAt(600'000));
  EXPECT_NE(At(u"C:\\big").MD5(), whole);
  hook.Fail({.operation = Operation::ReadFile, .nth = 2}, ERROR_IO_DEVICE);
  EXPECT_EQ(At(u"C:\\big").MD5(), u"") << "a digest of half a file is none";
}

TEST_F(FileObject, ChecksumIsReadOnceAndIs0ForWhatCannotBeRead) {
  machine.AddFile(u"C:\\a.txt", "123456789");
  EXPECT_EQ(At(u"C:\\a.txt").CRC32(), 0) << "without the library";
  PutChecksumModule(machine);
  LoadChecksumLibrary();
  cFSXFile file = At(u"C:\\a.txt");
  EXPECT_EQ(static_cast<std::uint32_t>(file.CRC32()), 0xCBF43926U);
  machine.SetContents(u"C:\\a.txt", "other");
  EXPECT_EQ(static_cast<std::uint32_t>(file.CRC32()), 0xCBF43926U);
  EXPECT_EQ(At(u"C:\\missing").CRC32(), 0);
  hook.Fail({.operation = Operation::ReadFile}, ERROR_IO_DEVICE);
  EXPECT_EQ(At(u"C:\\a.txt").CRC32(), 0);
  cFSXFile stopped = At(u"C:\\a.txt");
  hook.RunBefore({.operation = Operation::ReadFile}, [] { gStopCRC = true; });
  EXPECT_EQ(stopped.CRC32(), 0);
  EXPECT_NE(stopped.CRC32(), 0) << "what a stop left unknown is asked again";
  FreeChecksumLibrary();
}

// Every call that names a path runs with the redirection off, and gets the long form of a long
// path.
TEST_F(FileObject, AsksTheDiskByLongPathsAndWithRedirectionOff) {
  machine.SetWow64(true);
  gIsWow64 = true;
  const Text deep = u"C:\\" + Text(130, u'a') + u"\\" + Text(130, u'b') + u"\\f.lnk";
  machine.AddFile(deep, "x", {.attributes = FILE_ATTRIBUTE_COMPRESSED});
  constexpr Operation kLookingOperations[] = {Operation::CreateFileW,
                                              Operation::FindFirstFileW,
                                              Operation::GetBinaryTypeW,
                                              Operation::GetCompressedFileSizeW,
                                              Operation::ReadFile,
                                              Operation::GetFileVersionInfoSizeW,
                                              Operation::FileEncryptionStatusW};
  for (const Operation operation : kLookingOperations) {
    hook.RunBefore({.operation = operation, .nth = 0}, [this, operation] {
      EXPECT_GT(machine.RedirectionDepth(), 0) << NameOf(operation);
    });
  }
  const HANDLE held = machine.HoldOpen(deep, FILE_SHARE_WRITE);
  EXPECT_TRUE(At(deep).InUse());
  machine.LetGo(held);
  cFSXFile file = At(deep);
  EXPECT_TRUE(file.Exists());
  EXPECT_FALSE(file.InUse());
  EXPECT_FALSE(file.IsEXE());
  EXPECT_FALSE(file.IsEncrypted());
  EXPECT_EQ(file.CompressedSize(), Currency::FromInteger(1));
  EXPECT_EQ(file.VersionNumber(), u"");
  EXPECT_EQ(file.MD5(), u"9dd4e461268c8034f5c8564e155c67a6");
  for (const FaultHook::Call& call : hook.Journal()) {
    if (call.subject.size() > 248) {
      EXPECT_TRUE(call.subject.starts_with(u"\\\\?\\C:"));
    }
  }
}

}  // namespace
}  // namespace quillmarsh
