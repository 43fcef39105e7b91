// SPDX-License-Identifier: MIT
// What the main window is made of: its controls, which belong to the toolkit's tree, and the logic
// behind them, which belongs to these parts. The controls go before the results that they show.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <optional>

#include "removal/FileCommands.h"
#include "search/cSearchSession.h"
#include "selection/cSelectionCommands.h"
#include "ui/FolderList.h"
#include "ui/FolderListCommands.h"
#include "ui/InputLock.h"
#include "ui/MainMenus.h"
#include "ui/MainWindowViews.h"
#include "ui/OptionList.h"
#include "ui/ProgressAnimation.h"
#include "ui/ResultsLists.h"
#include "ui/SearchOptions.h"
#include "ui/StatusPanels.h"
#include "ui/ToolBars.h"
#include "ui/cFFLayout.h"
#include "ui/frmFindDuplicates.h"
#include "ui/ucBrowse.h"

namespace quillmarsh {

// The area between menu bar and status bar. Both views fill it.
class ClientArea final : public QWidget {
  Q_OBJECT
 public:
  using QWidget::QWidget;

 signals:
  void Resized();
  // Fonts or style have changed, and with them what the controls want.
  void DesignChanged();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
};

struct frmFindDuplicates::Parts {
  explicit Parts(frmFindDuplicates& theWindow);

  frmFindDuplicates& window;

  cSearchResults results;
  MainWindowViews views;
  cSearchSession session;
  cSelectionCommands selection;
  cFileCommands files;
  SearchOptions options;
  FolderListCommands folders;
  std::optional<SearchOutcome> lastSearch;  // none after a change of what was searched for
  bool isUnloaded = false;

  // The toolkit's.
  ClientArea* client = nullptr;
  QWidget* pctSearchContainer = nullptr;
  QWidget* pctResultsContainer = nullptr;
  QLabel* mfrmSearchLocations = nullptr;
  QLabel* mfrmSearchOptions = nullptr;
  QLabel* mfrmSearchResults = nullptr;
  ucBrowse* ucBrowseForFolder = nullptr;
  FolderList* ulstFoldersToSearch = nullptr;
  QPushButton* mb_cmdAddFolder = nullptr;
  QPushButton* mb_cmdRemoveFolder = nullptr;
  OptionList* smtSearchOptions = nullptr;
  ToolBar* smtSearchToolbar = nullptr;
  ToolBar* smtSearchResultsToolbar = nullptr;
  ToolBar* suRemovalToolbar = nullptr;
  ProgressAnimation* aniSearchProgress = nullptr;
  GroupList* ulvwDupeGroups = nullptr;
  DetailList* ulvwDupeDetails = nullptr;
  QProgressBar* pbProgress = nullptr;
  StatusPanels* suStatusBar = nullptr;
  MainMenus* menus = nullptr;
  InputLock* lock = nullptr;
  std::optional<cFFLayout> layout;  // none once the window is unloaded
};

// The steps of building, each once and in this order.
void MakeControls(frmFindDuplicates::Parts& parts);
void ConnectControls(frmFindDuplicates::Parts& parts);

// Places all controls as they stand at design size, for the present fonts, and takes that as the
// layout's design.
void DesignLayout(frmFindDuplicates::Parts& parts);
// The design size without menu bar and status bar.
[[nodiscard]] QSize DesignSize(const frmFindDuplicates::Parts& parts);
void RedrawLayout(frmFindDuplicates::Parts& parts);

// A menu entry or the key of a tool bar. Does nothing while a command runs, apart from Stop.
void PerformCommand(frmFindDuplicates::Parts& parts, const QString& nameOrKey);
// What Esc does.
void RequestStop();

}  // namespace quillmarsh
