// SPDX-License-Identifier: MIT
// The two list views of the results: columns by share of the width, one selected row that is the
// selection of the list behind them, sorting by a click on a heading, check boxes, in-place rename.
// What is done with a file they only tell.
#pragma once

#include <QTreeView>
#include <functional>
#include <unordered_map>
#include <vector>

#include "search/results/ResultsSort.h"
#include "ui/ResultsModels.h"

namespace quillmarsh {

// What both have in common.
class ResultsList : public QTreeView {
  Q_OBJECT
 public:
  // `list` is the list of the results that `model` shows; `shares` are the widths of the columns.
  // Those that are made of it own list's sort and model and say so by Attach and Detach.
  ResultsList(cResultsList& list, ListSort& sort, ResultsModel& model, std::vector<double> shares,
              QWidget* parent);
  // Gives the text that stands in an empty list: why it is empty, and what to do next. Asked when
  // the list is painted.
  void SetEmptyText(std::function<QString()> text);
  // The column that also gets what the shares of all leave of the width.
  void SetWideningColumn(int column);
  // A column whose texts are as wide as this one is never narrower by itself.
  void SetWidestText(int column, const QString& text);

 signals:
  // A person has selected another row (position in the list, -1 for none).
  void RowSelected(int position);

 protected:
  // Once the model is there, and while it still is.
  void Attach();
  void Detach();

  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                   const QList<int>& roles) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(
      const QModelIndex& index, const QEvent* event) const override;

 private:
  void HeadingClicked(int column);
  void ColumnResized();
  void SpreadColumns();
  void ListWasReset();
  // The view's current row becomes that of the list.
  void FollowSelection();

  cResultsList& mList;
  ListSort& mSort;
  ResultsModel& mModel;
  const std::vector<double> mShares;
  std::function<QString()> mEmptyText;
  int mWideningColumn = 0;
  std::unordered_map<int, QString> mWidestTexts;  // by column
  bool mIsFollowing = false;                      // the list's selection is not a person's doing
  bool mIsSpreading = false;                      // nor are the columns' widths
  bool mHasOwnWidths = false;                     // a person has given the columns widths
  int mScrollBefore = 0;                          // where the rows stood that a reset takes away
};

class GroupList final : public ResultsList {
  Q_OBJECT
 public:
  explicit GroupList(cSearchResults& results, QWidget* parent = nullptr);
  ~GroupList() override;
  [[nodiscard]] GroupsModel& Model() { return mModel; }

 private:
  GroupsModel mModel;
  GroupListSort mSort;
};

class DetailList final : public ResultsList {
  Q_OBJECT
 public:
  explicit DetailList(cSearchResults& results, QWidget* parent = nullptr);
  ~DetailList() override;
  [[nodiscard]] DetailsModel& Model() { return mModel; }
  // Opens the editor on the name of the selected row.
  void EditSelectedName();

 signals:
  // The right button was released over the list, or the menu key pressed; a place on the screen.
  void MenuRequested(const QPoint& place);
  // A double click or the return key on a row.
  void FileActivated();

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  [[nodiscard]] bool IsOnCheckBox(const QPoint& place) const;

  DetailsModel mModel;
  DetailListSort mSort;
};

}  // namespace quillmarsh
