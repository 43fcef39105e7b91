// SPDX-License-Identifier: MIT
// The analysis and the media properties as a person meets them: from the menu, on real files.
#include <sys/stat.h>

#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

#include "ModalBox.h"
#include "WindowFixture.h"
#include "frame/CommandScope.h"
#include "frame/ProgramFlags.h"
#include "frame/TextTable.h"
#include "ui/QtText.h"
#include "ui/frmGetFSObjectProperties.h"
#include "ui/frmMediaInfo.h"

namespace quillmarsh {
namespace {

class AnalyzeTest : public WindowFixture {
 protected:
  void Trigger(const char* entry) { Parts().menus->Entry(QString::fromLatin1(entry))->trigger(); }
  static QString Report(const QDialog& dialog) {
    return dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtUProperties"))->toPlainText();
  }
  static ProgressAnimation* Animation(const QDialog& dialog) {
    return dialog.findChild<ProgressAnimation*>(QStringLiteral("Animation1"));
  }
  // Types a path and presses the button.
  static void Ask(QDialog& dialog, const char* kind, const QString& path) {
    auto* const line = dialog.findChild<QLineEdit*>(QStringLiteral("txtUPath"));
    line->setText(path);
    dialog.findChild<QRadioButton*>(QString::fromLatin1(kind))->setChecked(true);
    QTest::keyClick(line, Qt::Key_Return);
  }
  static constexpr const char* kFile = "optObjectType(0)";
  static constexpr const char* kFolder = "optObjectType(1)";
  const Text kQuestion = u"Recurse into sub-folders?";
};

TEST_F(AnalyzeTest, FilesAndFoldersAreToldByTheirNativePaths) {
  MakeWindow();
  const QString file = MakeFile(QStringLiteral("t/T\u00f6ne.wav"), "12345");
  const QString folder = FilesFolder() + QStringLiteral("/t");
  ASSERT_TRUE(QFile::link(folder, FilesFolder() + QStringLiteral("/link")));
  frmGetFSObjectProperties dialog(&Parts().window);
  dialog.show();
  Ask(dialog, kFile, QStringLiteral("  ") + file + QLatin1Char(' '));
  EXPECT_TRUE(Report(dialog).contains(QStringLiteral("\nPath = ") + file + QLatin1Char('\n')));
  EXPECT_TRUE(Report(dialog).contains("\nSize = 5\n"));
  Ask(dialog, kFolder, file);
  EXPECT_EQ(Report(dialog), "Folder does not exist");
  Ask(dialog, kFile, folder + QStringLiteral("/none"));
  EXPECT_EQ(Report(dialog), "File does not exist");
  Ask(dialog, kFolder, QStringLiteral("/proc"));
  EXPECT_TRUE(Report(dialog).contains("drive letter")) << "it is there all the same";
  boxes.Expect(kQuestion, MessageBoxResult::No);
  Ask(dialog, kFolder, folder);
  EXPECT_TRUE(Report(dialog).contains("(Root Level only)"));
  EXPECT_TRUE(Report(dialog).endsWith("Size = 5 bytes\n"));
  boxes.Expect(kQuestion, MessageBoxResult::Yes);
  Ask(dialog, kFolder, FilesFolder() + QStringLiteral("/link/"));
  EXPECT_TRUE(Report(dialog).contains("IsDirectoryJunction = True\n"));
  EXPECT_TRUE(Report(dialog).contains("Number Files = 0\n")) << "nothing behind it";
  Ask(dialog, kFolder, QString());
  EXPECT_TRUE(Report(dialog).contains("IsDirectoryJunction = True\n")) << "nothing was asked";
}

TEST_F(AnalyzeTest, ALongCountMovesAndTakesNoInputButEsc) {
  MakeWindow();
  for (int number = 0; number < 30; ++number)
    MakeFile(QStringLiteral("t/f%1/file").arg(number), "x");
  frmGetFSObjectProperties dialog(&Parts().window);
  dialog.setModal(true);
  dialog.show();
  LeaveDialogsOpen();
  boxes.Expect(kQuestion, MessageBoxResult::Yes);
  int moved = 0;
  During([&](int) {
    if (!Animation(dialog)->isVisible()) return;
    ++moved;
    EXPECT_TRUE(CommandScope::IsRunning());
    EXPECT_FALSE(dialog.findChild<QPushButton*>(QStringLiteral("cmdShowProperties"))->isEnabled());
    EXPECT_FALSE(dialog.findChild<QLineEdit*>(QStringLiteral("txtUPath"))->isEnabled());
    if (moved == 5) QTest::keyClick(dialog.focusWidget(), Qt::Key_Escape);
  });
  Ask(dialog, kFolder, FilesFolder() + QStringLiteral("/t"));
  During({});
  EXPECT_GT(moved, 3);
  EXPECT_TRUE(Report(dialog).contains("(Stopped: "));
  EXPECT_FALSE(Report(dialog).contains("(Entire Tree)"));
  EXPECT_TRUE(dialog.isVisible()) << "Esc ended the count and not the dialog";
  EXPECT_FALSE(Animation(dialog)->isVisible());

  boxes.Expect(kQuestion, MessageBoxResult::Yes);
  Ask(dialog, kFolder, FilesFolder() + QStringLiteral("/t"));
  EXPECT_TRUE(Report(dialog).contains("Number Files = 30\n")) << "the stop is over";
  boxes.Expect(kQuestion, MessageBoxResult::Yes);
  During([&](int) {
    if (Animation(dialog)->isVisible()) dialog.close();
  });
  Ask(dialog, kFolder, FilesFolder() + QStringLiteral("/t"));
  During({});
  EXPECT_FALSE(dialog.isVisible()) << "closing ends the count and then the dialog";
}

TEST_F(AnalyzeTest, TheMenuOpensTheAnalysis) {
  MakeWindow();
  Trigger("mnuHelpTroubleshootingAnalyzeFSO");
  EXPECT_EQ(dialogsShown, 1);
}

TEST_F(AnalyzeTest, MediaPropertiesAreThoseOfTheSelectedFile) {
  MakeWindow();
  boxes.Expect(LoadResString(326));
  Trigger("mnuFileViewSelectedMediaFileProperties");
  // A line of one pixel.
  const QByteArray image =
      QByteArray::fromHex("424d3a000000000000003600000028000000010000000100000001001800") +
      QByteArray(24, '\0') + QByteArray("\x80\x80\x80\0", 4);
  MakeFile(QStringLiteral("one/a.bmp"), image);
  MakeFile(QStringLiteral("two/a.bmp"), image);
  Trigger("mnuOptionsFileType(0)");
  AddFolder(FilesFolder());
  Search();
  Parts().results.DisplayDupeGroupDetails(1, false);
  Parts().ulvwDupeDetails->setCurrentIndex(Parts().ulvwDupeDetails->model()->index(0, 0));
  const int before = dialogsShown;
  Trigger("mnuPopupMediaProperties");
  EXPECT_EQ(dialogsShown, before + 1);
  ASSERT_TRUE(QFile::remove(FilesFolder() + QStringLiteral("/one/a.bmp")));
  ASSERT_TRUE(QFile::remove(FilesFolder() + QStringLiteral("/two/a.bmp")));
  boxes.Expect(LoadResString(1080));
  Press(*Parts().suRemovalToolbar, "MEDIAINFO_KEY");
}

TEST_F(AnalyzeTest, AMissingLibraryIsNamedWithItsPackageAndATextIsNoMediaFile) {
  MakeWindow();
  const Text file = TheMachine()
                        .Drives()
                        .LocationFromNative(MakeFile(QStringLiteral("a.txt"), "text").toStdString())
                        .path;
  boxes.Expect(u"libmediainfo0v5");
  EXPECT_FALSE(ShowMediaProperties(file, u"libnosuchlibrary.so.0", &Parts().window));
  boxes.Expect(LoadResString(1081));
  mnuFileViewSelectedMediaFileProperties_Click(file, &Parts().window);
}

}  // namespace
}  // namespace quillmarsh
