// SPDX-License-Identifier: MIT
// By the toolkit's own delegate, which draws first.
#include "ui/ResultsDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

namespace quillmarsh {

namespace {

const QStyle* StyleOf(const QStyleOptionViewItem& option) {
  return option.widget != nullptr ? option.widget->style() : QApplication::style();
}

// Over whatever box the style has drawn there.
void DrawCheckBox(QPainter& painter, const QRect& place, bool isChecked, const QPalette& palette) {
  const qreal side = std::min(place.width(), place.height());
  QRectF box(0, 0, side - 1, side - 1);
  box.moveCenter(QRectF(place).center());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor frame = palette.color(QPalette::Text);
  painter.fillRect(place, palette.color(QPalette::Base));
  painter.setPen(QPen(frame, 1));
  painter.setBrush(Qt::NoBrush);
  painter.setOpacity(0.65);
  painter.drawRoundedRect(box, 2, 2);
  if (isChecked) {
    painter.setOpacity(1);
    painter.setPen(QPen(frame, side / 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&box](qreal x, qreal y) {
      return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    painter.drawPolyline(QPolygonF{at(0.22, 0.52), at(0.42, 0.73), at(0.78, 0.29)});
  }
  painter.restore();
}

}  // namespace

void ResultsDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
  QStyledItemDelegate::paint(painter, option, index);
  const QRect place = CheckBoxOf(option, index);
  if (!place.isNull())
    DrawCheckBox(*painter, place, index.data(Qt::CheckStateRole).toInt() == Qt::Checked,
                 option.palette);
}

// Lines do not touch each other, and an icon has room.
QSize ResultsDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
  const QSize hint = QStyledItemDelegate::sizeHint(option, index);
  const QStyle* const style = StyleOf(option);
  const int margin = style->pixelMetric(QStyle::PM_FocusFrameVMargin, nullptr, option.widget);
  const int icon = style->pixelMetric(QStyle::PM_SmallIconSize, nullptr, option.widget);
  return {hint.width(), std::max(hint.height(), icon) + 2 * margin};
}

// A number or date without its middle would be another one.
void ResultsDelegate::initStyleOption(QStyleOptionViewItem* option,
                                      const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  const bool isText = (option->displayAlignment & Qt::AlignRight) == 0 && index.column() < 2;
  option->textElideMode = isText ? Qt::ElideMiddle : Qt::ElideRight;
}

bool ResultsDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                const QStyleOptionViewItem& option, const QModelIndex& index) {
  const bool saysMore = index.data(Qt::ToolTipRole) != index.data(Qt::DisplayRole);
  const bool isWhole = sizeHint(option, index).width() <= view->visualRect(index).width();
  if (event->type() != QEvent::ToolTip || saysMore || !isWhole)
    return QStyledItemDelegate::helpEvent(event, view, option, index);
  QToolTip::hideText();
  return true;
}

void ResultsDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                   const QModelIndex& index) const {
  const auto* const line = qobject_cast<QLineEdit*>(editor);
  if (line == nullptr) return QStyledItemDelegate::setModelData(editor, model, index);
  // A row that a reset takes away meanwhile is not valid any more.
  QMetaObject::invokeMethod(
      model,
      [model, row = QPersistentModelIndex(index), text = line->text()] {
        if (row.isValid()) model->setData(row, text, Qt::EditRole);
      },
      Qt::QueuedConnection);
}

QRect ResultsDelegate::CheckBoxOf(const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
  QStyleOptionViewItem cell = option;
  initStyleOption(&cell, index);
  if ((cell.features & QStyleOptionViewItem::HasCheckIndicator) == 0) return {};
  return StyleOf(cell)->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &cell, cell.widget);
}

}  // namespace quillmarsh
