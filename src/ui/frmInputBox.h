// SPDX-License-Identifier: MIT
// The input box of the program: one line of text under a prompt. The default stands in the line and
// is selected. OK with an empty line and Cancel give the same empty answer.
#pragma once

#include <QDialog>

#include "base/Text.h"

class QLineEdit;

namespace quillmarsh {

class frmInputBox final : public QDialog {
  Q_OBJECT
 public:
  frmInputBox(TextView prompt, TextView title, TextView defaultText, QWidget* parent);

  // Once it is closed; empty unless OK closed it.
  [[nodiscard]] Text Answer() const;

 private:
  QLineEdit* mInput;
};

}  // namespace quillmarsh
