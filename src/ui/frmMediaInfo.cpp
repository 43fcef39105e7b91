// SPDX-License-Identifier: MIT
// The window is shown when the reading is over and no command runs any more.
#include "ui/frmMediaInfo.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScreen>
#include <QVBoxLayout>

#include "frame/Pickers.h"
#include "frame/ProgramFlags.h"
#include "frame/RunCommand.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "search/MediaInfoLibrary.h"
#include "search/MediaProperties.h"
#include "ui/DialogFrame.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kWidthInLetters = 84;
constexpr int kHeightInLines = 30;

void Tell(const Text& text, MessageBoxIcon icon) {
  ShowMessageBox({text, LoadResString(1079), icon});
}

// What is missing, and where a person gets it.
Text WithoutLibrary(TextView libraryName) {
  Text text =
      u"The properties of media files are read by the library MediaInfo, which is not "
      u"installed or cannot be loaded: " +
      Text(libraryName) + u".\r\n\r\n";
  text += libraryName.ends_with(u".dll")
              ? u"It belongs into the folder of this program."
              : u"Install the package libmediainfo0v5 (Debian, Ubuntu), or libmediainfo (others).";
  return text;
}

void TellOutcome(MediaOutcome outcome, TextView libraryName) {
  switch (outcome) {
    case MediaOutcome::NoLibrary:
      return Tell(WithoutLibrary(libraryName), MessageBoxIcon::Exclamation);
    case MediaOutcome::NotOpened:
      return Tell(LoadResString(1080), MessageBoxIcon::Exclamation);
    case MediaOutcome::NotMedia:
      return Tell(LoadResString(1081), MessageBoxIcon::Exclamation);
    case MediaOutcome::Read:
    case MediaOutcome::Stopped:
      return;
  }
}

}  // namespace

frmMediaInfo::frmMediaInfo(QWidget* parent) : QDialog(parent), utxtMediaInfo(new QPlainTextEdit) {
  setObjectName(QStringLiteral("frmMediaInfo"));
  setWindowTitle(TableText(1079));
  utxtMediaInfo->setObjectName(QStringLiteral("utxtMediaInfo"));
  utxtMediaInfo->setAccessibleName(TableText(1079));
  utxtMediaInfo->setReadOnly(true);
  utxtMediaInfo->setTabChangesFocus(true);
  utxtMediaInfo->setFrameShape(QFrame::NoFrame);
  // The report stands in columns, which a line that wraps would break.
  utxtMediaInfo->setLineWrapMode(QPlainTextEdit::NoWrap);
  QFont columns = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  columns.setPointSizeF(font().pointSizeF());
  utxtMediaInfo->setFont(columns);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(utxtMediaInfo);
  const QFontMetrics metrics(columns);
  const QSize wanted(metrics.averageCharWidth() * kWidthInLetters,
                     metrics.lineSpacing() * kHeightInLines);
  resize(wanted.boundedTo(screen()->availableSize() * 0.9));
}

void frmMediaInfo::SetMediaInfoSummary(TextView summary) {
  utxtMediaInfo->setPlainText(ToQString(summary));
}

bool ShowMediaProperties(TextView fileSpec, TextView libraryName, QWidget* parent) {
  MediaProperties properties;
  properties.outcome = MediaOutcome::Stopped;
  RunCommand(u"modQuillmarsh.ShowMediaProperties", [&] {
    {
      const BusyPointer busy;
      gUserAbort = false;
      properties = ReadMediaProperties(fileSpec, libraryName);
    }
    TellOutcome(properties.outcome, libraryName);
  });
  // A window that was closed meanwhile shows nothing more.
  if (properties.outcome != MediaOutcome::Read || gUserAbort) return false;
  frmMediaInfo form(parent);
  form.SetMediaInfoSummary(properties.summary);
  form.exec();
  return true;
}

void mnuFileViewSelectedMediaFileProperties_Click(const Text& fileSpec, QWidget* parent) {
  static_cast<void>(Guarded(u"frmFindDuplicates.mnuFileViewSelectedMediaFileProperties_Click", [&] {
    if (fileSpec.empty()) return Tell(LoadResString(326), MessageBoxIcon::Information);
    ShowMediaProperties(fileSpec, MediaInfoLibraryName(), parent);
  }));
}

}  // namespace quillmarsh
