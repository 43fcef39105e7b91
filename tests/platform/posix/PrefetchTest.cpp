// SPDX-License-Identifier: MIT
// Files that were hinted read like any others, whoever came first, and a hint that hangs is left
// behind.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <new>
#include <random>
#include <semaphore>

#include "platform/posix/FilePrefetcher.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

constexpr std::size_t Head = FilePrefetcher::HeadBytes;

std::string RandomBytes(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

std::string ReadInPieces(Machine& machine, HANDLE file, std::mt19937& random) {
  std::string all;
  std::string piece;
  for (std::uint32_t done = 1; done > 0;) {
    piece.resize(random() % 3 == 0 ? random() % 100 + 1 : random() % (2 * Head) + 1);
    const auto buffer = std::as_writable_bytes(std::span(piece));
    const auto position = static_cast<std::int64_t>(all.size());
    EXPECT_EQ(machine.Files().ReadFileAt(file, position, buffer, done), 0U);
    all.append(piece, 0, done);
  }
  return all;
}

TEST(Prefetch, HintedFilesReadLikeAnyOthersInWhateverOrderTheyAreOpened) {
  TempTree tree;
  TempTree scratch;
  PosixMachine machine(DriveAt(scratch, tree.Root()));
  std::mt19937 random(5);
  std::vector<Text> paths;
  std::vector<std::string> contents;
  const std::size_t sizes[] = {0, 1, 4096, Head - 1, Head, Head + 1, 3 * Head};
  for (unsigned i = 0; i < 300; ++i) {
    contents.push_back(RandomBytes(i < 250 ? random() % 600 : sizes[i % std::size(sizes)], i));
    tree.File("f" + std::to_string(i), contents.back());
    paths.push_back(u"D:\\f" + DecimalText(i));
  }
  machine.Files().ReadAhead(u"D:\\missing");
  machine.Files().ReadAhead(u"D:\\");
  for (const std::size_t distance : {0U, 1U, 40U, 299U}) {
    std::vector<std::size_t> order(paths.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    if (distance == 40) std::shuffle(order.begin(), order.end(), random);
    std::size_t hinted = 0;
    for (const std::size_t i : order) {
      for (; hinted < paths.size() && hinted <= i + distance; ++hinted)
        machine.Files().ReadAhead(paths[hinted]);
      const HANDLE file = machine.Files().CreateFileW(paths[i], GENERIC_READ, 0, OPEN_EXISTING, 0);
      ASSERT_NE(file, INVALID_HANDLE) << i;
      BY_HANDLE_FILE_INFORMATION facts;
      ASSERT_TRUE(machine.Files().GetFileInformationByHandle(file, facts));
      EXPECT_EQ(facts.nFileSizeLow, contents[i].size());
      EXPECT_EQ(ReadInPieces(machine, file, random), contents[i]) << i;
      machine.Files().CloseHandle(file);
    }
    machine.Files().DropReadAhead();
  }
  EXPECT_EQ(machine.Files().CreateFileW(u"D:\\missing", GENERIC_READ, 0, OPEN_EXISTING, 0),
            INVALID_HANDLE);
  EXPECT_EQ(machine.GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(Prefetch, FactsAreThoseOfTheMomentOnceTheFirstQuestionWasAnswered) {
  TempTree tree;
  TempTree scratch;
  PosixMachine machine(DriveAt(scratch, tree.Root()));
  tree.File("f", "before");
  const HANDLE file = machine.Files().CreateFileW(u"D:\\f", GENERIC_READ, 0, OPEN_EXISTING, 0);
  BY_HANDLE_FILE_INFORMATION facts;
  ASSERT_TRUE(machine.Files().GetFileInformationByHandle(file, facts));
  std::filesystem::resize_file(tree.At("f"), 2);
  ASSERT_TRUE(machine.Files().GetFileInformationByHandle(file, facts));
  EXPECT_EQ(facts.nFileSizeLow, 2U);
  machine.Files().CloseHandle(file);
}

TEST(Prefetch, AFailureInTheBackgroundLeavesTheFileToTheCaller) {
  TempTree tree;
  TempTree scratch;
  PosixOptions options = DriveAt(scratch, tree.Root());
  options.beforeFile = [](TextView) { throw std::bad_alloc(); };
  PosixMachine machine(options);
  for (int i = 0; i < 100; ++i) {
    tree.File("f" + std::to_string(i), "bytes");
    machine.Files().ReadAhead(u"D:\\f" + DecimalText(i));
  }
  std::uint32_t error = 0;
  for (int i = 0; i < 100; ++i)
    EXPECT_EQ(ReadAll(machine, u"D:\\f" + DecimalText(i), error), "bytes");
}

class NoPatience final : public Patience {
 public:
  bool KeepWaiting() override { return false; }
};

TEST(Prefetch, AFileThatHangsIsGivenUpAndTheNextOnesAreRead) {
  TempTree tree;
  TempTree scratch;
  std::atomic<int> entered = 0;
  // Shared with threads that outlive the machine.
  const auto gate = std::make_shared<std::counting_semaphore<>>(0);
  PosixOptions options = DriveAt(scratch, tree.Root());
  options.beforeFile = [&entered, gate](TextView path) {
    if (path != u"D:\\f0") return;
    ++entered;
    gate->acquire();
  };
  NoPatience patience;
  PosixMachine machine(options);
  for (int i = 0; i < 40; ++i) {
    tree.File("f" + std::to_string(i), "bytes");
    machine.Files().ReadAhead(u"D:\\f" + DecimalText(i));
  }
  while (entered == 0) std::this_thread::yield();
  machine.SetPatience(&patience);
  EXPECT_EQ(machine.Files().CreateFileW(u"D:\\f0", GENERIC_READ, 0, OPEN_EXISTING, 0),
            INVALID_HANDLE);
  EXPECT_EQ(machine.GetLastError(), ERROR_OPERATION_ABORTED);
  machine.SetPatience(nullptr);
  std::uint32_t error = 0;
  EXPECT_EQ(ReadAll(machine, u"D:\\f1", error), "bytes");
  gate->release();
}

}  // namespace
}  // namespace quillmarsh::test
