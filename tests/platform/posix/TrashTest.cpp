// SPDX-License-Identifier: MIT
// The desktop's trash: what lies where afterwards, which names and places are taken, and that no
// failure and no kill loses a file or leaves one of which nobody knows where it came from.
#include <dirent.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "platform/posix/DyingServer.h"
#include "platform/posix/NameMapping.h"
#include "platform/posix/OwnNamespace.h"
#include "platform/posix/TwoDrives.h"

namespace quillmarsh::test {
namespace {

const std::string OwnTrash = ".Trash-" + std::to_string(::getuid());

std::string ReadNative(const std::string& path) {
  std::stringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), &::closedir);
  while (const dirent* const entry = listing ? ::readdir(listing.get()) : nullptr)
    if (const std::string name = entry->d_name; name != "." && name != "..") names.push_back(name);
  std::ranges::sort(names);
  return names;
}

// The path that a note gives, decoded; "(none)" where there is no good note.
std::string PathInNote(const std::string& trash, const std::string& name) {
  constexpr std::string_view begin = "[Trash Info]\nPath=";
  const std::string note = ReadNative(trash + "/info/" + name + ".trashinfo");
  const std::size_t end = std::min(note.find("\nDeletionDate="), note.size());
  std::tm moment{};
  const char* const rest = ::strptime(note.c_str() + end, "%nDeletionDate=%Y-%m-%dT%T%n", &moment);
  if (!note.starts_with(begin) || rest == nullptr || *rest != '\0') return "(none)";
  const std::string encoded = note.substr(begin.size(), end - begin.size());
  const bool isPlain = std::ranges::all_of(encoded, [](unsigned char c) {
    return std::isalnum(c) != 0 ||
           std::string_view("/-_.~%").find(static_cast<char>(c)) != std::string_view::npos;
  });
  if (!isPlain) return "(none)";
  std::string path;
  for (std::size_t i = 0; i < encoded.size(); ++i) {
    const bool isByte = encoded[i] == '%';
    path +=
        isByte ? static_cast<char>(std::stoi(encoded.substr(i + 1, 2), nullptr, 16)) : encoded[i];
    if (isByte) i += 2;
  }
  return path;
}

std::int32_t Recycle(Machine& machine, const Text& path, std::uint16_t flags = FOF_ALLOWUNDO) {
  SHFILEOPSTRUCTW operation;
  operation.wFunc = FO_DELETE;
  operation.pFrom = path + Text(2, u'\0');
  operation.fFlags = static_cast<std::uint16_t>(flags | FOF_SILENT);
  return machine.Desktop().SHFileOperationW(operation);
}

Text PathOnD(const std::string& relative) {
  Text path = u"D:";
  for (std::size_t begin = 0; begin <= relative.size();) {
    const std::size_t end = std::min(relative.find('/', begin), relative.size());
    path += u'\\';
    AppendMappedName(relative.substr(begin, end - begin), path);
    begin = end + 1;
  }
  return path;
}

enum class Home { OnD, OnE, None };

// D: is the drive from which things go; E: is another one.
class TrashTest : public testing::Test {
 protected:
  PosixOptions Options(Home home, const std::string& type = "ext4") {
    PosixOptions options = TwoDrives(mScratch, mTree.Root(), mOther.Root(), type);
    if (home != Home::None)
      options.dataHome = home == Home::OnD ? mTree.At("data") : mOther.At("data");
    return options;
  }
  // Of D: at its top, or the home trash.
  std::string Top() const { return mTree.At(OwnTrash); }
  std::string HomeTrash(Home home) const {
    return (home == Home::OnD ? mTree : mOther).At("data/Trash");
  }
  bool IsThere(const std::string& relative) const {
    struct stat facts {};
    return ::lstat(mTree.At(relative).c_str(), &facts) == 0;
  }

  TempTree mTree;
  TempTree mOther;
  TempTree mScratch;
};

TEST_F(TrashTest, TellsAFileManagerWhereAFileCameFrom) {
  PosixMachine machine(Options(Home::OnD));
  const std::string longName = "\xC3\xBC" + std::string(250, 'x') + "\xC3\xBC";  // 254 bytes
  const std::string longBytes(255, '\xC3');
  struct Row {
    std::string name;
    std::string nameThere;
  };
  const Row rows[] = {
      {"plain.txt", "plain.txt"},
      {"50% of \xC3\xBC.txt", "50% of \xC3\xBC.txt"},
      {"no UTF-8 \xFF\xFE", "no UTF-8 \xFF\xFE"},
      {"line\nbreak", "line\nbreak"},
      {longName, longName.substr(0, 245)},
      {std::string(243, 'x') + "\xE2\x82\xAC.txt", std::string(243, 'x')},
      {longBytes, longBytes.substr(0, 245)},
      {".hidden", ".hidden"},
  };
  for (const Row& row : rows) {
    const std::string native = mTree.File("a folder/" + row.name, "bytes of " + row.name);
    ASSERT_EQ(Recycle(machine, PathOnD("a folder/" + row.name)), 0) << row.name;
    EXPECT_FALSE(IsThere("a folder/" + row.name));
    EXPECT_EQ(PathInNote(HomeTrash(Home::OnD), row.nameThere), native);
    EXPECT_EQ(ReadNative(HomeTrash(Home::OnD) + "/files/" + row.nameThere), "bytes of " + row.name);
  }
  EXPECT_EQ(NamesIn(HomeTrash(Home::OnD) + "/files").size(), std::size(rows));
  EXPECT_EQ(NamesIn(HomeTrash(Home::OnD) + "/info").size(), std::size(rows));
  EXPECT_FALSE(IsThere(OwnTrash)) << "the home trash is on this drive";
  struct stat facts {};
  ASSERT_EQ(::stat(HomeTrash(Home::OnD).c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0700U);
}

TEST_F(TrashTest, TakesFoldersLinksAndReadOnlyFilesAsTheyAre) {
  PosixMachine machine(Options(Home::None));
  mTree.File("folder/in", "bytes");
  mTree.Link("link", "folder");
  mTree.Link("broken", "nowhere");
  ::chmod(mTree.File("locked").c_str(), 0444);
  for (const char* name : {"link", "broken", "folder", "locked"}) {
    EXPECT_EQ(Recycle(machine, PathOnD(name)), 0) << name;
    EXPECT_FALSE(IsThere(name));
    EXPECT_EQ(PathInNote(Top(), name), name) << "relative to the top of the volume";
  }
  EXPECT_EQ(ReadNative(Top() + "/files/folder/in"), "bytes");
  EXPECT_EQ(std::filesystem::read_symlink(Top() + "/files/link"), "folder");
  EXPECT_EQ(std::filesystem::status(Top() + "/files/locked").permissions(),
            std::filesystem::perms{0444});
}

TEST_F(TrashTest, ATakenNameMeansAnotherName) {
  PosixMachine machine(Options(Home::OnD));
  mTree.File("data/Trash/files/name", "without a note");
  mTree.File("data/Trash/info/name.2.trashinfo", "without a file");
  constexpr std::size_t count = 30;
  for (std::size_t i = 0; i < count; ++i) {
    mTree.File("name", "number " + std::to_string(i));
    ASSERT_EQ(Recycle(machine, u"D:\\name"), 0);
  }
  const std::string trash = HomeTrash(Home::OnD);
  EXPECT_EQ(ReadNative(trash + "/files/name"), "without a note");
  EXPECT_EQ(ReadNative(trash + "/info/name.2.trashinfo"), "without a file");
  EXPECT_EQ(ReadNative(trash + "/files/name.3"), "number 0");
  std::size_t restorable = 0;
  for (const std::string& name : NamesIn(trash + "/files"))
    restorable += PathInNote(trash, name) == mTree.At("name") ? 1 : 0;
  EXPECT_EQ(restorable, count);
  EXPECT_EQ(NamesIn(trash + "/info").size(), count + 1);
}

TEST_F(TrashTest, OnAnotherVolumeThePlaceFollowsFromItsTop) {
  const std::string user = std::to_string(::getuid());
  struct Row {
    const char* name;
    std::function<void()> prepare;
    std::string place;  // empty: refused
  };
  const auto folder = [&](const std::string& name, mode_t mode) {
    ::chmod(mTree.Folder(name).c_str(), mode);
  };
  const Row rows[] = {
      {"nothing there", [] {}, OwnTrash},
      {"a shared one", [&] { folder(".Trash", 01777); }, ".Trash/" + user},
      {"a shared one that is not sticky", [&] { folder(".Trash", 0777); }, OwnTrash},
      {"a shared one that is a link", [&] { mTree.Link(".Trash", mOther.Folder("sticky")); },
       OwnTrash},
      {"a link in the shared one",
       [&] {
         folder(".Trash", 01777);
         mTree.Link(".Trash/" + user, mOther.Folder("elsewhere"));
       },
       OwnTrash},
      {"a link", [&] { mTree.Link(OwnTrash, mOther.Folder("elsewhere")); }, ""},
      {"a link for the files",
       [&] {
         folder(OwnTrash, 0700);
         mTree.Link(OwnTrash + "/files", mOther.Folder("elsewhere"));
       },
       ""},
      {"somebody else's",
       [&] {
         folder(OwnTrash, 0777);
         if (::getuid() == 0)
           ASSERT_EQ(::chown(Top().c_str(), 12345, 12345), 0);
         else
           ::rmdir(Top().c_str()), mTree.File(OwnTrash);
       },
       ""},
      {"a file", [&] { mTree.File(OwnTrash); }, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ::chmod(mOther.Folder("sticky").c_str(), 01777);
    row.prepare();
    mTree.File("file", "bytes");
    PosixMachine machine(Options(Home::None));
    const std::int32_t code = Recycle(machine, u"D:\\file");
    EXPECT_EQ(code == 0, !row.place.empty()) << code;
    EXPECT_EQ(IsThere("file"), row.place.empty());
    if (!row.place.empty()) {
      EXPECT_EQ(ReadNative(mTree.At(row.place + "/files/file")), "bytes");
      EXPECT_EQ(PathInNote(mTree.At(row.place), "file"), "file");
    }
    EXPECT_TRUE(NamesIn(mOther.At("sticky")).empty() && NamesIn(mOther.At("elsewhere")).empty());
    for (const char* name : {".Trash", OwnTrash.c_str()})
      std::filesystem::remove_all(mTree.At(name));
    ::unlink(mTree.At("file").c_str());
  }
}

TEST_F(TrashTest, WhatItsVolumeCannotTakeIsCopiedIntoTheHomeTrash) {
  PosixMachine machine(Options(Home::OnE));
  mTree.File(OwnTrash);  // in the way
  mTree.File("file", std::string(3'000'000, 'b'));
  mTree.File("folder/in");
  mTree.Link("link", "file");
  ::chmod(mTree.At("file").c_str(), 0440);
  EXPECT_NE(Recycle(machine, u"D:\\folder"), 0);
  EXPECT_NE(Recycle(machine, u"D:\\link"), 0);
  EXPECT_TRUE(IsThere("folder/in") && IsThere("link"));
  {
    const FileSizeLimit full(2'000'000);
    EXPECT_EQ(Recycle(machine, u"D:\\file"), static_cast<std::int32_t>(ERROR_DISK_FULL));
  }
  const std::string trash = HomeTrash(Home::OnE);
  EXPECT_TRUE(NamesIn(trash + "/files").empty() && NamesIn(trash + "/info").empty());
  EXPECT_EQ(Recycle(machine, u"D:\\file"), 0);
  EXPECT_FALSE(IsThere("file"));
  EXPECT_TRUE(ReadNative(trash + "/files/file") == std::string(3'000'000, 'b'));
  EXPECT_EQ(PathInNote(trash, "file"), mTree.At("file"));
  EXPECT_EQ(std::filesystem::status(trash + "/files/file").permissions(),
            std::filesystem::perms{0440});
}

// The source is deleted, but the server's answer is lost and an old look is remembered.
TEST_F(TrashTest, ACopyGoesAgainOnlyWhereTheSourceCanBeOpened) {
  for (const bool isDeleted : {true, false}) {
    PosixMachine machine(Options(Home::OnE));
    mTree.File(OwnTrash);  // in the way
    mTree.File("file", "bytes");
    bool hasFailed = false;
    const SystemCallHook hook([&](SystemCall call, int, std::string_view name) {
      if (name != "file") return 0;
      if (call == SystemCall::Statx && hasFailed) return PretendDone;
      if (call != SystemCall::Unlinkat || hasFailed) return 0;
      hasFailed = true;
      if (isDeleted) ::unlink(mTree.At("file").c_str());
      return EIO;
    });
    EXPECT_EQ(Recycle(machine, u"D:\\file"), DE_ACCESSDENIEDSRC);
    EXPECT_EQ(PathInNote(HomeTrash(Home::OnE), "file"), isDeleted ? mTree.At("file") : "(none)");
    EXPECT_EQ(ReadNative(HomeTrash(Home::OnE) + "/files/file"), isDeleted ? "bytes" : "");
    std::filesystem::remove_all(HomeTrash(Home::OnE));
  }
  EXPECT_TRUE(IsThere("file"));
}

// Another program makes a file of the same name, which may even get the same number on the disk.
TEST_F(TrashTest, ACopyStaysWhereTheNameWasMadeAnew) {
  PosixMachine machine(Options(Home::OnE));
  mTree.File(OwnTrash);  // in the way
  mTree.File("file", "bytes");
  bool isDeleted = false;
  bool isMade = false;
  const SystemCallHook hook([&](SystemCall call, int, std::string_view name) {
    if (isDeleted && !isMade && call == SystemCall::Statx && name.empty()) {
      isMade = true;
      mTree.File("file", "other");
    }
    isDeleted = isDeleted || (call == SystemCall::Unlinkat && name == "file");
    return 0;
  });
  EXPECT_EQ(Recycle(machine, u"D:\\file"), 0);
  EXPECT_TRUE(isMade);
  EXPECT_EQ(ReadNative(HomeTrash(Home::OnE) + "/files/file"), "bytes");
  EXPECT_EQ(PathInNote(HomeTrash(Home::OnE), "file"), mTree.At("file"));
  EXPECT_EQ(ReadNative(mTree.At("file")), "other");
}

TEST_F(TrashTest, DescriptorsThatHaveRunOutAreNoRefusalYet) {
  PosixMachine machine(Options(Home::None));
  mTree.File("file");
  bool hasFailed = false;
  const SystemCallHook hook([&](SystemCall call, int, std::string_view) {
    const bool fails = call == SystemCall::Mkdirat && !hasFailed;
    hasFailed = hasFailed || fails;
    return fails ? EMFILE : 0;
  });
  EXPECT_EQ(Recycle(machine, u"D:\\file"), 0);
  EXPECT_TRUE(hasFailed);
}

TEST_F(TrashTest, AHomeTrashMayBeAVolumeAndIsNotMadeInAnothersHome) {
  PosixOptions options = TwoDrives(mScratch, mTree.Root(), mScratch.Folder("volume/Trash"), "ext4");
  options.dataHome = mScratch.At("volume");
  PosixMachine machine(options);
  mTree.File(OwnTrash);  // in the way
  mTree.File("file", "bytes");
  EXPECT_EQ(Recycle(machine, u"D:\\file"), 0);
  EXPECT_EQ(ReadNative(mScratch.At("volume/Trash/files/file")), "bytes");
  EXPECT_EQ(Recycle(machine, u"E:\\files\\file"), DE_INVALIDFILES);
  if (::getuid() != 0) return;
  PosixMachine other(Options(Home::OnD));
  ASSERT_EQ(::chown(mTree.Folder("data").c_str(), 12345, 12345), 0);
  mTree.File("file");
  EXPECT_NE(Recycle(other, u"D:\\file"), 0);
  EXPECT_FALSE(IsThere("data/Trash"));
}

TEST_F(TrashTest, AnInnerVolumeBelowTheSameLetterTakesTheNextWay) {
  PosixMachine machine(Options(Home::OnD));
  mTree.File("file", "bytes");
  int renames = 0;
  const SystemCallHook hook([&](SystemCall call, int, std::string_view name) {
    const bool isOfSource = call == SystemCall::Renameat2 && name == "file";
    renames += isOfSource ? 1 : 0;
    return isOfSource ? EXDEV : 0;
  });
  EXPECT_EQ(Recycle(machine, u"D:\\file"), 0);
  EXPECT_EQ(renames, 2) << "into the home trash and into the volume's own";
  EXPECT_EQ(ReadNative(HomeTrash(Home::OnD) + "/files/file"), "bytes");
  EXPECT_TRUE(NamesIn(Top() + "/info").empty());
  EXPECT_FALSE(IsThere("file"));
}

TEST_F(TrashTest, SaysWhyItRefuses) {
  PosixMachine machine(Options(Home::OnD));
  mTree.File("file", "bytes");
  mTree.Link("way", mOther.Folder("behind"));
  mOther.File("behind/file");
  ::mkfifo(mTree.At("fifo").c_str(), 0644);
  const auto system = [](std::uint32_t code) { return static_cast<std::int32_t>(code); };
  struct Row {
    TextView path;
    std::int32_t code;
  };
  const Row rows[] = {
      {u"D:\\none", system(ERROR_FILE_NOT_FOUND)},
      {u"D:\\none\\file", system(ERROR_PATH_NOT_FOUND)},
      {u"D:\\way\\file", system(ERROR_PATH_NOT_FOUND)},
      {u"D:\\file\\", system(ERROR_INVALID_NAME)},
      {u"D:\\fifo", DE_ACCESSDENIEDSRC},
      {u"\\\\?\\D:\\file", DE_INVALIDFILES},
      {u"D:\\f*", DE_INVALIDFILES},
      {u"D:\\", DE_INVALIDFILES},
  };
  for (const Row& row : rows)
    EXPECT_EQ(Recycle(machine, Text(row.path)), row.code) << ToUtf8(row.path);
  EXPECT_EQ(Recycle(machine, u"D:\\file", FOF_SILENT), system(ERROR_INVALID_PARAMETER));
  EXPECT_FALSE(IsThere("data/Trash")) << "made for nothing";

  mTree.File("second", "bytes");
  EXPECT_EQ(Recycle(machine, Text(u"D:\\file\0D:\\none\0D:\\second", 25)),
            system(ERROR_FILE_NOT_FOUND));
  EXPECT_FALSE(IsThere("file")) << "what was sent before a refusal stays sent";
  EXPECT_TRUE(IsThere("second"));
  for (const TextView path : {u"D:\\data\\Trash\\files\\file", u"D:\\data\\Trash", u"D:\\data"})
    EXPECT_EQ(Recycle(machine, Text(path)), DE_INVALIDFILES) << ToUtf8(path);
  mTree.File(OwnTrash + "/files/old");
  EXPECT_EQ(Recycle(machine, PathOnD(OwnTrash + "/files/old")), DE_INVALIDFILES);
}

TEST_F(TrashTest, AFolderThatLetsNothingGoKeepsItsFiles) {
  mTree.File("shut/file", "bytes");
  ::chmod(mTree.At("shut").c_str(), 0555);
  ::chmod(mTree.Root().c_str(), 0777);
  ::chmod(mTree.Folder("sticky").c_str(), 01777);
  mTree.File("sticky/file", "bytes");
  const PosixOptions options = Options(Home::None);
  const bool ownsAll = ::getuid() != 0;  // then the sticky bit keeps nothing
  const std::string outcome = AsOrdinaryUser([&] {
    PosixMachine machine(options);
    const bool isKept = Recycle(machine, u"D:\\shut\\file") == DE_ACCESSDENIEDSRC &&
                        (ownsAll || Recycle(machine, u"D:\\sticky\\file") == DE_ACCESSDENIEDSRC);
    return std::string(isKept ? "" : "it went");
  });
  EXPECT_EQ(outcome, "");
  EXPECT_TRUE(IsThere("shut/file") && IsThere("sticky/file"));
  EXPECT_FALSE(IsThere(".Trash-65534")) << "made for nothing";
}

TEST_F(TrashTest, AServerThatIsGivenUpTakesNothingAway) {
  mTree.File("file", "bytes");
  PosixMachine machine(Options(Home::None, "nfs4"));
  DyingServer server([](SystemCall call, int, std::string_view) {
    return call == SystemCall::Fsync;  // of the note
  });
  machine.SetPatience(&server);
  SHFILEOPSTRUCTW operation;
  operation.wFunc = FO_DELETE;
  operation.pFrom = Text(u"D:\\file\0\0", 9);
  operation.fFlags = FOF_ALLOWUNDO;
  EXPECT_EQ(machine.Desktop().SHFileOperationW(operation),
            static_cast<std::int32_t>(ERROR_OPERATION_ABORTED));
  EXPECT_TRUE(operation.fAnyOperationsAborted);
  machine.SetPatience(nullptr);
  server.ComeBackAndFinish();
  EXPECT_EQ(ReadNative(mTree.At("file")), "bytes");
  EXPECT_TRUE(NamesIn(Top() + "/files").empty());
}

// Whatever happens at whichever system call, the file is whole in at least one place, and what lies
// in the trash can be restored from there.
class TrashFailures : public TrashTest, public testing::WithParamInterface<Home> {
 protected:
  // True while the call was reached.
  bool Undergo(int nth, const std::function<int()>& what, std::int32_t& code) {
    PosixMachine machine(Options(GetParam()));
    int calls = 0;
    const SystemCallHook hook(
        [&](SystemCall, int, std::string_view) { return ++calls == nth ? what() : 0; });
    code = Recycle(machine, u"D:\\file");
    return calls >= nth;
  }
  void MakeFile() {
    mTree.File("file", "bytes");
    if (GetParam() == Home::OnE) mTree.File(OwnTrash);  // in the way
  }
  void Clear() {
    for (const std::string& trash : {HomeTrash(Home::OnD), HomeTrash(Home::OnE), Top()})
      std::filesystem::remove_all(trash);
  }
  // How many entries of trashes hold the file's bytes and a note.
  int RestorableCopies(bool mayLeaveTraces) {
    int copies = 0;
    for (const std::string& trash : {HomeTrash(Home::OnD), HomeTrash(Home::OnE), Top()}) {
      const std::vector<std::string> names = NamesIn(trash + "/files");
      for (const std::string& name : names) {
        if (mayLeaveTraces && name.ends_with(".part")) continue;
        EXPECT_EQ(ReadNative(trash + "/files/" + name), "bytes");
        EXPECT_NE(PathInNote(trash, name), "(none)") << name;
        ++copies;
      }
      if (!mayLeaveTraces) {
        EXPECT_EQ(NamesIn(trash + "/info").size(), names.size()) << trash;
      }
    }
    return copies;
  }
};

TEST_P(TrashFailures, LoseNoFileAndLeaveNoNoteWithoutAFile) {
  bool wasReached = true;
  int nth = 0;
  while (wasReached && nth < 200) {
    SCOPED_TRACE(++nth);
    MakeFile();
    std::int32_t code = 0;
    wasReached = Undergo(
        nth, [] { return EIO; }, code);
    const int copies = RestorableCopies(false);
    EXPECT_TRUE(copies >= 1 || ReadNative(mTree.At("file")) == "bytes");
    EXPECT_TRUE(code != 0 || (copies == 1 && !IsThere("file")));
    Clear();
  }
  EXPECT_GT(nth, 8);
}

TEST_P(TrashFailures, AKillLeavesTheFileWholeAndRestorable) {
  int status = 0;
  int nth = 0;
  do {
    SCOPED_TRACE(++nth);
    MakeFile();
    const pid_t child = ::fork();
    if (child == 0) {
      std::int32_t code = 0;
      const bool wasReached = Undergo(
          nth, []() -> int { ::_exit(1); }, code);
      ::_exit(wasReached ? 2 : 0);
    }
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(RestorableCopies(true) >= 1 || ReadNative(mTree.At("file")) == "bytes");
    Clear();
  } while (WIFEXITED(status) && WEXITSTATUS(status) == 1 && nth < 200);
  EXPECT_EQ(status, 0);
  EXPECT_GT(nth, 8);
}

std::string NameOfHome(const testing::TestParamInfo<Home>& row) {
  constexpr const char* names[] = {"Rename", "Copy", "TopOfVolume"};
  return names[row.index];
}
INSTANTIATE_TEST_SUITE_P(Ways, TrashFailures, testing::Values(Home::OnD, Home::OnE, Home::None),
                         NameOfHome);

TEST(TrashOfRealMounts, LiesAtTheirTops) {
  if (!IsInOwnNamespace()) {
    if (!CanHaveOwnNamespace()) GTEST_SKIP() << "this system grants no namespaces to a user";
    EXPECT_EQ(RunInOwnNamespace("TrashOfRealMounts.LiesAtTheirTops"), 0);
    return;
  }
  const TempTree tree;
  for (const char* name : {"volume", "sealed"}) {
    tree.Folder(name);
    MountOrFail("tmpfs", tree.At(name), "tmpfs", 0);
    tree.File(std::string(name) + "/a folder/file", "bytes");
  }
  tree.File("sealed/" + OwnTrash);
  PosixOptions options;
  options.dataHome = tree.At("data");
  PosixMachine machine(options);
  for (const char* name : {"volume/a folder/file", "sealed/a folder/file"})
    EXPECT_EQ(Recycle(machine, machine.Drives().LocationFromNative(tree.At(name)).path), 0);
  EXPECT_EQ(PathInNote(tree.At("volume/" + OwnTrash), "file"), "a folder/file");
  EXPECT_EQ(ReadNative(tree.At("volume/" + OwnTrash + "/files/file")), "bytes");
  EXPECT_EQ(PathInNote(tree.At("data/Trash"), "file"), tree.At("sealed/a folder/file"));
  EXPECT_EQ(ReadNative(tree.At("data/Trash/files/file")), "bytes");
  ::umount2(tree.At("volume").c_str(), MNT_DETACH);
  ::umount2(tree.At("sealed").c_str(), MNT_DETACH);
}

// The desktop's own program on what was trashed here.
TEST(TrashAndTheDesktop, ItsProgramListsAndRestoresWhatWasTrashed) {
  if (std::system(
          "command -v gio dbus-run-session >/dev/null && "
          "ls /usr/libexec/gvfsd-trash /usr/lib/gvfs/gvfsd-trash 2>/dev/null | grep -q .") != 0)
    GTEST_SKIP() << "gio, dbus-run-session or the trash of gvfs are not installed";
  const TempTree tree;
  PosixOptions options;
  options.dataHome = tree.Folder("home/data");
  PosixMachine machine(options);
  struct Row {
    std::string name;
    std::string uri;
    std::string listed;
    // The program's own way of restoring writes what is not ASCII into the name as it lists it;
    // file managers move the entry.
    bool isMoved;
  };
  const Row rows[] = {
      {"50% of it ?.txt", "50%25%20of%20it%20%3F.txt", "50% of it ?.txt", false},
      {"50% of \xC3\xBC.txt", "50%25%20of%20%C3%BC.txt", "50% of \\xc3\\xbc.txt", true},
      {"no UTF-8 \xFF\xFE", "no%20UTF-8%20%FF%FE", "no UTF-8 \\xff\\xfe", true}};
  std::string script = "gio trash --list > '" + tree.At("list") + "' || exit 1\n";
  for (const Row& row : rows) {
    const std::string native = tree.File("here/" + row.name, "bytes of " + row.uri);
    ASSERT_EQ(Recycle(machine, machine.Drives().LocationFromNative(native).path), 0);
    EXPECT_FALSE(std::filesystem::exists(native));
    script += row.isMoved ? "gio move 'trash:///" + row.uri + "' '" + native + "' || exit 1\n"
                          : "gio trash --restore 'trash:///" + row.uri + "' || exit 1\n";
  }
  tree.File("script", script);
  const std::string command = "HOME='" + tree.At("home") + "' XDG_DATA_HOME='" +
                              tree.At("home/data") + "' timeout 60 dbus-run-session -- sh '" +
                              tree.At("script") + "' >'" + tree.At("told") + "' 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0) << ReadNative(tree.At("told"));
  const std::string list = ReadNative(tree.At("list"));
  for (const Row& row : rows) {
    const std::string line = "trash:///" + row.uri + "\t" + tree.At("here/" + row.listed) + "\n";
    EXPECT_NE(list.find(line), std::string::npos) << line << " in\n" << list;
    EXPECT_EQ(ReadNative(tree.At("here/" + row.name)), "bytes of " + row.uri);
  }
  EXPECT_TRUE(NamesIn(tree.At("home/data/Trash/files")).empty());
  EXPECT_TRUE(NamesIn(tree.At("home/data/Trash/info")).empty());
}

}  // namespace
}  // namespace quillmarsh::test
