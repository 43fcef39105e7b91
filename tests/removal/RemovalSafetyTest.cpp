// SPDX-License-Identifier: MIT
// That a removal loses nothing: on random forests, and with every operation that it uses failing in
// turn with every code.
#include <random>

#include "removal/RemovalProgram.h"

namespace quillmarsh {
namespace {

constexpr RemoveMethod kMethods[] = {RemoveMethod::Delete, RemoveMethod::Recycle,
                                     RemoveMethod::MoveToDupesFolder,
                                     RemoveMethod::MoveToOtherFolder};

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : mEngine(seed) {}
  std::uint32_t Below(std::uint32_t bound) { return static_cast<std::uint32_t>(mEngine() % bound); }
  bool OneIn(std::uint32_t bound) { return Below(bound) == 0; }

 private:
  std::mt19937 mEngine;
};

// Names that collide in every way: among each other, with what is in the folders that take them,
// and in nothing but case.
Text RandomName(Dice& dice) {
  static const std::vector<Text> names = {u"a.txt",  u"A.TXT",     u"a(1).txt", u"x(007).txt",
                                          u"README", u"n(old).md", u"b.b.b"};
  return names[dice.Below(static_cast<std::uint32_t>(names.size()))];
}

void GrowForest(RemovalProgram& program, Dice& dice) {
  static const std::vector<Text> roots = {u"C:\\data\\", u"D:\\data\\", u"\\\\nas\\public\\data\\"};
  static const std::vector<Text> folders = {u"", u"one\\", u"one\\two\\", u"three\\", u"\u00e4\\"};
  for (std::uint32_t i = 0, count = 6 + dice.Below(30); i < count; ++i) {
    const Text path = roots[dice.Below(3)] + folders[dice.Below(5)] + RandomName(dice);
    if (program.machine.Exists(path)) continue;
    const std::uint32_t attributes =
        FILE_ATTRIBUTE_ARCHIVE | (dice.OneIn(5) ? FILE_ATTRIBUTE_READONLY : 0U);
    program.Put(path, 1 + dice.Below(3), 1000 + i, attributes);
    if (dice.OneIn(9)) static_cast<void>(program.machine.HoldOpen(path, FILE_SHARE_READ));
  }
  for (std::uint32_t i = 0; i < 4; ++i) {
    const std::uint32_t attributes = dice.OneIn(2) ? FILE_ATTRIBUTE_READONLY : 0U;
    const Text inOther = Text(kOtherFolder) + RandomName(dice) + (dice.OneIn(2) ? u"" : u"x");
    if (!program.machine.Exists(inOther)) program.Put(inOther, 3, i);
    const Text inDupes = Text(kDupesFolder) + u"[C DRIVE]\\data\\" + RandomName(dice);
    if (!program.machine.Exists(inDupes)) program.Put(inDupes, 5, i, attributes);
  }
}

TEST(RemovalSafety, NothingIsLostInRandomForests) {
  for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RemovalProgram program;
    Dice dice(seed);
    GrowForest(program, dice);
    program.SearchAll();
    for (std::int32_t record = 1; record <= program.results.RecordCount(); ++record)
      program.Mark(record, dice.OneIn(2));
    const auto before = program.ContentsNow();
    const auto marked = program.MarkedPaths();
    const RemoveMethod method = kMethods[seed % 4];
    const cRemovalRun::Outcome outcome = program.Remove(method);
    program.ExpectNothingLost(before, marked);
    EXPECT_EQ(outcome.removedCount + outcome.failedCount, static_cast<std::int32_t>(marked.size()));
    EXPECT_EQ(program.entries.size(), marked.size());
    if (testing::Test::HasFailure()) return;
  }
}

// Two of three copies are to go, one of them read-only; what would be in the way of each is there.
void PutThreeCopies(RemovalProgram& program) {
  program.Put(u"C:\\data\\one\\a.txt", 3, 1);
  program.Put(u"C:\\data\\two\\a.txt", 3, 2, FILE_ATTRIBUTE_READONLY);
  program.Put(u"D:\\data\\a.txt", 3, 3);
  program.Put(Text(kOtherFolder) + u"a.txt", 4, 4);
  program.Put(Text(kDupesFolder) + u"[C DRIVE]\\data\\one\\a.txt", 4, 5, FILE_ATTRIBUTE_READONLY);
  program.SearchAll();
  program.MarkPath(u"C:\\data\\one\\a.txt");
  program.MarkPath(u"C:\\data\\two\\a.txt");
}

struct Call {
  Operation operation;
  std::size_t nth;
};

// The calls that a removal makes where nothing fails.
std::vector<Call> CallsOf(RemoveMethod method) {
  RemovalProgram program;
  PutThreeCopies(program);
  program.hook.ClearJournal();
  EXPECT_EQ(program.Remove(method).removedCount, 2);
  std::vector<Call> calls;
  std::map<Operation, std::size_t> counts;
  for (const FaultHook::Call& call : program.hook.Journal())
    calls.push_back({call.operation, ++counts[call.operation]});
  return calls;
}

// A failure is told as one of the method, with a number and its text.
void ExpectPrescribedErrors(const std::vector<RemovalEntry>& entries, RemoveMethod method) {
  const bool isMove =
      method == RemoveMethod::MoveToDupesFolder || method == RemoveMethod::MoveToOtherFolder;
  for (const RemovalEntry& entry : entries) {
    if (entry.kind < log_kind::DeleteError || !entry.reason.empty()) continue;
    EXPECT_EQ(entry.kind != log_kind::DeleteError, isMove) << "kind " << entry.kind;
    EXPECT_NE(entry.code, 0U);
    EXPECT_FALSE(entry.text.empty());
  }
}

TEST(RemovalSafety, EachOperationMayFailWithEachCode) {
  constexpr std::uint32_t codes[] = {
      ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED,     ERROR_WRITE_PROTECT,
      ERROR_NOT_READY,      ERROR_FILE_EXISTS,    ERROR_SHARING_VIOLATION, ERROR_DISK_FULL,
      ERROR_ALREADY_EXISTS, ERROR_IO_DEVICE,      ERROR_OPERATION_ABORTED, ERROR_NOT_SAME_DEVICE,
  };
  std::size_t runs = 0;
  for (const RemoveMethod method : kMethods) {
    for (const Call& call : CallsOf(method)) {
      for (const std::uint32_t code : codes) {
        SCOPED_TRACE(std::string(NameOf(call.operation)) + " no. " + std::to_string(call.nth) +
                     " fails with " + std::to_string(code) + ", method " +
                     std::to_string(static_cast<int>(method)));
        RemovalProgram program;
        PutThreeCopies(program);
        const auto before = program.ContentsNow();
        const auto marked = program.MarkedPaths();
        program.hook.Fail({call.operation, call.nth}, code);
        const cRemovalRun::Outcome outcome = program.Remove(method);
        // Where the journal cannot be written the removal does not begin, or ends.
        EXPECT_EQ(program.entries.size(), outcome.problem.empty() ? 2U : 0U);
        EXPECT_TRUE(program.machine.Exists(u"D:\\data\\a.txt"));
        ExpectPrescribedErrors(program.entries, method);
        program.ExpectNothingLost(before, marked);
        runs += 1;
        if (testing::Test::HasFailure()) return;
      }
    }
  }
  EXPECT_GT(runs, 400U);
}

}  // namespace
}  // namespace quillmarsh
