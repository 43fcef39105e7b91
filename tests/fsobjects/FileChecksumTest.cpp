// SPDX-License-Identifier: MIT
// The two ways to a checksum, held against each other and against a plain one; the library as the
// program loads it; the mailbox between the two.
#include "FsObjectsFixture.h"
#include "frame/Pump.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/FileChecksum.h"
#include "fsobjects/PrivateClipboard.h"
#include "pbcrc32/pbcrc32.h"
#include "support/ChecksumModule.h"
#include "support/PlainCrc32.h"

namespace quillmarsh {
namespace {

using std::chrono_literals::operator""ms;

// All that 8 bits hold passes through the library, controls beyond ASCII included; one letter more
// is the program's own way.
constexpr TextView kNarrow = u"C:\\\u00e9t\u00e9\u0080\u009f\u00ff.bin";
constexpr TextView kWide = u"C:\\\u03a9.bin";
constexpr TextView kBothWays[] = {kNarrow, kWide};

class FileChecksum : public FsObjectsFixture, private PumpView {
 protected:
  FileChecksum() {
    gViews.pump = this;
    gStopCRC = false;
    SetPumpClock([this] { return mNow; });
    machine.SetWaitingEvents(QS_KEY);
    PutChecksumModule(machine);
    LoadChecksumLibrary();
  }
  ~FileChecksum() override {
    FreeChecksumLibrary();
    SetPumpClock({});
    gStopCRC = false;
  }

  // The checksum in hexadecimal, "stopped", or "error 32".
  using Way = std::int32_t (*)(TextView, bool&, std::int32_t&, Text&);
  static std::string Ask(TextView path, Way way = GetFileCRC32) {
    bool errorFlag = false;
    std::int32_t errorNumber = 0;
    Text errorText;
    const std::int32_t value = way(path, errorFlag, errorNumber, errorText);
    EXPECT_EQ(errorFlag, errorNumber != 0);
    EXPECT_EQ(errorFlag, !errorText.empty());
    if (errorFlag) {
      EXPECT_EQ(value, kChecksumFailed);
      return "error " + std::to_string(errorNumber);
    }
    if (!gStopCRC) return Hex(static_cast<std::uint32_t>(value));
    EXPECT_EQ(value, kChecksumStopped);
    return "stopped";
  }
  static std::string Hex(std::uint32_t value) {
    char text[9];
    std::snprintf(text, sizeof text, "%08X", value);
    return text;
  }
  void Put(TextView path, const FileContents& contents) {
    if (machine.Exists(path)) machine.Remove(path);
    machine.AddFile(path, contents);
  }
  // So many milliseconds of the pump's clock pass with each block.
  void LetReadsTake(std::chrono::milliseconds time) {
    hook.RunBefore({Operation::ReadFile, 0}, [this, time] { mNow += time; });
  }

  int pumps = 0;
  std::function<void()> onPump;

 private:
  void PumpEvents() override {
    ++pumps;
    if (onPump) onPump();
  }

  std::chrono::steady_clock::time_point mNow{};
};

TEST_F(FileChecksum, IsTheSameByBothWays) {
  std::vector<FileContents> contents = {"", "123456789", WithCrc32("looks failed", 0xFFFFFFFF),
                                        WithCrc32("looks stopped", 0xFFFFFFFE)};
  for (const std::uint64_t size : {1U, 131071U, 131072U, 131073U, 262144U, 600'001U})
    contents.push_back(FileContents::Recipe(size, size));
  for (const FileContents& each : contents) {
    Put(kNarrow, each);
    Put(kWide, each);
    const std::string expected = Hex(PlainCrc32(machine.ContentsOf(kNarrow)));
    EXPECT_EQ(Ask(kNarrow), expected) << each.Size();
    EXPECT_EQ(Ask(kWide), expected) << each.Size();
    EXPECT_EQ(Ask(kNarrow, GetFileCRC32_Internal), expected) << each.Size();
  }
  // Only a stream sets a position; the library reads at its own.
  hook.ClearJournal();
  static_cast<void>(Ask(kNarrow));
  EXPECT_EQ(Calls(Operation::SetFilePointerEx), 0U);
  static_cast<void>(Ask(kWide));
  EXPECT_EQ(Calls(Operation::SetFilePointerEx), 1U);
}

TEST_F(FileChecksum, TellsWhyAFileCouldNotBeReadWhole) {
  HANDLE held = INVALID_HANDLE;
  const auto changeDuring = [&](std::size_t nthRead, TextView path, std::uint64_t newSize) {
    hook.RunAfter({Operation::ReadFile, nthRead}, [this, path, newSize] {
      machine.SetContents(path, FileContents::Recipe(3, newSize));
    });
  };
  const struct {
    const char* name;
    const char* expected;
    std::function<void(TextView)> arrange;
  } rows[] = {
      {"missing", "error 2", [&](TextView path) { machine.Remove(path); }},
      {"another program keeps it to itself", "error 32",
       [&](TextView path) { held = machine.HoldOpen(path, 0); }},
      {"refused", "error 5", [&](TextView path) { machine.DenyAccess(path); }},
      {"a bad block in the middle", "error 1117",
       [&](TextView) {
         hook.Fail({Operation::ReadFile, 2}, ERROR_IO_DEVICE);
       }},
      {"its size is not told", "error 31",
       [&](TextView path) {
         // The first time it is the stream that asks, and it makes nothing of it.
         const std::size_t nth = path == kWide ? 2 : 1;
         hook.Fail({Operation::GetFileInformationByHandle, nth}, 31);
       }},
      {"cut while it is read", "error 1006",
       [&](TextView path) { changeDuring(1, path, 200'000); }},
      {"emptied while it is read", "error 1006", [&](TextView path) { changeDuring(2, path, 0); }},
      {"longer by a byte", "error 1006", [&](TextView path) { changeDuring(2, path, 300'001); }},
      {"written to at its old length", "error 1006",
       [&](TextView path) {
         hook.RunAfter({Operation::ReadFile, 1}, [this, path] {
           machine.SetContents(path, FileContents::Recipe(3, 300'000).ChangedAt(0));
           machine.SetTimes(path, 1, 2, machine.FactsOf(path).written + 1);
         });
       }},
      {"its facts are not told in the end", "error 1006",
       [&](TextView path) {
         const std::size_t nth = path == kWide ? 3 : 2;
         hook.Fail({Operation::GetFileInformationByHandle, nth}, ERROR_IO_DEVICE);
       }},
      {"given up by the user within a read", "stopped",
       [&](TextView) {
         hook.RunBefore({Operation::ReadFile, 2}, [] { gStopCRC = true; });
         hook.Fail({Operation::ReadFile, 2}, ERROR_OPERATION_ABORTED);
       }},
  };
  for (const auto& row : rows) {
    for (const TextView path : kBothWays) {
      Put(path, FileContents::Recipe(3, 300'000));
      row.arrange(path);
      EXPECT_EQ(Ask(path), row.expected) << row.name << ToUtf8(path);
      EXPECT_EQ(machine.OpenHandles(), 0U) << row.name;
      if (held != INVALID_HANDLE) machine.LetGo(std::exchange(held, INVALID_HANDLE));
    }
  }
}

TEST_F(FileChecksum, AFileThatGrowsAsFastAsItIsReadIsGivenUp) {
  Text path;
  std::uint64_t reads = 0;
  hook.RunBefore({Operation::ReadFile, 0}, [&] {
    ++reads;
    if (reads < 50) machine.SetContents(path, FileContents::Recipe(3, reads * 200'000));
  });
  for (const TextView each : kBothWays) {
    path = each;
    reads = 0;
    Put(path, FileContents::Recipe(3, 1000));
    EXPECT_EQ(Ask(path), "error 1006");
    EXPECT_LT(reads, 10U);
  }
}

TEST_F(FileChecksum, AStopDuringAPumpIsNoFailure) {
  LetReadsTake(20ms);
  for (const TextView path : kBothWays) {
    Put(path, FileContents::Recipe(3, 2'000'000));
    hook.ClearJournal();
    pumps = 0;
    onPump = [this] { gStopCRC = pumps >= 2; };
    EXPECT_EQ(Ask(path), "stopped");
    EXPECT_EQ(Calls(Operation::ReadFile), 2U);
    EXPECT_EQ(machine.OpenHandles(), 0U);
    // The next file begins with the flag cleared.
    onPump = {};
    EXPECT_EQ(Ask(path), Hex(PlainCrc32(machine.ContentsOf(path))));
  }
}

TEST_F(FileChecksum, NoExceptionOfAnEventCrossesTheBorder) {
  LetReadsTake(20ms);
  for (const TextView path : kBothWays) {
    Put(path, FileContents::Recipe(3, 1'000'000));
    onPump = [] { throw RuntimeError(runtime_error::TypeMismatch); };
    EXPECT_EQ(Ask(path), "error 13");
    EXPECT_EQ(machine.OpenHandles(), 0U);
    onPump = {};
    EXPECT_EQ(Ask(path), Hex(PlainCrc32(machine.ContentsOf(path))));
  }
}

// A disk that takes 40 milliseconds for a block of 128 KiB has the queue asked at each.
TEST_F(FileChecksum, AnEventThatFreesTheLibraryStopsTheChecksumFirst) {
  Put(kNarrow, FileContents::Recipe(1, 300'000));
  LetReadsTake(40ms);
  onPump = [this] {
    FreeChecksumLibrary();
    EXPECT_NE(machine.Process().GetModuleHandleW(u"pbcrc32.dll"), NULL_HANDLE);
  };
  EXPECT_EQ(Ask(kNarrow), "stopped");
  EXPECT_EQ(pumps, 1);
  EXPECT_EQ(machine.Process().GetModuleHandleW(u"pbcrc32.dll"), NULL_HANDLE);
  EXPECT_EQ(Ask(kNarrow), "error 53");
}

TEST_F(FileChecksum, EventsRunBetweenAnyTwoBlocks) {
  LetReadsTake(40ms);
  for (const TextView path : kBothWays) {
    Put(path, FileContents::Recipe(3, 40 * 131072));
    pumps = 0;
    static_cast<void>(Ask(path));
    EXPECT_GE(pumps, 40) << ToUtf8(path);
  }
}

TEST_F(FileChecksum, ReadsWhatLiesThereWithTheRedirectionOff) {
  machine.SetWow64(true);
  gIsWow64 = true;
  for (const TextView name : {u"file.bin", u"\u03a9.bin"}) {
    const Text path = u"C:\\Windows\\System32\\" + Text(name);
    machine.AddFile(path, "the true one");
    machine.AddFile(u"C:\\Windows\\SysWOW64\\" + Text(name), "another");
    EXPECT_EQ(Ask(path), Hex(PlainCrc32("the true one")));
    EXPECT_EQ(machine.RedirectionDepth(), 0);
  }
  EXPECT_EQ(Ask(u"C:\\missing"), "error 2");
  EXPECT_EQ(machine.RedirectionDepth(), 0);
  const Text deep = u"C:\\" + Text(130, u'a') + u"\\" + Text(130, u'b') + u"\\f";
  machine.AddFile(deep, "deep down");
  EXPECT_EQ(Ask(deep), Hex(PlainCrc32("deep down")));
}

TEST_F(FileChecksum, ALibraryThatCannotServeIsNamedAndNotKept) {
  const PB_SetCallbacks_Function refuse = [](const PB_Callbacks*) { return 0; };
  void* const good = reinterpret_cast<void*>(&PB_GetFileCrc32);
  const std::map<std::string, void*> modules[] = {
      {},
      {{"PB_GetFileCrc32", good}},
      {{"PB_SetCallbacks", reinterpret_cast<void*>(&PB_SetCallbacks)}},
      {{"PB_GetFileCrc32", good}, {"PB_SetCallbacks", reinterpret_cast<void*>(refuse)}}};
  Put(kNarrow, "123456789");
  Put(kWide, "123456789");
  const auto expectRefusal = [&] {
    try {
      LoadChecksumLibrary();
      ADD_FAILURE() << "it was taken";
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x80040000U));
      EXPECT_EQ(error.Source(), u"modQuillmarsh.Main");
      EXPECT_EQ(error.Description(), u"Error loading DLL - pbcrc32.dll");
    }
    EXPECT_EQ(TheMachine().Process().GetModuleHandleW(u"pbcrc32.dll"), NULL_HANDLE);
    EXPECT_EQ(Ask(kNarrow), "error 53");
    EXPECT_EQ(Ask(kWide), "CBF43926") << "which needs no library";
  };
  FreeChecksumLibrary();
  for (const auto& exports : modules) {
    machine.SetModule(gAppPath + u"pbcrc32.dll", exports);
    expectRefusal();
  }
  // Only the one beside the program counts.
  PutChecksumModule(machine);
  gAppPath = u"C:\\Elsewhere\\";
  expectRefusal();
  PutChecksumModule(machine);
  LoadChecksumLibrary();
  EXPECT_EQ(Ask(kNarrow), "CBF43926");
}

TEST_F(FileChecksum, TheLibraryIsFreedUntilItIsGoneAndLentNothingAfterwards) {
  LoadChecksumLibrary();
  FreeChecksumLibrary();
  EXPECT_EQ(Calls(Operation::FreeLibrary), 2U);
  EXPECT_EQ(TheMachine().Process().GetModuleHandleW(u"pbcrc32.dll"), NULL_HANDLE);
  char byte = 'x';
  PB_NarrowText text{&byte, 1, 1};
  std::int32_t code = 0;
  EXPECT_EQ(PB_GetFileCrc32(text, code, text), -1);
  EXPECT_EQ(code, PB_ERROR_NO_CALLBACKS);
  // One that the system does not let go is not tried for ever.
  LoadChecksumLibrary();
  hook.Fail({Operation::FreeLibrary}, ERROR_ACCESS_DENIED);
  FreeChecksumLibrary();
  EXPECT_EQ(Calls(Operation::FreeLibrary), 3U);
}

TEST_F(FileChecksum, TheMailboxKeepsOneTextAndFailsInSilence) {
  EXPECT_EQ(GetCRCProgressText(), u"");
  PublishCRCProgressText("30 % \xE9\x80");
  EXPECT_EQ(GetCRCProgressText(), u"30 % \u00e9\u20ac");
  QueueAndMailbox& mailbox = TheMachine().Queue();
  ASSERT_TRUE(mailbox.OpenClipboard());  // somebody has it open
  PublishCRCProgressText("lost");
  EXPECT_EQ(GetCRCProgressText(), u"");
  mailbox.CloseClipboard();
  hook.Fail({Operation::RegisterClipboardFormatA}, ERROR_ACCESS_DENIED);
  EXPECT_EQ(GetCRCProgressText(), u"");
  EXPECT_EQ(GetCRCProgressText(), u"30 % \u00e9\u20ac");
  // What an earlier file came to is not shown for the next.
  for (const TextView path : kBothWays) {
    PublishCRCProgressText("99 %");
    Put(path, "short");
    static_cast<void>(Ask(path));
    EXPECT_EQ(GetCRCProgressText(), u"");
  }
  EXPECT_TRUE(mailbox.OpenClipboard()) << "nobody has left it open";
  mailbox.CloseClipboard();
}

}  // namespace
}  // namespace quillmarsh
