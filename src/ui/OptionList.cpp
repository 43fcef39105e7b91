// SPDX-License-Identifier: MIT
// The table of rows, and a grid of labels and boxes.
#include "ui/OptionList.h"

#include <QGridLayout>
#include <QStyle>
#include <QWheelEvent>

#include "filetypes/modSearchFileTypes.h"
#include "frame/TextTable.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kFileTypes = 5;

enum class RowKind { Heading, Boolean, FileType };

struct OptionRow {
  const char* key;
  TextId label;
  RowKind kind;
};

constexpr OptionRow kRows[] = {
    {"GENERAL_LABEL_KEY", 456, RowKind::Heading},
    {"INCLUDE_SUBFOLDERS_KEY", 401, RowKind::Boolean},
    {"FILE_TYPE_KEY", 978, RowKind::FileType},
    {"IDENTICAL_LABEL_KEY", 457, RowKind::Heading},
    {"NAMES_MATCH_KEY", 340, RowKind::Boolean},
    {"SIZES_MATCH_KEY", 341, RowKind::Boolean},
    {"CREATEDATES_MATCH_KEY", 342, RowKind::Boolean},
    {"LASTMODDATES_MATCH_KEY", 343, RowKind::Boolean},
    {"CONTENTS_MATCH_KEY", 344, RowKind::Boolean},
    {"IGNORE_LABEL_KEY", 915, RowKind::Heading},
    {"IGNORE_ZEROBYTE_FILES_KEY", 461, RowKind::Boolean},
    {"IGNORE_SYSTEMFILES_KEY", 916, RowKind::Boolean},
    {"IGNORE_HIDDENFILES_KEY", 917, RowKind::Boolean},
    {"IGNORE_TEMPORARYFILES_KEY", 918, RowKind::Boolean},
    {"IGNORE_WINDOWSFILES_KEY", 464, RowKind::Boolean},
    {"IGNORE_RECYCLEBINFILES_KEY", 465, RowKind::Boolean},
};

// The wheel scrolls the list and never changes an option on its way.
class ValueBox final : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

QStringList ValuesOf(RowKind kind) {
  if (kind == RowKind::Boolean) return {ToQString(BoolToText(true)), ToQString(BoolToText(false))};
  QStringList names;
  for (int number = 0; number < kFileTypes; ++number)
    names.append(ToQString(SFTNameFromEnum(number)));
  return names;
}

}  // namespace

OptionList::OptionList(QWidget* parent) : QScrollArea(parent) {
  setObjectName(QStringLiteral("smtSearchOptions"));
  setAccessibleName(ToQString(LoadResString(390)));
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus);
  auto* const rows = new QWidget(this);
  rows->setBackgroundRole(QPalette::Base);
  auto* const grid = new QGridLayout(rows);
  grid->setColumnStretch(0, 1);
  for (const OptionRow& row : kRows) {
    const QString caption = ToQString(LoadResString(row.label));
    if (row.kind == RowKind::Heading) {
      AddHeading(*grid, row.key, caption);
    } else {
      AddRow(*grid, row.key, caption, ValuesOf(row.kind));
    }
  }
  grid->setRowStretch(grid->rowCount(), 1);
  setWidget(rows);
}

void OptionList::AddHeading(QGridLayout& grid, const char* key, const QString& caption) {
  auto* const label = new QLabel(caption, this);
  label->setObjectName(QString::fromLatin1(key));
  QFont font = label->font();
  font.setBold(true);
  label->setFont(font);
  if (!mRows.isEmpty()) label->setContentsMargins(0, fontMetrics().height() / 2, 0, 0);
  grid.addWidget(label, grid.rowCount(), 0, 1, 2);
}

void OptionList::AddRow(QGridLayout& grid, const char* key, const QString& caption,
                        const QStringList& values) {
  const QString name = QString::fromLatin1(key);
  auto* const box = new ValueBox(this);
  box->setObjectName(name);
  box->setAccessibleName(caption.trimmed());
  box->addItems(values);
  box->setFocusPolicy(Qt::StrongFocus);
  auto* const label = new QLabel(caption, this);
  label->setBuddy(box);
  label->setIndent(fontMetrics().averageCharWidth() * 2);
  label->setWordWrap(true);
  const int line = grid.rowCount();
  grid.addWidget(label, line, 0);
  grid.addWidget(box, line, 1);
  mRows.insert(name, box);
  connect(box, &QComboBox::currentTextChanged, this, [this, name](const QString& text) {
    emit PropertyChanged(name, ToQString(LoadResString(466)), text);
  });
}

void OptionList::SetRowText(const QString& key, const QString& text) {
  QComboBox* const box = Row(key);
  if (box == nullptr) return;
  const QSignalBlocker silence(box);
  box->setCurrentIndex(box->findText(text));
}

void OptionList::SetRowEnabled(const QString& key, bool isEnabled) {
  if (QComboBox* const box = Row(key)) box->setEnabled(isEnabled);
}

QSize OptionList::sizeHint() const {
  const int frame = 2 * frameWidth();
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  return widget()->sizeHint() + QSize(frame + bar, frame);
}

}  // namespace quillmarsh
