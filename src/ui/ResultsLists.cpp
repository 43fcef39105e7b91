// SPDX-License-Identifier: MIT
// The view's current row and the list's selected item are one: what a person does in the view goes
// to the list, and what the program does with the list comes back.
#include "ui/ResultsLists.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include "base/LocaleFormat.h"
#include "frame/TextTable.h"
#include "fsobjects/LocaleFormats.h"
#include "ui/QtText.h"
#include "ui/ResultsDelegate.h"

namespace quillmarsh {

ResultsList::ResultsList(cResultsList& list, ListSort& sort, ResultsModel& model,
                         std::vector<double> shares, QWidget* parent)
    : QTreeView(parent), mList(list), mSort(sort), mModel(model), mShares(std::move(shares)) {
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setAlternatingRowColors(true);
  setSelectionMode(SingleSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setItemDelegate(new ResultsDelegate(this));
  header()->setSectionsClickable(true);
  header()->setSectionsMovable(false);
  header()->setStretchLastSection(false);
  header()->setHighlightSections(false);
  header()->setTextElideMode(Qt::ElideRight);
  connect(header(), &QHeaderView::sectionClicked, this, &ResultsList::HeadingClicked);
  connect(header(), &QHeaderView::sectionResized, this, &ResultsList::ColumnResized);
}

void ResultsList::Attach() {
  setModel(&mModel);
  connect(&mModel, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
    if (mModel.rowCount() > 0) mScrollBefore = verticalScrollBar()->value();
  });
  connect(&mModel, &QAbstractItemModel::modelReset, this, &ResultsList::ListWasReset);
  connect(&mModel, &ResultsModel::SelectionMoved, this, &ResultsList::FollowSelection);
  connect(&mModel, &QAbstractItemModel::headerDataChanged, this, &ResultsList::SpreadColumns);
  SpreadColumns();
  FollowSelection();
}

void ResultsList::Detach() {
  mIsFollowing = true;
  mModel.disconnect(this);
  setModel(nullptr);
}

void ResultsList::SetEmptyText(std::function<QString()> text) {
  mEmptyText = std::move(text);
  viewport()->update();
}

void ResultsList::SetWideningColumn(int column) {
  mWideningColumn = column;
  SpreadColumns();
}

void ResultsList::HeadingClicked(int column) {
  mSort.ClickColumn(column);
  if (mSort.LastColumn() == ListSort::kNoColumn) return;
  header()->setSortIndicatorShown(true);
  header()->setSortIndicator(mSort.LastColumn(),
                             mSort.OrderOf(mSort.LastColumn()) == SortOrder::Ascending
                                 ? Qt::AscendingOrder
                                 : Qt::DescendingOrder);
}

// Rows that come back, as after a removal or a sort, stand where they stood as far as they can;
// others begin at the top.
void ResultsList::ListWasReset() {
  // What comes next stands in no column's order.
  if (mModel.rowCount() == 0) header()->setSortIndicatorShown(false);
  FollowSelection();
  if (mModel.rowCount() == 0 || mList.SelectedPosition() == cResultsList::NoItem) return;
  verticalScrollBar()->setValue(mScrollBefore);
  scrollTo(currentIndex());
}

void ResultsList::FollowSelection() {
  const QScopedValueRollback following(mIsFollowing, true);
  const int position = mList.SelectedPosition();
  if (position < 0 || position >= mModel.rowCount()) {
    selectionModel()->clear();
    return;
  }
  if (currentIndex().row() == position && selectionModel()->isRowSelected(position)) return;
  selectionModel()->setCurrentIndex(
      mModel.index(position, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ResultsList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  if (mIsFollowing || current.row() == mList.SelectedPosition()) return;
  {
    const QScopedValueRollback following(mIsFollowing, true);
    mList.Select(current.row());
  }
  emit RowSelected(current.row());
}

// Rows are all of one height; the toolkit would look for the place of the last one among hundreds
// of thousands.
void ResultsList::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                              const QList<int>& roles) {
  if (topLeft.row() == bottomRight.row())
    QTreeView::dataChanged(topLeft, bottomRight, roles);
  else
    viewport()->update();
}

// The current row is always the selected one: there is nothing to take away or to add.
QItemSelectionModel::SelectionFlags ResultsList::selectionCommand(const QModelIndex& index,
                                                                  const QEvent* /*event*/) const {
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

// The toolkit gives a list that gets the focus a current row; here that would be a choice.
void ResultsList::focusInEvent(QFocusEvent* event) {
  {
    const QScopedValueRollback following(mIsFollowing, true);
    QTreeView::focusInEvent(event);
  }
  FollowSelection();
}

void ResultsList::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  SpreadColumns();
}

void ResultsList::ColumnResized() {
  if (!mIsSpreading) mHasOwnWidths = true;
}

void ResultsList::SetWidestText(int column, const QString& text) {
  mWidestTexts[column] = text;
  SpreadColumns();
}

// No heading is cut while the widths are the program's, nor what no tool tip should be needed for.
void ResultsList::SpreadColumns() {
  if (mHasOwnWidths || model() != &mModel) return;
  const QScopedValueRollback spreading(mIsSpreading, true);
  const int padding = 4 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1);
  int left = viewport()->width();
  for (int column = 0; column < mModel.columnCount(); ++column) {
    const auto share = static_cast<int>(mShares[static_cast<std::size_t>(column)] * width());
    int least = header()->sectionSizeHint(column);
    if (const auto text = mWidestTexts.find(column); text != mWidestTexts.end())
      least = std::max(least, fontMetrics().horizontalAdvance(text->second) + padding);
    setColumnWidth(column, std::max(share, least));
    left -= columnWidth(column);
  }
  setColumnWidth(mWideningColumn, columnWidth(mWideningColumn) + std::max(left, 0));
}

void ResultsList::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (model() != &mModel || mModel.rowCount() > 0 || mList.Count() > 0 || !mEmptyText) return;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::PlaceholderText));
  const int margin = 2 * style()->pixelMetric(QStyle::PM_LayoutLeftMargin, nullptr, this);
  painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                   Qt::AlignCenter | Qt::TextWordWrap, mEmptyText());
}

GroupList::GroupList(cSearchResults& results, QWidget* parent)
    : ResultsList(results.ulvwDupeGroups, mSort, mModel, {7.0 / 12, 1.0 / 6, 1.0 / 6}, parent),
      mModel(results),
      mSort(results) {
  setObjectName(QStringLiteral("ulvwDupeGroups"));
  setAccessibleName(ToQString(LoadResString(724)));
  const auto tellSort = [this] {
    mSort.SetFirstColumnHoldsNames(mModel.Caption() == ToQString(LoadResString(347)));
  };
  connect(&mModel, &QAbstractItemModel::headerDataChanged, this, tellSort);
  tellSort();
  Attach();
}

GroupList::~GroupList() {
  Detach();
}

DetailList::DetailList(cSearchResults& results, QWidget* parent)
    : ResultsList(results.ulvwDupeDetails, mSort, mModel, std::vector<double>(6, 1.0 / 7), parent),
      mModel(results),
      mSort(results) {
  setObjectName(QStringLiteral("ulvwDupeDetails"));
  setAccessibleName(QStringLiteral("Files of the selected group"));
  setEditTriggers(SelectedClicked | EditKeyPressed);
  const Date widest = Date::FromCivil({2028, 12, 28, 22, 58, 58}).value_or(Date());
  for (const int column : {3, 4})
    SetWidestText(column, ToQString(FormatGeneralDate(widest, GetLocaleFacts())));
  // Copies of one name differ by their paths.
  SetWideningColumn(1);
  Attach();
}

DetailList::~DetailList() {
  Detach();
}

void DetailList::EditSelectedName() {
  const QModelIndex name = currentIndex().siblingAtColumn(0);
  if (name.isValid() && (mModel.flags(name) & Qt::ItemIsEditable) != 0) edit(name);
}

bool DetailList::IsOnCheckBox(const QPoint& place) const {
  const QModelIndex index = indexAt(place);
  if (!index.isValid()) return false;
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  option.rect = visualRect(index);
  return static_cast<const ResultsDelegate*>(itemDelegate())
      ->CheckBoxOf(option, index)
      .contains(place);
}

// The mouse button asks for its menu when it is released, which some systems tell by a press.
void DetailList::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (event->reason() == QContextMenuEvent::Mouse) return;
  const QRect row = currentIndex().isValid() ? visualRect(currentIndex()) : QRect();
  emit MenuRequested(viewport()->mapToGlobal(row.isValid() ? row.center() : QPoint()));
}

void DetailList::mouseReleaseEvent(QMouseEvent* event) {
  ResultsList::mouseReleaseEvent(event);
  if (event->button() == Qt::RightButton) emit MenuRequested(event->globalPosition().toPoint());
}

void DetailList::mouseDoubleClickEvent(QMouseEvent* event) {
  const QPoint place = event->position().toPoint();
  // Two quick clicks on a check box are two clicks.
  if (IsOnCheckBox(place)) return mousePressEvent(event);
  ResultsList::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton && indexAt(place).isValid()) emit FileActivated();
}

// Whichever column was clicked last, the keys are for the row's name and check box.
void DetailList::keyPressEvent(QKeyEvent* event) {
  const QModelIndex name = currentIndex().siblingAtColumn(0);
  if (!name.isValid() || state() == EditingState) return ResultsList::keyPressEvent(event);
  switch (event->key()) {
    case Qt::Key_Space:
      if (event->modifiers() == Qt::NoModifier)
        mModel.setData(
            name,
            name.data(Qt::CheckStateRole).toInt() == Qt::Checked ? Qt::Unchecked : Qt::Checked,
            Qt::CheckStateRole);
      return;
    case Qt::Key_F2:
      return EditSelectedName();
    case Qt::Key_Return:
    case Qt::Key_Enter:
      emit FileActivated();
      return;
    default:
      return ResultsList::keyPressEvent(event);
  }
}

}  // namespace quillmarsh
