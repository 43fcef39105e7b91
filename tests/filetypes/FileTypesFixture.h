// SPDX-License-Identifier: MIT
// The program's set of file types and its options, and a view that keeps the boxes that are shown.
// A box that a test does not look at fails it.
#pragma once

#include <gtest/gtest.h>

#include "filetypes/cCommonFileTypes.h"
#include "filetypes/modCommonFileTypes.h"
#include "frame/Views.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

class FileTypesFixture : public ::testing::Test, private MessageView {
 protected:
  FileTypesFixture() {
    gViews.messages = this;
    gDupeSettings = std::make_unique<clsDupeSettings>();
    gCommonFileTypes = std::make_unique<cCommonFileTypes>();
    gCommonFileTypes->SetCommonFileTypesList(GetDefaultCFTList());
  }
  ~FileTypesFixture() override {
    EXPECT_EQ(TakeBoxes(), "");
    gCommonFileTypes.reset();
    gDupeSettings.reset();
    gViews = {};
  }

  // The texts of the boxes since the last call.
  std::string TakeBoxes() { return std::exchange(mBoxes, {}); }
  // The member at a position from 1.
  static cCommonFileType& Member(std::int32_t position) {
    return *gCommonFileTypes->CommonFileTypes().Item(position);
  }

 private:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    mBoxes += ToUtf8(request.text);
    return MessageBoxResult::Ok;
  }

  std::string mBoxes;
};

}  // namespace quillmarsh
