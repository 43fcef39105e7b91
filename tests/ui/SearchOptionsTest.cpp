// SPDX-License-Identifier: MIT
#include "ui/SearchOptions.h"

#include <gtest/gtest.h>

#include <map>

#include "frame/TextTable.h"
#include "frame/Views.h"

namespace quillmarsh {
namespace {

// Like a list whose rows report what the program writes into them as well.
class EchoingView final : public SearchOptionsView {
 public:
  void CheckMenuEntry(TextView name, bool isChecked) override { checks[Text(name)] = isChecked; }
  void EnableMenuEntry(TextView, bool) override {}
  void SetOptionRow(TextView key, TextView text) override {
    rows[Text(key)] = text;
    if (options != nullptr) options->OptionListChanged(key, LoadResString(466), text);
  }
  void EnableOptionRow(TextView, bool) override {}
  void SetGroupsCaption(TextView caption) override { groups += u'[' + Text(caption) + u']'; }
  void SetDetailsCaption(TextView caption) override { details += u'[' + Text(caption) + u']'; }
  void SetStatusForNewSearch() override { ++clears; }

  SearchOptions* options = nullptr;
  std::map<Text, bool> checks;
  std::map<Text, Text> rows;
  Text groups;
  Text details;
  int clears = 0;
};

class CountingBoxes final : public MessageView {
 public:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    texts += request.text;
    ++count;
    return MessageBoxResult::Ok;
  }
  Text texts;
  int count = 0;
};

class SearchOptionsTest : public testing::Test {
 protected:
  SearchOptionsTest() {
    gViews.messages = &boxes;
    settings.SetNamesMatch(true);
    settings.SetSizesMatch(true);
    options.ShowSettings();
    view.options = &options;
    view.clears = 0;
  }
  ~SearchOptionsTest() override { gViews = {}; }
  void ChooseInList(TextView key, bool value) {
    options.OptionListChanged(key, LoadResString(466), BoolToText(value));
  }

  CountingBoxes boxes;
  clsDupeSettings settings;
  EchoingView view;
  SearchOptions options{settings, view};
};

TEST_F(SearchOptionsTest, AChangeFromTheMenuRunsOnceAlthoughTheListEchoesIt) {
  settings.SetIgnoreSystemFiles(true);
  settings.SetIgnoreSystemFolders(true);
  EXPECT_TRUE(options.MenuEntryChosen(u"mnuOptionsIgnoreSystemFiles"));
  EXPECT_EQ(boxes.count, 1);
  EXPECT_EQ(view.clears, 1);
  EXPECT_FALSE(settings.IgnoreSystemFiles());
  EXPECT_FALSE(settings.IgnoreSystemFolders());
  EXPECT_EQ(view.rows[u"IGNORE_SYSTEMFILES_KEY"], u"False");
  EXPECT_EQ(
      boxes.texts.substr(boxes.texts.find(u"Most")),
      LoadResString(468) + u"\r\n" + LoadResString(469) + u"\r\n" + LoadResString(470) + u"\r\n");
  EXPECT_TRUE(options.MenuEntryChosen(u"mnuOptionsIgnoreSystemFiles"));
  EXPECT_EQ(boxes.count, 1) << "switching it on needs no warning";
}

// People know each list's heading to follow from one of the two places only.
TEST_F(SearchOptionsTest, ACriterionSetsTheHeadingOfOneListFromTheMenuAndOfTheOtherFromTheList) {
  EXPECT_TRUE(options.MenuEntryChosen(u"mnuOptionsDupeCriteriaOption(0)"));
  EXPECT_EQ(view.details, u"[File Size]");
  EXPECT_EQ(view.groups, u"");
  EXPECT_EQ(view.clears, 1);
  ChooseInList(u"names_match_key", true);
  EXPECT_EQ(view.groups, u"[File Name]");
  EXPECT_EQ(view.details, u"[File Size]");
  EXPECT_TRUE(view.checks[u"mnuOptionsDupeCriteriaOption(0)"]);
}

TEST_F(SearchOptionsTest, OnlySystemHiddenAndWindowsWarnAndAllButSubfoldersAndTypeClearTheResults) {
  const struct {
    const char16_t* key;
    int warnings;
    int clears;
  } kCases[] = {{u"IGNORE_ZEROBYTE_FILES_KEY", 0, 1}, {u"IGNORE_SYSTEMFILES_KEY", 1, 1},
                {u"IGNORE_HIDDENFILES_KEY", 1, 1},    {u"IGNORE_TEMPORARYFILES_KEY", 0, 1},
                {u"IGNORE_WINDOWSFILES_KEY", 1, 1},   {u"INCLUDE_SUBFOLDERS_KEY", 0, 0},
                {u"IGNORE_RECYCLEBINFILES_KEY", 0, 0}};
  for (const auto& row : kCases) {
    SCOPED_TRACE(ToUtf8(row.key));
    ChooseInList(row.key, true);
    boxes.count = view.clears = 0;
    ChooseInList(row.key, false);
    EXPECT_EQ(boxes.count, row.warnings);
    EXPECT_EQ(view.clears, row.clears);
  }
}

TEST_F(SearchOptionsTest, NothingOfTheListCountsWhileTheWindowLoadsNorAnotherProperty) {
  options.SetLoadingForm(true);
  ChooseInList(u"SIZES_MATCH_KEY", false);
  options.SetLoadingForm(false);
  options.OptionListChanged(u"SIZES_MATCH_KEY", u"Caption", u"False");
  EXPECT_TRUE(settings.SizesMatch());
  EXPECT_EQ(view.clears, 0);
}

}  // namespace
}  // namespace quillmarsh
