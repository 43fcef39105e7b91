// SPDX-License-Identifier: MIT
// "Analyze File/Folder": shows everything that the file-system objects know of one file or folder,
// as text, for whoever wants to see why a folder is skipped or what a file really is. It changes
// nothing on the disk. While it counts it takes no input but Esc and closing, which stop the count.
#pragma once

#include <QDialog>
#include <optional>

#include "base/Text.h"

class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QStatusBar;

namespace quillmarsh {

class ProgressAnimation;
struct FSObjectReport;

class frmGetFSObjectProperties final : public QDialog {
  Q_OBJECT
 public:
  explicit frmGetFSObjectProperties(QWidget* parent);

  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeControls();
  void LayOut();
  void cmdOpen_Click();
  void cmdShowProperties_Click();
  void ShowFolderProperties();
  void ShowFileProperties();
  void StartAnimation();
  void StopAnimation();

  // The path in drive form of what stands in the line. None where there is nothing to report on;
  // the reason is shown then, unless the line is empty.
  [[nodiscard]] std::optional<Text> PathFromLine();
  void SetPath(const Text& path);
  void ShowText(const Text& text);
  void SetRunning(bool isRunning);

  QLineEdit* txtUPath;
  QPushButton* cmdOpen;
  QRadioButton* optFile;
  QRadioButton* optFolder;
  QPushButton* cmdShowProperties;
  QPlainTextEdit* txtUProperties;
  ProgressAnimation* Animation1;
  QStatusBar* StatusBar1;
  Text mPicked;  // what the line shows, where it came from a picker and has not been changed
  bool mIsRunning = false;
  bool mIsToClose = false;  // when what runs has come to its end
};

}  // namespace quillmarsh
