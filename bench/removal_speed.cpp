// SPDX-License-Identifier: MIT
// What a removal by rename costs, history and bookkeeping included, against a bare loop of rename
// calls in the same run. Arguments: a folder on the volume to measure, and the number of files
// (100000). Both move the same files into the same mirrored folders, in turns; the best of three
// counts. Prints both times and their ratio.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modPaths.h"
#include "platform/posix/PosixMachine.h"
#include "removal/cRemovalRun.h"
#include "removal/history/cLog.h"
#include "search/cSearchSession.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"

namespace {

namespace fs = std::filesystem;
using namespace quillmarsh;
using Clock = std::chrono::steady_clock;

constexpr int kFilesInFolder = 400;
constexpr int kRounds = 3;

std::string FolderOf(int file) {
  return "folder " + std::to_string(file / kFilesInFolder);
}
std::string NameOf(int file) {
  return "some file of a person " + std::to_string(file) + ".jpeg";
}

void MakeTree(const fs::path& tree, int files) {
  fs::remove_all(tree);
  for (const char* const side : {"keep", "dup"}) {
    for (int file = 0; file < files; ++file) {
      const fs::path folder = tree / side / FolderOf(file);
      if (file % kFilesInFolder == 0) fs::create_directories(folder);
      std::FILE* const made = std::fopen((folder / NameOf(file)).c_str(), "w");
      if (made == nullptr) std::exit(2);
      std::fputs("x", made);
      std::fclose(made);
    }
  }
}

double Seconds(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

double RenameAll(const fs::path& tree, const fs::path& target, int files) {
  std::vector<std::pair<std::string, std::string>> moves;
  for (int file = 0; file < files; ++file)
    moves.emplace_back(tree / "dup" / FolderOf(file) / NameOf(file),
                       target / FolderOf(file) / NameOf(file));
  const auto begin = Clock::now();
  for (int file = 0; file < files; ++file) {
    const auto& [from, to] = moves[static_cast<std::size_t>(file)];
    if (file % kFilesInFolder == 0) fs::create_directories(target / FolderOf(file));
    if (std::rename(from.c_str(), to.c_str()) != 0) std::exit(2);
  }
  return Seconds(begin);
}

double RemoveAll(PosixMachine& machine, const fs::path& tree, const fs::path& dupes) {
  gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
  fs::create_directories(dupes);
  mDupesFolderPath = AddBackslash(machine.Drives().NewLocationFromNative(dupes.string()).path);
  cSearchResults results;
  QuietSearchView view({machine.Drives().LocationFromNative(tree.string()).path});
  QuietRemovalView removalView;
  if (cSearchSession(results, *gDupeSettings, view).FindDuplicateFiles() != SearchOutcome::Complete)
    std::exit(2);
  const Text dup = AddBackslash(machine.Drives().LocationFromNative((tree / "dup").string()).path);
  for (std::int32_t record = 1; record <= results.RecordCount(); ++record)
    results.mFileMarked[static_cast<std::size_t>(record) - 1] =
        results.FullPathOf(results.Record(record)).starts_with(dup);
  cRemovalRun run(results, *gDupeSettings, removalView, 0);
  const auto begin = Clock::now();
  const auto outcome = run.RemoveWithoutAsking({}, {});
  const double seconds = Seconds(begin);
  if (outcome.failedCount != 0 || outcome.removedCount == 0) std::exit(2);
  return seconds;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: removal_speed FOLDER [FILES]\n");
    return 2;
  }
  const fs::path folder = fs::path(argv[1]) / ("removal-speed-" + std::to_string(::getpid()));
  const int files = argc > 2 ? std::atoi(argv[2]) : 100'000;
  ::setenv("XDG_DATA_HOME", (folder / "home").c_str(), 1);
  fs::create_directories(folder);
  PosixMachine machine;
  UseMachine(&machine);
  gDupeSettings = std::make_unique<clsDupeSettings>();
  gDupeSettings->SetIncludeSubFolders(true);
  gDupeSettings->SetRemoveMethod(RemoveMethod::MoveToDupesFolder);
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  gLog = std::make_unique<cLog>();
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  double bare = 1e9;
  double removal = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    MakeTree(folder / "tree", files);
    bare = std::min(bare, RenameAll(folder / "tree", folder / "out", files));
    fs::remove_all(folder / "out");
    MakeTree(folder / "tree", files);
    removal = std::min(removal, RemoveAll(machine, folder / "tree", folder / "out"));
    fs::remove_all(folder / "out");
  }
  std::printf("%d files: rename alone %.3f s, removal %.3f s, ratio %.2f\n", files, bare, removal,
              removal / bare);
  fs::remove_all(folder);
  return 0;
}
