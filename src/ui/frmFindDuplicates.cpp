// SPDX-License-Identifier: MIT
// Loading, unloading and the keys. What the window is made of lies in its parts.
#include "ui/frmFindDuplicates.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "removal/history/cLog.h"
#include "settings/optionsfile/modIniFile.h"
#include "ui/MainWindowParts.h"

namespace quillmarsh {

namespace {

constexpr QSize kFirstSize(1100, 740);

void WriteOutHistory() {
  if (gLog == nullptr) return;
  gLog->AppendInMemoryStringToLogFile();
  // A command that still runs has more to write, and not this again.
  gLog->ResetInMemoryLog();
}

// Nobody is asked anything while one lives, and no other command begins.
class Silence {
 public:
  explicit Silence(const bool& isUnloaded) : mIsUnloaded(isUnloaded) {
    gViews.messages = nullptr;
    gViews.inputBox = nullptr;
  }
  // A window that was closed meanwhile stays silent.
  ~Silence() {
    if (mIsUnloaded) return;
    gViews.messages = mViews.messages;
    gViews.inputBox = mViews.inputBox;
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  const Views mViews = gViews;
  const bool& mIsUnloaded;
  const CommandScope mCommand;
};

}  // namespace

frmFindDuplicates::frmFindDuplicates(QtViews& views) : mParts(std::make_unique<Parts>(*this)) {
  setObjectName(QStringLiteral("frmFindDuplicates"));
  setWindowTitle(QStringLiteral("Quillmarsh"));
  setContextMenuPolicy(Qt::NoContextMenu);
  Parts& parts = *mParts;
  Guarded(u"frmFindDuplicates.Form_Load", [&] {
    views.SetWindow(this);
    parts.options.SetLoadingForm(true);
    MakeControls(parts);
    gViews.status = parts.suStatusBar;
    ConnectControls(parts);
    DesignLayout(parts);
    ReadProgramOptionsFromIniFile(parts.views);
    // The filters are taken as they are stored, and without a mask all files are searched: a new
    // options file names a type that its filters do not have, which nobody is to be shown.
    if (gDupeSettings->IncludeFiles().empty()) gDupeSettings->SetFileType(0);
    if (!gDupeSettings->FolderPaths().empty())
      parts.folders.AddFolderLocationsToList(gDupeSettings->FolderPaths());
    parts.options.ShowSettings();
    parts.views.ShowSearchView();
    resize(kFirstSize.boundedTo(screen()->availableSize() * 0.95));
  });
  parts.options.SetLoadingForm(false);
}

frmFindDuplicates::~frmFindDuplicates() {
  Unload();
  if (gViews.status == mParts->suStatusBar) gViews.status = nullptr;
  // The lists look at the results to their end.
  delete takeCentralWidget();
}

void frmFindDuplicates::SaveForEndOfSession() {
  // The end of a session does not wait for an answer.
  const Silence silence(mParts->isUnloaded);
  SaveProgramOptionsToIniFile();
  WriteOutHistory();
}

// While a command runs its stack still uses lists and records: it is told to stop, and they go with
// the window, when the command has returned.
void frmFindDuplicates::Unload() {
  Parts& parts = *mParts;
  if (parts.isUnloaded) return;
  parts.isUnloaded = true;
  const CommandScope command;
  if (!command.IsEntered()) RequestStop();
  Guarded(u"frmFindDuplicates.Form_Unload", [&] {
    const BusyPointer busy;
    SetPanel(PANEL1, LoadResString(323) + u"...");
    DoEvents_Fast();
    if (command.IsEntered()) {
      parts.session.ClearListviews();
      parts.results.ResetModuleLevelArraysForNewSearch();
      parts.results.ClearGroups();
    }
    DoEvents_Fast();
  });
  SaveProgramOptionsToIniFile();
  WriteOutHistory();
  parts.layout.reset();
}

void frmFindDuplicates::closeEvent(QCloseEvent* event) {
  Unload();
  // What still runs has nobody left to ask or to tell.
  gViews.messages = nullptr;
  gViews.inputBox = nullptr;
  gPickers.files = nullptr;
  gPickers.folders = nullptr;
  event->accept();
}

// Esc anywhere in the window; while a command runs it comes another way.
void frmFindDuplicates::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    RequestStop();
  } else if (event->key() == Qt::Key_F5) {
    mParts->ucBrowseForFolder->Refresh();
  } else {
    QMainWindow::keyPressEvent(event);
  }
}

void frmFindDuplicates::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (!isMinimized()) RedrawLayout(*mParts);
}

}  // namespace quillmarsh
