// SPDX-License-Identifier: MIT
// Making the controls, and what happens when a person uses one.
#include <QEvent>
#include <QMenuBar>

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/RunCommand.h"
#include "frame/TextTable.h"
#include "ui/AccessKeys.h"
#include "ui/MainWindowParts.h"
#include "ui/QtText.h"

namespace quillmarsh {

using Parts = frmFindDuplicates::Parts;

namespace {

// How a control behaves when the window is resized.
constexpr struct {
  const char* control;
  const char* text;
} kLayoutTexts[] = {
    {"mfrmSearchLocations", "fixTop fixLeft varWidth"},
    {"ucBrowseForFolder", "fixTop fixLeft fixBottom varWidth varDepth"},
    {"ulstFoldersToSearch", "fixLeft fixBottom varWidth varDepth"},
    {"mfrmSearchOptions", "fixTop fixRight varWidth"},
    {"smtSearchOptions", "fixTop fixBottom fixRight varWidth"},
    {"mb_cmdAddFolder", "fixLeft fixBottom"},
    {"mb_cmdRemoveFolder", "fixBottom varX"},
    {"aniSearchProgress", "fixBottom fixRight varWidth"},
    {"mfrmSearchResults", "fixTop fixLeft varWidth"},
    {"ulvwDupeGroups", "fixTop fixLeft varWidth"},
    {"suRemovalToolbar", "fixTop fixLeft varWidth"},
    {"ulvwDupeDetails", "fixTop fixLeft fixBottom varWidth varDepth"},
    {"pbProgress", "fixBottom fixLeft fixRight varWidth"},
};

template <typename Control>
Control* Named(Control* control, const char* name, const Text& accessibleName) {
  control->setObjectName(QString::fromLatin1(name));
  control->setAccessibleName(ToQString(accessibleName));
  return control;
}

QLabel* MakeHeading(const char* name, TextId caption, QWidget* parent) {
  auto* const heading =
      Named(new QLabel(ToQString(LoadResString(caption)), parent), name, LoadResString(caption));
  QFont font = heading->font();
  font.setBold(true);
  font.setPointSizeF(font.pointSizeF() * 1.15);
  heading->setFont(font);
  return heading;
}

QString TakenAccessKeys(const QMenuBar& bar) {
  QString taken;
  for (const QAction* menu : bar.actions())
    taken += menu->text().section(QLatin1Char('&'), 1).left(1).toLower();
  return taken;
}

void MakeSearchView(Parts& parts) {
  QWidget* const view = parts.pctSearchContainer;
  parts.mfrmSearchLocations = MakeHeading("mfrmSearchLocations", 389, view);
  parts.mfrmSearchOptions = MakeHeading("mfrmSearchOptions", 390, view);
  Guarded(u"frmFindDuplicates.SetupSearchToolbar",
          [&] { parts.smtSearchToolbar = new ToolBar("smtSearchToolbar", view); });
  parts.ucBrowseForFolder = Named(new ucBrowse(view), "ucBrowseForFolder", LoadResString(615));
  parts.ulstFoldersToSearch = new FolderList(view);
  // Beside the letters of the menu bar.
  QString taken = TakenAccessKeys(*parts.window.menuBar());
  const auto button = [&](const char* name, TextId caption) {
    const Text text = LoadResString(caption);
    return Named(new QPushButton(WithAccessKey(ToQString(text), taken), view), name, text);
  };
  parts.mb_cmdAddFolder = button("mb_cmdAddFolder", 388);
  parts.mb_cmdRemoveFolder = button("mb_cmdRemoveFolder", 325);
  Guarded(u"frmFindDuplicates.SetupSearchOptionsPropertyList",
          [&] { parts.smtSearchOptions = new OptionList(view); });
  parts.aniSearchProgress =
      Named(new ProgressAnimation(view), "aniSearchProgress", LoadResString(449));
  parts.aniSearchProgress->hide();
  parts.smtSearchToolbar->SetButtonEnabled(QStringLiteral("STOP_KEY"), false);
}

// Why nothing is listed, and what to do next.
QString WhyEmpty(const Parts& parts) {
  if (CommandScope::IsRunning()) return {};
  const SearchOutcome last = parts.lastSearch.value_or(SearchOutcome::Refused);
  if (last == SearchOutcome::Stopped || last == SearchOutcome::Failed)
    return QStringLiteral(
        "The search did not come to its end, so nothing is listed.\n\n"
        "Press Search View, then Start, to search again.");
  if (last == SearchOutcome::Refused)
    return QStringLiteral(
        "Duplicates are listed here after a search.\n\n"
        "Press Search View, add the folders to search, then press Start.");
  if (parts.results.mGroupCount == 0)
    return QStringLiteral(
        "No duplicates were found.\n\n"
        "Other folders, file types or options of the Search View may find some.");
  return QStringLiteral(
      "No duplicates are listed any more.\n\n"
      "Press Search View, then Start, to see what there is now.");
}

void MakeResultsView(Parts& parts) {
  QWidget* const view = parts.pctResultsContainer;
  parts.mfrmSearchResults = MakeHeading("mfrmSearchResults", 391, view);
  Guarded(u"frmFindDuplicates.SetupSearchResultsToolbar",
          [&] { parts.smtSearchResultsToolbar = new ToolBar("smtSearchResultsToolbar", view); });
  parts.ulvwDupeGroups =
      Named(new GroupList(parts.results, view), "ulvwDupeGroups", LoadResString(391));
  parts.ulvwDupeGroups->SetEmptyText([&parts] { return WhyEmpty(parts); });
  Guarded(u"frmFindDuplicates.SetupRemovalToolbar",
          [&] { parts.suRemovalToolbar = new ToolBar("suRemovalToolbar", view); });
  parts.ulvwDupeDetails =
      Named(new DetailList(parts.results, view), "ulvwDupeDetails", LoadResString(1121));
}

void ConnectSearchView(Parts& parts) {
  const auto folderCommand = [&parts](auto body) {
    return [&parts, body](auto... arguments) {
      RunCommand(u"frmFindDuplicates.FolderList",
                 [&] { body(parts.folders, *parts.ulstFoldersToSearch, arguments...); });
    };
  };
  using Folders = FolderListCommands;
  QObject::connect(
      parts.ucBrowseForFolder, &ucBrowse::PathEvent, &parts.window,
      [&parts](const QString& path) { parts.folders.SetSelectedFolderPath(FromQString(path)); });
  const auto add =
      folderCommand([](Folders& folders, FolderList&, auto...) { folders.AddFolderToList(); });
  QObject::connect(parts.ucBrowseForFolder, &ucBrowse::DoubleClickEvent, &parts.window,
                   [add] { add(); });
  QObject::connect(parts.mb_cmdAddFolder, &QPushButton::clicked, &parts.window, [add] { add(); });
  const auto remove = folderCommand([](Folders& folders, FolderList& list, auto...) {
    folders.RemoveFolder(list.SelectedPosition());
  });
  QObject::connect(parts.mb_cmdRemoveFolder, &QPushButton::clicked, &parts.window,
                   [remove] { remove(); });
  QObject::connect(parts.ulstFoldersToSearch, &FolderList::RemoveRequested, &parts.window, remove);
  QObject::connect(
      parts.ulstFoldersToSearch, &FolderList::EditRequested, &parts.window,
      folderCommand([](Folders& folders, FolderList&, int at) { folders.EditFolder(at); }));
  QObject::connect(
      parts.ulstFoldersToSearch, &FolderList::PathsDropped, &parts.window,
      folderCommand([](Folders& folders, FolderList&, const std::vector<std::string>& natives) {
        for (const std::string& native : natives) folders.AddDroppedFolder(native);
      }));
  QObject::connect(parts.smtSearchOptions, &OptionList::PropertyChanged, &parts.window,
                   [&parts](const QString& key, const QString& property, const QString& text) {
                     RunCommand(u"frmFindDuplicates.smtSearchOptions_PropertyChanged", [&] {
                       parts.options.OptionListChanged(FromQString(key), FromQString(property),
                                                       FromQString(text));
                     });
                   });
}

void ConnectResultsView(Parts& parts) {
  QObject::connect(parts.ulvwDupeGroups, &GroupList::RowSelected, &parts.window,
                   [&parts](int position) {
                     if (position < 0 || CommandScope::IsRunning()) return;
                     // Without a pump, in which the rows could move under the position.
                     parts.results.DisplayDupeGroupDetails(
                         parts.results.ulvwDupeGroups.ItemData(position), false);
                   });
  const auto perform = [&parts](const char* name) {
    return [&parts, name] { PerformCommand(parts, QString::fromLatin1(name)); };
  };
  QObject::connect(parts.ulvwDupeDetails, &DetailList::FileActivated, &parts.window,
                   perform("mnuFileViewSelected"));
  QObject::connect(parts.ulvwDupeDetails, &DetailList::MenuRequested, &parts.window,
                   [&parts](const QPoint& place) {
                     if (!CommandScope::IsRunning())
                       parts.menus->Menu(QStringLiteral("mnuPopup"))->popup(place);
                   });
  DetailsModel& details = parts.ulvwDupeDetails->Model();
  QObject::connect(&details, &DetailsModel::CheckBoxChanged, &parts.window,
                   [&parts](int position, bool isChecked) {
                     parts.selection.DetailCheckBoxChanged(position, isChecked);
                   });
  // The editor has to be gone before the list may change under it; by then another group may be
  // shown.
  QObject::connect(
      &details, &DetailsModel::NameEdited, &parts.window,
      [&parts](int record, const QString& oldName, const QString& name) {
        parts.files.RenameRecord(record, FromQString(oldName), FromQString(name));
      },
      Qt::QueuedConnection);
}

}  // namespace

void ClientArea::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  emit Resized();
}

void ClientArea::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
    emit DesignChanged();
}

Parts::Parts(frmFindDuplicates& theWindow)
    : window(theWindow),
      views(*this),
      session(results, *gDupeSettings, views),
      selection(results, views),
      files(results, *gDupeSettings, views),
      options(*gDupeSettings, views),
      folders(views),
      layout(std::in_place) {}

void MakeControls(Parts& parts) {
  parts.client = Named(new ClientArea(&parts.window), "client", u"Quillmarsh");
  parts.window.setCentralWidget(parts.client);
  parts.pctSearchContainer =
      Named(new QWidget(parts.client), "pctSearchContainer", LoadResString(448));
  parts.pctResultsContainer =
      Named(new QWidget(parts.client), "pctResultsContainer", LoadResString(455));
  // Of what is visible at first the focus and the Tab order come.
  parts.pctResultsContainer->hide();
  parts.menus = new MainMenus(*parts.window.menuBar(), parts.window);
  MakeSearchView(parts);
  MakeResultsView(parts);
  parts.pbProgress = Named(new QProgressBar(parts.client), "pbProgress", LoadResString(379));
  Guarded(u"frmQuillmarsh.SetupSmartUIStatusBar",
          [&] { parts.suStatusBar = new StatusPanels(*parts.pbProgress, &parts.window); });
  parts.window.setStatusBar(parts.suStatusBar);
  for (const auto& row : kLayoutTexts) {
    auto* const control = parts.client->findChild<QWidget*>(QString::fromLatin1(row.control));
    if (control != nullptr) control->setProperty("Tag", QString::fromLatin1(row.text));
  }
}

void ConnectControls(Parts& parts) {
  ConnectSearchView(parts);
  ConnectResultsView(parts);
  const auto perform = [&parts](const QString& name) { PerformCommand(parts, name); };
  QObject::connect(parts.menus, &MainMenus::Chosen, &parts.window, perform);
  for (ToolBar* const bar :
       {parts.smtSearchToolbar, parts.smtSearchResultsToolbar, parts.suRemovalToolbar})
    QObject::connect(bar, &ToolBar::Pressed, &parts.window, perform);
  QObject::connect(parts.client, &ClientArea::Resized, &parts.window,
                   [&parts] { RedrawLayout(parts); });
  QObject::connect(parts.client, &ClientArea::DesignChanged, &parts.window, [&parts] {
    DesignLayout(parts);
    RedrawLayout(parts);
  });
  parts.lock = new InputLock(&parts.window, RequestStop);
  parts.lock->SetStopButton(parts.smtSearchToolbar->Button(QStringLiteral("STOP_KEY")));
}

}  // namespace quillmarsh
