// SPDX-License-Identifier: MIT
// The dialogs that edit options, out of the window and over real files.
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

#include "ModalBox.h"
#include "WindowFixture.h"
#include "frame/CommandScope.h"
#include "frame/TextTable.h"
#include "removal/ScriptedPickers.h"
#include "settings/clsDupeSettings.h"
#include "ui/QtText.h"

namespace quillmarsh {
namespace {

class WindowDialogsTest : public WindowFixture {
 protected:
  void SetUp() override {
    MakeWindow();
    Trigger("mnuOptionsFileType(0)");
    AddFolder(FilesFolder());
  }
  void Trigger(const char* entry) { Parts().menus->Entry(QString::fromLatin1(entry))->trigger(); }
  void PressBar(ToolBar& bar, const char* key) { WindowFixture::Press(bar, key); }
  static void PressIn(QDialog& box, const char* name) { quillmarsh::Press(box, name); }
  static void Type(QDialog& box, const char* name, const QString& text) {
    auto* const field = box.findChild<QLineEdit*>(QString::fromLatin1(name));
    ASSERT_NE(field, nullptr) << name;
    field->setFocus();
    field->setText(text);
  }
  // The files that are marked, by the ends of their paths.
  std::string Marked() {
    std::string text;
    const cSearchResults& results = Parts().results;
    for (std::int32_t index = 1; index <= results.RecordCount(); ++index) {
      if (!results.mFileMarked[static_cast<std::size_t>(index) - 1]) continue;
      const Text path = results.FullPathOf(results.Record(index));
      text += ToUtf8(path.substr(path.find(u"\\files\\") + 7)) + " ";
    }
    return text;
  }
};

TEST_F(WindowDialogsTest, TheAssistantWithoutGroupsSaysThatThereIsNothingToSelect) {
  boxes.Expect(LoadResString(318));
  PressBar(*Parts().smtSearchResultsToolbar, "WIZARD_KEY");
  EXPECT_EQ(dialogsShown, 0);
}

TEST_F(WindowDialogsTest, TheAssistantSelectsByARuleOfAPersonWhoWritesPathsOfTheMachine) {
  MakePairs(2);
  Search();
  dialogsShown = 0;
  PressBar(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
  PressBar(*Parts().smtSearchResultsToolbar, "WIZARD_KEY");
  EXPECT_EQ(dialogsShown, 1) << "cancelled, and no summary behind it";
  EXPECT_EQ(Marked(), "");

  inNextDialog = [this](QDialog& box) {
    EXPECT_EQ(box.objectName(), "frmMarkForRemovalWizard");
    EXPECT_TRUE(CommandScope::IsRunning()) << "all else is locked";
    box.findChild<QComboBox*>(QStringLiteral("cboMarkForRemovalMethods"))->setCurrentIndex(6);
    boxes.Expect(LoadResString(599));
    Type(box, "txtUFolderSpec", FilesFolder() + QStringLiteral("/none"));
    PressIn(box, "mb_cmdMarkNow");
    EXPECT_TRUE(box.isVisible());
    Type(box, "txtUFolderSpec", QLatin1Char(' ') + FilesFolder() + QStringLiteral("/two/ "));
    PressIn(box, "mb_cmdMarkNow");
    EXPECT_FALSE(box.isVisible());
  };
  PressBar(*Parts().smtSearchResultsToolbar, "WIZARD_KEY");
  EXPECT_EQ(dialogsShown, 3) << "the assistant and the summary";
  EXPECT_EQ(Marked(), "two\\pair0.txt two\\pair1.txt ");
  EXPECT_TRUE(Panel(FILES_SELECTED).startsWith(QStringLiteral("Selected:2 ")));
  EXPECT_TRUE(IsChecked("mnuFileKeepNewest")) << "the rules of the menus stay as they were";
}

TEST_F(WindowDialogsTest, WhatIsFilteredIsNotFound) {
  MakePairs(2);
  MakeFile(QStringLiteral("two/old/a.bak"), "the same");
  MakeFile(QStringLiteral("one/a.bak"), "the same");
  MakeFile(QStringLiteral("one/b:c.doc"), "the same");
  MakeFile(QStringLiteral("two/b:c.doc"), "the same");
  for (const bool isByToolBar : {true, false}) {
    inNextDialog = [&](QDialog& box) {
      EXPECT_EQ(box.objectName(), "frmIncludeExclude");
      if (isByToolBar) {
        Type(box, "txtUExcludeFolderPath", FilesFolder() + QStringLiteral("/two/old"));
        PressIn(box, "mb_cmdAddExcludeFolder");
        auto* const list = box.findChild<QListWidget*>(QStringLiteral("lstUFoldersToExclude"));
        EXPECT_EQ(list->item(0)->text(), FilesFolder() + QStringLiteral("/two/old/"));
      } else {
        Type(box, "txtUExcludeFileName", QStringLiteral("b:?.*"));
        PressIn(box, "mb_cmdAddExcludeFile");
      }
      PressIn(box, "mb_OKButton");
    };
    if (isByToolBar) {
      PressBar(*Parts().smtSearchToolbar, "FILTER_KEY");
    } else {
      Trigger("mnuOptionsFilter");
    }
    EXPECT_FALSE(inNextDialog);
    Search();
    EXPECT_TRUE(
        Panel(DUPLICATES).startsWith(QStringLiteral("Duplicates:%1 ").arg(isByToolBar ? 6 : 4)));
  }
}

TEST_F(WindowDialogsTest, APickedFolderThatNobodyCanTypeIsLeftOutAllTheSame) {
  MakePairs(1);
  MakeFile(QStringLiteral("one/line\nbreak/b.txt"), "the same");
  MakeFile(QStringLiteral("two/b.txt"), "the same");
  const Pickers usual = gPickers;
  {
    ScriptedPickers pickers;
    const QString odd = FilesFolder() + QStringLiteral("/one/line\nbreak");
    pickers.paths = {TheMachine().Drives().LocationFromNative(odd.toStdString()).path};
    inNextDialog = [](QDialog& box) {
      PressIn(box, "mb_SelectExcludeFolder");
      PressIn(box, "mb_cmdAddExcludeFolder");
      PressIn(box, "mb_OKButton");
    };
    PressBar(*Parts().smtSearchToolbar, "FILTER_KEY");
  }
  gPickers = usual;
  Search();
  EXPECT_TRUE(Panel(DUPLICATES).startsWith(QStringLiteral("Duplicates:2 ")));
}

TEST_F(WindowDialogsTest, TheFiltersFollowTheMasksOfTheChosenType) {
  Trigger("mnuOptionsFileType(3)");
  const Text before = gDupeSettings->IncludeFiles();
  inNextDialog = [this](QDialog& box) {
    EXPECT_EQ(box.objectName(), "frmEditCFTList");
    box.findChild<QComboBox*>(QStringLiteral("cboSFTs"))->setCurrentIndex(2);
    boxes.ExpectInput(u"*.ext", u".mp9");
    PressIn(box, "mb_cmdAddCFTDetail");
    PressIn(box, "mb_cmdOK");
  };
  Trigger("mnuOptionsEditFileTypes");
  EXPECT_EQ(gDupeSettings->IncludeFiles(), before + u"<:>*.mp9");

  gDupeSettings->SetExcludeFiles(u"*.keep");
  inNextDialog = [](QDialog& box) { PressIn(box, "mb_cmdCancel"); };
  Trigger("mnuOptionsEditFileTypes");
  EXPECT_EQ(gDupeSettings->ExcludeFiles(), u"*.keep") << "nothing of the type has changed";
}

}  // namespace
}  // namespace quillmarsh
