// SPDX-License-Identifier: MIT
// The list scrolls sideways to the end of its longest entry.
#include "ui/FolderList.h"

#include <QDropEvent>
#include <QFile>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

#include "frame/TextTable.h"
#include "ui/PlainToolTip.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

bool HasLocalFiles(const QDropEvent& event) {
  const QList<QUrl> urls = event.mimeData()->urls();
  return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

// The bytes of a name, which need not be text.
std::string NativePathOf(const QUrl& url) {
  return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

}  // namespace

FolderList::FolderList(QWidget* parent) : QListWidget(parent) {
  setObjectName(QStringLiteral("ulstFoldersToSearch"));
  setAccessibleName(ToQString(LoadResString(389)));
  setAcceptDrops(true);
  setDropIndicatorShown(false);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setUniformItemSizes(false);
  connect(this, &QListWidget::itemDoubleClicked, this,
          [this](QListWidgetItem* item) { emit EditRequested(row(item)); });
}

void FolderList::ShowTexts(const QStringList& texts, int selected) {
  clear();
  for (const QString& text : texts) {
    auto* const entry = new QListWidgetItem(text, this);
    entry->setToolTip(PlainToolTip(text));
  }
  setCurrentRow(selected);
}

int FolderList::SelectedPosition() const {
  const QList<QListWidgetItem*> selected = selectedItems();
  return selected.isEmpty() ? -1 : row(selected.front());
}

void FolderList::keyPressEvent(QKeyEvent* event) {
  const int position = SelectedPosition();
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
      if (position >= 0) emit EditRequested(position);
      return;
    case Qt::Key_Delete:
      if (position >= 0) emit RemoveRequested(position);
      return;
    default:
      QListWidget::keyPressEvent(event);
  }
}

void FolderList::dragEnterEvent(QDragEnterEvent* event) {
  if (HasLocalFiles(*event)) event->acceptProposedAction();
}

void FolderList::dragMoveEvent(QDragMoveEvent* event) {
  if (HasLocalFiles(*event)) event->acceptProposedAction();
}

void FolderList::dropEvent(QDropEvent* event) {
  std::vector<std::string> natives;
  for (const QUrl& url : event->mimeData()->urls()) {
#ifdef Q_OS_WIN
    if (url.isLocalFile()) natives.push_back(url.toLocalFile().toStdString());
#else
    if (url.isLocalFile()) natives.push_back(NativePathOf(url));
#endif
  }
  if (natives.empty()) return;
  // The file manager keeps its files, whatever it offered.
  event->setDropAction(Qt::CopyAction);
  event->accept();
  emit PathsDropped(natives);
}

void FolderList::paintEvent(QPaintEvent* event) {
  QListWidget::paintEvent(event);
  if (count() > 0) return;
  QPainter painter(viewport());
  const int margin = fontMetrics().height() / 2;
  painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
  painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                   static_cast<int>(Qt::AlignCenter) | static_cast<int>(Qt::TextWordWrap),
                   ToQString(LoadResString(372)));
}

}  // namespace quillmarsh
