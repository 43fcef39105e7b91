// SPDX-License-Identifier: MIT
// A removal on real disks that is killed: behind every operation of the seam on a small tree, and
// at random moments on a larger one, within one volume and across two. Afterwards every file is
// whole under its old or its new name, and the next run finishes the job. QUILLMARSH_KILLS sets how
// many random moments there are for each way.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

#include "base/OwnFiles.h"
#include "fsobjects/ChecksumLibrary.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modPaths.h"
#include "platform/posix/PosixMachine.h"
#include "removal/RemovalRecovery.h"
#include "removal/cRemovalRun.h"
#include "removal/history/cLog.h"
#include "search/cSearchSession.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

namespace fs = std::filesystem;

constexpr int kKilledItself = 42;

// Ends the process behind the nth operation.
class EndAfter final : public CallHook {
 public:
  explicit EndAfter(int operations) : mLeft(operations) {}
  std::optional<std::uint32_t> Before(Operation, TextView) override { return std::nullopt; }
  void After(Operation, TextView, bool) override {
    if (--mLeft == 0) ::_exit(kKilledItself);
  }

 private:
  int mLeft;
};

// tree/keep/N and tree/dup/N for each N, the same names and sizes and contents of their own, so
// that each file is known wherever it is found; all in dup are to go.
class Ground {
 public:
  Ground(fs::path tree, fs::path target, int files)
      : mTree(std::move(tree)), mTarget(std::move(target)), mFiles(files) {
    Clear();
    for (const char* const side : {"keep", "dup"}) {
      fs::create_directories(mTree / side);
      for (int i = 0; i < mFiles; ++i)
        std::ofstream(mTree / side / NameOf(i), std::ios::binary) << BytesOf(side, i);
    }
  }
  ~Ground() { Clear(); }
  Ground(const Ground&) = delete;
  Ground& operator=(const Ground&) = delete;

  // In a process of its own. `ready` is written to when the removal is about to begin.
  void SearchAndRemove(RemoveMethod method, CallHook* hook, int ready) const;
  // After any kill. Answers how many of the files in dup are still there.
  int ExpectAllWhole(RemoveMethod method) const;
  // What the killed run had no time to write down the next one has completed.
  void ExpectAllInHistory() const {
    std::string history = Read(Home() / "Harrow Fen" / "Quillmarsh" / "history.log");
    std::erase(history, '\0');
    for (int i = 0; i < mFiles; ++i)
      EXPECT_NE(history.find((mTree / "dup" / NameOf(i)).string()), std::string::npos) << i;
  }

 private:
  [[nodiscard]] static std::string NameOf(int i) { return "file " + std::to_string(i); }
  [[nodiscard]] static std::string BytesOf(const std::string& side, int i) {
    // Some are long enough that a copy of them takes more than one write.
    const std::size_t size = i % 400 == 1 ? 1'500'000 : 200 + static_cast<std::size_t>(i % 7) * 900;
    std::string bytes = side + " " + std::to_string(i) + "\n";
    bytes.resize(size, static_cast<char>('a' + i % 26));
    return bytes;
  }
  [[nodiscard]] static std::string Read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] fs::path Home() const { return mTarget / "home"; }
  void Clear() const {
    for (const fs::path& path : {mTree, mTarget / "moved", mTarget / "dupes", Home(),
                                 mTree.parent_path() / (".Trash-" + std::to_string(::getuid()))})
      fs::remove_all(path);
  }

  const fs::path mTree;
  const fs::path mTarget;
  const int mFiles;
};

void Ground::SearchAndRemove(RemoveMethod method, CallHook* hook, int ready) const {
  ::setenv("XDG_DATA_HOME", Home().c_str(), 1);
  PosixMachine machine;
  UseMachine(&machine);
  gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
  gDupeSettings = std::make_unique<clsDupeSettings>();
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  gLog = std::make_unique<cLog>();
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  clsDupeSettings& settings = *gDupeSettings;
  settings.SetIncludeFiles({});
  settings.SetIncludeFolders({});
  settings.SetIncludeSubFolders(true);
  settings.SetRemoveMethod(method);
  settings.SetUserDefinedMoveFolderPath(
      AddBackslash(machine.Drives().NewLocationFromNative((mTarget / "moved").string()).path));
  mDupesFolderPath =
      AddBackslash(machine.Drives().NewLocationFromNative((mTarget / "dupes").string()).path);

  RecoverInterruptedRemovals();
  cSearchResults results;
  QuietSearchView view({machine.Drives().LocationFromNative(mTree.string()).path});
  if (cSearchSession(results, settings, view).FindDuplicateFiles() != SearchOutcome::Complete)
    ::_exit(1);
  const Text dup = AddBackslash(machine.Drives().LocationFromNative((mTree / "dup").string()).path);
  for (std::int32_t record = 1; record <= results.RecordCount(); ++record)
    results.mFileMarked[static_cast<std::size_t>(record) - 1] =
        results.FullPathOf(results.Record(record)).starts_with(dup);
  QuietRemovalView removalView;
  machine.SetHook(hook);
  if (ready >= 0 && ::write(ready, "r", 1) != 1) ::_exit(1);
  const auto outcome = cRemovalRun(results, settings, removalView, 0).RemoveWithoutAsking({}, {});
  ::_exit(outcome.failedCount == 0 && !outcome.isFailed ? 0 : 1);
}

int Ground::ExpectAllWhole(RemoveMethod method) const {
  for (int i = 0; i < mFiles; ++i) {
    if (Read(mTree / "keep" / NameOf(i)) == BytesOf("keep", i)) continue;
    ADD_FAILURE() << "keep/" << NameOf(i) << " is not whole";
  }
  // What lies under a final name is whole and known.
  std::map<std::string, int> known;
  for (int i = 0; i < mFiles; ++i) known[BytesOf("dup", i)] = i;
  std::vector<bool> isFound(static_cast<std::size_t>(mFiles));
  const fs::path trash = method == RemoveMethod::Recycle && mTarget != mTree.parent_path()
                             ? mTree.parent_path() / (".Trash-" + std::to_string(::getuid()))
                             : Home() / "Trash";
  for (const fs::path& place : {mTarget / "moved", mTarget / "dupes", trash / "files"}) {
    if (!fs::exists(place)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(place)) {
      const std::string name = entry.path().filename();
      if (!entry.is_regular_file() || IsOwnFileName(FromUtf8(name))) continue;
      const auto found = known.find(Read(entry.path()));
      if (found == known.end())
        ADD_FAILURE() << entry.path() << " is not whole";
      else
        isFound[static_cast<std::size_t>(found->second)] = true;
      if (place == trash / "files") {
        EXPECT_TRUE(fs::exists(trash / "info" / (name + ".trashinfo"))) << entry.path();
      }
    }
  }
  // What was taken aside in the moment of the kill is put back by the next run.
  std::set<std::string> aside;
  for (const auto& entry : fs::directory_iterator(mTree / "dup"))
    if (IsOwnFileName(FromUtf8(entry.path().filename().string()), OwnFile::Aside))
      aside.insert(Read(entry.path()));
  EXPECT_LE(aside.size(), 1U);
  int left = static_cast<int>(aside.size());
  for (int i = 0; i < mFiles; ++i) {
    const fs::path path = mTree / "dup" / NameOf(i);
    const bool isThere = fs::exists(path);
    if (!isThere && aside.contains(BytesOf("dup", i))) continue;
    left += isThere ? 1 : 0;
    if (isThere) {
      EXPECT_TRUE(Read(path) == BytesOf("dup", i)) << path << " is not whole";
    } else if (method != RemoveMethod::Delete) {
      EXPECT_TRUE(isFound[static_cast<std::size_t>(i)]) << path << " is lost";
    }
  }
  return left;
}

// The status of the child.
template <typename Body>
int InChild(const Body& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    body();
    ::_exit(1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct Way {
  RemoveMethod method;
  bool isAcross;  // from one volume to another; for the two without a target another volume at all
};

std::string NameOf(const testing::TestParamInfo<Way>& info) {
  static constexpr const char* names[] = {"Delete", "Recycle", "MoveToDupesFolder",
                                          "MoveToOtherFolder"};
  return std::string(names[static_cast<int>(info.param.method)]) +
         (info.param.isAcross ? "OtherVolume" : "OneVolume");
}

class KilledRemoval : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    char name[] = "/tmp/quillmarsh-kill-XXXXXX";
    ASSERT_NE(::mkdtemp(name), nullptr);
    mFolder = name;
    mOther = mFolder / "other";
    fs::create_directory(mOther);
    if (!GetParam().isAcross) return;
    if (!EnterOwnMounts() || ::mount("tmpfs", mOther.c_str(), "tmpfs", 0, nullptr) != 0)
      GTEST_SKIP() << "a second volume cannot be mounted here";
    mIsMounted = true;
  }
  void TearDown() override {
    if (mIsMounted) ::umount2(mOther.c_str(), MNT_DETACH);
    fs::remove_all(mFolder);
  }

  [[nodiscard]] Ground MakeGround(int files) const {
    const bool hasTarget = GetParam().method == RemoveMethod::MoveToDupesFolder ||
                           GetParam().method == RemoveMethod::MoveToOtherFolder;
    if (!GetParam().isAcross) return {mFolder / "tree", mFolder, files};
    if (hasTarget) return {mFolder / "tree", mOther, files};
    return {mOther / "tree", mFolder, files};
  }

 private:
  static bool EnterOwnMounts() {
    static const bool entered = [] {
      if (::unshare(CLONE_NEWNS) != 0) return false;
      return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    }();
    return entered;
  }

  fs::path mFolder;
  fs::path mOther;
  bool mIsMounted = false;
};

TEST_P(KilledRemoval, BehindEachOperationLosesNothing) {
  const RemoveMethod method = GetParam().method;
  constexpr int files = 3;
  int status = kKilledItself;
  int operations = 0;
  while (status == kKilledItself && operations < 1000) {
    SCOPED_TRACE("killed behind operation " + std::to_string(++operations));
    const Ground ground = MakeGround(files);
    status = InChild([&] {
      EndAfter hook(operations);
      ground.SearchAndRemove(method, &hook, -1);
    });
    ground.ExpectAllWhole(method);
    EXPECT_EQ(InChild([&] { ground.SearchAndRemove(method, nullptr, -1); }), 0);
    EXPECT_EQ(ground.ExpectAllWhole(method), 0);
    ground.ExpectAllInHistory();
    if (HasFailure()) return;
  }
  EXPECT_EQ(status, 0);
  EXPECT_GT(operations, files * 2);
}

TEST_P(KilledRemoval, AtRandomMomentsLosesNothing) {
  const char* const wanted = std::getenv("QUILLMARSH_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 2;
  const RemoveMethod method = GetParam().method;
  constexpr int files = 2000;
  std::mt19937 random(20261121);
  int inTheMiddle = 0;
  // The moments are spread over the time that a whole removal takes.
  std::int64_t wholeMicroseconds = 200'000;
  for (int kill = 0; kill < kills; ++kill) {
    SCOPED_TRACE("kill no. " + std::to_string(kill));
    const Ground ground = MakeGround(files);
    int ready[2];
    ASSERT_EQ(::pipe2(ready, O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) ground.SearchAndRemove(method, nullptr, ready[1]);
    ::close(ready[1]);
    char sign = 0;
    ASSERT_EQ(::read(ready[0], &sign, 1), 1);
    ::close(ready[0]);
    ::usleep(static_cast<useconds_t>(random() % static_cast<std::uint32_t>(wholeMicroseconds)));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    const int left = ground.ExpectAllWhole(method);
    inTheMiddle += left > 0 && left < files ? 1 : 0;
    if (left == 0) wholeMicroseconds = std::max<std::int64_t>(wholeMicroseconds * 2 / 3, 5000);
    if (left > files * 3 / 4) wholeMicroseconds = wholeMicroseconds * 3 / 2;
    EXPECT_EQ(InChild([&] { ground.SearchAndRemove(method, nullptr, -1); }), 0);
    EXPECT_EQ(ground.ExpectAllWhole(method), 0);
    if (HasFailure()) return;
  }
  std::printf("%d of %d kills came in the middle of the removal\n", inTheMiddle, kills);
  if (kills >= 20) {
    EXPECT_GT(inTheMiddle, kills / 4);
  }
}

INSTANTIATE_TEST_SUITE_P(All, KilledRemoval,
                         testing::ValuesIn(std::vector<Way>{
                             {RemoveMethod::Delete, false},
                             {RemoveMethod::Delete, true},
                             {RemoveMethod::Recycle, false},
                             {RemoveMethod::Recycle, true},
                             {RemoveMethod::MoveToDupesFolder, false},
                             {RemoveMethod::MoveToDupesFolder, true},
                             {RemoveMethod::MoveToOtherFolder, false},
                             {RemoveMethod::MoveToOtherFolder, true}}),
                         NameOf);

}  // namespace
}  // namespace quillmarsh
