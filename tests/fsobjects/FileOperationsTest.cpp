// SPDX-License-Identifier: MIT
// Copy, move, rename and delete: what each failure leaves on the disk and tells, what happens to
// read-only files and to what the Recycle Bin refuses, lists and their log, and junctions.
#include "FsObjectsFixture.h"
#include "fsobjects/CreateFolderTree.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"

namespace quillmarsh {
namespace {

enum class Verb : std::uint8_t { Copy, Move, Rename, Delete, Recycle };
constexpr Verb kVerbs[] = {Verb::Copy, Verb::Move, Verb::Rename, Verb::Delete, Verb::Recycle};

class FileOperations : public FsObjectsFixture {
 protected:
  FileOperations() {
    machine.AddFile(u"C:\\d\\a.txt", "a");
    machine.AddFolder(u"C:\\to");
  }
  // Answers of the last call.
  bool cancelled = false;
  std::int32_t number = 99;
  Text message = u"of another call";
  Text log;

  bool Do(Verb verb, TextView path = u"C:\\d\\a.txt") {
    switch (verb) {
      case Verb::Copy:
        return FSXFSO_CopyFSO(path, u"C:\\to", cancelled, number, message, log);
      case Verb::Move:
        return FSXFSO_MoveFSO(path, u"C:\\to\\", cancelled, number, message, log);
      case Verb::Rename:
        return FSXFSO_RenameFSO(path, u"b.txt", cancelled, number, message);
      case Verb::Delete:
      case Verb::Recycle:
        break;
    }
    return FSXFSO_DeleteFSO(path, cancelled, number, message, log, verb == Verb::Delete);
  }
  Text SystemText(std::uint32_t code) { return machine.Locale().FormatMessageW(code); }
  void ExpectTold(std::uint32_t code) {
    EXPECT_EQ(number, static_cast<std::int32_t>(code));
    EXPECT_EQ(message, code == 0 ? u"An unknown error occurred" : SystemText(code));
  }
  bool IsReadOnly(TextView path) {
    return (machine.AttributesOf(path) & FILE_ATTRIBUTE_READONLY) != 0;
  }
};

TEST_F(FileOperations, EachDoesItsWorkAndClearsNumberAndMessage) {
  struct Row {
    Verb verb;
    TextView result;
    bool sourceStays;
    TextView message;
  };
  const Row rows[] = {{Verb::Copy, u"C:\\to\\a.txt", true, u""},
                      {Verb::Move, u"C:\\to\\a.txt", false, u""},
                      {Verb::Rename, u"C:\\d\\b.txt", false, u"0"},
                      {Verb::Delete, u"", false, u""},
                      {Verb::Recycle, u"C:\\$Recycle.Bin\\$R1", false, u""}};
  for (const Row& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.verb));
    EXPECT_TRUE(Do(row.verb));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(message, row.message);
    EXPECT_TRUE(row.result.empty() || machine.ContentsOf(row.result) == "a");
    EXPECT_EQ(machine.Exists(u"C:\\d\\a.txt"), row.sourceStays);
    machine.Remove(u"C:\\d");
    machine.AddFile(u"C:\\d\\a.txt", "a");
    if (machine.Exists(u"C:\\to")) machine.Remove(u"C:\\to");
  }
}

TEST_F(FileOperations, EachCodeOfAFailureIsToldAndNothingIsChanged) {
  const std::vector<Text> before = machine.TreeOf(u"C:\\");
  struct Row {
    Verb verb;
    Operation operation;
  };
  for (const auto& [verb, operation] :
       {Row{Verb::Copy, Operation::CopyFileW}, Row{Verb::Move, Operation::MoveFileW},
        Row{Verb::Rename, Operation::MoveFileW}, Row{Verb::Delete, Operation::DeleteFileW}}) {
    for (const std::uint32_t code : {0U, 3U, 17U, 19U, 21U, 32U, 112U, 183U, 206U, 995U}) {
      SCOPED_TRACE(std::string(NameOf(operation)) + " " + std::to_string(code));
      hook.Fail({operation}, code);
      EXPECT_FALSE(Do(verb));
      ExpectTold(code);
      EXPECT_FALSE(cancelled);
      // A drive that is not ready says nothing about the file: taken for absence, the file would
      // be told as removed.
      if (verb == Verb::Rename || code < 6 || code == 32) continue;
      hook.Fail({Operation::GetFileAttributesW, 1, u"C:\\d\\a.txt"}, code);
      EXPECT_FALSE(Do(verb));
      ExpectTold(code);
    }
  }
  EXPECT_EQ(machine.TreeOf(u"C:\\"), before);
}

TEST_F(FileOperations, WhatIsGoneIsNoFailureAndAMissingDestinationIsMade) {
  for (const Verb verb : {Verb::Copy, Verb::Move, Verb::Delete, Verb::Recycle}) {
    EXPECT_TRUE(Do(verb, u"C:\\d\\none.txt"));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(message, u"");
  }
  hook.RunBefore({Operation::DeleteFileW}, [this] { machine.Remove(u"C:\\d\\a.txt"); });
  EXPECT_TRUE(Do(Verb::Delete)) << "it vanishes between look and delete";
  machine.AddFile(u"C:\\d\\a.txt");
  EXPECT_TRUE(FSXFSO_MoveFSO(u"C:\\d\\a.txt", u"C:\\x\\y", cancelled, number, message, log));
  EXPECT_TRUE(machine.Exists(u"C:\\x\\y\\a.txt"));
  EXPECT_FALSE(
      FSXFSO_MoveFSO(u"C:\\x\\y\\a.txt", u"C:\\x\\y\\a.txt\\z", cancelled, number, message, log));
  ExpectTold(ERROR_ALREADY_EXISTS);
  EXPECT_FALSE(FSXFSO_MoveFSO(u"C:\\x\\y\\a.txt", u"", cancelled, number, message, log))
      << "not into the current folder of the process";
  ExpectTold(ERROR_PATH_NOT_FOUND);
  EXPECT_TRUE(machine.Exists(u"C:\\x\\y\\a.txt"));
}

TEST_F(FileOperations, AReadOnlyBitIsClearedOnceAndPutBackWhenThatDidNotHelp) {
  struct Row {
    const char* name;
    bool isReadOnly;
    Operation fails;
    std::size_t nth;
    std::uint32_t code;  // of the failure; 0: nothing fails
    std::uint32_t told;
  };
  constexpr auto none = Operation::CloseClipboard;
  constexpr auto work = Operation::OpenClipboard;  // CopyFileW or DeleteFileW
  const Row rows[] = {
      {"cleared and done", true, none, 0, 0, 0},
      {"refused again", true, work, 2, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED},
      {"refused otherwise", true, work, 2, ERROR_IO_DEVICE, ERROR_IO_DEVICE},
      {"cannot be cleared", true, Operation::SetFileAttributesW, 1, ERROR_WRITE_PROTECT,
       ERROR_WRITE_PROTECT},
      {"no such bit", false, work, 1, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED},
  };
  for (const Verb verb : {Verb::Copy, Verb::Delete}) {
    const Operation operation = verb == Verb::Copy ? Operation::CopyFileW : Operation::DeleteFileW;
    const Text kept = verb == Verb::Copy ? u"C:\\to\\a.txt" : u"C:\\d\\a.txt";
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(NameOf(operation)) + ": " + row.name);
      machine.Remove(u"C:\\d");
      machine.Remove(u"C:\\to");
      machine.AddFile(u"C:\\d\\a.txt", "new");
      machine.AddFile(u"C:\\to\\a.txt", "old");
      machine.SetAttributes(kept, row.isReadOnly ? FILE_ATTRIBUTE_READONLY : 0U);
      if (row.fails != none)
        hook.Fail({row.fails == work ? operation : row.fails, row.nth}, row.code);
      hook.ClearJournal();
      EXPECT_EQ(Do(verb), row.told == 0);
      if (row.told != 0) ExpectTold(row.told);
      EXPECT_EQ(message.empty(), row.told == 0);
      const bool isTriedAgain = row.isReadOnly && row.fails != Operation::SetFileAttributesW;
      EXPECT_EQ(Calls(operation), isTriedAgain ? 2U : 1U);
      if (row.told != 0) {
        EXPECT_EQ(IsReadOnly(kept), row.isReadOnly);
      } else if (verb == Verb::Copy) {
        EXPECT_EQ(machine.ContentsOf(kept), "new");
      }
    }
  }
}

TEST_F(FileOperations, WhatTheBinRefusesIsDeletedForGood) {
  const Text longPath = u"C:\\" + Text(150, u'd') + u"\\" + Text(150, u'x');
  struct Row {
    const char* name;
    TextView path;
    std::int32_t answer;  // of the shell
    bool isAsked, fallsThrough;
    std::int32_t code;  // told when the file stays
    TextView text;
  };
  const Row rows[] = {
      {"a reason", u"C:\\d\\a.txt", 120, true, true, 120, u"Security problems on source"},
      {"a code of the system", u"C:\\d\\a.txt", 32, true, true, 32, u"An unknown error occurred."},
      {"too long", longPath, 0, true, true, 121,
       u"The source or destination path exceeded or would exceed MAX_PATH"},
      {"given up", u"C:\\d\\a.txt", 995, true, false, 995, u"An unknown error occurred."},
      {"too many open files", u"C:\\d\\a.txt", 4, true, false, 4, u"An unknown error occurred."},
      {"no memory", u"C:\\d\\a.txt", 8, true, false, 8, u"An unknown error occurred."},
      {"a mask", u"C:\\d\\*.txt", 0, false, false, 124,
       u"The paths in the source or destination were invalid"},
      {"a mask of folders", u"C:\\?\\", 0, false, false, 124,
       u"The paths in the source or destination were invalid"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    if (!machine.Exists(longPath)) machine.AddFile(longPath);
    if (!machine.Exists(u"C:\\d\\a.txt")) machine.AddFile(u"C:\\d\\a.txt");
    const std::size_t before = machine.TreeOf(u"C:\\").size();
    machine.SetBinAnswer(row.answer);
    hook.ClearJournal();
    EXPECT_EQ(Do(Verb::Recycle, row.path), row.fallsThrough);
    EXPECT_EQ(Calls(Operation::SHFileOperationW), row.isAsked ? 1U : 0U);
    EXPECT_EQ(machine.TreeOf(u"C:\\").size(), before - (row.fallsThrough ? 1U : 0U));
    EXPECT_EQ(number, row.fallsThrough ? 0 : row.code);
    EXPECT_EQ(message, row.fallsThrough ? Text() : Text(row.text) + u" (*SHFileOp*)");
  }
  // The shell would take the current folder for these.
  hook.ClearJournal();
  for (const TextView path : {u"", u"C:\\", u"C:", u"x"}) EXPECT_TRUE(Do(Verb::Recycle, path));
  EXPECT_EQ(Calls(Operation::SHFileOperationW), 0U);
  EXPECT_EQ(GetShellErrorMessage(1026),
            u"An unknown error occurred. This is typically due to invalid paths in the source or "
            u"destination.");
  EXPECT_EQ(GetShellErrorMessage(119), u"An unknown error occurred.");
}

TEST_F(FileOperations, OnceCancelledNothingHappens) {
  hook.RunAfter({Operation::SHFileOperationW}, [] { gFSOCancelled = true; });
  machine.SetBinAnswer(120);
  EXPECT_FALSE(Do(Verb::Recycle)) << "stopped while the shell was at it";
  hook.ClearJournal();
  for (const Verb verb : kVerbs) {
    EXPECT_TRUE(cancelled);
    cancelled = false;
    EXPECT_FALSE(Do(verb));
    EXPECT_EQ(number, 0);
  }
  gFSOCancelled = false;
  EXPECT_TRUE(cancelled);
  EXPECT_FALSE(Do(Verb::Delete)) << "by the caller alone";
  EXPECT_TRUE(gFSOCancelled);
  EXPECT_TRUE(machine.Exists(u"C:\\d\\a.txt"));
  EXPECT_FALSE(machine.Exists(u"C:\\to\\a.txt"));
}

// Required as it is: these routines serve for files and junctions.
TEST_F(FileOperations, PlainFoldersAreLeftAloneWithSuccess) {
  const std::vector<Text> before = machine.TreeOf(u"C:\\");
  for (const Verb verb : {Verb::Copy, Verb::Move, Verb::Delete}) EXPECT_TRUE(Do(verb, u"C:\\d\\"));
  // Its attributes cannot be told a moment later, which makes it no junction.
  hook.Fail({Operation::GetFileAttributesW, 2, u"C:\\d\\"}, ERROR_ACCESS_DENIED);
  EXPECT_TRUE(Do(Verb::Delete, u"C:\\d\\"));
  EXPECT_EQ(machine.TreeOf(u"C:\\"), before);
}

TEST_F(FileOperations, OfAJunctionTheLinkAndOfAMountTheFilesGo) {
  machine.AddDrive({.root = u"E:\\"});
  machine.AddFile(u"E:\\one");
  machine.AddFile(u"E:\\two");
  machine.AddFile(u"E:\\sub\\three");
  machine.AddMountPoint(u"C:\\d\\mount", u"E:\\");
  machine.AddJunction(u"C:\\d\\link", u"E:\\sub");
  machine.AddJunction(u"E:\\round", u"C:\\d");

  EXPECT_TRUE(Do(Verb::Copy, u"C:\\d\\mount"));
  EXPECT_EQ(machine.TreeOf(u"C:\\to\\mount"),
            (std::vector<Text>{u"C:\\to\\mount\\one", u"C:\\to\\mount\\two"}));
  hook.Fail({Operation::FindFirstFileW, 1, u"C:\\d\\mount\\*"}, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(Do(Verb::Delete, u"C:\\d\\mount"));
  ExpectTold(ERROR_ACCESS_DENIED);
  mCheckFolderPermission = false;
  EXPECT_FALSE(Do(Verb::Delete, u"C:\\d\\mount")) << "nobody has looked, so nothing is writable";
  EXPECT_EQ(number, 70);
  EXPECT_EQ(message,
            u"You do not have permission to access this folder.  Please see your Network "
            u"Administrator.");
  mCheckFolderPermission = true;
  EXPECT_EQ(machine.TreeOf(u"E:\\").size(), 5U);

  EXPECT_TRUE(Do(Verb::Delete, u"C:\\d\\link"));
  EXPECT_FALSE(machine.Exists(u"C:\\d\\link"));
  hook.Fail({Operation::FindNextFileW}, ERROR_IO_DEVICE);
  EXPECT_FALSE(Do(Verb::Move, u"C:\\d\\mount")) << "a part of the listing is not the whole";
  ExpectTold(ERROR_IO_DEVICE);
  EXPECT_EQ(machine.TreeOf(u"E:\\").size(), 5U);
  hook.Fail({Operation::DeleteFileW, 1, u"C:\\d\\mount\\two"}, ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(Do(Verb::Delete, u"C:\\d\\mount"));
  EXPECT_NE(log.find(u"File/Folder: C:\\d\\mount\\two"), Text::npos) << ToUtf8(log);
  EXPECT_FALSE(Do(Verb::Move, u"C:\\d\\mount")) << "a move replaces nothing";
  machine.Remove(u"C:\\to");
  EXPECT_TRUE(Do(Verb::Move, u"C:\\d\\mount"));
  EXPECT_FALSE(machine.Exists(u"C:\\d\\mount"));
  EXPECT_EQ(machine.TreeOf(u"E:\\"),
            (std::vector<Text>{u"E:\\round", u"E:\\sub", u"E:\\sub\\three"}));
}

class KeptMessages final : public FSOStatusTarget {
 public:
  void DisplayStatusMessage(TextView message) override { messages.push_back(ToUtf8(message)); }
  std::vector<std::string> messages;
};

TEST_F(FileOperations, AListGoesOnBehindAFailureAndLogsIt) {
  machine.SetClock(TicksOf(2026, 11, 15, 16, 45, 49));
  machine.AddFile(u"C:\\d\\b.txt");
  KeptMessages status;
  hook.Fail({Operation::CopyFileW}, ERROR_SHARING_VIOLATION);
  const Text list(u"C:\\d\\a.txt\0C:\\d\\b.txt\0", 22);
  EXPECT_FALSE(FSXFSO_CopyFSOs(list, u"C:\\to", cancelled, log, &status));
  EXPECT_TRUE(machine.Exists(u"C:\\to\\b.txt"));
  const Text denied = SystemText(ERROR_SHARING_VIOLATION);
  EXPECT_EQ(ToUtf8(log),
            "----\r\n11/15/2026 4:45:49 PM\r\n***Copy Error***\r\n\r\n"
            "Source: C:\\d\\a.txt\r\nDestination: C:\\to\r\nError Number: 32\r\n"
            "Error Description: " +
                ToUtf8(denied));
  EXPECT_EQ(status.messages, (std::vector<std::string>{"Copying \"C:\\d\\a.txt\"...",
                                                       "Copying \"C:\\d\\b.txt\"..."}));
  log.clear();
  hook.Fail({Operation::DeleteFileW}, ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(FSXFSO_DeleteFSOs(list, cancelled, log, true, nullptr));
  EXPECT_EQ(machine.TreeOf(u"C:\\d"), std::vector<Text>{u"C:\\d\\a.txt"});
  EXPECT_EQ(ToUtf8(log),
            "----\r\n11/15/2026 4:45:49 PM\r\n***Delete Error***\r\n\r\n"
            "File/Folder: C:\\d\\a.txt\r\nError Number: 32\r\n"
            "Error Description: " +
                ToUtf8(denied));
  log.clear();
  for (const TextView empty : {TextView(), TextView(u"\0", 1)})
    EXPECT_TRUE(FSXFSO_DeleteFSOs(empty, cancelled, log, false, nullptr));
  EXPECT_EQ(log, u"");
}

// Required as it is: a cancelled move says nothing in the log.
TEST_F(FileOperations, ACancelledListEndsWithItsText) {
  gFSOCancelled = true;
  const Text list(u"C:\\d\\a.txt\0C:\\d\\a.txt", 21);
  EXPECT_FALSE(FSXFSO_CopyFSOs(list, u"C:\\to", cancelled, log, nullptr));
  EXPECT_EQ(log, u"Copy operation was cancelled by user.");
  EXPECT_FALSE(FSXFSO_MoveFSOs(list, u"C:\\to", cancelled, log, nullptr));
  EXPECT_FALSE(FSXFSO_DeleteFSOs(list, cancelled, log, true, nullptr));
  EXPECT_EQ(log, u"Copy operation was cancelled by user.Delete operation was cancelled by user.");
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(Calls(Operation::DeleteFileW), 0U);
}

// The members of a file object: what it makes of the destination, and what it knows afterwards.
TEST_F(FileOperations, AFileObjectKnowsWhatBecameOfItsFile) {
  cFSXFile file;
  file.SetPath(u"C:\\d\\a.txt");
  EXPECT_TRUE(file.CopyFile(u"C:\\to\\other.txt"));
  EXPECT_TRUE(machine.Exists(u"C:\\to\\a.txt")) << "the name in the destination counts for nothing";
  EXPECT_EQ(file.Path(), u"C:\\d\\a.txt");
  EXPECT_TRUE(file.RenameFile(u"b.txt"));
  EXPECT_EQ(file.Path(), u"C:\\d\\b.txt");
  EXPECT_EQ(file.OriginalName(), u"a.txt");
  EXPECT_FALSE(file.RenameFile(u"x\\y")) << "there is no such folder";
  EXPECT_EQ(file.Name(), u"b.txt");
  // Required as it is: the object takes the name that the destination has.
  EXPECT_TRUE(file.MoveFile(u"C:\\to\\other.txt"));
  EXPECT_EQ(file.Path(), u"C:\\to\\other.txt");
  EXPECT_TRUE(machine.Exists(u"C:\\to\\b.txt"));
  EXPECT_FALSE(file.MoveFile(u"C:\\"));
  EXPECT_EQ(file.Path(), u"C:\\to\\other.txt");
  file.SetPath(u"C:\\to\\b.txt");
  hook.Fail({Operation::DeleteFileW}, ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(file.DeleteFile(true));
  EXPECT_EQ(file.Path(), u"C:\\to\\b.txt");
  EXPECT_TRUE(file.DeleteFile(false));
  EXPECT_EQ(file.Path(), u"");
  EXPECT_EQ(machine.Recycled().size(), 1U);
}

}  // namespace
}  // namespace quillmarsh
