// SPDX-License-Identifier: MIT
// What the small dialogs say, and what closing them in each way answers.
#include <gtest/gtest.h>

#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "frame/TextTable.h"
#include "fsobjects/LocaleFormats.h"
#include "removal/RemovalView.h"
#include "support/MachineFixture.h"
#include "ui/Dialogs.h"
#include "ui/ModalBox.h"
#include "ui/QtText.h"
#include "ui/QtViews.h"

namespace quillmarsh {
namespace {

class DialogsTest : public testing::Test, protected MachineFixture {
 protected:
  DialogsTest() { ResetLocaleFacts(); }
  ~DialogsTest() override { ResetLocaleFacts(); }
};

TEST_F(DialogsTest, TheSearchSummaryShowsItsNumbersInTheFormOfTheLocale) {
  InNextBox<QDialog>([](QDialog& box) {
    EXPECT_EQ(box.objectName(), "frmSearchSummary");
    EXPECT_EQ(box.windowTitle(), "Quillmarsh - Search Summary");
    EXPECT_EQ(LabelText(box, "lblDupeSearchCompleteLabel"), "Duplicate Search Complete");
    EXPECT_EQ(LabelText(box, "lblSummary"), "Quillmarsh - Search Summary");
    EXPECT_EQ(LabelText(box, "lblNumFilesSearchedLabel"), "Files Searched:");
    EXPECT_EQ(LabelText(box, "lblNumFilesSearched"), "1,234,567");
    EXPECT_EQ(LabelText(box, "lblNumDupesFoundLabel"), "Duplicates Found:");
    EXPECT_EQ(LabelText(box, "lblNumDupesFound"), "1,000");
    EXPECT_EQ(LabelText(box, "lblNumDupeGroupsLabel"), "Groups of Duplicates:");
    EXPECT_EQ(LabelText(box, "lblNumDupeGroups"), "7");
    EXPECT_EQ(LabelText(box, "lblDupesSizeLabel"), "Total Size of Duplicates:");
    EXPECT_EQ(LabelText(box, "lblDupesSize"), "1.30 KB");
    EXPECT_EQ(LabelText(box, "lblNextStepLabel"), "Next Step");
    EXPECT_EQ(LabelText(box, "lblNextStep"), "Select Files for Removal.");
    EXPECT_EQ(LabelText(box, "lblNextStepDescription"), ToUtf8(LoadResString(728)));
    EXPECT_EQ(LabelText(box, "lblNote"), ToUtf8(LoadResString(1114)));
    ExpectNothingIsCut(box);
    EXPECT_EQ(box.focusWidget()->objectName(), "mycmdOK");
    QTest::keyClick(&box, Qt::Key_Return);
  });
  ShowSearchSummaryDialog(nullptr, {1234567, 1000, 7, Currency::FromInteger(1340), false});
}

TEST_F(DialogsTest, ACancelledSearchIsCalledIncomplete) {
  InNextBox<QDialog>([](QDialog& box) {
    EXPECT_EQ(LabelText(box, "lblDupeSearchCompleteLabel"), "Duplicate Search Cancelled");
    EXPECT_EQ(LabelText(box, "lblSummary"), "Search Summary (Incomplete):");
    EXPECT_EQ(LabelText(box, "lblNumFilesSearched"), "12");
    QTest::keyClick(&box, Qt::Key_Escape);
  });
  ShowSearchSummaryDialog(nullptr, {12, 0, 0, {}, true});
}

TEST_F(DialogsTest, TheSelectionSummaryIsShownForNoFileToo) {
  InNextBox<QDialog>([](QDialog& box) {
    EXPECT_EQ(box.objectName(), "frmSelectSummary");
    EXPECT_EQ(box.windowTitle(), "Quillmarsh - Selection Summary");
    EXPECT_EQ(LabelText(box, "lblSummary"), "Selection Summary");
    EXPECT_EQ(LabelText(box, "lblNumFilesSelected"), "0");
    EXPECT_EQ(LabelText(box, "lblSpaceSavings"), "0 bytes");
    EXPECT_EQ(LabelText(box, "lblNextStepLabel"), "Next Steps");
    EXPECT_EQ(LabelText(box, "lblNextStep(0)"), "Specify the Removal Method");
    EXPECT_EQ(LabelText(box, "lblNextStepDescription(0)"), ToUtf8(LoadResString(741)));
    EXPECT_EQ(LabelText(box, "lblNextStep(1)"), "Remove the Selected Files");
    EXPECT_EQ(LabelText(box, "lblNextStepDescription(1)"), ToUtf8(LoadResString(742)));
    EXPECT_EQ(LabelText(box, "lblNoteLabel"), "Note");
    EXPECT_EQ(LabelText(box, "lblNote"), ToUtf8(LoadResString(744)));
    ExpectNothingIsCut(box);
    Press(box, "mycmdOK");
  });
  ShowSelectSummaryDialog(nullptr, {});
}

TEST_F(DialogsTest, TheGuidelinesAreLeftByContinueOrCancelled) {
  struct Row {
    const char* name;
    std::function<void(QDialog&)> close;
    std::int32_t answer;
  };
  const Row rows[] = {
      {"Continue", [](QDialog& box) { Press(box, "mycmdContinue"); }, kRemovalWarningContinue},
      {"Cancel", [](QDialog& box) { Press(box, "mycmdCancel"); }, kRemovalWarningCancel},
      {"Esc", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }, kRemovalWarningCancel},
      {"the return key", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); },
       kRemovalWarningCancel},
      {"the frame", [](QDialog& box) { box.close(); }, kRemovalWarningCancel},
  };
  for (const Row& row : rows) {
    InNextBox<QDialog>([&](QDialog& box) {
      EXPECT_EQ(box.windowTitle(), "Quillmarsh - Removal Guidelines");
      EXPECT_EQ(LabelText(box, "lblWelcome"), ToUtf8(LoadResString(698)));
      for (int index = 0; index < 6; ++index)
        EXPECT_EQ(LabelText(box, ("lblGuidelines(" + std::to_string(index) + ")").c_str()),
                  "- " + ToUtf8(LoadResStringAt(692 + index)));
      EXPECT_EQ(LabelText(box, "lblDisclaimerLabel"), "Disclaimer:");
      EXPECT_EQ(LabelText(box, "lblDisclaimer"), ToUtf8(LoadResString(691)));
      ExpectNothingIsCut(box);
      row.close(box);
    });
    EXPECT_EQ(ShowRemovalWarningDialog(nullptr), row.answer) << row.name;
  }
}

TEST_F(DialogsTest, GettingStartedTellsThreeSteps) {
  InNextBox<QDialog>([](QDialog& box) {
    EXPECT_EQ(box.objectName(), "frmGettingStarted");
    EXPECT_EQ(LabelText(box, "lblWelcome"), ToUtf8(LoadResString(545)));
    for (const char* const text :
         {"Select the Folder(s) to Search", "Specify the Search Options"}) {
      const auto labels = box.findChildren<QLabel*>();
      EXPECT_TRUE(std::ranges::any_of(labels, [&](QLabel* l) { return l->text() == text; }))
          << text;
    }
    EXPECT_EQ(LabelText(box, "lblStepDescription(2)"), ToUtf8(LoadResString(548)));
    ExpectNothingIsCut(box);
    Press(box, "mycmdOK");
  });
  ShowGettingStartedDialog(nullptr);
}

TEST_F(DialogsTest, AboutShowsTheSystemsFactsWhereItHasNoProgramForThem) {
  QtViews views;
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", "/nowhere");
  InNextBox<QDialog>([](QDialog& box) {
    EXPECT_EQ(box.windowTitle(), "About Quillmarsh");
    EXPECT_EQ(LabelText(box, "lblTitle"), "Quillmarsh");
    EXPECT_TRUE(LabelText(box, "lblVersion").starts_with(" v"));
    EXPECT_EQ(LabelText(box, "lblCompany"), "Created by Harrow Fen Software");
    EXPECT_FALSE(LabelText(box, "lblWarning").empty());
    ExpectNothingIsCut(box);
    InNextBox<QMessageBox>([](QMessageBox& facts) {
      EXPECT_TRUE(facts.text().contains(QSysInfo::kernelVersion()));
      QTest::keyClick(&facts, Qt::Key_Escape);
    });
    Press(box, "mb_cmdSysInfo");
    EXPECT_TRUE(box.isVisible());
    Press(box, "mb_cmdOK");
  });
  ShowAboutDialog(nullptr);
  qputenv("PATH", path);
}

TEST_F(DialogsTest, TheInputBoxAnswersItsLineOrNothing) {
  QtViews views;
  const TextView withPictures = u"a\u2401b & c";
  Text prompt = u"Prompt <b>";
  for (int word = 0; word < 60; ++word) prompt += u" goes on";
  struct Row {
    const char* name;
    std::function<void(QDialog&)> act;
    Text answer;
  };
  const Row rows[] = {
      {"OK with the default", [](QDialog& box) { Press(box, "cmdOK"); }, Text(withPictures)},
      {"typed over the selected default",
       [](QDialog& box) {
         QTest::keyClicks(box.focusWidget(), "new");
         QTest::keyClick(box.focusWidget(), Qt::Key_Return);
       },
       u"new"},
      {"Cancel", [](QDialog& box) { Press(box, "cmdCancel"); }, u""},
      {"Esc", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }, u""},
      {"OK with an empty line",
       [](QDialog& box) {
         QTest::keyClick(box.focusWidget(), Qt::Key_Delete);
         Press(box, "cmdOK");
       },
       u""},
  };
  for (const Row& row : rows) {
    InNextBox<QDialog>([&](QDialog& box) {
      EXPECT_EQ(box.windowTitle(), "Title");
      EXPECT_EQ(LabelText(box, "lblPrompt"), ToUtf8(prompt));
      ExpectNothingIsCut(box);
      auto* const input = box.findChild<QLineEdit*>(QStringLiteral("txtUInput"));
      EXPECT_EQ(box.focusWidget(), input);
      EXPECT_EQ(input->selectedText(), ToQString(withPictures));
      row.act(box);
    });
    EXPECT_EQ(InputBoxText(prompt, u"Title", withPictures), row.answer) << row.name;
  }
}

}  // namespace
}  // namespace quillmarsh
