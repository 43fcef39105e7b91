// SPDX-License-Identifier: MIT
// Searches in the window, and what a person does while one runs.
#include <QApplication>
#include <QMimeData>
#include <QTest>

#include "WindowFixture.h"
#include "frame/CommandScope.h"
#include "frame/ProgramFlags.h"
#include "frame/TextTable.h"
#include "removal/history/cLog.h"
#include "ui/QtText.h"

namespace quillmarsh {
namespace {

constexpr int kPairs = 25;  // enough for some ten pumps

class WindowSearchTest : public WindowFixture {
 protected:
  void SetUp() override {
    MakeWindow();
    Parts().menus->Entry(QStringLiteral("mnuOptionsFileType(0)"))->trigger();
    MakePairs(kPairs);
    AddFolder(FilesFolder());
  }
  QToolButton& Stop() { return *Parts().smtSearchToolbar->Button(QStringLiteral("STOP_KEY")); }
  void ExpectIdle() {
    EXPECT_FALSE(CommandScope::IsRunning());
    EXPECT_FALSE(Stop().isEnabled());
    EXPECT_TRUE(Parts().smtSearchToolbar->Button(QStringLiteral("START_SEARCH_KEY"))->isEnabled());
    EXPECT_TRUE(Parts().mb_cmdAddFolder->isEnabled());
    EXPECT_TRUE(Parts().smtSearchOptions->isEnabled());
    EXPECT_FALSE(Parts().aniSearchProgress->IsPlaying());
    for (const QAction* menu : Parts().window.menuBar()->actions())
      EXPECT_TRUE(menu->isEnabled()) << menu->text().toStdString();
  }
  int HistoryLines(TextView text) {
    int count = 0;
    const Text log = gLog->GetLogEntriesFromFile();
    for (auto at = log.find(text); at != Text::npos; at = log.find(text, at + 1)) ++count;
    return count;
  }
};

TEST_F(WindowSearchTest, ASearchShowsItsGroupsMarksAllButOneAndCanBeRunAgain) {
  Search();
  EXPECT_EQ(dialogsShown, 1) << "the summary";
  EXPECT_TRUE(Parts().pctResultsContainer->isVisible());
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), kPairs);
  EXPECT_EQ(Parts().ulvwDupeDetails->Model().rowCount(), 2);
  EXPECT_TRUE(Panel(FILES_SEARCHED).startsWith(QStringLiteral("Files:%1").arg(2 * kPairs)));
  EXPECT_TRUE(Panel(FILES_SELECTED).startsWith(QStringLiteral("Selected:%1 (").arg(kPairs)));
  EXPECT_TRUE(IsChecked("mnuFileKeepNewest"));
  EXPECT_TRUE(IsChecked("mnuPopupKeepNewest"));
  ExpectIdle();

  Press(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
  EXPECT_EQ(Panel(FILES_SELECTED), QStringLiteral("Selected:0"));
  Press(*Parts().smtSearchResultsToolbar, "SEARCHVIEW_KEY");
  MakePairs(kPairs + 1);
  Search();
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), kPairs + 1);
  ExpectIdle();
}

TEST_F(WindowSearchTest, ACriterionClearsTheResultsAndSubfoldersDoNot) {
  Search();
  Parts().menus->Entry(QStringLiteral("mnuOptionsIncludeSubfolders"))->trigger();
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), kPairs);
  Parts().menus->Entry(QStringLiteral("mnuOptionsDupeCriteriaOption(2)"))->trigger();
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), 0);
  EXPECT_EQ(Parts().ulvwDupeDetails->Model().rowCount(), 0);
  EXPECT_EQ(Panel(DUPLICATES), QStringLiteral("Duplicates:0"));
}

TEST_F(WindowSearchTest, StopIsObeyedAndASecondPressIsAnswered) {
  bool isPressed = false;
  boxes.Expect(LoadResString(476));
  Search([&](int) {
    if (isPressed || !Stop().isEnabled()) return;
    isPressed = true;
    EXPECT_TRUE(Parts().aniSearchProgress->IsPlaying());
    QTest::mouseClick(&Stop(), Qt::LeftButton);
    EXPECT_TRUE(gUserAbort);
    QTest::mouseClick(&Stop(), Qt::LeftButton);
  });
  EXPECT_TRUE(isPressed);
  EXPECT_EQ(dialogsShown, 0);
  EXPECT_EQ(Panel(PANEL1), ToQString(LoadResString(305)));
  EXPECT_TRUE(Parts().pctSearchContainer->isVisible());
  ExpectIdle();
  Search();
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), kPairs) << "the next search begins afresh";
}

TEST_F(WindowSearchTest, EscStopsWhereverTheKeyboardIs) {
  Parts().menus->Entry(QStringLiteral("mnuOptionsDupeCriteriaOption(4)"))->trigger();
  gStopCRC = false;
  Search([&](int pump) {
    if (pump == 4) QTest::keyClick(Parts().ulstFoldersToSearch, Qt::Key_Escape);
  });
  EXPECT_TRUE(gUserAbort);
  EXPECT_TRUE(gStopCRC);
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), 0);
  ExpectIdle();
}

// One look at everything that can be used, in every pump.
TEST_F(WindowSearchTest, NothingButStopTakesInputWhileASearchRuns) {
  const QStringList options = {QStringLiteral("mnuOptionsIncludeSubfolders"),
                               QStringLiteral("mnuOptionsDupeCriteriaOption(1)")};
  int rounds = 0;
  Search([&](int) {
    if (!Stop().isEnabled()) return;
    ++rounds;
    for (QWidget* widget : Parts().window.findChildren<QWidget*>()) {
      if (widget == &Stop()) continue;
      QTest::mouseClick(widget, Qt::LeftButton);
      QTest::mouseDClick(widget, Qt::LeftButton);
      QTest::mouseClick(widget, Qt::RightButton);
      for (const Qt::Key key :
           {Qt::Key_Space, Qt::Key_Return, Qt::Key_F5, Qt::Key_Delete, Qt::Key_F10, Qt::Key_Down})
        QTest::keyClick(widget, key);
      QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
      QCoreApplication::sendEvent(widget, &menu);
    }
    for (QAction* action : Parts().window.findChildren<QAction*>()) {
      if (action != Stop().defaultAction()) action->trigger();
    }
    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(FilesFolder() + QStringLiteral("/one"))});
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Parts().ulstFoldersToSearch->viewport(), &drop);
    EXPECT_EQ(popupsShown, 0);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_TRUE(Parts().pctSearchContainer->isVisible());
    EXPECT_TRUE(Parts().window.isVisible());
  });
  EXPECT_GT(rounds, 2);
  EXPECT_FALSE(gUserAbort);
  EXPECT_EQ(dialogsShown, 1) << "the summary alone";
  EXPECT_EQ(Parts().folders.Folders().size(), 1U);
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), kPairs);
  for (const QString& option : options)
    EXPECT_TRUE(Parts().menus->Entry(option)->isChecked()) << option.toStdString();
  EXPECT_EQ(HistoryLines(u"Begin Duplicate Search"), 1);
}

class WindowCloseTest : public WindowSearchTest, public testing::WithParamInterface<int> {};

// At one of its pumps after the other.
TEST_P(WindowCloseTest, TheWindowClosesAtOnceAndTheSearchEndsBehindIt) {
  if (GetParam() % 2 == 0)
    Parts().menus->Entry(QStringLiteral("mnuOptionsDupeCriteriaOption(4)"))->trigger();
  bool isClosed = false;
  Search([&](int pump) {
    if (pump != GetParam()) return;
    isClosed = Parts().window.close();
    EXPECT_FALSE(Parts().window.isVisible());
    EXPECT_TRUE(QFile::exists(qEnvironmentVariable("XDG_DATA_HOME") +
                              QStringLiteral("/Harrow Fen/Quillmarsh/quillmarsh.ini")));
  });
  EXPECT_TRUE(isClosed);
  EXPECT_EQ(dialogsShown, 0);
  EXPECT_FALSE(CommandScope::IsRunning());
  EXPECT_LE(HistoryLines(u"Begin Duplicate Search"), 1) << "nothing is written twice";
  EXPECT_EQ(HistoryLines(u"End Duplicate Search"), 1);
  ReleaseWindow();
}

INSTANTIATE_TEST_SUITE_P(Pumps, WindowCloseTest, testing::Values(1, 2, 3, 4, 5, 6, 8, 10));

TEST_F(WindowSearchTest, TheEndOfASessionSavesAndTheSearchGoesOn) {
  Search([&](int pump) {
    if (pump == 4) Parts().window.SaveForEndOfSession();
  });
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), kPairs);
  EXPECT_EQ(HistoryLines(u"Begin Duplicate Search"), 1);
  EXPECT_EQ(HistoryLines(u"End Duplicate Search"), 1);
}

}  // namespace
}  // namespace quillmarsh
