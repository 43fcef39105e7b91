// SPDX-License-Identifier: MIT
// Moving many files to a mirrored tree on the same volume by the machine's own operations, against
// the floor: a bare loop of rename(), and one of renameat() between folders that are held open. All
// take turns, since machines are shared and noisy, and the best of each is compared.
//
//     rename_speed FOLDER [FILES [FILES IN A FOLDER]]
//
// /dev has no drive letter; for a file system in memory:
//     unshare -Urm sh -c 'mount -t tmpfs none /mnt && rename_speed /mnt'
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/posix/PosixMachine.h"

namespace quillmarsh {
namespace {

constexpr int Rounds = 5;
constexpr std::uint32_t RemovalFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;

// Two trees of the same folders. All files lie in one of them and change over with each run.
struct Trees {
  std::string root;
  std::vector<std::string> folders;  // relative, with a slash in front
  std::vector<std::string> files;    // of each folder
  bool isInSecond = false;

  [[nodiscard]] std::string From() const { return root + (isInSecond ? "/second" : "/first"); }
  [[nodiscard]] std::string To() const { return root + (isInSecond ? "/first" : "/second"); }
  [[nodiscard]] std::size_t Files() const { return folders.size() * files.size(); }
};

Trees MakeTrees(const std::string& below, int files, int perFolder) {
  Trees trees;
  std::string pattern = below + "/rename-speed-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) return trees;
  trees.root = std::filesystem::canonical(pattern).string();
  for (int i = 0; i < perFolder; ++i)
    trees.files.push_back("picture " + std::to_string(i) + ".jpg");
  for (int i = 0; i < std::max(1, files / perFolder); ++i) {
    trees.folders.push_back("/year " + std::to_string(i / 20) + "/folder " + std::to_string(i));
    std::filesystem::create_directories(trees.To() + trees.folders.back());
    std::filesystem::create_directories(trees.From() + trees.folders.back());
    for (const std::string& name : trees.files)
      ::mknod((trees.From() + trees.folders.back() + "/" + name).c_str(), S_IFREG | 0600, 0);
  }
  return trees;
}

using Paths = std::vector<std::vector<Text>>;

// Drive forms, made beforehand: the core has them, too.
Paths DriveForms(Machine& machine, const Trees& trees, const std::string& tree) {
  Paths paths;
  for (const std::string& folder : trees.folders) {
    const Text base = machine.Drives().LocationFromNative(tree + folder).path + u"\\";
    paths.emplace_back();
    for (const std::string& name : trees.files) paths.back().push_back(base + FromUtf8(name));
  }
  return paths;
}

bool RenameByPaths(const Trees& trees) {
  bool isDone = true;
  for (const std::string& folder : trees.folders)
    for (const std::string& name : trees.files)
      isDone &= ::rename((trees.From() + folder + "/" + name).c_str(),
                         (trees.To() + folder + "/" + name).c_str()) == 0;
  return isDone;
}

bool RenameByHandles(const Trees& trees) {
  bool isDone = true;
  for (const std::string& folder : trees.folders) {
    const int from = ::open((trees.From() + folder).c_str(), O_PATH | O_CLOEXEC);
    const int to = ::open((trees.To() + folder).c_str(), O_PATH | O_CLOEXEC);
    for (const std::string& name : trees.files)
      isDone &= ::renameat(from, name.c_str(), to, name.c_str()) == 0;
    ::close(from);
    ::close(to);
  }
  return isDone;
}

// What a removal asks before it moves a file: whether the folder and the new name are there.
bool MoveAsRemoved(Machine& machine, const Text& from, const Text& to) {
  WIN32_FIND_DATAW entry;
  const bool isTaken = machine.Find().FindFirstFileW(to, entry) != INVALID_HANDLE;
  const Text folder = to.substr(0, to.rfind(u'\\'));
  return !isTaken && machine.Files().GetFileAttributesW(folder) != INVALID_FILE_ATTRIBUTES &&
         machine.Disk().MoveFileW(from, to);
}

struct Contender {
  const char* name;
  std::function<bool()> move;
  double best = 1e9;
};

int Measure(const std::string& below, int files, int perFolder) {
  PosixMachine machine;
  if (machine.Drives().LocationFromNative(below).error != 0) {
    std::fprintf(stderr, "%s lies on no drive\n", below.c_str());
    return 2;
  }
  Trees trees = MakeTrees(below, files, perFolder);
  const Paths inFirst = DriveForms(machine, trees, trees.root + "/first");
  const Paths inSecond = DriveForms(machine, trees, trees.root + "/second");
  using MoveOne = std::function<bool(const Text&, const Text&)>;
  const auto each = [&](const MoveOne& moveOne) {
    return [&, moveOne] {
      const Paths& from = trees.isInSecond ? inSecond : inFirst;
      const Paths& to = trees.isInSecond ? inFirst : inSecond;
      bool isDone = true;
      for (std::size_t i = 0; i < from.size(); ++i)
        for (std::size_t k = 0; k < from[i].size(); ++k) isDone &= moveOne(from[i][k], to[i][k]);
      return isDone;
    };
  };
  DiskChange& disk = machine.Disk();
  Contender contenders[] = {
      {"rename()", [&] { return RenameByPaths(trees); }},
      {"renameat() by handles", [&] { return RenameByHandles(trees); }},
      {"MoveFileW", each([&](auto& from, auto& to) { return disk.MoveFileW(from, to); })},
      {"MoveFileExW, replacing",
       each([&](auto& from, auto& to) { return disk.MoveFileExW(from, to, RemovalFlags); })},
      {"two looks and MoveFileW",
       each([&](auto& from, auto& to) { return MoveAsRemoved(machine, from, to); })},
  };
  bool isDone = trees.Files() > 0;
  for (int round = 0; round < Rounds; ++round) {
    for (Contender& contender : contenders) {
      const auto begin = std::chrono::steady_clock::now();
      isDone &= contender.move();
      const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
      contender.best = std::min(contender.best, taken.count());
      trees.isInSecond = !trees.isInSecond;
    }
  }
  std::printf("%s, %zu files, %d in a folder%s\n", below.c_str(), trees.Files(), perFolder,
              isDone ? "" : ": SOME WERE NOT MOVED");
  for (const Contender& contender : contenders)
    std::printf("  %-26s %7.2f us   %5.2f of rename()   %5.2f of renameat()\n", contender.name,
                contender.best * 1e6 / static_cast<double>(trees.Files()),
                contender.best / contenders[0].best, contender.best / contenders[1].best);
  std::filesystem::remove_all(trees.root);
  return isDone ? 0 : 1;
}

}  // namespace
}  // namespace quillmarsh

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "rename_speed FOLDER [FILES [FILES IN A FOLDER]]\n");
    return 2;
  }
  const int files = argc > 2 ? std::atoi(argv[2]) : 100'000;
  const int perFolder = argc > 3 ? std::max(1, std::atoi(argv[3])) : 400;
  return quillmarsh::Measure(argv[1], files, perFolder);
}
