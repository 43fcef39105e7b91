// SPDX-License-Identifier: MIT
// The technical description of one audio or video file in a small window, read-only.
#pragma once

#include <QDialog>

#include "base/Text.h"

class QPlainTextEdit;

namespace quillmarsh {

class frmMediaInfo final : public QDialog {
  Q_OBJECT
 public:
  explicit frmMediaInfo(QWidget* parent);
  void SetMediaInfoSummary(TextView summary);

 private:
  QPlainTextEdit* utxtMediaInfo;
};

// Reads what the library `libraryName` knows of a file and shows it modally; what is in the way is
// told in a message box. True when the window was shown. Does nothing while a command runs; the
// user's stop ends the reading without a word.
bool ShowMediaProperties(TextView fileSpec, TextView libraryName, QWidget* parent);

// The command on the selected file, of which this is the path; empty without one.
void mnuFileViewSelectedMediaFileProperties_Click(const Text& fileSpec, QWidget* parent);

}  // namespace quillmarsh
