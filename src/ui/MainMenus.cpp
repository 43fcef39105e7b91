// SPDX-License-Identifier: MIT
// The tables, and one walk over each.
#include "ui/MainMenus.h"

#include <QActionGroup>
#include <algorithm>

#include "filetypes/modSearchFileTypes.h"
#include "selection/RuleTexts.h"
#include "ui/AccessKeys.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

using enum MenuEntryKind;

template <std::int32_t rule>
Text RuleTitle() {
  return GetRuleMenuTitle(rule);
}

template <std::int32_t number>
Text FileTypeName() {
  return SFTNameFromEnum(number);
}

Text MoveToDupes() {
  return LoadResString(412) + u" \\DUPES (" + LoadResString(413) + u")";
}

Text MoveToOther() {
  return LoadResString(414) + u"... (" + LoadResString(415) + u")";
}

Text DupesFolder() {
  return u"DUPES " + LoadResString(832) + u"...";
}

constexpr MenuRow kMenuBar[] = {
    {"mnuFile", 0, Menu, {393}},
    {"mnuFileFindDupes", 1, Command, {369}},
    {"mnuFileHyphen1", 1, Separator, {}},
    {"mnuFileViewSelected", 1, Command, {394}},
    {"mnuFileOpenInContainingFolder", 1, Command, {1112}},
    {"mnuFileRenameFile", 1, Command, {395, u"..."}},
    {"mnuFileHyphen2", 1, Separator, {}},
    {"mnuFileMark", 1, Command, {360}},
    {"mnuFileUnmark", 1, Command, {396}},
    {"mnuFileSelectMultiple", 1, Menu, {1082}},
    {"mnuFileKeepNewest", 2, Toggle, {RuleTitle<2>}},
    {"mnuFileKeepOldest", 2, Toggle, {RuleTitle<3>}},
    {"mnuFileHyphen4", 2, Separator, {}},
    {"mnuFileSelectDupesInFolder", 2, Toggle, {RuleTitle<6>}},
    {"mnuFileSelectDupesNotInFolder", 2, Toggle, {RuleTitle<7>}},
    {"mnuFileSelectDupesInDrive", 2, Toggle, {RuleTitle<4>}},
    {"mnuFileSelectDupesNotInDrive", 2, Toggle, {RuleTitle<5>}},
    {"mnuFileHyphen6", 1, Separator, {}},
    {"mnuFileRemovedMarkedFiles", 1, Command, {377}},
    {"mnuFileHyphen7", 1, Separator, {}},
    {"mnuFileAddFileToExcludeList", 1, Command, {397}},
    {"mnuFileAddFileExtensionToExcludeList", 1, Command, {398}},
    {"mnuFileHyphen8", 1, Separator, {}},
    {"mnuFileViewSelectedFileProperties", 1, Command, {363}},
    {"mnuFileViewSelectedMediaFileProperties", 1, Command, {1079}},
    {"mnuFileHyphen9", 1, Separator, {}},
    {"mnuFileExport", 1, Command, {336, u"..."}},
    {"mnuFileHyphen10", 1, Separator, {}},
    {"mnuFileExit", 1, Command, {399}},
    {"mnuOptions", 0, Menu, {400}},
    {"mnuOptionsIncludeSubfolders", 1, Toggle, {401}},
    {"mnuOptionsFileTypes", 1, Menu, {978}},
    {"mnuOptionsFileType(0)", 2, Choice, {FileTypeName<0>}},
    {"mnuOptionsFileType(1)", 2, Choice, {FileTypeName<1>}},
    {"mnuOptionsFileType(2)", 2, Choice, {FileTypeName<2>}},
    {"mnuOptionsFileType(3)", 2, Choice, {FileTypeName<3>}},
    {"mnuOptionsFileType(4)", 2, Choice, {FileTypeName<4>}},
    {"mnuEditHyphen1", 2, Separator, {}},
    {"mnuOptionsEditFileTypes", 2, Command, {979, u"..."}},
    {"mnuOptionsRestoreDefaultFileTypes", 2, Command, {1030}},
    {"mnuOptionsDupeCriteria", 1, Menu, {402}},
    {"mnuOptionsDupeCriteriaOption(0)", 2, Toggle, {340}},
    {"mnuOptionsDupeCriteriaOption(1)", 2, Toggle, {341}},
    {"mnuOptionsDupeCriteriaOption(2)", 2, Toggle, {342}},
    {"mnuOptionsDupeCriteriaOption(3)", 2, Toggle, {343}},
    {"mnuOptionsDupeCriteriaOption(4)", 2, Toggle, {344}},
    {"mnuIgnoreOptions", 1, Menu, {403}},
    {"mnuOptionsIgnoreZeroByteFiles", 2, Toggle, {404}},
    {"mnuOptionsIgnoreSystemFiles", 2, Toggle, {928}},
    {"mnuOptionsIgnoreHiddenFiles", 2, Toggle, {929}},
    {"mnuOptionsIgnoreTemporaryFiles", 2, Toggle, {930}},
    {"mnuOptionsIgnoreFilesInWinDir", 2, Toggle, {407}},
    {"mnuOptionsIgnoreFilesInRecycleBin", 2, Toggle, {408}},
    {"mnuOptionsRemoval", 1, Menu, {409}},
    {"mnuRemovalOptions(0)", 2, Choice, {410}},
    {"mnuRemovalOptions(1)", 2, Choice, {411}},
    {"mnuRemovalOptions(2)", 2, Choice, {MoveToDupes}},
    {"mnuRemovalOptions(3)", 2, Choice, {MoveToOther}},
    {"mnuOptionsFilter", 1, Command, {416, u"..."}},
    {"mnuOptionsCheckFolderPermission", 1, Toggle, {778}},
    {"mnuOptionsDupesFolderLocation", 1, Command, {DupesFolder}},
    {"mnuNavigation", 0, Menu, {784}},
    {"mnuNavigationSearchWindow", 1, Command, {785}},
    {"mnuNavigationResultsWindow", 1, Command, {786}},
    {"mnuHistory", 0, Menu, {421}},
    {"mnuHistoryView", 1, Command, {422}},
    {"mnuHistoryClear", 1, Command, {423}},
    {"mnuHelp", 0, Menu, {427}},
    {"mnuHelpContents", 1, Command, {428}},
    {"mnuHelpTroubleshooting", 1, Menu, {429}},
    {"mnuHelpTroubeshootingGeneral", 2, Command, {430}},
    {"mnuHelpTroubleshootingAnalyzeFSO", 2, Command, {431, u"..."}},
    {"mnuHelpTroubleshootingConfigFolder", 2, Command, {432}},
    {"mnuHelpWeb", 1, Menu, {433}},
    {"mnuHelpTroubleshootingWebSite", 2, Command, {434}},
    {"mnuHelpContactUs", 2, Command, {435}},
    {"mnuHelpHyphen1", 1, Separator, {}},
    {"mnuHelpAbout", 1, Command, {101, u"..."}},
};

constexpr MenuRow kPopup[] = {
    {"mnuPopup", 0, Menu, {}},
    {"mnuPopupViewFile", 1, Command, {362}},
    {"mnuPopupOpenInContainingFolder", 1, Command, {1112}},
    {"mnuPopupRenameFile", 1, Command, {361, u"..."}},
    {"mnuPopupHyphen1", 1, Separator, {}},
    {"mnuPopupMarkFile", 1, Command, {360}},
    {"mnuPopupUnmarkFile", 1, Command, {396}},
    {"mnuPopupSelectMultipleFiles", 1, Menu, {1082}},
    {"mnuPopupKeepNewest", 2, Toggle, {RuleTitle<2>}},
    {"mnuPopupKeepOldest", 2, Toggle, {RuleTitle<3>}},
    {"mnuPopupSelectDupesInFolder", 2, Toggle, {RuleTitle<6>}},
    {"mnuPopupSelectDupesNotInFolder", 2, Toggle, {RuleTitle<7>}},
    {"mnuPopupSelectDupesInDrive", 2, Toggle, {RuleTitle<4>}},
    {"mnuPopupSelectDupesNotInDrive", 2, Toggle, {RuleTitle<5>}},
    {"mnuPopupRemoveMarkedFiles", 1, Command, {377}},
    {"mnuPopupHyphen2", 1, Separator, {}},
    {"mnuPopupAddFileToExcludeList", 1, Command, {333}},
    {"mnuPopupAddFileExtensionToExcludeList", 1, Command, {436}},
    {"mnuPopupHyphen3", 1, Separator, {}},
    {"mnuPopupProperties", 1, Command, {363}},
    {"mnuPopupMediaProperties", 1, Command, {1079}},
};

// Those of one menu, and then those of the menus below it.
void GiveAccessKeys(const QList<QAction*>& entries) {
  QString taken;
  for (QAction* const entry : entries) {
    if (entry->isSeparator()) continue;
    entry->setText(WithAccessKey(entry->text(), taken));
    if (entry->menu() != nullptr) GiveAccessKeys(entry->menu()->actions());
  }
}

}  // namespace

Text Caption::Get() const {
  if (mMaker != nullptr) return mMaker();
  return (mId == 0 ? Text() : LoadResStringAt(mId)) + Text(mSuffix);
}

std::span<const MenuRow> MenuBarRows() {
  return kMenuBar;
}

std::span<const MenuRow> PopupRows() {
  return kPopup;
}

MainMenus::MainMenus(QMenuBar& bar, QWidget& window) : QObject(&window), mWindow(window) {
  Fill(bar, kMenuBar);
  Fill(window, kPopup);
  GiveAccessKeys(bar.actions());
  GiveAccessKeys(Menu(QStringLiteral("mnuPopup"))->actions());
  Entry(QStringLiteral("mnuHelpContents"))->setShortcut(Qt::Key_F1);
  Menu(QStringLiteral("mnuPopup"))->setDefaultAction(Entry(QStringLiteral("mnuPopupViewFile")));
}

// A menu of depth 0 goes into the bar; without a bar it stands by itself.
void MainMenus::Fill(QWidget& root, std::span<const MenuRow> rows) {
  QList<QWidget*> path = {&root};
  for (const MenuRow& row : rows) {
    path.resize(row.depth + 1);
    QWidget& parent = *path.back();
    if (row.kind != MenuEntryKind::Menu) {
      AddEntry(parent, row);
      continue;
    }
    auto* const menu = new QMenu(ToQString(row.caption.Get()), &parent);
    menu->setObjectName(QString::fromLatin1(row.name));
    menu->setAccessibleName(ToQString(row.caption.Get()));
    mMenus.append(menu);
    if (&parent != &mWindow) parent.addAction(menu->menuAction());
    if (row.depth == 0) mTopLevel.append(menu->menuAction());
    path.append(menu);
  }
}

void MainMenus::AddEntry(QWidget& menu, const MenuRow& row) {
  auto* const action = new QAction(ToQString(row.caption.Get()), &menu);
  const QString name = QString::fromLatin1(row.name);
  action->setObjectName(name);
  // No entry may go to another place of the bar because of what its text sounds like.
  action->setMenuRole(QAction::NoRole);
  menu.addAction(action);
  mEntries.insert(name, action);
  if (row.kind == Separator) return action->setSeparator(true);
  action->setCheckable(row.kind != Command);
  if (row.kind == Choice) {
    // One group for each menu: for the look of radio buttons, not for the behaviour.
    auto* group = menu.findChild<QActionGroup*>(QString(), Qt::FindDirectChildrenOnly);
    if (group == nullptr) group = new QActionGroup(&menu);
    group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    group->addAction(action);
  }
  connect(action, &QAction::triggered, this, [this, action, name](bool isChecked) {
    if (action->isCheckable()) action->setChecked(!isChecked);
    emit Chosen(name);
  });
}

QAction* MainMenus::Entry(const QString& name) const {
  return mEntries.value(name);
}

QMenu* MainMenus::Menu(const QString& name) const {
  const auto found =
      std::ranges::find(mMenus, name, [](QMenu* menu) { return menu->objectName(); });
  return found == mMenus.end() ? nullptr : *found;
}

void MainMenus::SetChecked(const QString& name, bool isChecked) {
  if (QAction* const action = Entry(name)) action->setChecked(isChecked);
}

void MainMenus::SetEnabled(const QString& name, bool isEnabled) {
  if (QAction* const action = Entry(name)) action->setEnabled(isEnabled);
}

void MainMenus::SetLocked(bool isLocked) {
  for (QAction* const action : mTopLevel) action->setEnabled(!isLocked);
}

}  // namespace quillmarsh
