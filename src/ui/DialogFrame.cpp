// SPDX-License-Identifier: MIT
// Labels in a column, as wide as makes them easy to read.
#include "ui/DialogFrame.h"

#include <QDialogButtonBox>
#include <QShowEvent>
#include <QStyle>

#include "ui/Icons.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kWidthInLetters = 58;
constexpr double kHeadingSize = 1.35;  // of the usual letters

}  // namespace

QString TableText(TextId id) {
  return ToQString(LoadResString(id));
}

QString TitleWith(TextId heading) {
  return TableText(688) + QStringLiteral(" - ") + TableText(heading);
}

DialogFrame::DialogFrame(const QString& name, const QString& title, const QString& iconKey,
                         QWidget* parent)
    : QDialog(parent), mTexts(new QVBoxLayout), mButtons(new QDialogButtonBox) {
  setObjectName(name);
  setWindowTitle(title);

  const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  auto* const picture = new QPushButton;
  picture->setFlat(true);
  picture->setIcon(IconFor(iconKey));
  picture->setIconSize({side, side});
  picture->setFocusPolicy(Qt::NoFocus);
  picture->setAttribute(Qt::WA_TransparentForMouseEvents);
  picture->setAutoDefault(false);

  auto* const row = new QHBoxLayout;
  row->addWidget(picture, 0, Qt::AlignTop);
  row->addLayout(mTexts, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(row);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addWidget(mButtons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

QLabel* DialogFrame::AddLabel(const QString& name, const QString& text) {
  auto* const label = new QLabel(text);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(fontMetrics().averageCharWidth() * kWidthInLetters);
  mTexts->addWidget(label);
  mFacts = nullptr;
  return label;
}

QLabel* DialogFrame::AddHeading(const QString& name, const QString& text) {
  QLabel* const label = AddLabel(name, text);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * kHeadingSize);
  font.setBold(true);
  label->setFont(font);
  return label;
}

QLabel* DialogFrame::AddText(const QString& name, const QString& text) {
  return AddLabel(name, text);
}

QLabel* DialogFrame::AddBoldText(const QString& name, const QString& text) {
  QLabel* const label = AddLabel(name, text);
  QFont font = label->font();
  font.setBold(true);
  label->setFont(font);
  return label;
}

void DialogFrame::AddFact(const QString& captionName, TextId caption, const QString& valueName,
                          const QString& value) {
  if (mFacts == nullptr) {
    mFacts = new QGridLayout;
    mFacts->setHorizontalSpacing(fontMetrics().averageCharWidth() * 4);
    mFacts->setColumnStretch(2, 1);
    mTexts->addLayout(mFacts);
  }
  auto* const label = new QLabel(TableText(caption) + QLatin1Char(':'));
  label->setObjectName(captionName);
  label->setTextFormat(Qt::PlainText);
  auto* const number = new QLabel(value);
  number->setObjectName(valueName);
  number->setTextFormat(Qt::PlainText);
  number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  number->setAccessibleName(TableText(caption) + QStringLiteral(": ") + value);
  const int row = mFacts->rowCount();
  mFacts->addWidget(label, row, 0);
  mFacts->addWidget(number, row, 1);
}

void DialogFrame::AddSpace() {
  mTexts->addSpacing(fontMetrics().height() / 2);
  mFacts = nullptr;
}

void DialogFrame::AddLine() {
  AddSpace();
  auto* const line = new QFrame;
  line->setFrameStyle(QFrame::HLine | QFrame::Plain);
  line->setForegroundRole(QPalette::PlaceholderText);
  mTexts->addWidget(line);
  AddSpace();
}

QPushButton* DialogFrame::AddButton(const QString& name, const QString& text, int role) {
  auto* const button = new QPushButton(text);
  button->setObjectName(name);
  button->setAutoDefault(false);
  mButtons->addButton(button, static_cast<QDialogButtonBox::ButtonRole>(role));
  if (role == QDialogButtonBox::AcceptRole)
    connect(button, &QPushButton::clicked, this, &QDialog::accept);
  if (role == QDialogButtonBox::RejectRole)
    connect(button, &QPushButton::clicked, this, &QDialog::reject);
  return button;
}

void DialogFrame::SetDefaultButton(QPushButton* button) {
  mDefault = button;
}

// A button box would give the return key to its first button.
void DialogFrame::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (mDefault == nullptr || event->spontaneous()) return;
  mDefault->setDefault(true);
  mDefault->setFocus();
}

}  // namespace quillmarsh
