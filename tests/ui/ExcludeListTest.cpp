// SPDX-License-Identifier: MIT
#include "ui/ExcludeListCommands.h"

#include <gtest/gtest.h>

#include "frame/TextTable.h"
#include "frame/Views.h"

namespace quillmarsh {
namespace {

struct ExcludeCase {
  const char16_t* fileName;
  bool byExtension;
  const char16_t* before;
  const char16_t* after;
  const char16_t* told;
  const char16_t* title;
};

class LastBox final : public MessageView {
 public:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    last = request;
    return MessageBoxResult::Ok;
  }
  MessageBoxRequest last;
};

TEST(ExcludeList, ANameOrItsExtensionGoesInFrontOnce) {
  const ExcludeCase kCases[] = {
      {u"a.txt", false, u"", u"a.txt<:>",
       u"The file has been added to the Exclude Files list.\r\n"
       u"The changes will take effect on your next Duplicate File search.",
       u"Add File to Exclude List"},
      {u"A.TXT", false, u"b<:>a.txt", u"b<:>a.txt",
       u"This file is already in the Exclude Files list", u"Add File to Exclude List"},
      {u"keep;a.txt", false, u"", u"keep?a.txt<:>",
       u"The file has been added to the Exclude Files list.\r\n"
       u"The changes will take effect on your next Duplicate File search.",
       u"Add File to Exclude List"},
      {u"", false, u"b", u"b", u"No file is selected", u"Add To Exclude List"},
      {u"a.b.Txt", true, u"b", u"*.Txt<:>b",
       u"The extension has been added to the Exclude Files list.\r\n"
       u"The changes will take effect on your next Duplicate File search.",
       u"Add Extension to Exclude List"},
      {u"x.txt", true, u"*.TXT<:>", u"*.TXT<:>",
       u"This extension is already in the Exclude Files list", u"Add Extension to Exclude List"},
      {u"README", true, u"", u"", u"The selected file does not have an extension",
       u"Add Extension to Exclude List"},
  };
  LastBox box;
  gViews.messages = &box;
  for (const ExcludeCase& row : kCases) {
    SCOPED_TRACE(ToUtf8(row.fileName));
    clsDupeSettings settings;
    settings.SetExcludeFiles(row.before);
    if (row.byExtension) {
      mnuFileAddFileExtensionToExcludeList_Click(row.fileName, settings);
    } else {
      mnuFileAddFileToExcludeList_Click(row.fileName, settings);
    }
    EXPECT_EQ(settings.ExcludeFiles(), row.after);
    EXPECT_EQ(box.last.text, row.told);
    EXPECT_EQ(box.last.title, row.title);
  }
  gViews = {};
}

}  // namespace
}  // namespace quillmarsh
