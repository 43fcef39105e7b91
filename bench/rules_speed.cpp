// SPDX-License-Identifier: MIT
// Each selection rule over a million records in 200,000 groups against the sort of the same records
// by name and size, which every search does anyway. A rule is linear, so it has to stay below the
// sort; the program fails where one does not. The best of some rounds is compared.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>

#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "platform/posix/PosixMachine.h"
#include "search/results/RecordSort.h"
#include "selection/MarkedFiles.h"
#include "selection/RuleTexts.h"
#include "selection/cGroupSelection.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {
namespace {

constexpr int Rounds = 5;
constexpr std::int32_t Records = 1'000'000;
constexpr std::int32_t MembersOfAGroup = 5;
constexpr std::int32_t Folders = 50'000;

double SecondsOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// As a search finds them: the members of a group lie far apart, each in a folder of its own.
void Fill(cSearchResults& results) {
  std::mt19937 random(1);
  std::vector<std::int32_t> folders;
  for (std::int32_t folder = 0; folder < Folders; ++folder) {
    folders.push_back(gFolderPathsList->AddFolder(u"C:\\home\\someone\\pictures\\year " +
                                                  DecimalText(folder % 20) + u"\\folder " +
                                                  DecimalText(folder) + u"\\"));
  }
  for (std::int32_t index = 0; index < Records; ++index) {
    const std::int32_t group = index % (Records / MembersOfAGroup);
    DupeFileUDT record;
    record.Name = results.mNames.Add(u"picture " + DecimalText(group) + u".jpg");
    record.Size = Currency::FromInteger(1000 + group % 5000);
    record.CreatedDate = Date(45000 + static_cast<double>(random() % 1000) / 86400);
    record.LastModifiedDate = Date(45000 + static_cast<double>(random() % 1000) / 86400);
    record.ParentFolderIdx = folders[random() % folders.size()];
    results.mDupeFiles.push_back(record);
  }
  results.mFileCount = Records;
  results.mFileMarked.assign(Records, false);
}

bool Report(const char* what, double seconds, double sort) {
  std::printf("%-46s %7.1f ms  %.3f of the sort\n", what, seconds * 1000, seconds / sort);
  return seconds < sort;
}

int Measure() {
  cSearchResults results;
  Fill(results);
  const SearchCriteria criteria{.namesMatch = true, .sizesMatch = true};
  double sort = 1e9;
  std::vector<DupeFileUDT> sorted;
  for (int round = 0; round < Rounds; ++round) {
    sorted = results.mDupeFiles;
    sort = std::min(sort, SecondsOf([&] {
                      if (!SortRecordsWhilePumping(sorted, results.Facts(), criteria)) std::abort();
                    }));
  }
  results.mDupeFiles = sorted;
  for (std::int32_t first = 1; first <= Records; first += MembersOfAGroup)
    results.AddGroup(first, MembersOfAGroup, {});
  std::printf("sort by name and size: %.1f ms\n", sort * 1000);

  clsMarkForRemovalWizard& options = *gMarkForRemovalWizardOptions;
  options.SetDriveSpec(u"C:");
  options.mFolderSpec = u"\\folder 4";
  options.mIncludeSubFolders = true;
  options.SetFileSize(Currency::FromInteger(3000));
  options.mLastModifiedDate = Date(45000.005);
  options.mFileMask = u"*.png;*7.jpg";
  cGroupSelection selection(results);
  const auto best = [](const std::function<void()>& work) {
    double seconds = 1e9;
    for (int round = 0; round < Rounds; ++round) seconds = std::min(seconds, SecondsOf(work));
    return seconds;
  };
  bool isBelow =
      Report("the automatic selection", best([&] { selection.PreselectAllButNewest(); }), sort);
  for (options.mRule = 0; options.mRule < kRuleCount; ++options.mRule) {
    const double seconds = best([&] { selection.MarkFilesBasedOnWizardOptions(); });
    isBelow = Report(ToUtf8(GetRuleName(options.mRule)).c_str(), seconds, sort) && isBelow;
  }
  std::int32_t whole = 0;
  isBelow = Report("counting groups without a copy left",
                   best([&] { whole = WhollyMarkedGroupCount(results); }), sort) &&
            isBelow;
  MarkedTotal total;
  isBelow = Report("counting what is marked",
                   best([&] { total = GetTotalMarkedCountAndSize(results); }), sort) &&
            isBelow;
  std::printf("%d marked, %d groups without a copy left\n", total.count, whole);
  return isBelow ? 0 : 1;
}

}  // namespace
}  // namespace quillmarsh

int main() {
  using namespace quillmarsh;
  PosixOptions withoutHome;
  withoutHome.dataHome = "";
  PosixMachine machine(withoutHome);
  UseMachine(&machine);
  gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
  const int answer = Measure();
  gMarkForRemovalWizardOptions.reset();
  gFileSpecParser.reset();
  gFolderPathsList.reset();
  UseMachine(nullptr);
  return answer;
}
