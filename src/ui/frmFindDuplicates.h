// SPDX-License-Identifier: MIT
// The main window: both views, menus, tool bars, option list, folder list and status bar, and the
// state that locks them. It owns the results of the last search. It decides nothing about files:
// every command is a call of the rooms below.
#pragma once

#include <QMainWindow>
#include <memory>

#include "ui/QtViews.h"

namespace quillmarsh {

class frmFindDuplicates final : public QMainWindow {
  Q_OBJECT
 public:
  // Loads: controls, options file, settings into controls. Program-wide objects must be there. The
  // views are told which window is theirs. Does not show itself.
  explicit frmFindDuplicates(QtViews& views);
  // The unload steps, if they have not run.
  ~frmFindDuplicates() override;

  // The last steps of the program's life that are the window's: empties the lists, saves the
  // options, writes out the history. At a close, and when the session ends. Runs once.
  void Unload();
  // Saves the options and writes out the history, and nothing else: a session that ends may go on.
  void SaveForEndOfSession();

  struct Parts;
  // For tests and pictures: what the window is made of.
  [[nodiscard]] Parts& GetParts() { return *mParts; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  std::unique_ptr<Parts> mParts;
};

}  // namespace quillmarsh
