// SPDX-License-Identifier: MIT
// Removals in the window, and what a person does while one runs.
#include <QDir>
#include <QDirIterator>
#include <QTest>

#include "WindowFixture.h"
#include "frame/CommandScope.h"
#include "frame/Pickers.h"
#include "frame/TextTable.h"
#include "removal/history/cLog.h"
#include "ui/QtText.h"

namespace quillmarsh {
namespace {

constexpr int kPairs = 25;

class WindowRemovalTest : public WindowFixture {
 protected:
  void SetUp() override {
    MakeWindow();
    Parts().menus->Entry(QStringLiteral("mnuOptionsFileType(0)"))->trigger();
    Parts().menus->Entry(QStringLiteral("mnuRemovalOptions(0)"))->trigger();
    gDupeSettings->SetRemoveWarningShown(true);
    MakePairs(kPairs);
    AddFolder(FilesFolder());
    Search();
    dialogsShown = 0;
  }
  int FilesLeft() {
    int count = 0;
    for (const char* folder : {"/one", "/two"})
      count += static_cast<int>(
          QDir(FilesFolder() + QLatin1String(folder)).entryList(QDir::Files).size());
    return count;
  }
};

TEST_F(WindowRemovalTest, TheMarkedFilesGoAndMeanwhileAllIsLocked) {
  boxes.Expect(LoadResString(378) + u": 25", MessageBoxResult::Yes);
  boxes.Expect(LoadResString(386));
  int locked = 0;
  During([&](int) {
    ToolBar& bar = *Parts().smtSearchResultsToolbar;
    if (bar.Button(QStringLiteral("REMOVE_KEY"))->isEnabled()) return;
    ++locked;
    for (const char* key : {"UNDO_KEY", "OPTIONS_KEY", "SEARCHVIEW_KEY"}) {
      EXPECT_FALSE(bar.Button(QString::fromLatin1(key))->isEnabled()) << key;
      QTest::mouseClick(bar.Button(QString::fromLatin1(key)), Qt::LeftButton);
    }
    for (const QAction* menu : Parts().window.menuBar()->actions())
      EXPECT_FALSE(menu->isEnabled()) << menu->text().toStdString();
    EXPECT_TRUE(Parts().pbProgress->isVisible());
    // A check box by its key.
    QTest::keyClick(Parts().ulvwDupeDetails, Qt::Key_Space);
    QTest::mouseClick(Parts().ulvwDupeGroups->viewport(), Qt::LeftButton, {}, QPoint(20, 40));
  });
  Press(*Parts().smtSearchResultsToolbar, "REMOVE_KEY");
  EXPECT_GT(locked, 2);
  EXPECT_EQ(FilesLeft(), kPairs);
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), 0);
  EXPECT_TRUE(Parts().smtSearchResultsToolbar->Button(QStringLiteral("REMOVE_KEY"))->isEnabled());
  EXPECT_FALSE(Parts().pbProgress->isVisible());
}

TEST_F(WindowRemovalTest, EscEndsItAtTheNextFile) {
  boxes.Expect(LoadResString(378), MessageBoxResult::Yes);
  boxes.Expect(LoadResString(382));
  bool isPressed = false;
  During([&](int) {
    if (isPressed || !Parts().pbProgress->isVisible()) return;
    isPressed = true;
    QTest::keyClick(Parts().ulvwDupeGroups, Qt::Key_Escape);
  });
  Press(*Parts().smtSearchResultsToolbar, "REMOVE_KEY");
  EXPECT_TRUE(isPressed);
  EXPECT_GT(FilesLeft(), kPairs);
}

TEST_F(WindowRemovalTest, TheWindowClosesAtOnceAndTheRemovalEndsBehindIt) {
  boxes.Expect(LoadResString(378), MessageBoxResult::Yes);
  int leftAtClose = 0;
  During([&](int) {
    if (leftAtClose != 0 || !Parts().pbProgress->isVisible()) return;
    EXPECT_TRUE(Parts().window.close());
    leftAtClose = FilesLeft();
  });
  Press(*Parts().smtSearchResultsToolbar, "REMOVE_KEY");
  EXPECT_GT(leftAtClose, kPairs);
  EXPECT_EQ(FilesLeft(), leftAtClose);
  EXPECT_FALSE(CommandScope::IsRunning());
  ReleaseWindow();
}

struct Way {
  const char* method;
  const char* place;  // below which the files are found
};

class WindowRemovalWayTest : public WindowRemovalTest,
                             public testing::WithParamInterface<Way>,
                             private FolderPicker {
 protected:
  void SetUp() override {
    WindowRemovalTest::SetUp();
    gPickers.folders = this;
  }
  [[nodiscard]] QString Other() const { return FilesFolder() + QStringLiteral("/elsewhere"); }

 private:
  Text BrowseForFolder(const Text&, const Text&) override { return DriveForm(Other()); }
};

TEST_P(WindowRemovalWayTest, TheFilesAreWhereTheMethodPutsThem) {
  QDir().mkpath(Other());
  Parts().menus->Entry(QString::fromLatin1(GetParam().method))->trigger();
  boxes.Expect(LoadResString(378) + u": 25", MessageBoxResult::Yes);
  boxes.Expect(LoadResString(386));
  Parts().menus->Entry(QStringLiteral("mnuPopupRemoveMarkedFiles"))->trigger();
  EXPECT_EQ(FilesLeft(), kPairs);
  QDirIterator found(FilesFolder() + QLatin1String(GetParam().place), {QStringLiteral("pair*.txt")},
                     QDir::Files, QDirIterator::Subdirectories);
  int count = 0;
  for (; found.hasNext(); found.next()) ++count;
  EXPECT_EQ(count, kPairs);
}

INSTANTIATE_TEST_SUITE_P(Each, WindowRemovalWayTest,
                         testing::Values(Way{"mnuRemovalOptions(1)", "/../data/Trash/files"},
                                         Way{"mnuRemovalOptions(2)", "/../data/Harrow Fen"},
                                         Way{"mnuRemovalOptions(3)", "/elsewhere"}));

TEST_F(WindowRemovalTest, AFileWhoseCopyHasGoneSinceTheSearchStays) {
  const std::vector<std::int32_t> members = Parts().results.MembersOf(1);
  for (const std::int32_t member : members) {
    if (Parts().results.mFileMarked[static_cast<std::size_t>(member) - 1]) continue;
    const Text kept = Parts().results.FullPathOf(Parts().results.Record(member));
    ASSERT_TRUE(QFile::remove(ToQString(TheMachine().Drives().ShownPath(kept))));
  }
  boxes.Expect(LoadResString(378) + u": 25", MessageBoxResult::Yes);
  boxes.Expect(u"Files that were kept, since they or the copies you are keeping");
  Press(*Parts().smtSearchResultsToolbar, "REMOVE_KEY");
  EXPECT_EQ(FilesLeft(), kPairs) << "one of each pair";
  EXPECT_EQ(Parts().ulvwDupeGroups->Model().rowCount(), 1);
  EXPECT_NE(gLog->GetLogEntriesFromFile().find(u"Kept: "), Text::npos);
}

}  // namespace
}  // namespace quillmarsh
