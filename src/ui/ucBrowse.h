// SPDX-License-Identifier: MIT
// The tree of drives and folders from which locations are picked: special folders, then drives with
// label and free space, each opened when a person asks for it. A folder is listed through the
// machine, in portions, so that one of a million entries and a mount that does not answer leave the
// window alive. It shows no menu of its own.
#pragma once

#include <QWidget>
#include <memory>

#include "base/Text.h"

namespace quillmarsh {

class ucBrowse final : public QWidget {
  Q_OBJECT
 public:
  explicit ucBrowse(QWidget* parent = nullptr);
  ~ucBrowse() override;

  // The selected folder in drive form, with a final backslash; empty when none is selected.
  [[nodiscard]] Text Path() const;
  // Opens the way to a folder and selects it. A path that does not exist selects nothing and raises
  // no path event.
  void SetPath(TextView path);
  // Builds the tree anew; the selected path stays selected.
  void Refresh();

 signals:
  // "SystemTreeView Initalized" when the tree is there, "SystemTreeView ShutDown" at its end.
  void StatusEvent(const QString& text);
  // The new selected path, as Path() gives it.
  void PathEvent(const QString& path);
  // A double click or the return key on a folder.
  void DoubleClickEvent();

 protected:
  // The tree is built when it is first shown, or asked for a path.
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Tree;
  std::unique_ptr<Tree> mTree;
};

}  // namespace quillmarsh
