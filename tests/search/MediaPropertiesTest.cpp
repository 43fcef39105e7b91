// SPDX-License-Identifier: MIT
// How a file gets to the library for media, which here is one of the test's own.
#include "search/MediaProperties.h"

#include <gtest/gtest.h>

#include <future>
#include <map>
#include <thread>
#include <utility>

#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/Views.h"
#include "search/MediaInfoLibrary.h"
#include "support/MachineFixture.h"

namespace quillmarsh {
namespace {

// What the library is asked, and how it answers.
struct Library {
  std::string calls;
  std::wstring name;
  std::uint64_t jumpTo = ~std::uint64_t{0};  // wanted once, behind the first piece
  bool finishes = false;                     // with the first piece
  std::wstring format = L"Tape";
  std::shared_future<void> waitsFor;
};
std::shared_ptr<Library> library;

void* New() {
  library->calls += "New ";
  return new std::shared_ptr<Library>(library);
}
Library& Of(void* handle) {
  return **static_cast<std::shared_ptr<Library>*>(handle);
}
std::size_t Init(void* handle, std::uint64_t size, std::uint64_t position) {
  Of(handle).calls += "Init(" + std::to_string(size) + "," + std::to_string(position) + ") ";
  return 1;
}
std::size_t Continue(void* handle, const std::uint8_t* bytes, std::size_t count) {
  Library& mine = Of(handle);
  if (mine.waitsFor.valid()) mine.waitsFor.wait();
  mine.calls += "Bytes(" + std::to_string(count) + "," + std::to_string(bytes[0]) + ") ";
  return mine.finishes ? 8 : 0;
}
std::uint64_t GoTo(void* handle) {
  return std::exchange(Of(handle).jumpTo, ~std::uint64_t{0});
}
std::size_t Finalize(void* handle) {
  Of(handle).calls += "End ";
  return 1;
}
const wchar_t* Get(void* handle, int kind, std::size_t number, const wchar_t* parameter, int info,
                   int search) {
  const bool isFormat =
      kind == 0 && number == 0 && std::wstring(parameter) == L"Format" && info == 1 && search == 0;
  return isFormat ? Of(handle).format.c_str() : L"?";
}
const wchar_t* Option(void* handle, const wchar_t* option, const wchar_t* value) {
  if (std::wstring(option) == L"File_FileName") Of(handle).name = value;
  if (std::wstring(option) == L"Complete") Of(handle).calls += *value == 0 ? "Short " : "Long ";
  return L"";
}
const wchar_t* Inform(void* handle, std::size_t) {
  Of(handle).calls += "Inform ";
  return L"What it says";
}
void Close(void* handle) {
  Of(handle).calls += "Close ";
}
void Delete(void* handle) {
  Of(handle).calls += "Delete";
  delete static_cast<std::shared_ptr<Library>*>(handle);
}

std::map<std::string, void*> Exports() {
  const auto address = [](auto* function) { return reinterpret_cast<void*>(function); };
  return {{"MediaInfo_New", address(New)},
          {"MediaInfo_Open_Buffer_Init", address(Init)},
          {"MediaInfo_Open_Buffer_Continue", address(Continue)},
          {"MediaInfo_Open_Buffer_Continue_GoTo_Get", address(GoTo)},
          {"MediaInfo_Open_Buffer_Finalize", address(Finalize)},
          {"MediaInfo_Get", address(Get)},
          {"MediaInfo_Option", address(Option)},
          {"MediaInfo_Inform", address(Inform)},
          {"MediaInfo_Close", address(Close)},
          {"MediaInfo_Delete", address(Delete)}};
}

class MediaPropertiesTest : public testing::Test, protected MachineFixture, private PumpView {
 protected:
  MediaPropertiesTest() {
    library = std::make_shared<Library>();
    gUserAbort = false;
    machine.SetModule(u"C:\\Program\\MediaInfo.dll", Exports());
    machine.SetPatience(&mPatience);
    gViews.pump = this;
    machine.SetWaitingEvents(0xFFFF);
  }
  ~MediaPropertiesTest() override {
    gViews = {};
    gUserAbort = false;
    EXPECT_EQ(machine.OpenHandles(), 0U);
    EXPECT_EQ(hook.OrdersNotMet(), 0U);
    library.reset();
  }
  static MediaProperties Read(TextView path) {
    return ReadMediaProperties(path, MediaInfoLibraryName());
  }
  std::function<void()> onPump;

 private:
  void PumpEvents() override {
    if (onPump) onPump();
  }
  PumpingPatience mPatience;
};

TEST_F(MediaPropertiesTest, APieceIsHandedOverFromWhereTheLibraryWantsIt) {
  machine.AddFile(u"C:\\a.tape", FileContents::Recipe(7, 3'000'000));
  library->jumpTo = 2'999'999;
  const MediaProperties read = Read(u"C:\\a.tape");
  EXPECT_EQ(read.outcome, MediaOutcome::Read);
  EXPECT_EQ(read.summary, u"What it says");
  std::byte first[1];
  std::byte last[1];
  FillFromRecipe(7, 0, first);
  FillFromRecipe(7, 2'999'999, last);
  EXPECT_EQ(library->calls,
            "New Init(3000000,0) Bytes(1048576," + std::to_string(std::to_integer<int>(first[0])) +
                ") Init(3000000,2999999) Bytes(1," + std::to_string(std::to_integer<int>(last[0])) +
                ") End Short Inform Close Delete");
  EXPECT_EQ(library->name, L"C:\\a.tape");
}

TEST_F(MediaPropertiesTest, WhatTheLibraryHasSeenEnoughOfIsNotReadOn) {
  machine.AddFile(u"C:\\a.tape", FileContents::Recipe(7, 3'000'000));
  library->finishes = true;
  EXPECT_EQ(Read(u"C:\\a.tape").outcome, MediaOutcome::Read);
  EXPECT_EQ(hook.CountOf(Operation::ReadFile), 1U);
}

TEST_F(MediaPropertiesTest, TheOutcomeSaysWhatIsInTheWayAndTheLibraryIsLetGo) {
  machine.AddFile(u"C:\\a.tape", "bytes");
  EXPECT_EQ(Read(u"C:\\none").outcome, MediaOutcome::NotOpened);
  EXPECT_EQ(library->calls, "New Close Delete");
  library->format.clear();
  EXPECT_EQ(Read(u"C:\\a.tape").outcome, MediaOutcome::NotMedia);
  EXPECT_TRUE(library->calls.ends_with("End Close Delete")) << library->calls;
  hook.Fail({.operation = Operation::ReadFile}, ERROR_IO_DEVICE);
  EXPECT_EQ(Read(u"C:\\a.tape").outcome, MediaOutcome::NotOpened);
  EXPECT_TRUE(library->calls.ends_with("Close Delete")) << library->calls;
}

TEST_F(MediaPropertiesTest, WithoutAUsableLibraryNoFileIsTouched) {
  machine.AddFile(u"C:\\a.tape", "bytes");
  EXPECT_EQ(ReadMediaProperties(u"C:\\a.tape", u"other.dll").outcome, MediaOutcome::NoLibrary);
  auto exports = Exports();
  exports.erase("MediaInfo_Inform");
  machine.SetModule(u"C:\\Program\\old.dll", exports);
  EXPECT_EQ(ReadMediaProperties(u"C:\\a.tape", u"old.dll").outcome, MediaOutcome::NoLibrary);
  EXPECT_EQ(hook.CountOf(Operation::CreateFileW), 0U);
  EXPECT_EQ(library->calls, "");
}

// Such as one that waits for another file which the first one names.
TEST_F(MediaPropertiesTest, ALibraryThatDoesNotComeBackIsLeftByAStop) {
  machine.AddFile(u"C:\\a.tape", "bytes");
  std::promise<void> end;
  library->waitsFor = end.get_future().share();
  const std::weak_ptr<Library> left = library;
  onPump = [pumps = 0]() mutable { gUserAbort = ++pumps == 3; };
  EXPECT_EQ(Read(u"C:\\a.tape").outcome, MediaOutcome::Stopped);
  library = std::make_shared<Library>();
  EXPECT_FALSE(left.expired());
  end.set_value();
  while (!left.expired()) std::this_thread::yield();  // what was left behind ends by itself

  gUserAbort = false;
  onPump = {};
  EXPECT_EQ(Read(u"C:\\a.tape").outcome, MediaOutcome::Read) << "the next one has a helper again";
}

TEST(MediaInfoCharacters, CrossTheBorderInBothWidths) {
  const Text text = u"ä \U0001F4FC";
  EXPECT_EQ(PointerToString(WideText(text).c_str()), text);
  EXPECT_EQ(WideText(text).size(), sizeof(wchar_t) == 2 ? 4U : 3U);
  EXPECT_EQ(PointerToString(nullptr), u"");
  if (sizeof(wchar_t) == 4) {
    EXPECT_EQ(WideText(u"\xD83D!"), L"\xFFFD!");
  }
}

}  // namespace
}  // namespace quillmarsh
