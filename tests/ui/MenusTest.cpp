// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QHeaderView>
#include <QTest>

#include "WindowFixture.h"
#include "ui/HelpWindow.h"

namespace quillmarsh {
namespace {

constexpr const char* kMenuBar = R"(mnuFile: File
  mnuFileFindDupes: Find Duplicate Files
  mnuFileHyphen1 -
  mnuFileViewSelected: View File in Associated Application
  mnuFileOpenInContainingFolder: Open In Containing Folder
  mnuFileRenameFile: Rename...
  mnuFileHyphen2 -
  mnuFileMark: Select File for Removal
  mnuFileUnmark: Deselect File
  mnuFileSelectMultiple: Select Multiple Files
    mnuFileKeepNewest: Keep the NEWEST duplicate in each group and select the others
    mnuFileKeepOldest: Keep the OLDEST duplicate in each group and select the others
    mnuFileHyphen4 -
    mnuFileSelectDupesInFolder: Select the Duplicates From Each Group That Are In This Folder
    mnuFileSelectDupesNotInFolder: Select the Duplicates From Each Group That Are NOT In This Folder
    mnuFileSelectDupesInDrive: Select the Duplicates From Each Group That Are In This Drive
    mnuFileSelectDupesNotInDrive: Select the Duplicates From Each Group That Are NOT In This Drive
  mnuFileHyphen6 -
  mnuFileRemovedMarkedFiles: Remove Selected Files
  mnuFileHyphen7 -
  mnuFileAddFileToExcludeList: Add This File to the Exclude List
  mnuFileAddFileExtensionToExcludeList: Exclude all Files With This Extension
  mnuFileHyphen8 -
  mnuFileViewSelectedFileProperties: File Properties
  mnuFileViewSelectedMediaFileProperties: Media File Properties
  mnuFileHyphen9 -
  mnuFileExport: Export Duplicates List...
  mnuFileHyphen10 -
  mnuFileExit: Exit
mnuOptions: Options
  mnuOptionsIncludeSubfolders: Include Subfolders
  mnuOptionsFileTypes: File Types
    mnuOptionsFileType(0): All File Types
    mnuOptionsFileType(1): Audio Files
    mnuOptionsFileType(2): Document Files
    mnuOptionsFileType(3): Image Files
    mnuOptionsFileType(4): Video Files
    mnuEditHyphen1 -
    mnuOptionsEditFileTypes: Edit File Types...
    mnuOptionsRestoreDefaultFileTypes: Restore Default File Types
  mnuOptionsDupeCriteria: Duplicate Criteria
    mnuOptionsDupeCriteriaOption(0): Names Match
    mnuOptionsDupeCriteriaOption(1): Sizes Match
    mnuOptionsDupeCriteriaOption(2): Create Date/Times Match
    mnuOptionsDupeCriteriaOption(3): Last Modified Date/Times Match
    mnuOptionsDupeCriteriaOption(4): Contents Match
  mnuIgnoreOptions: Ignore Options
    mnuOptionsIgnoreZeroByteFiles: Ignore Zero Byte Files
    mnuOptionsIgnoreSystemFiles: Ignore System Folders/Files
    mnuOptionsIgnoreHiddenFiles: Ignore Hidden Folders/Files
    mnuOptionsIgnoreTemporaryFiles: Ignore Temporary Folders/Files
    mnuOptionsIgnoreFilesInWinDir: Ignore Files in Windows Folder Tree
    mnuOptionsIgnoreFilesInRecycleBin: Ignore Files in Recycle Bin
  mnuOptionsRemoval: Removal Options
    mnuRemovalOptions(0): Delete Permanently
    mnuRemovalOptions(1): Send To Recycle Bin
    mnuRemovalOptions(2): Move to Folder \DUPES (Original path information is preserved)
    mnuRemovalOptions(3): Move to Other Folder... (Original path information is NOT preserved)
  mnuOptionsFilter: Filter Files and Folders from Search...
  mnuOptionsCheckFolderPermission: Check Folder Permission Before Scan
  mnuOptionsDupesFolderLocation: DUPES Folder Location...
mnuNavigation: Navigation
  mnuNavigationSearchWindow: Go To Search Window
  mnuNavigationResultsWindow: Go To Results Window
mnuHistory: History
  mnuHistoryView: View
  mnuHistoryClear: Clear
mnuHelp: Help
  mnuHelpContents: Contents
  mnuHelpTroubleshooting: Troubleshooting
    mnuHelpTroubeshootingGeneral: General Troubleshooting Information
    mnuHelpTroubleshootingAnalyzeFSO: Analyze File or Folder...
    mnuHelpTroubleshootingConfigFolder: Go to Configuration Files Folder
  mnuHelpWeb: Quillmarsh on the Web
    mnuHelpTroubleshootingWebSite: Go to the Web Site
    mnuHelpContactUs: Contact Us via E-mail
  mnuHelpHyphen1 -
  mnuHelpAbout: About...
)";

constexpr const char* kPopup = R"(mnuPopupViewFile: View File
mnuPopupOpenInContainingFolder: Open In Containing Folder
mnuPopupRenameFile: Rename File...
-
mnuPopupMarkFile: Select File for Removal
mnuPopupUnmarkFile: Deselect File
mnuPopupSelectMultipleFiles: Select Multiple Files
  mnuPopupKeepNewest: Keep the NEWEST duplicate in each group and select the others
  mnuPopupKeepOldest: Keep the OLDEST duplicate in each group and select the others
  mnuPopupSelectDupesInFolder: Select the Duplicates From Each Group That Are In This Folder
  mnuPopupSelectDupesNotInFolder: Select the Duplicates From Each Group That Are NOT In This Folder
  mnuPopupSelectDupesInDrive: Select the Duplicates From Each Group That Are In This Drive
  mnuPopupSelectDupesNotInDrive: Select the Duplicates From Each Group That Are NOT In This Drive
mnuPopupRemoveMarkedFiles: Remove Selected Files
-
mnuPopupAddFileToExcludeList: Add File to Exclude List
mnuPopupAddFileExtensionToExcludeList: Exclude All Files with this Extension
-
mnuPopupProperties: File Properties
mnuPopupMediaProperties: Media File Properties
)";

constexpr const char* kBars = R"([smtSearchToolbar]
SEARCH_LABEL_KEY Search
START_SEARCH_KEY Start
STOP_KEY Stop
-
TOOLS_LABEL_KEY Tools
FILTER_KEY Filter Folders/Files
HISTORY_KEY View History
-
NAVIGATE_LABEL_KEY Navigate
RESULTSVIEW_KEY Results View
[smtSearchResultsToolbar]
SELECT_LABEL_KEY Select
WIZARD_KEY Selection Assistant...
UNDO_KEY Undo Selections
-
REMOVE_LABEL_KEY Remove
REMOVE_KEY Remove Files
OPTIONS_KEY Options
-
NAVIGATE_LABEL_KEY Navigate
SEARCHVIEW_KEY Search View
[suRemovalToolbar]
VIEW_KEY View
PROPERTIES_KEY Properties
MEDIAINFO_KEY Media Info
-
SELECT_KEY Select File for Removal
UNSELECT_KEY Deselect File
QUICKSELECT_KEY Select Multiple Files
)";

// `namesSeparators`: the separators of the bar have names, those of the pop-up menu need none.
QString Described(const QList<QAction*>& actions, bool namesSeparators, int depth = 0) {
  QString text;
  for (const QAction* action : actions) {
    text += QString(depth * 2, QLatin1Char(' '));
    if (action->isSeparator()) {
      text +=
          namesSeparators ? action->objectName() + QStringLiteral(" -\n") : QStringLiteral("-\n");
      continue;
    }
    const QMenu* const menu = action->menu();
    text += (menu != nullptr ? menu->objectName() : action->objectName()) + QStringLiteral(": ") +
            action->text().remove(QLatin1Char('&')) + QLatin1Char('\n');
    if (menu != nullptr) text += Described(menu->actions(), namesSeparators, depth + 1);
  }
  return text;
}

QString Described(ToolBar& bar) {
  QString text = QStringLiteral("[%1]\n").arg(bar.objectName());
  for (QAction* action : bar.actions()) {
    QWidget* const item = bar.widgetForAction(action);
    const auto* const label = qobject_cast<QLabel*>(item);
    text += action->isSeparator()
                ? QStringLiteral("-\n")
                : item->objectName() + QLatin1Char(' ') +
                      (label != nullptr ? label->text() : action->iconText()) + QLatin1Char('\n');
  }
  return text;
}

class MenusTest : public WindowFixture {};

TEST_F(MenusTest, StandInTheirOrderUnderTheirNames) {
  frmFindDuplicates& window = MakeWindow();
  EXPECT_EQ(Described(window.menuBar()->actions(), true).toStdString(), kMenuBar);
  EXPECT_EQ(
      Described(Parts().menus->Menu(QStringLiteral("mnuPopup"))->actions(), false).toStdString(),
      kPopup);
  EXPECT_EQ((Described(*Parts().smtSearchToolbar) + Described(*Parts().smtSearchResultsToolbar) +
             Described(*Parts().suRemovalToolbar))
                .toStdString(),
            kBars);
}

TEST_F(MenusTest, EveryCaptionIsSetAndEveryStopOfTheKeyboardHasAName) {
  frmFindDuplicates& window = MakeWindow();
  QStringList captions;
  for (const QAction* action : window.findChildren<QAction*>()) captions << action->text();
  for (const QLabel* label : window.findChildren<QLabel*>()) captions << label->text();
  for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
    captions << button->text() << button->toolTip();
  for (const QHeaderView* header : window.findChildren<QHeaderView*>()) {
    for (int section = 0; section < header->count(); ++section)
      captions << header->model()->headerData(section, Qt::Horizontal).toString();
  }
  EXPECT_GT(captions.size(), 120);
  for (const QString& caption : captions)
    EXPECT_FALSE(caption.startsWith(QStringLiteral("$_"))) << caption.toStdString();
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if ((widget->focusPolicy() & Qt::TabFocus) == 0 || qobject_cast<const QMenu*>(widget)) continue;
    // The inner parts of a control speak for it.
    if (widget->objectName().startsWith(QStringLiteral("qt_")) ||
        widget->inherits("QToolBarExtension"))
      continue;
    EXPECT_FALSE(widget->accessibleName().isEmpty())
        << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
  }
}

HelpWindow* OpenHelp(frmFindDuplicates& window) {
  QTest::keyClick(&window, Qt::Key_F1);
  auto* const help = window.findChild<HelpWindow*>();
  if (help == nullptr) {
    ADD_FAILURE() << "no help";
    return nullptr;
  }
  EXPECT_TRUE(QTest::qWaitForWindowActive(help));
  return help;
}

std::string PageOf(const HelpWindow& help) {
  return help.findChild<QTextBrowser*>()->source().fileName().toStdString();
}

TEST_F(MenusTest, F1AndTheHelpMenuOpenTheirTopicsAndTheWindowTakesTheHelpWithIt) {
  frmFindDuplicates& window = MakeWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  HelpWindow* const help = OpenHelp(window);
  ASSERT_NE(help, nullptr);
  EXPECT_EQ(PageOf(*help), "index.html");
  Parts().menus->Entry(QStringLiteral("mnuHelpTroubeshootingGeneral"))->trigger();
  EXPECT_EQ(PageOf(*help), "troubleshooting.html");
  Parts().menus->Entry(QStringLiteral("mnuHelpContents"))->trigger();
  EXPECT_EQ(PageOf(*help), "index.html");
  QTimer::singleShot(0, &window, &QWidget::close);
  QTimer::singleShot(10'000, help, [] { QCoreApplication::exit(1); });
  EXPECT_EQ(QApplication::exec(), 0) << "the program goes on";
  EXPECT_FALSE(help->isVisible());
}

TEST_F(MenusTest, WhileASearchRunsTheHelpStandsThereAndTakesNoInput) {
  MakePairs(3);
  frmFindDuplicates& window = MakeWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  HelpWindow* const help = OpenHelp(window);
  ASSERT_NE(help, nullptr);
  AddFolder(FilesFolder());
  auto* const pages = help->findChild<QTextBrowser*>();
  auto* const field = help->findChild<QLineEdit*>(QStringLiteral("find"));
  bool isTried = false;
  Search([&](int) {
    isTried = true;
    QTest::keyClick(help, Qt::Key_F1);
    QTest::keyClicks(field, "file");
    QTest::mouseClick(help->findChild<QPushButton*>(QStringLiteral("findNext")), Qt::LeftButton);
    QTest::keyClick(pages, Qt::Key_PageDown);
    EXPECT_TRUE(help->isVisible());
  });
  EXPECT_TRUE(isTried);
  EXPECT_EQ(field->text(), "");
  EXPECT_FALSE(pages->textCursor().hasSelection());
  EXPECT_EQ(Panel(DUPLICATES).left(12), "Duplicates:6");
  QTest::keyClicks(field, "file");
  EXPECT_TRUE(pages->textCursor().hasSelection());

  // Closing is no input.
  Search([&](int pump) {
    if (pump == 2) help->close();
  });
  EXPECT_FALSE(help->isVisible());
}

}  // namespace
}  // namespace quillmarsh
