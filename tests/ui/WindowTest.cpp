// SPDX-License-Identifier: MIT
#include <QMimeData>
#include <QTest>

#include "WindowFixture.h"
#include "frame/TextTable.h"
#include "removal/history/cLog.h"
#include "ui/QtText.h"

namespace quillmarsh {
namespace {

class WindowTest : public WindowFixture {
 protected:
  QStringList FoldersShown() {
    QStringList texts;
    for (int row = 0; row < Parts().ulstFoldersToSearch->count(); ++row)
      texts << Parts().ulstFoldersToSearch->item(row)->text();
    return texts;
  }
  // By keyboard, as a person would go through the values.
  void Choose(const char* key, bool value) {
    QComboBox* const box = Parts().smtSearchOptions->Row(QString::fromLatin1(key));
    ASSERT_NE(box, nullptr) << key;
    QTest::keyClick(box, value ? Qt::Key_Home : Qt::Key_End);
  }
  void Trigger(const char* entry) { Parts().menus->Entry(QString::fromLatin1(entry))->trigger(); }
  QString Row(const char* key) {
    return Parts().smtSearchOptions->Row(QString::fromLatin1(key))->currentText();
  }
};

TEST_F(WindowTest, TheFirstStartShowsTheDefaultsInMenuAndList) {
  MakeWindow();
  EXPECT_TRUE(Parts().pctSearchContainer->isVisible());
  EXPECT_FALSE(Parts().pctResultsContainer->isVisible());
  EXPECT_EQ(Panel(FILES_SEARCHED), QStringLiteral("Files:0"));
  EXPECT_EQ(Panel(DUPLICATES), QStringLiteral("Duplicates:0"));
  EXPECT_EQ(Panel(FILES_SELECTED), QStringLiteral("Selected:0"));
  EXPECT_FALSE(Parts().pbProgress->isVisible());
  EXPECT_FALSE(Parts().aniSearchProgress->isVisible());
  EXPECT_TRUE(IsChecked("mnuOptionsIncludeSubfolders"));
  EXPECT_TRUE(IsChecked("mnuOptionsDupeCriteriaOption(0)"));
  EXPECT_FALSE(IsChecked("mnuOptionsDupeCriteriaOption(4)"));
  EXPECT_TRUE(IsChecked("mnuOptionsFileType(0)")) << "no mask limits the search";
  EXPECT_TRUE(IsChecked("mnuRemovalOptions(2)"));
  EXPECT_TRUE(IsChecked("mnuOptionsCheckFolderPermission"));
  EXPECT_EQ(Row("FILE_TYPE_KEY"), QStringLiteral("All File Types"));
  EXPECT_EQ(Row("CONTENTS_MATCH_KEY"), QStringLiteral("False"));
  EXPECT_EQ(Row("IGNORE_RECYCLEBINFILES_KEY"), QStringLiteral("True"));
  EXPECT_FALSE(
      Parts().smtSearchOptions->Row(QStringLiteral("IGNORE_RECYCLEBINFILES_KEY"))->isEnabled());
}

TEST_F(WindowTest, FoldersAreAddedOnceEditedAndRemoved) {
  MakeWindow();
  MakePairs(1);
  QPushButton* const add = Parts().mb_cmdAddFolder;
  QTest::mouseClick(add, Qt::LeftButton);
  EXPECT_EQ(FoldersShown(), QStringList()) << "nothing is picked yet";
  AddFolder(FilesFolder() + QStringLiteral("/one"));
  EXPECT_EQ(Parts().folders.Folders(),
            std::vector<Text>{DriveForm(FilesFolder() + QStringLiteral("/one"))});
  boxes.Expect(LoadResString(493));
  emit Parts().ucBrowseForFolder->DoubleClickEvent();
  ASSERT_EQ(FoldersShown().size(), 1);

  const Text shown = FromQString(FoldersShown().front());
  boxes.ExpectInput(shown, u"  " + FromQString(FilesFolder()) + u"/two ");
  QTest::keyClick(Parts().ulstFoldersToSearch, Qt::Key_Return);
  EXPECT_EQ(Parts().folders.Folders(),
            std::vector<Text>{DriveForm(FilesFolder() + QStringLiteral("/two"))});

  QTest::mouseClick(Parts().mb_cmdRemoveFolder, Qt::LeftButton);
  EXPECT_EQ(FoldersShown(), QStringList());
  boxes.Expect(LoadResString(324));
  QTest::mouseClick(Parts().mb_cmdRemoveFolder, Qt::LeftButton);
}

TEST_F(WindowTest, FoldersWhoseNamesDifferInCaseAreTwo) {
  MakeWindow();
  MakeFile(QStringLiteral("Music/a"), "a");
  MakeFile(QStringLiteral("music/a"), "a");
  AddFolder(FilesFolder() + QStringLiteral("/Music"));
  AddFolder(FilesFolder() + QStringLiteral("/music"));
  EXPECT_EQ(FoldersShown().size(), 2);
}

TEST_F(WindowTest, FoldersAreTakenFromAFileManagerAndFilesAreNot) {
  MakeWindow();
  const QString file = MakeFile(QStringLiteral("50% off #1/\xC3\xA4.txt"), "a");
  QMimeData dropped;
  dropped.setUrls({QUrl::fromLocalFile(file),
                   QUrl::fromLocalFile(FilesFolder() + QStringLiteral("/50% off #1"))});
  QWidget* const target = Parts().ulstFoldersToSearch->viewport();
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(target, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(target, &drop);
  ASSERT_EQ(Parts().folders.Folders().size(), 1U);
  EXPECT_EQ(Parts().folders.Folders()[0], DriveForm(FilesFolder() + QStringLiteral("/50% off #1")));
}

TEST_F(WindowTest, MenuAndListFollowEachOtherAndWarnOnce) {
  MakeWindow();
  boxes.Expect(LoadResString(467));
  Trigger("mnuOptionsIgnoreSystemFiles");
  EXPECT_EQ(Row("IGNORE_SYSTEMFILES_KEY"), QStringLiteral("False"));
  EXPECT_FALSE(IsChecked("mnuOptionsIgnoreSystemFiles"));
  Choose("IGNORE_SYSTEMFILES_KEY", true);
  EXPECT_TRUE(IsChecked("mnuOptionsIgnoreSystemFiles"));
  EXPECT_TRUE(gDupeSettings->IgnoreSystemFolders());
  boxes.Expect(LoadResString(472));
  Choose("IGNORE_HIDDENFILES_KEY", false);
  EXPECT_FALSE(IsChecked("mnuOptionsIgnoreHiddenFiles"));

  Trigger("mnuOptionsDupeCriteriaOption(0)");
  const auto heading = [](const QAbstractItemModel& model) {
    return model.headerData(0, Qt::Horizontal, Qt::DisplayRole).toString();
  };
  EXPECT_EQ(heading(Parts().ulvwDupeDetails->Model()), QStringLiteral("File Size"));
  EXPECT_EQ(heading(Parts().ulvwDupeGroups->Model()), QStringLiteral("File Name"));

  Trigger("mnuOptionsFileType(3)");
  EXPECT_TRUE(IsChecked("mnuOptionsFileType(3)"));
  EXPECT_FALSE(IsChecked("mnuOptionsFileType(1)"));
  EXPECT_EQ(Row("FILE_TYPE_KEY"), QStringLiteral("Image Files"));
  Trigger("mnuOptionsFileType(3)");
  EXPECT_TRUE(IsChecked("mnuOptionsFileType(3)")) << "chosen again it stays chosen";
  Trigger("mnuRemovalOptions(1)");
  EXPECT_TRUE(IsChecked("mnuRemovalOptions(1)"));
  EXPECT_FALSE(IsChecked("mnuRemovalOptions(2)"));
  EXPECT_EQ(gDupeSettings->RemoveMethod(), RemoveMethod::Recycle);
}

TEST_F(WindowTest, WhatTheDesktopHasNoProgramForIsToldWithItsPlace) {
  qunsetenv("DISPLAY");
  qunsetenv("WAYLAND_DISPLAY");
  MakeWindow();
  boxes.Expect(u"/Harrow Fen/Quillmarsh");
  Trigger("mnuHelpTroubleshootingConfigFolder");
  boxes.Expect(u"https://");
  Trigger("mnuHelpTroubleshootingWebSite");
  boxes.Expect(u"\r\nsales@");
  Trigger("mnuHelpContactUs");
  gLog->AppendInMemoryStringToLogFile();
  boxes.Expect(u"There is no History");
  Trigger("mnuHistoryView");
  AddFolder(FilesFolder());
  MakePairs(1);
  Trigger("mnuOptionsFileType(0)");
  Search();
  boxes.Expect(u"history.log");
  Trigger("mnuHistoryView");
  Parts().results.DisplayDupeGroupDetails(1, false);
  Parts().ulvwDupeDetails->setCurrentIndex(Parts().ulvwDupeDetails->model()->index(0, 0));
  for (const char* const command : {"mnuFileViewSelected", "mnuFileViewSelectedFileProperties"}) {
    boxes.Expect(u"/pair0.txt");
    Trigger(command);
  }
  boxes.Expect(u"shows folders");
  Trigger("mnuFileOpenInContainingFolder");
}

TEST_F(WindowTest, OptionsAndFoldersOfASearchAreThereAtTheNextStart) {
  MakeWindow();
  MakePairs(1);
  Trigger("mnuOptionsFileType(0)");
  Trigger("mnuOptionsDupeCriteriaOption(2)");
  AddFolder(FilesFolder());
  Search();
  Parts().window.close();
  ReleaseWindow();
  *gDupeSettings = clsDupeSettings();
  MakeWindow();
  EXPECT_TRUE(IsChecked("mnuOptionsDupeCriteriaOption(2)"));
  EXPECT_TRUE(IsChecked("mnuOptionsFileType(0)"));
  EXPECT_EQ(FoldersShown().size(), 1);
}

TEST_F(WindowTest, InAWindowOfAnySizeNoControlCoversAnother) {
  frmFindDuplicates& window = MakeWindow();
  const auto expectApart = [&](QWidget& view) {
    const QList<QWidget*> controls =
        view.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget* a : controls) {
      EXPECT_TRUE(view.rect().contains(a->geometry())) << a->objectName().toStdString();
      for (const QWidget* b : controls) {
        EXPECT_TRUE(a == b || !a->geometry().intersects(b->geometry()))
            << a->objectName().toStdString() << " and " << b->objectName().toStdString();
      }
    }
  };
  for (const QSize size : {QSize(10, 10), QSize(1100, 740), QSize(1900, 1000), QSize(3000, 2000)}) {
    SCOPED_TRACE(size.height());
    window.resize(size);
    QCoreApplication::processEvents();
    expectApart(*Parts().pctSearchContainer);
    Parts().views.ShowResultsView();
    expectApart(*Parts().pctResultsContainer);
    Parts().views.ShowSearchView();
  }
}

}  // namespace
}  // namespace quillmarsh
