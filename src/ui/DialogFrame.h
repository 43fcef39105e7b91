// SPDX-License-Identifier: MIT
// What the small dialogs have in common: an icon beside a heading, texts that wrap, and a row of
// buttons. It is as large as its texts want it to be, and no smaller.
#pragma once

#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/TextTable.h"

class QDialogButtonBox;

namespace quillmarsh {

// A text of the table for the toolkit.
[[nodiscard]] QString TableText(TextId id);
// The program's name, " - " and a heading: how the titles of the dialogs read.
[[nodiscard]] QString TitleWith(TextId heading);

class DialogFrame : public QDialog {
  Q_OBJECT
 public:
  // `iconKey` as IconFor knows it.
  DialogFrame(const QString& name, const QString& title, const QString& iconKey, QWidget* parent);

 protected:
  // Adds the text in large letters, or others below it. A label belongs to the dialog and bears
  // `name`.
  QLabel* AddHeading(const QString& name, const QString& text);
  QLabel* AddText(const QString& name, const QString& text);
  QLabel* AddBoldText(const QString& name, const QString& text);
  // A row of a caption, to which a colon is added, and a number at the right.
  void AddFact(const QString& captionName, TextId caption, const QString& valueName,
               const QString& value);
  void AddSpace();
  void AddLine();

  // Ends the dialog. `role` is a QDialogButtonBox::ButtonRole.
  QPushButton* AddButton(const QString& name, const QString& text, int role);
  // Which button the return key presses, and which has the focus.
  void SetDefaultButton(QPushButton* button);

  void showEvent(QShowEvent* event) override;

 private:
  QLabel* AddLabel(const QString& name, const QString& text);

  QVBoxLayout* mTexts;
  QGridLayout* mFacts = nullptr;
  QDialogButtonBox* mButtons;
  QPushButton* mDefault = nullptr;
};

}  // namespace quillmarsh
