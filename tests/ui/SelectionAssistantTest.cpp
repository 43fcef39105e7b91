// SPDX-License-Identifier: MIT
// The Selection Assistant: what each rule shows, what a person may enter, and what becomes of it.
#include <QCheckBox>
#include <QDateTimeEdit>
#include <QPushButton>

#include "OptionDialogsFixture.h"
#include "ui/DatePictures.h"
#include "ui/frmMarkForRemovalWizard.h"

namespace quillmarsh {
namespace {

constexpr const char* kParameters[] = {
    "txtUFolderSpec", "mb_cmdSelectFolder", "chkIncludeSubFolders", "Drive1",
    "txtFileSize",    "cboSizeIncrements",  "dtLastModifiedDate",   "txtFileMask"};

class SelectionAssistant : public OptionDialogsFixture {
 protected:
  SelectionAssistant() {
    SimulatedDrive stick;
    stick.root = u"D:\\";
    stick.label = u"Stick";
    stick.serialNumber = 2;
    machine.AddDrive(stick);
  }
  static clsMarkForRemovalWizard& Options() { return *gMarkForRemovalWizardOptions; }
  // Shows the dialog, which `inside` must close.
  static void ShowDialog(std::function<void(QDialog&)> inside) {
    Options().mCancelled = false;
    InNextBox<QDialog>(std::move(inside));
    ShowMarkForRemovalWizardDialog(nullptr);
  }
  static void Choose(QDialog& box, int rule) {
    Find<QComboBox>(box, "cboMarkForRemovalMethods").setCurrentIndex(rule);
  }
  // "label: controls", of which those in brackets are disabled.
  static std::string Shown(QDialog& box) {
    const auto& label = Find<QLabel>(box, "lblAdditionalInfo");
    std::string text = label.text().toStdString() + (label.isEnabled() ? "" : " off");
    for (const char* const name : kParameters) {
      const auto& control = Find<QWidget>(box, name);
      if (control.isVisible())
        text += control.isEnabled() ? std::string(" ") + name : std::string(" [") + name + "]";
    }
    return text;
  }
};

TEST_F(SelectionAssistant, ARuleShowsWhatItWantsToBeToldAndNoMore) {
  const std::string nothing =
      "Folder Specification: off [txtUFolderSpec] [mb_cmdSelectFolder] [chkIncludeSubFolders]";
  const std::string folder =
      "Folder Specification: txtUFolderSpec mb_cmdSelectFolder chkIncludeSubFolders";
  const std::string drive = "Drive Specification: Drive1";
  const std::string mask = "File Mask: txtFileMask";
  const std::string expected[] = {nothing,
                                  nothing,
                                  nothing,
                                  nothing,
                                  drive,
                                  drive,
                                  folder,
                                  folder,
                                  "File Size: txtFileSize cboSizeIncrements",
                                  "Last Modified Date: dtLastModifiedDate",
                                  mask,
                                  mask,
                                  nothing,
                                  nothing,
                                  nothing,
                                  nothing};
  ShowDialog([&](QDialog& box) {
    EXPECT_EQ(box.windowTitle(), "Select Duplicate Files for Removal");
    const QSize size = box.size();
    // From each to each, since a rule may leave something behind.
    for (int before = 0; before < 16; ++before) {
      for (int rule = 0; rule < 16; ++rule) {
        Choose(box, before);
        Choose(box, rule);
        EXPECT_EQ(Shown(box), expected[rule]) << rule << " behind " << before;
      }
    }
    Choose(box, 5);
    EXPECT_EQ(LabelText(box, "lblDescriptionOfMethod"), ToUtf8(LoadResString(586)));
    EXPECT_EQ(LabelText(box, "lblRetainOneFile"), ToUtf8(LoadResString(618)));
    auto& form = static_cast<frmMarkForRemovalWizard&>(box);
    form.SetControlsForRule(16);
    EXPECT_EQ(TakeBox().text, u"Unrecognized Select for Removal Method");
    EXPECT_EQ(Shown(box), drive) << "as it was";
    ExpectAllAreNamed(box);
    ExpectNothingIsCut(box);
    EXPECT_EQ(box.size(), size) << "nothing jumps";
    Press(box, "mb_cmdClose");
  });
}

TEST_F(SelectionAssistant, HasRoomForAllOfItWithLargeLettersToo) {
  const LargeLetters letters;
  ShowDialog([](QDialog& box) {
    for (const int rule : {0, 5, 8}) {
      Choose(box, rule);
      ExpectNothingIsCut(box);
      ExpectNothingIsCovered(box);
    }
    box.close();
  });
}

TEST_F(SelectionAssistant, AFreshOptionsFileShowsItsDefaults) {
  ShowDialog([](QDialog& box) {
    EXPECT_EQ(Find<QComboBox>(box, "cboMarkForRemovalMethods").currentText(),
              "Keep Newest, Select Others");
    EXPECT_EQ(Find<QComboBox>(box, "Drive1").currentText(), "C:");
    EXPECT_EQ(Find<QComboBox>(box, "Drive1").itemText(1), "D: [Stick]");
    EXPECT_EQ(Find<QLineEdit>(box, "txtFileSize").text(), "0");
    EXPECT_EQ(Find<QLineEdit>(box, "txtFileMask").text(), "*.*");
    EXPECT_TRUE(Find<QCheckBox>(box, "chkIncludeSubFolders").isChecked());
    EXPECT_FALSE(Find<QCheckBox>(box, "chkAllowRemovalOfAllFilesInGroup").isChecked());
    EXPECT_EQ(Find<QDateTimeEdit>(box, "dtLastModifiedDate").displayFormat(),
              "M/d/yyyy h:mm:ss AP");
    Press(box, "mb_cmdMarkNow");
  });
  EXPECT_FALSE(Options().mCancelled);
  EXPECT_EQ(Options().mRule, 2);
  EXPECT_EQ(Options().DriveSpec(), u"C:");
}

TEST_F(SelectionAssistant, WhatWillNotDoIsToldAndGetsTheFocus) {
  machine.AddFolder(u"C:\\Data");
  struct Row {
    int rule;
    const char* field;
    const char* text;
    const char* message;  // of the box, or the source of a report
    const char* focus;
  };
  constexpr Row kRows[] = {
      {6, "txtUFolderSpec", "  ", "Please enter a folder specification", "txtUFolderSpec"},
      {7, "txtUFolderSpec", "C:\\none", "The folder does not exist", "txtUFolderSpec"},
      {8, "txtFileSize", "", "Please enter a file size", "txtFileSize"},
      {8, "txtFileSize", "many", "Please enter a numeric value for the file size", "txtFileSize"},
      {8, "txtFileSize", "-1", "Please enter a positive value for the file size", "txtFileSize"},
      {8, "txtFileSize", "2147483648", "frmMarkForRemovalWizard.ValidateRuleOptions",
       "txtFileSize"},
      {10, "txtFileMask", "", "Please enter a file mask", "txtFileMask"},
      {11, "txtFileMask", "txt", "should contain a 'dot' character", "txtFileMask"},
      // The size is converted whatever the rule.
      {0, "txtFileSize", "many", "frmMarkForRemovalWizard.SaveControlsToOptions",
       "cboMarkForRemovalMethods"},
      {9, "txtFileSize", "1e30", "frmMarkForRemovalWizard.SaveControlsToOptions",
       "cboMarkForRemovalMethods"},
  };
  ShowDialog([&](QDialog& box) {
    for (const Row& row : kRows) {
      const QString before = Find<QLineEdit>(box, row.field).text();
      Choose(box, row.rule);
      Type(box, row.field, row.text);
      Press(box, "mb_cmdMarkNow");
      const MessageBoxRequest told = TakeBox();
      const std::string all = ToUtf8(told.title) + ToUtf8(told.text);
      EXPECT_NE(all.find(row.message), std::string::npos) << all << " for " << row.text;
      EXPECT_EQ(told.icon, MessageBoxIcon::Exclamation);
      EXPECT_EQ(FocusOf(box), row.focus) << row.text;
      EXPECT_TRUE(box.isVisible());
      Find<QLineEdit>(box, row.field).setText(before);
    }
    // Too large only in its unit; that of the options is left alone as well.
    Choose(box, 8);
    Type(box, "txtFileSize", "2000000000");
    Find<QComboBox>(box, "cboSizeIncrements").setCurrentIndex(3);
    Find<QCheckBox>(box, "chkAllowRemovalOfAllFilesInGroup").setChecked(true);
    Press(box, "mb_cmdMarkNow");
    EXPECT_EQ(TakeReportedSource(), "frmMarkForRemovalWizard.SaveControlsToOptions");
    EXPECT_EQ(FocusOf(box), "txtFileSize");
    EXPECT_EQ(Options().mRule, 2);
    EXPECT_EQ(Options().SizeIncrement(), 0);
    EXPECT_FALSE(Options().mAllowRemovalOfAllFilesInGroup);
    // Mended, it goes.
    Find<QComboBox>(box, "cboSizeIncrements").setCurrentIndex(0);
    Press(box, "mb_cmdMarkNow");
  });
  EXPECT_EQ(Options().FileSizeInBytes(), Currency::FromInteger(2'000'000'000));
}

TEST_F(SelectionAssistant, AllOfItIsKeptAndShownAgainAfterTheNextStart) {
  machine.AddFolder(u"C:\\Data");
  pickers.paths = {u"C:\\Data"};
  ShowDialog([&](QDialog& box) {
    Choose(box, 6);
    Press(box, "mb_cmdSelectFolder");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUFolderSpec").text(), "C:\\Data\\");
    Press(box, "mb_cmdSelectFolder");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUFolderSpec").text(), "C:\\Data\\") << "none was picked";
    Find<QCheckBox>(box, "chkIncludeSubFolders").setChecked(false);
    Find<QComboBox>(box, "Drive1").setCurrentIndex(1);
    Type(box, "txtFileSize", "1.5");
    Find<QComboBox>(box, "cboSizeIncrements").setCurrentIndex(2);
    Find<QDateTimeEdit>(box, "dtLastModifiedDate")
        .setDateTime(QDateTime(QDate(1999, 12, 31), QTime(23, 59, 58), Qt::UTC));
    Type(box, "txtFileMask", "*.bak");
    Find<QCheckBox>(box, "chkAllowRemovalOfAllFilesInGroup").setChecked(true);
    Find<QLineEdit>(box, "txtFileSize").setFocus();
    QTest::keyClick(box.focusWidget(), Qt::Key_Return);
  });
  EXPECT_EQ(pickers.asked[0].substr(0, 19), "Specify the folder ");
  EXPECT_FALSE(Options().mCancelled);
  SaveProgramOptionsToIniFile();
  Restart();
  EXPECT_EQ(Options().mRule, 6);
  EXPECT_EQ(Options().DriveSpec(), u"D:");
  EXPECT_EQ(Options().mFolderSpec, u"C:\\Data\\");
  EXPECT_EQ(Options().FileSizeInBytes(), Currency::FromInteger(1'572'864));
  ShowDialog([](QDialog& box) {
    EXPECT_EQ(Find<QComboBox>(box, "cboMarkForRemovalMethods").currentIndex(), 6);
    EXPECT_EQ(Find<QComboBox>(box, "Drive1").currentText(), "D: [Stick]");
    EXPECT_EQ(Find<QLineEdit>(box, "txtUFolderSpec").text(), "C:\\Data\\");
    EXPECT_FALSE(Find<QCheckBox>(box, "chkIncludeSubFolders").isChecked());
    EXPECT_EQ(Find<QLineEdit>(box, "txtFileSize").text(), "1.5");
    EXPECT_EQ(Find<QComboBox>(box, "cboSizeIncrements").currentText(), "MB");
    EXPECT_EQ(Find<QDateTimeEdit>(box, "dtLastModifiedDate").dateTime(),
              QDateTime(QDate(1999, 12, 31), QTime(23, 59, 58), Qt::UTC));
    EXPECT_EQ(Find<QLineEdit>(box, "txtFileMask").text(), "*.bak");
    EXPECT_TRUE(Find<QCheckBox>(box, "chkAllowRemovalOfAllFilesInGroup").isChecked());
    box.close();
  });
}

TEST_F(SelectionAssistant, LeftInAnyOtherWayThanBySelectItChangesNothing) {
  const std::function<void(QDialog&)> ways[] = {
      [](QDialog& box) { Press(box, "mb_cmdClose"); },
      [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); },
      [](QDialog& box) { box.close(); },
  };
  for (const auto& leave : ways) {
    ShowDialog([&](QDialog& box) {
      EXPECT_EQ(Find<QComboBox>(box, "cboMarkForRemovalMethods").currentIndex(), 2);
      EXPECT_EQ(Find<QLineEdit>(box, "txtFileMask").text(), "*.*");
      Choose(box, 10);
      Type(box, "txtFileMask", "*.new");
      leave(box);
    });
    EXPECT_TRUE(Options().mCancelled);
    EXPECT_EQ(Options().mRule, 2);
    EXPECT_EQ(Options().mFileMask, u"*.*");
  }
}

TEST_F(SelectionAssistant, OptionsThatItCannotShowLeaveItsControlsAsTheyAre) {
  Options().mRule = 99;
  Options().SetDriveSpec(u"\\\\server\\share");
  Options().SetSizeIncrement(7);
  Options().mLastModifiedDate = Date(1e9);
  ShowDialog([&](QDialog& box) {
    EXPECT_EQ(Find<QComboBox>(box, "cboMarkForRemovalMethods").currentIndex(), -1);
    EXPECT_EQ(Find<QComboBox>(box, "Drive1").currentText(), "C:");
    EXPECT_EQ(Find<QComboBox>(box, "cboSizeIncrements").currentText(), "bytes");
    Press(box, "mb_cmdMarkNow");
    EXPECT_EQ(TakeBox().title, u"Get Method Description");
    EXPECT_EQ(Options().mRule, 99);
    Choose(box, 3);
    Press(box, "mb_cmdMarkNow");
  });
  EXPECT_EQ(Options().mRule, 3);
}

TEST_F(SelectionAssistant, ADateThatNobodyTouchesStaysAsExactAsItWas) {
  const Date exact(45000.123456789);
  for (const Date date : {exact, Date(-0.75), Date(Date::FirstDay), Date(Date::LastDay + 0.99)}) {
    Options().mLastModifiedDate = date;
    ShowDialog([](QDialog& box) { Press(box, "mb_cmdMarkNow"); });
    EXPECT_EQ(Options().mLastModifiedDate.Days(), date.Days());
  }
  Options().mLastModifiedDate = exact;
  ShowDialog([](QDialog& box) {
    auto& picker = Find<QDateTimeEdit>(box, "dtLastModifiedDate");
    EXPECT_TRUE(picker.calendarPopup());
    picker.setDateTime(picker.dateTime().addDays(1));
    Press(box, "mb_cmdMarkNow");
  });
  EXPECT_EQ(Options().mLastModifiedDate.WholeSeconds(), exact.WholeSeconds() + 86400);
}

TEST(DatePictures, HaveYearsOfFourDigitsAndTheToolkitsMarkerOfTheHalfOfTheDay) {
  struct Row {
    TextView shortDate;
    TextView longTime;
    const char* format;
  };
  constexpr Row kRows[] = {
      {u"M/d/yyyy", u"h:mm:ss tt", "M/d/yyyy h:mm:ss AP"},
      {u"dd.MM.yy", u"HH:mm:ss", "dd.MM.yyyy HH:mm:ss"},
      {u"d 'de ty' MMM y", u"t h 'h' mm", "d 'de ty' MMM yyyy AP h 'h' mm"},
      {u"gg yyyy-MM-dd", u"H''mm", " yyyy-MM-dd H''mm"},
  };
  for (const Row& row : kRows) {
    LocaleFacts locale;
    locale.shortDate = row.shortDate;
    locale.longTime = row.longTime;
    EXPECT_EQ(PickerFormat(locale).toStdString(), row.format);
  }
}

}  // namespace
}  // namespace quillmarsh
