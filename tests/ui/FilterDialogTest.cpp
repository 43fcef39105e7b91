// SPDX-License-Identifier: MIT
// The dialog of inclusions and exclusions: its four lists, their fields, and what OK stores.
#include <QPushButton>

#include "OptionDialogsFixture.h"

namespace quillmarsh {
namespace {

class FilterDialog : public OptionDialogsFixture {
 protected:
  static clsDupeSettings& Settings() { return *gDupeSettings; }
  static void ShowDialog(std::function<void(QDialog&)> inside) {
    InNextBox<QDialog>(std::move(inside));
    ShowIncludeExcludeDialog(nullptr);
  }
};

TEST_F(FilterDialog, OkStoresTheListsAndTheNextStartShowsThem) {
  ShowDialog([&](QDialog& box) {
    EXPECT_EQ(box.windowTitle(), "Duplicate File Search - Inclusions/Exclusions");
    ExpectAllAreNamed(box);
    ExpectNothingIsCut(box);
    EXPECT_TRUE(Find<QPushButton>(box, "mb_HelpButton").isEnabled());
    Type(box, "txtUIncludeFolderPath", " \\photos\\ ");
    Press(box, "mb_cmdAddIncludeFolder");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUIncludeFolderPath").text(), "");
    // The return key adds, and does not close the dialog.
    Type(box, "txtUIncludeFileName", "*.jpg");
    QTest::keyClick(box.focusWidget(), Qt::Key_Return);
    Type(box, "txtUIncludeFileName", "*.png");
    QTest::keyClick(box.focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(RowsOf(box, "lstUFilesToInclude"), "*.jpg *.png");
    Type(box, "txtUExcludeFolderPath", "C:\\Data");
    Press(box, "mb_cmdAddExcludeFolder");
    Type(box, "txtUExcludeFileName", "thumbs.db");
    Press(box, "mb_cmdAddExcludeFile");
    EXPECT_EQ(Settings().ExcludeFiles(), u"") << "not before OK";
    Press(box, "mb_OKButton");
  });
  EXPECT_EQ(Settings().IncludeFolders(), u"\\photos\\");
  EXPECT_EQ(Settings().ExcludeFolders(), u"C:\\Data\\") << "as the walk names it";
  // OK itself has written them.
  Restart();
  EXPECT_EQ(Settings().IncludeFiles(), u"*.jpg<:>*.png");
  ShowDialog([&](QDialog& box) {
    EXPECT_EQ(RowsOf(box, "lstUFoldersToInclude"), "\\photos\\");
    EXPECT_EQ(RowsOf(box, "lstUFilesToInclude"), "*.jpg *.png");
    EXPECT_EQ(RowsOf(box, "lstUFoldersToExclude"), "C:\\Data\\");
    EXPECT_EQ(RowsOf(box, "lstUFilesToExclude"), "thumbs.db");
    Find<QAbstractItemView>(box, "lstUFilesToInclude")
        .setCurrentIndex(Find<QAbstractItemView>(box, "lstUFilesToInclude").model()->index(0, 0));
    Press(box, "mb_cmdRemoveIncludeFile");
    Press(box, "mb_OKButton");
  });
  EXPECT_EQ(Settings().IncludeFiles(), u"*.png");
}

TEST_F(FilterDialog, LeftInAnyOtherWayItChangesNothing) {
  const std::function<void(QDialog&)> ways[] = {
      [](QDialog& box) { Press(box, "mb_CancelButton"); },
      [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); },
      [](QDialog& box) { box.close(); },
  };
  for (const auto& leave : ways) {
    ShowDialog([&](QDialog& box) {
      EXPECT_EQ(RowsOf(box, "lstUFilesToExclude"), "");
      for (const char* const name : {"a", "b"}) {
        Type(box, "txtUExcludeFileName", name);
        Press(box, "mb_cmdAddExcludeFile");
      }
      leave(box);
    });
    EXPECT_EQ(Settings().ExcludeFiles(), u"");
  }
}

TEST_F(FilterDialog, WhatCannotBeAddedOrRemovedIsToldOrIgnored) {
  Settings().SetIncludeFiles(u"*.TXT");
  Settings().SetExcludeFolders(u"C:\\Data\\");
  ShowDialog([&](QDialog& box) {
    // The text that a folder's field begins with is no folder.
    Press(box, "mb_cmdAddIncludeFolder");
    ExpectTold(528, 513);
    Type(box, "txtUExcludeFolderPath", "  ");
    Press(box, "mb_cmdAddExcludeFolder");
    ExpectTold(528, 513);
    Press(box, "mb_cmdAddIncludeFile");
    ExpectTold(240, 241);
    Press(box, "mb_cmdRemoveIncludeFolder");
    ExpectTold(514, 515);
    Press(box, "mb_cmdRemoveExcludeFile");
    ExpectTold(242, 243);
    for (const char* const ignored : {"*.*", "*", "*.txt"}) {
      Type(box, "txtUIncludeFileName", ignored);
      Press(box, "mb_cmdAddIncludeFile");
      EXPECT_EQ(RowsOf(box, "lstUFilesToInclude"), "*.TXT") << ignored;
    }
    Type(box, "txtUExcludeFolderPath", "c:\\DATA");
    Press(box, "mb_cmdAddExcludeFolder");
    EXPECT_EQ(RowsOf(box, "lstUFoldersToExclude"), "C:\\Data\\");
    Press(box, "mb_OKButton");
  });
  EXPECT_EQ(Settings().IncludeFiles(), u"*.TXT");
}

TEST_F(FilterDialog, HasRoomForAllOfItWithLargeLettersToo) {
  const LargeLetters letters;
  ShowDialog([](QDialog& box) {
    ExpectNothingIsCut(box);
    ExpectNothingIsCovered(box);
    box.close();
  });
}

TEST_F(FilterDialog, AFolderFieldSaysWhatToDoUntilAPersonComes) {
  ShowDialog([](QDialog& box) {
    auto& field = Find<QLineEdit>(box, "txtUIncludeFolderPath");
    EXPECT_EQ(field.text(), "Select a folder by pressing the button to the right ==>");
    EXPECT_TRUE(field.isReadOnly());
    QTest::mouseClick(&field, Qt::LeftButton);
    EXPECT_EQ(field.text(), "");
    EXPECT_FALSE(field.isReadOnly());
    auto& other = Find<QLineEdit>(box, "txtUExcludeFolderPath");
    EXPECT_TRUE(other.isReadOnly());
    other.setFocus(Qt::TabFocusReason);
    EXPECT_FALSE(other.isReadOnly());
    EXPECT_FALSE(Find<QLineEdit>(box, "txtUIncludeFileName").isReadOnly());
    Press(box, "mb_CancelButton");
  });
}

TEST_F(FilterDialog, WhatIsPickedGoesIntoTheField) {
  pickers.paths = {u"C:\\Data", u"C:\\Data\\a.txt"};
  ShowDialog([](QDialog& box) {
    Press(box, "mb_SelectIncludeFolder");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUIncludeFolderPath").text(), "C:\\Data\\");
    Press(box, "mb_cmdAddIncludeFolder");
    Press(box, "mb_SelectExcludeFile");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUExcludeFileName").text(), "a.txt");
    Press(box, "mb_SelectExcludeFolder");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUExcludeFolderPath").text(), "") << "none was picked";
    Press(box, "mb_SelectIncludeFile");
    Press(box, "mb_OKButton");
  });
  EXPECT_EQ(Settings().IncludeFolders(), u"C:\\Data\\");
  const std::string start = " | C:\\Users\\User\\Documents";
  EXPECT_EQ(pickers.asked, (std::vector<std::string>{
                               "Select folder to Include | ", "Select file to Exclude" + start,
                               "Select folder to exclude | ", "Select file to Include" + start}));
}

TEST_F(FilterDialog, AListOfCommasStaysOneUntilItIsChanged) {
  struct Row {
    const char* button;
    TextView stored;
  };
  for (const Row& row : {Row{"mb_CancelButton", u"a,b"}, Row{"mb_cmdAddExcludeFile", u"a,b<:>c"},
                         Row{"mb_cmdRemoveExcludeFile", u"b"}}) {
    Settings().SetExcludeFiles(u"a,b");
    ShowDialog([&](QDialog& box) {
      EXPECT_EQ(RowsOf(box, "lstUFilesToExclude"), "a b");
      auto& list = Find<QAbstractItemView>(box, "lstUFilesToExclude");
      list.setCurrentIndex(list.model()->index(0, 0));
      Type(box, "txtUExcludeFileName", "c");
      Press(box, row.button);
      if (box.isVisible()) Press(box, "mb_OKButton");
    });
    EXPECT_EQ(Settings().ExcludeFiles(), row.stored) << row.button;
  }
}

}  // namespace
}  // namespace quillmarsh
