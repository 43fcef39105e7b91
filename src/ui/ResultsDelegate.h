// SPDX-License-Identifier: MIT
// Draws the cells of the results lists: a name or path that does not fit loses its middle and shows
// itself whole as a tool tip; a check box has the palette's own colours, so that it is seen on dark
// and on selected rows. An edited name is handed on when the editor has gone, since what is done
// with it may take the rows away.
#pragma once

#include <QStyledItemDelegate>

namespace quillmarsh {

class ResultsDelegate final : public QStyledItemDelegate {
  Q_OBJECT
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
  // Of the check box of a cell that has one, in the view's coordinates.
  [[nodiscard]] QRect CheckBoxOf(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace quillmarsh
