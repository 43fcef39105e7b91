// SPDX-License-Identifier: MIT
// A simulated machine with the program-wide objects of this room, for one test. At the end no
// message box may be left that the test did not take, no handle open, no redirection off.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <memory>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Views.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modAccessCheck.h"
#include "support/MachineFixture.h"

namespace quillmarsh {

inline void PrintTo(const Currency& value, std::ostream* out) {
  *out << value.Raw() << " raw";
}

class FsObjectsFixture : public ::testing::Test, protected MachineFixture, private MessageView {
 protected:
  FsObjectsFixture() {
    gFolderPathsList = std::make_unique<cFSXFolderPathsList>();
    gFileSpecParser = std::make_unique<cFileSpecParser>();
    gViews = {.messages = this};
    ResetFlags();
    ResetLocaleFacts();
    ResetIsWindowsNT();
    SetErrorDetailFolder([] { return Text(u"C:\\"); });
  }
  ~FsObjectsFixture() override {
    gViews = {};
    ResetFlags();
    gFolderPathsList.reset();
    gFileSpecParser.reset();
  }

  void TearDown() override {
    for (const MessageBoxRequest& box : mBoxes)
      ADD_FAILURE() << "unexpected box: " << ToUtf8(box.title) << "\n" << ToUtf8(box.text);
    EXPECT_EQ(machine.OpenHandles(), 0U);
    EXPECT_EQ(machine.RedirectionDepth(), 0);
    EXPECT_FALSE(machine.IsImpersonating());
    EXPECT_EQ(hook.OrdersNotMet(), 0U);
  }

  // What the next boxes are answered with; then it is Ok.
  std::deque<MessageBoxResult> answers;
  // The oldest box that was not taken yet.
  MessageBoxRequest TakeBox() {
    if (mBoxes.empty()) {
      ADD_FAILURE() << "no box was shown";
      return {};
    }
    MessageBoxRequest box = std::move(mBoxes.front());
    mBoxes.pop_front();
    return box;
  }
  // Takes a box of the error reporter and answers its source text.
  std::string TakeReportedSource() {
    const std::string title = ToUtf8(TakeBox().title);
    const std::string lead = "Unexpected Error in module: ";
    return title.starts_with(lead) ? title.substr(lead.size()) : "no report: " + title;
  }
  std::string ReportedDetail() const { return machine.ContentsOf(u"C:\\ERR_DETAIL.TXT"); }

  std::size_t Calls(Operation operation, TextView subject = {}) const {
    return hook.CountOf(operation, subject);
  }

 private:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    mBoxes.push_back(request);
    if (answers.empty()) return MessageBoxResult::Ok;
    const MessageBoxResult answer = answers.front();
    answers.pop_front();
    return answer;
  }
  static void ResetFlags() {
    gUserAbort = gIsWow64 = gFSOCancelled = false;
    mCheckFolderPermission = true;
  }

  std::deque<MessageBoxRequest> mBoxes;
};

}  // namespace quillmarsh
