// SPDX-License-Identifier: MIT
// The line, its prompt and the two buttons.
#include "ui/frmInputBox.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/TextTable.h"
#include "ui/BreakableText.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kWidthInLetters = 56;

}  // namespace

frmInputBox::frmInputBox(TextView prompt, TextView title, TextView defaultText, QWidget* parent)
    : QDialog(parent), mInput(new QLineEdit(ToQString(defaultText))) {
  setObjectName(QStringLiteral("frmInputBox"));
  setWindowTitle(ToQString(title));

  auto* const label = new QLabel(BreakableText(ToQString(prompt)));
  label->setObjectName(QStringLiteral("lblPrompt"));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(fontMetrics().averageCharWidth() * kWidthInLetters);

  mInput->setObjectName(QStringLiteral("txtUInput"));
  mInput->setAccessibleName(ToQString(prompt));
  mInput->selectAll();

  auto* const buttons = new QDialogButtonBox;
  QPushButton* const ok =
      buttons->addButton(ToQString(LoadResString(992)), QDialogButtonBox::AcceptRole);
  ok->setObjectName(QStringLiteral("cmdOK"));
  ok->setDefault(true);
  QPushButton* const cancel =
      buttons->addButton(ToQString(LoadResString(214)), QDialogButtonBox::RejectRole);
  cancel->setObjectName(QStringLiteral("cmdCancel"));
  cancel->setAutoDefault(false);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(mInput);
  layout->addStretch();
  layout->addWidget(buttons);
  mInput->setFocus();
}

Text frmInputBox::Answer() const {
  return result() == Accepted ? FromQString(mInput->text()) : Text();
}

}  // namespace quillmarsh
