// SPDX-License-Identifier: MIT
// A program on a simulated machine that has searched and can remove: forests with drives and a
// share, marks, the four methods, and what is left when a removal is over, held against what the
// history says of it.
#pragma once

#include <set>

#include "removal/cRemovalRun.h"
#include "search/ProgramFixture.h"

namespace quillmarsh {

class LockedRemovalView final : public RemovalView {
 public:
  void DisableUIForRemoval() override { isLocked = true; }
  void EnableUIAfterRemoval() override { isLocked = false; }
  std::int32_t ShowRemovalWarning() override {
    warnings += 1;
    return answer;
  }
  bool isLocked = false;
  int warnings = 0;
  std::int32_t answer = kRemovalWarningContinue;
};

// Takes any box and answers carefully.
class PatientMessages final : public MessageView {
 public:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    texts.push_back(ToUtf8(request.text));
    return CarefulAnswer(request.buttons);
  }
  std::vector<std::string> texts;
};

inline constexpr TextView kOtherFolder = u"E:\\moved\\";
inline constexpr TextView kDupesFolder = u"C:\\DUPES\\";

class RemovalProgram : public ProgramFixture {
 public:
  RemovalProgram();

  using ProgramFixture::Groups;
  using ProgramFixture::log;
  using ProgramFixture::messages;
  using ProgramFixture::results;
  using ProgramFixture::Search;

  // A file with contents of its own.
  void Put(const Text& path, std::uint64_t size, std::uint64_t seed,
           std::uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE);
  // Searches all drives by name and size, and takes all marks off.
  void SearchAll();
  void Mark(std::int32_t record, bool isMarked = true);
  void MarkPath(TextView path);
  // Removes by the method and keeps the entries.
  cRemovalRun::Outcome Remove(RemoveMethod method, const RemovalOptions& options = {});
  // Path and reason of each file that a check has kept.
  [[nodiscard]] std::vector<std::string> Kept() const;

  using Contents = std::map<Text, std::string>;  // by path, of every file of the machine
  [[nodiscard]] Contents ContentsNow() const;
  [[nodiscard]] std::set<Text> MarkedPaths() const;

  // Everything that is to hold after any removal, whatever failed in it: no unmarked file was
  // touched; a file that the history calls gone is gone, and its bytes are where it says; any other
  // is where it was; groups, lists and totals agree with a recount.
  void ExpectNothingLost(const Contents& before, const std::set<Text>& marked);

  LockedRemovalView removalView;
  PatientMessages patient;
  std::vector<RemovalEntry> entries;

 private:
  void TestBody() override {}
  void ExpectRemoved(const RemovalEntry& entry, const Contents& before, const Contents& after);
  void ExpectCountsAgree();
};

}  // namespace quillmarsh
