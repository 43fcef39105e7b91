// SPDX-License-Identifier: MIT
// The list box of the folders to search, which takes folders that are dropped from a file manager.
// It holds texts and nothing behind them; what is to be done it only tells.
#pragma once

#include <QListWidget>
#include <string>
#include <vector>

namespace quillmarsh {

class FolderList final : public QListWidget {
  Q_OBJECT
 public:
  explicit FolderList(QWidget* parent = nullptr);

  void ShowTexts(const QStringList& texts, int selected);
  // -1 for none.
  [[nodiscard]] int SelectedPosition() const;

 signals:
  // A double click or the return key; -1 never.
  void EditRequested(int position);
  // The delete key.
  void RemoveRequested(int position);
  // Paths as the machine's programs name them.
  void PathsDropped(const std::vector<std::string>& natives);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace quillmarsh
