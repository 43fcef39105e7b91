// SPDX-License-Identifier: MIT
// Message boxes, pickers, pump and pointer as the logic meets them.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <fstream>
#include <thread>

#include "frame/CommandScope.h"
#include "frame/Pump.h"
#include "platform/posix/TempTree.h"
#include "ui/InputLock.h"
#include "ui/ModalBox.h"
#include "ui/QtText.h"
#include "ui/QtViews.h"

namespace quillmarsh {
namespace {

using test::TempTree;
using Result = MessageBoxResult;
using Buttons = MessageBoxButtons;

class QtViewsTest : public testing::Test {
 protected:
  QtViewsTest() : mMachine(WithOddMount(test::DriveAt(mScratch, mFiles.Root()))) {
    UseMachine(&mMachine);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  }
  ~QtViewsTest() override { UseMachine(nullptr); }

  // The folder "odd" lies on a file system of a kind that gets no letter.
  PosixOptions WithOddMount(PosixOptions options) const {
    std::string line;
    std::string last;
    for (std::ifstream mounts(options.mountInfoFile); std::getline(mounts, line);) last = line;
    std::ofstream mounts(options.mountInfoFile, std::ios::app);
    mounts << "9999 " << last.substr(0, last.find(' ')) << " 0:99 / " << mFiles.Folder("odd")
           << " rw - proc proc rw\n";
    return options;
  }
  // Types a path into the picker that comes up and presses its first button.
  static void Choose(const std::string& native) {
    InNextBox<QFileDialog>([native](QFileDialog& dialog) {
      auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      name->setText(QString::fromStdString(native));
      QTest::keyClick(name, Qt::Key_Return);
    });
  }

  TempTree mScratch;
  TempTree mFiles;
  PosixMachine mMachine;
  QtViews mViews;
};

TEST_F(QtViewsTest, AMessageBoxShowsPlainTextAndItsButtons) {
  struct Row {
    const char* name;
    Buttons buttons;
    Result preferred;
    QMessageBox::StandardButton preferredButton;
    Qt::Key key;
    Result answer;
  };
  const Row rows[] = {
      {"Return presses the default", Buttons::YesNo, Result::No, QMessageBox::No, Qt::Key_Return,
       Result::No},
      {"another default", Buttons::YesNo, Result::Yes, QMessageBox::Yes, Qt::Key_Return,
       Result::Yes},
      {"Esc is No where there is no Cancel", Buttons::YesNo, Result::Yes, QMessageBox::Yes,
       Qt::Key_Escape, Result::No},
      {"Esc is Cancel", Buttons::YesNoCancel, Result::Yes, QMessageBox::Yes, Qt::Key_Escape,
       Result::Cancel},
      {"Esc is Cancel beside OK", Buttons::OkCancel, Result::Ok, QMessageBox::Ok, Qt::Key_Escape,
       Result::Cancel},
      {"OK alone", Buttons::Ok, Result::Ok, QMessageBox::Ok, Qt::Key_Escape, Result::Ok},
      {"a default that is no button", Buttons::YesNo, Result::Ok, QMessageBox::No, Qt::Key_Return,
       Result::No},
  };
  for (const Row& row : rows) {
    InNextBox<QMessageBox>([&](QMessageBox& box) {
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.text(), "<b>R & D</b> && more\nsecond") << row.name;
      EXPECT_EQ(box.windowTitle(), "Title");
      EXPECT_EQ(box.icon(), QMessageBox::Question);
      EXPECT_EQ(box.standardButton(box.defaultButton()), row.preferredButton) << row.name;
      QTest::keyClick(&box, row.key);
    });
    EXPECT_EQ(ShowMessageBox({u"<b>R & D</b> && more\r\nsecond", u"Title", MessageBoxIcon::Question,
                              row.buttons, row.preferred}),
              row.answer)
        << row.name;
  }
}

TEST_F(QtViewsTest, ALongPathDoesNotMakeTheBoxWiderThanTheScreen) {
  Text path = u"/";
  for (int i = 0; i < 60; ++i) path += u"folder name/";
  path += Text(255, u'x');
  InNextBox<QMessageBox>([](QMessageBox& box) {
    EXPECT_LT(box.width(), box.screen()->availableSize().width());
    const auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    ASSERT_NE(label, nullptr);
    EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    EXPECT_TRUE(box.rect().contains(label->geometry()));
    box.close();
  });
  ShowMessageBox({path, u"Title"});
}

TEST_F(QtViewsTest, AFolderIsAnsweredInDriveForm) {
  mFiles.Folder("a & b");
  Choose(mFiles.At("a & b"));
  EXPECT_EQ(BrowseForFolder(u"Prompt", u"D:\\"), u"D:\\a & b");
  InNextBox<QFileDialog>([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.directory().dirName(), "a & b");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  EXPECT_EQ(BrowseForFolder(u"Prompt", u"D:\\a & b\\"), u"");
}

TEST_F(QtViewsTest, AFileThatIsThereIsAnsweredInDriveForm) {
  mFiles.File("a & b.txt");
  Choose(mFiles.At("a & b.txt"));
  EXPECT_EQ(OpenFileName(u"Title", u"D:\\"), u"D:\\a & b.txt");
}

TEST_F(QtViewsTest, AFolderWithoutALetterIsToldAndAskedForAgain) {
  bool wasTold = false;
  InNextBox<QFileDialog>([&](QFileDialog& dialog) {
    InNextBox<QMessageBox>([&](QMessageBox& box) {
      wasTold = box.text().contains("drive letter");
      InNextBox<QFileDialog>([](QFileDialog& again) { again.reject(); });
      QTest::keyClick(&box, Qt::Key_Return);
    });
    auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name->setText(QString::fromStdString(mFiles.At("odd")));
    QTest::keyClick(name, Qt::Key_Return);
  });
  EXPECT_EQ(BrowseForFolder(u"Prompt", u""), u"");
  EXPECT_TRUE(wasTold);
}

TEST_F(QtViewsTest, AFileThatExistsIsAskedForBeforeItIsChosen) {
  mFiles.File("old.txt");
  Choose(mFiles.At("new"));
  EXPECT_EQ(SaveFileName(u"Title", u"Text Files (*.txt)|*.txt"), u"D:\\new");
  bool wasAsked = false;
  InNextBox<QFileDialog>([&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.nameFilters(), QStringList("Text Files (*.txt)"));
    InNextBox<QMessageBox>([&](QMessageBox& box) {
      wasAsked = true;
      QTest::keyClick(&box, Qt::Key_Escape);
    });
    auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name->setText(QString::fromStdString(mFiles.At("old.txt")));
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    dialog.reject();
  });
  EXPECT_EQ(SaveFileName(u"Title", u"Text Files (*.txt)|*.txt"), u"");
  EXPECT_TRUE(wasAsked);
}

TEST_F(QtViewsTest, ThePumpRunsEventsAndTellsTheLongestGapOfACommand) {
  const auto idle = [](int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  };
  bool hasRun = false;
  QTimer::singleShot(0, [&] { hasRun = true; });
  DoEvents();
  EXPECT_TRUE(hasRun);
  idle(60);  // outside of a command
  DoEvents();
  EXPECT_EQ(mViews.LongestGap().milliseconds, 0);
  {
    const CommandScope command;
    DoEvents();
    idle(30);
    DoEvents();
    EXPECT_GE(mViews.LongestGap().milliseconds, 30);
    EXPECT_EQ(mViews.LongestGap().after.line(), std::source_location::current().line() - 2);
    idle(60);
  }
  EXPECT_GE(mViews.LongestGap().milliseconds, 60);  // to the end of the command
  EXPECT_EQ(mViews.LongestGap().after.line(), 0);
  mViews.ResetLongestGap();
  EXPECT_EQ(mViews.LongestGap().milliseconds, 0);
  {
    const CommandScope command;
    InNextBox<QMessageBox>([&](QMessageBox& box) {
      QTest::qWait(1000);
      box.close();
    });
    ShowMessageBox({u"A person reads", u"Title"});
    DoEvents();
  }
  EXPECT_LT(mViews.LongestGap().milliseconds, 1000);
}

TEST_F(QtViewsTest, TheCompletionsOfAFieldInABoxTakeInputWhileACommandRuns) {
  InputLock lock(nullptr, [] {});
  const CommandScope command;
  QDialog box;
  QLineEdit field(&box);
  QCompleter completer({QStringLiteral("home"), QStringLiteral("house")});
  field.setCompleter(&completer);
  box.setModal(true);
  box.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&box));
  field.setFocus();
  QTest::keyClick(&field, Qt::Key_H);
  ASSERT_TRUE(completer.popup()->isVisible());
  QTest::keyClick(completer.popup(), Qt::Key_O);
  EXPECT_EQ(field.text(), "ho");
  QTest::keyClick(completer.popup(), Qt::Key_Down);
  QTest::keyClick(completer.popup(), Qt::Key_Return);
  EXPECT_EQ(field.text(), "home");
  EXPECT_FALSE(completer.popup()->isVisible());
}

TEST_F(QtViewsTest, TheBusyPointerIsNestedAndAnArrowInBoxes) {
  {
    const BusyPointer outer;
    {
      const BusyPointer inner;
      ASSERT_NE(QApplication::overrideCursor(), nullptr);
      EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    InNextBox<QMessageBox>([](QMessageBox& box) {
      EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
      box.close();
    });
    ShowMessageBox({u"Text", u"Title"});
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  }
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace quillmarsh
