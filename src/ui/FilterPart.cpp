// SPDX-License-Identifier: MIT
// The controls, and what the three buttons do.
#include "ui/FilterPart.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>
#include <algorithm>

#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/Views.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "ui/DialogFrame.h"
#include "ui/PlainToolTip.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kRowsOfList = 6;
constexpr std::int32_t kDocuments = 5;  // the person's documents, among the shell's folders

QString Placeholder() {
  return TableText(802) + QStringLiteral(" ==>");
}

QString HeadingOf(const FilterPartRow& row) {
  if (row.kind == FilterListKind::Folders) return TableText(row.heading) + QLatin1Char(':');
  return TableText(row.heading) + QStringLiteral(" (") + TableText(1170) + QLatin1Char(')');
}

QPushButton* MakeButton(const char* name, const QString& text, const QString& accessibleName) {
  auto* const button = new QPushButton(text);
  button->setObjectName(QString::fromLatin1(name));
  button->setAccessibleName(accessibleName);
  button->setAutoDefault(false);
  return button;
}

void Tell(TextId text, TextId title) {
  ShowMessageBox({LoadResString(text), LoadResString(title), MessageBoxIcon::Information});
}

}  // namespace

FilterPart::FilterPart(const FilterPartRow& row, TextView stored)
    : mRow(row), mFilters(row.kind, stored), mList(new QListWidget), mEntry(new QLineEdit) {
  const QString heading = HeadingOf(row);
  mList->setObjectName(QString::fromLatin1(row.list));
  mList->setAccessibleName(heading);
  mList->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  mList->setMinimumHeight(fontMetrics().height() * kRowsOfList);
  MakeField();

  auto* const label = new QLabel(heading);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  // As high as the narrowest field wants it: layouts would give a label that wraps too little room.
  label->setFixedHeight(label->heightForWidth(mEntry->minimumWidth()));
  label->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  auto* const pick = MakeButton(row.pick, QStringLiteral("..."), TableText(row.prompt));
  pick->setToolTip(TableText(row.prompt));
  pick->setFixedWidth(pick->fontMetrics().averageCharWidth() * 6);
  auto* const add = MakeButton(row.add, TableText(816), TableText(816) + u' ' + heading);
  auto* const remove = MakeButton(row.remove, TableText(445), TableText(445) + u' ' + heading);
  connect(pick, &QPushButton::clicked, this, &FilterPart::Pick);
  connect(add, &QPushButton::clicked, this, &FilterPart::Add);
  connect(remove, &QPushButton::clicked, this, &FilterPart::Remove);

  auto* const field = new QHBoxLayout;
  field->addWidget(mEntry, 1);
  field->addWidget(pick);
  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(add);
  buttons->addWidget(remove);
  buttons->addStretch();
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(label);
  layout->addWidget(mList, 1);
  layout->addLayout(field);
  layout->addLayout(buttons);
  ShowEntries(-1);
}

void FilterPart::MakeField() {
  mEntry->setObjectName(QString::fromLatin1(mRow.entry));
  mEntry->setAccessibleName(HeadingOf(mRow));
  mEntry->installEventFilter(this);
  mEntry->setMinimumWidth(
      mEntry->fontMetrics().horizontalAdvance(Placeholder() + QStringLiteral("MM")));
  if (!IsOfFolders()) return;
  mEntry->setText(Placeholder());
  mEntry->setReadOnly(true);
  QPalette palette = mEntry->palette();
  palette.setColor(QPalette::Text, palette.color(QPalette::PlaceholderText));
  mEntry->setPalette(palette);
}

bool FilterPart::eventFilter(QObject* watched, QEvent* event) {
  if (watched != mEntry) return QWidget::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::MouseButtonPress:
      ClearPlaceholder();
      return false;
    case QEvent::KeyPress: {
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
      Add();
      return true;
    }
    default:
      return false;
  }
}

void FilterPart::ClearPlaceholder() {
  if (!mEntry->isReadOnly()) return;
  mEntry->clear();
  mEntry->setReadOnly(false);
  mEntry->setPalette({});
}

Text FilterPart::ShownEntry(const Text& entry) const {
  return IsOfFolders() ? ShownFolderFilter(entry) : ShownMask(entry);
}

Text FilterPart::EntryOfField() const {
  if (mEntry->text() == Placeholder()) return {};
  const Text typed(TrimBlanks(FromQString(mEntry->text())));
  if (typed.empty()) return {};
  if (!mPicked.empty() && typed == ShownEntry(mPicked)) return mPicked;
  return IsOfFolders() ? FolderFilterFromTyped(typed, mRow.use) : MaskFromTyped(typed);
}

void FilterPart::ShowEntries(int selected) {
  mList->clear();
  for (const Text& entry : mFilters.Entries()) {
    const QString shown = ToQString(ShownEntry(entry));
    auto* const item = new QListWidgetItem(shown, mList);
    item->setToolTip(PlainToolTip(shown));
  }
  mList->setCurrentRow(selected);
}

void FilterPart::Pick() {
  Guarded(u"frmIncludeExclude.SelectEntry", [this] {
    ClearPlaceholder();
    const Text prompt = LoadResString(mRow.prompt);
    const Text picked = IsOfFolders()
                            ? AddBackslash(BrowseForFolder(prompt, {}))
                            : GetFileNameOf(OpenFileName(
                                  prompt, TheMachine().Desktop().SHGetFolderPathW(kDocuments)));
    if (picked.empty()) return;
    mPicked = picked;
    mEntry->setText(ToQString(ShownEntry(picked)));
    mEntry->setFocus();
  });
}

void FilterPart::Add() {
  // A path may wait for its disk while events run.
  if (mIsAdding) return;
  const QScopedValueRollback<bool> adding(mIsAdding, true);
  // The form had another name once, by which people find the failures of its first two buttons.
  const TextView source = IsOfFolders() ? u"frmDupeInclusions.mb_cmdAddFolder_Click"
                                        : u"frmIncludeExclude.AddFileToList";
  Guarded(source, [this] {
    switch (mFilters.Add(EntryOfField())) {
      case cFilterList::AddResult::Empty:
        return IsOfFolders() ? Tell(528, 513) : Tell(240, 241);
      case cFilterList::AddResult::Ignored:
        return;
      case cFilterList::AddResult::Added:
        break;
    }
    ShowEntries(-1);
    mList->scrollToBottom();
    mPicked.clear();
    mEntry->clear();
  });
}

void FilterPart::Remove() {
  const TextView source = IsOfFolders() ? u"frmDupeInclusions.mb_cmdRemoveFolder_Click"
                                        : u"frmIncludeExclude.RemoveFileFromList";
  Guarded(source, [this] {
    const QList<QListWidgetItem*> selected = mList->selectedItems();
    const int position = selected.isEmpty() ? -1 : mList->row(selected.front());
    if (!mFilters.Remove(position)) return IsOfFolders() ? Tell(514, 515) : Tell(242, 243);
    ShowEntries(std::min(position, static_cast<int>(mFilters.Entries().size()) - 1));
  });
}

}  // namespace quillmarsh
