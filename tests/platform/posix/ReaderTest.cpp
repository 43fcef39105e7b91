// SPDX-License-Identifier: MIT
// Reading ahead, giving up, and what is left behind.
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

// Holds up the reading thread in front of chosen folders until it is opened.
class Gate {
 public:
  void Pass(TextView folder) {
    if (folder.find(u"stuck") == TextView::npos) return;
    std::unique_lock lock(mMutex);
    ++mWaiting;
    mChanged.notify_all();
    mChanged.wait(lock, [&] { return mOpen; });
    --mWaiting;
    mChanged.notify_all();
  }
  void AwaitVisitor() {
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [&] { return mWaiting > 0; });
  }
  void OpenAndAwaitAll() {
    std::unique_lock lock(mMutex);
    mOpen = true;
    mChanged.notify_all();
    mChanged.wait(lock, [&] { return mWaiting == 0; });
  }

 private:
  std::mutex mMutex;
  std::condition_variable mChanged;
  bool mOpen = false;
  int mWaiting = 0;
};

class LimitedPatience : public Patience {
 public:
  explicit LimitedPatience(int limit) : mLeft(limit) {}
  bool KeepWaiting() override {
    ++mAsked;
    return mLeft-- > 0;
  }
  [[nodiscard]] int Asked() const { return mAsked; }

 private:
  int mLeft;
  int mAsked = 0;
};

class ReaderTest : public testing::Test {
 protected:
  [[nodiscard]] PosixOptions Options() {
    PosixOptions options = DriveAt(mScratch, mTree.Root());
    options.beforeFolder = [gate = mGate](TextView folder) { gate->Pass(folder); };
    return options;
  }
  TempTree mTree;
  TempTree mScratch;
  std::shared_ptr<Gate> mGate = std::make_shared<Gate>();
};

TEST_F(ReaderTest, HintsChangeNothingOfWhatIsListed) {
  for (int folder = 0; folder < 60; ++folder) mTree.Many("t/" + std::to_string(folder), folder % 7);
  mTree.Many("t/big", 5000);
  // A bound of almost nothing makes the reader stop again and again.
  for (const std::size_t bound : {std::size_t{1} << 24U, std::size_t{1}}) {
    PosixOptions options = Options();
    options.bufferedBytes = bound;
    PosixMachine machine(options);
    PosixMachine plain(Options());
    const WholeListing top = ListAll(plain, u"D:\\t\\");
    std::vector<Text> folders;
    for (const Listed& entry : top.entries)
      if (!entry.name.starts_with(u'.')) folders.push_back(u"D:\\t\\" + entry.name + u"\\");
    for (const Text& folder : folders) machine.Find().ReadAhead(folder);
    machine.Find().ReadAhead(u"D:\\t\\none\\");
    // Taken up from behind, which is not the order of the hints.
    EXPECT_EQ(ListAll(machine, u"D:\\t\\none\\").end, ERROR_PATH_NOT_FOUND);
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder)
      EXPECT_EQ(ListAll(machine, *folder).Names(), ListAll(plain, *folder).Names());
  }
}

TEST_F(ReaderTest, DroppedHintsAreReadAfresh) {
  mTree.File("a/before");
  PosixMachine machine(Options());
  machine.Find().ReadAhead(u"D:\\a\\");
  EXPECT_EQ(ListAll(machine, u"D:\\").end, ERROR_NO_MORE_FILES);
  machine.Find().DropReadAhead();
  mTree.File("a/after");
  EXPECT_NE(ListAll(machine, u"D:\\a\\").Find(u"after"), nullptr);
}

TEST_F(ReaderTest, AnotherFolderIsListedInTheMiddleOfAHugeOne) {
  mTree.Many("huge", 9000);
  mTree.File("small/file");
  PosixOptions options = Options();
  options.bufferedBytes = 1;
  PosixMachine machine(options);
  WIN32_FIND_DATAW entry;
  const HANDLE search = machine.Find().FindFirstFileW(u"D:\\huge\\*", entry);
  ASSERT_NE(search, INVALID_HANDLE);
  EXPECT_EQ(ListAll(machine, u"D:\\small\\").entries.size(), 3U);
  int count = 1;
  while (machine.Find().FindNextFileW(search, entry)) ++count;
  EXPECT_EQ(count, 9002);
  machine.Find().FindClose(search);
}

TEST_F(ReaderTest, AFolderThatDoesNotAnswerIsGivenUpAndTheNextOneIsListed) {
  mTree.File("stuck/file");
  mTree.File("fine/file");
  mTree.Many("huge", 9000);
  PosixOptions options = Options();
  options.bufferedBytes = 1;
  auto machine = std::make_unique<PosixMachine>(options);
  WIN32_FIND_DATAW entry;
  const HANDLE huge = machine->Find().FindFirstFileW(u"D:\\huge\\*", entry);
  ASSERT_NE(huge, INVALID_HANDLE);

  LimitedPatience patience(2);
  machine->SetPatience(&patience);
  EXPECT_EQ(machine->Find().FindFirstFileW(u"D:\\stuck\\*", entry), INVALID_HANDLE);
  EXPECT_EQ(machine->GetLastError(), ERROR_OPERATION_ABORTED);
  EXPECT_EQ(patience.Asked(), 3);

  machine->SetPatience(nullptr);
  EXPECT_NE(ListAll(*machine, u"D:\\fine\\").Find(u"file"), nullptr);
  int count = 1;
  while (machine->Find().FindNextFileW(huge, entry)) ++count;
  EXPECT_EQ(count, 9002) << "a listing that was not stuck goes on";
  EXPECT_EQ(machine->GetLastError(), ERROR_NO_MORE_FILES);
  machine->Find().FindClose(huge);
  machine.reset();
  mGate->OpenAndAwaitAll();  // the thread that was left behind goes its way, without a machine
}

TEST_F(ReaderTest, AMachineGoesWhileItsReaderHangs) {
  mTree.File("stuck/file");
  {
    PosixMachine machine(Options());
    machine.Find().ReadAhead(u"D:\\stuck\\");
    mGate->AwaitVisitor();
  }
  mGate->OpenAndAwaitAll();
}

}  // namespace
}  // namespace quillmarsh::test
