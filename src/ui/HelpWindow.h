// SPDX-License-Identifier: MIT
// The window of the help: pages that are part of the program, with links between them, a way back,
// and a search in the page. It stands beside the window that it was opened from and holds up
// nothing. It reads neither disk nor network and keeps nothing: what a link outside stands for is
// opened by the desktop.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTextBrowser>

namespace quillmarsh {

class HelpWindow final : public QWidget {
  Q_OBJECT
 public:
  HelpWindow();

  // Comes to the front with a page, such as "options.html".
  void ShowPage(const QString& page);

  // From now on the window belongs to this one, closes when it is closed, and takes input while it
  // is modal. When a dialog ends, the help goes on with the window behind it.
  void StayWith(QWidget* owner);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  enum class Direction { Forward, Backward };

  [[nodiscard]] QWidget* MakeNavigation();
  [[nodiscard]] QWidget* MakeFindBar();
  void MakeKeys();
  void Find(Direction direction);
  // While a person types, the match under way goes on where it is.
  void FindAsTyped();
  void ShowMatch(const QTextCursor& from, Direction direction);
  void HighlightMatches();
  void FollowLink(const QUrl& link);
  void Zoom(int steps);
  void TakeColours();

  QTextBrowser* mPages;
  QLineEdit* mFindField = nullptr;
  QLabel* mFindNote = nullptr;
  QPointer<QWidget> mOwner;
  int mZoom = 0;
};

}  // namespace quillmarsh
