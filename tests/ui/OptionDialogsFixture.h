// SPDX-License-Identifier: MIT
// The options of the program on a simulated machine, with an options file, and a person who answers
// input boxes and pickers as a test says. Message boxes are kept; one that no test takes fails it.
#pragma once

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <deque>

#include "ModalBox.h"
#include "filetypes/cCommonFileTypes.h"
#include "frame/TextTable.h"
#include "fsobjects/FsObjectsFixture.h"
#include "removal/ScriptedPickers.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"
#include "settings/optionsfile/modIniFile.h"
#include "ui/Dialogs.h"
#include "ui/QtText.h"

namespace quillmarsh {

class ScriptedInputBox final : public InputBoxView {
 public:
  Text Show(TextView prompt, TextView title, TextView defaultText) override {
    questions.push_back(ToUtf8(title) + " | " + ToUtf8(prompt) + " | " + ToUtf8(defaultText));
    if (answers.empty()) return {};
    Text answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::deque<Text> answers;            // then the person cancels
  std::vector<std::string> questions;  // "title | prompt | default"
};

class OptionDialogsFixture : public FsObjectsFixture, private ProgramOptionsForm {
 protected:
  OptionDialogsFixture() {
    gViews.inputBox = &inputs;
    Restart();
  }
  ~OptionDialogsFixture() override {
    gDupeSettings.reset();
    gMarkForRemovalWizardOptions.reset();
    gCommonFileTypes.reset();
    mDupesFolderPath.clear();
  }

  // As a new start of the program reads them.
  void Restart() {
    gDupeSettings = std::make_unique<clsDupeSettings>();
    gMarkForRemovalWizardOptions = std::make_unique<clsMarkForRemovalWizard>();
    gCommonFileTypes = std::make_unique<cCommonFileTypes>();
    ReadProgramOptionsFromIniFile(*this);
  }

  template <typename Control>
  static Control& Find(QDialog& box, const char* name) {
    auto* const control = box.findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) ADD_FAILURE() << "no " << name;
    return *control;
  }
  static void Type(QDialog& box, const char* name, const char* text) {
    Find<QLineEdit>(box, name).setFocus();
    Find<QLineEdit>(box, name).setText(QString::fromUtf8(text));
  }
  static std::string FocusOf(const QDialog& box) {
    return box.focusWidget() != nullptr ? box.focusWidget()->objectName().toStdString() : "";
  }
  // Those of the first column, joined by blanks.
  static std::string RowsOf(QDialog& box, const char* list) {
    const QAbstractItemModel* const model = Find<QAbstractItemView>(box, list).model();
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row)
      rows << model->data(model->index(row, 0)).toString();
    return rows.join(QLatin1Char(' ')).toStdString();
  }
  // Every button, field and list has a name for those who do not see it, and no text is a mark.
  static void ExpectAllAreNamed(const QDialog& box) {
    for (const QWidget* const widget : box.findChildren<QWidget*>()) {
      if (const auto* const label = qobject_cast<const QLabel*>(widget)) {
        EXPECT_FALSE(label->text().startsWith(QStringLiteral("$_")));
      }
      const bool isInner = widget->objectName().startsWith(QStringLiteral("qt_"));
      if ((widget->focusPolicy() & Qt::TabFocus) == 0 || isInner || !widget->isVisible()) continue;
      EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
    }
  }
  // Letters of which not everything fits on the screen as it wants to.
  class LargeLetters {
   public:
    LargeLetters() {
      QFont font = mUsual;
      font.setPointSizeF(font.pointSizeF() * 2.2);
      QApplication::setFont(font);
    }
    ~LargeLetters() { QApplication::setFont(mUsual); }
    LargeLetters(const LargeLetters&) = delete;
    LargeLetters& operator=(const LargeLetters&) = delete;

   private:
    const QFont mUsual = QApplication::font();
  };
  // No two controls of one parent cover each other.
  static void ExpectNothingIsCovered(const QWidget& parent) {
    const auto controls = parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget* const a : controls) {
      if (!a->isVisible() || a->inherits("QAbstractItemView")) continue;
      for (const QWidget* const b : controls) {
        EXPECT_TRUE(a == b || !b->isVisible() || !a->geometry().intersects(b->geometry()))
            << a->objectName().toStdString() << " and " << b->objectName().toStdString();
      }
      if (a->layout() != nullptr) ExpectNothingIsCovered(*a);
    }
  }
  // The next box is told so, and has that title.
  void ExpectTold(TextId text, TextId title) {
    const MessageBoxRequest told = TakeBox();
    EXPECT_EQ(ToUtf8(told.text), ToUtf8(LoadResString(text)));
    EXPECT_EQ(ToUtf8(told.title), ToUtf8(LoadResString(title)));
  }

  ScriptedPickers pickers;
  ScriptedInputBox inputs;

 private:
  void CheckMnuOptionsCheckFolderPermission(bool) override {}
};

}  // namespace quillmarsh
