// SPDX-License-Identifier: MIT
// Cells on demand, and the marks as check boxes, icons and texts for those who hear them.
#include "ui/ResultsModels.h"

#include <QApplication>
#include <QFont>
#include <QStyle>
#include <QTextDocument>

#include "frame/TextTable.h"
#include "search/results/DetailColumns.h"
#include "selection/MarkedFiles.h"
#include "ui/PlainToolTip.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

QString TableText(TextId id) {
  return ToQString(LoadResString(id));
}

QStringList DetailHeadings() {
  QStringList headings;
  for (int column = 0; column + 1 < GetDupeDetailColCount(); ++column)
    headings += ToQString(GetDupeDetailColLabelFromColNumber(column));
  return headings;
}

}  // namespace

ResultsModel::ResultsModel(cSearchResults& results, cResultsList& list, QStringList headings,
                           QObject* parent)
    : QAbstractTableModel(parent),
      mResults(results),
      mList(list),
      mHeadings(std::move(headings)),
      mRows(list.VisibleCount()) {
  mList.SetListener([this](ListChange change) { ListChanged(change); });
}

ResultsModel::~ResultsModel() {
  mList.SetListener({});
}

void ResultsModel::ListChanged(ListChange change) {
  switch (change) {
    case ListChange::Rows:
      beginResetModel();
      ForgetMarks();
      mRows = mList.VisibleCount();
      endResetModel();
      return;
    case ListChange::Cells:
      return MarksChanged();
    case ListChange::Selection:
      emit SelectionMoved();
      return;
  }
}

void ResultsModel::MarksChanged() {
  ForgetMarks();
  if (mRows > 0) emit dataChanged(index(0, 0), index(mRows - 1, columnCount() - 1));
}

int ResultsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : mRows;
}

int ResultsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mHeadings.size());
}

std::int32_t ResultsModel::ItemAt(const QModelIndex& index) const {
  // A locked list may hold other rows than the views know.
  return index.isValid() && mList.VisibleCount() > 0 ? mList.ItemData(index.row())
                                                     : cResultsList::NoItem;
}

QString ResultsModel::CellAt(const QModelIndex& index) const {
  if (ItemAt(index) == cResultsList::NoItem) return {};
  QString text = ToQString(mList.CellText(index.row(), index.column()));
  text.replace(QChar::LineSeparator, QChar::ReplacementCharacter);
  text.replace(QChar::ParagraphSeparator, QChar::ReplacementCharacter);
  return text;
}

QVariant ResultsModel::data(const QModelIndex& index, int role) const {
  switch (role) {
    case Qt::DisplayRole:
      return CellAt(index);
    case Qt::ToolTipRole:
      return PlainToolTip(CellAt(index));
    case Qt::TextAlignmentRole:
      return static_cast<int>((IsNumber(index.column()) ? Qt::AlignRight : Qt::AlignLeft) |
                              Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant ResultsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
      return mHeadings[section];
    case Qt::TextAlignmentRole:
      return static_cast<int>((IsNumber(section) ? Qt::AlignRight : Qt::AlignLeft) |
                              Qt::AlignVCenter);
    default:
      return {};
  }
}

void ResultsModel::SetCaption(TextView caption) {
  mHeadings[0] = ToQString(caption);
  emit headerDataChanged(Qt::Horizontal, 0, 0);
}

GroupsModel::GroupsModel(cSearchResults& results, QObject* parent)
    : ResultsModel(results, results.ulvwDupeGroups,
                   {TableText(347), TableText(489), TableText(308)}, parent) {}

bool GroupsModel::IsNumber(int column) const {
  return column > 0 || Caption() != TableText(347);
}

bool GroupsModel::IsWhollyMarkedAt(const QModelIndex& index) const {
  const std::int32_t group = ItemAt(index);
  if (group == cResultsList::NoItem) return false;
  const auto known = mIsWhollyMarked.find(group);
  if (known != mIsWhollyMarked.end()) return known->second;
  return mIsWhollyMarked[group] = IsWhollyMarked(mResults, group);
}

QVariant GroupsModel::data(const QModelIndex& index, int role) const {
  const bool isMarkRole = role == Qt::FontRole || role == Qt::DecorationRole ||
                          role == Qt::ToolTipRole || role == Qt::AccessibleTextRole;
  if (!isMarkRole || !IsWhollyMarkedAt(index)) return ResultsModel::data(index, role);
  if (role == Qt::FontRole) {
    QFont bold;
    bold.setBold(true);
    return bold;
  }
  if (role == Qt::DecorationRole) {
    if (index.column() != 0) return {};
    if (mWarning.isNull())
      mWarning = QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    return mWarning;
  }
  const QString warning = TableText(439);
  if (role == Qt::AccessibleTextRole)
    return index.column() == 0 ? QVariant(CellAt(index) + QStringLiteral(". ") + warning)
                               : QVariant();
  return PlainToolTip(CellAt(index) + QLatin1Char('\n') + warning);
}

DetailsModel::DetailsModel(cSearchResults& results, QObject* parent)
    : ResultsModel(results, results.ulvwDupeDetails, DetailHeadings(), parent) {}

bool DetailsModel::IsNumber(int column) const {
  return column == 2;
}

bool DetailsModel::IsFile(const QModelIndex& index) const {
  const std::int32_t record = ItemAt(index);
  return record >= 1 && record <= mResults.RecordCount();
}

QVariant DetailsModel::data(const QModelIndex& index, int role) const {
  if (role == Qt::EditRole && index.column() == 0) return CellAt(index);
  if (role == Qt::CheckStateRole && index.column() == 0 && IsFile(index))
    return static_cast<int>(IsMarked(mResults, ItemAt(index)) ? Qt::Checked : Qt::Unchecked);
  return ResultsModel::data(index, role);
}

Qt::ItemFlags DetailsModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = ResultsModel::flags(index);
  if (IsFile(index) && index.column() == 0) flags |= Qt::ItemIsUserCheckable | Qt::ItemIsEditable;
  return flags;
}

bool DetailsModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (index.column() != 0 || !IsFile(index)) return false;
  if (role == Qt::CheckStateRole) {
    emit CheckBoxChanged(index.row(), value.toInt() == Qt::Checked);
    return true;
  }
  if (role != Qt::EditRole) return false;
  const QString name = value.toString();
  if (name.isEmpty() || name == CellAt(index)) return false;
  const std::int32_t record = mResults.ulvwDupeDetails.ItemData(index.row());
  emit NameEdited(record, ToQString(mResults.NameOf(mResults.Record(record))), name);
  return true;
}

}  // namespace quillmarsh
