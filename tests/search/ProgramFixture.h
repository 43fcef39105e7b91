// SPDX-License-Identifier: MIT
// The program around the logic, for tests: the program-wide objects on a simulated machine,
// scripted views and a log that is kept. A message box that no answer was queued for fails the
// test.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <vector>

#include "frame/Views.h"
#include "removal/history/cLog.h"
#include "search/cSearchSession.h"
#include "support/MachineFixture.h"

namespace quillmarsh {

class ScriptedMessages final : public MessageView {
 public:
  ~ScriptedMessages() override;
  void Expect(MessageBoxResult answer = MessageBoxResult::Ok) { mAnswers.push_back(answer); }
  MessageBoxResult Show(const MessageBoxRequest& request) override;
  std::vector<MessageBoxRequest> shown;

 private:
  std::deque<MessageBoxResult> mAnswers;
};

class KeptStatus final : public StatusView {
 public:
  void SetPanel(TextView key, TextView text) override { panels[Text(key)] = text; }
  void SetPanelToolTip(TextView key, TextView text) override { toolTips[Text(key)] = text; }
  void ShowProgress(int) override {}
  void SetProgress(int) override {}
  void HideProgress() override {}
  std::map<Text, Text> panels;
  std::map<Text, Text> toolTips;
};

class ScriptedPump final : public PumpView {
 public:
  void PumpEvents() override {
    if (onPump) onPump();
  }
  std::function<void()> onPump;
};

class KeptLog final : public cLog {
 public:
  void Add(std::int32_t kind, TextView spareText, TextView fileSpec, TextView targetPath,
           std::int32_t errorNumber, TextView errorText, TextView customText,
           bool& result) override;
  void AppendInMemoryStringToLogFile() override { flushes += 1; }
  void ResetInMemoryLog() override {}
  // "17 text", "16 C:\a\ 5 Access is denied."
  std::vector<std::string> lines;
  int flushes = 0;
};

class ScriptedSearchView final : public SearchView {
 public:
  [[nodiscard]] std::vector<Text> GetSelectedFolderPaths() override { return locations; }
  void DisableUIForSearch() override { isLocked = true; }
  void EnableUIAfterSearch() override { isLocked = false; }
  void SetGroupColumnCaption(TextView caption) override { groupCaption = caption; }
  void StartAnimation() override {}
  void StopAnimation() override {}
  void CheckKeepNewestRule(bool) override {}
  void ShowResultsView() override { isResultsView = true; }
  void ShowSearchSummary(const SearchSummary& summary) override { summaries.push_back(summary); }

  std::vector<Text> locations;
  bool isLocked = false;
  bool isResultsView = false;
  Text groupCaption;
  std::vector<SearchSummary> summaries;
};

class ProgramFixture : public ::testing::Test, public MachineFixture {
 protected:
  ProgramFixture();
  ~ProgramFixture() override;

  SearchOutcome Search(std::vector<Text> locations);
  // The groups as sets of full paths, each in the order of the results.
  [[nodiscard]] std::vector<std::vector<std::string>> Groups() const;
  [[nodiscard]] std::string Panel(TextView key) { return ToUtf8(status.panels[Text(key)]); }
  // A file of `size` bytes at a moment (seconds behind the machine's morning).
  void Make(TextView path, std::uint64_t size = 10, std::int64_t moment = 0,
            std::uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE);

  ScriptedMessages messages;
  KeptStatus status;
  ScriptedPump pump;
  ScriptedSearchView view;
  cSearchResults results;
  KeptLog* log = nullptr;  // gLog
};

}  // namespace quillmarsh
