// SPDX-License-Identifier: MIT
// The tables and the building of a bar.
#include "ui/ToolBars.h"

#include <QCursor>
#include <QLabel>

#include "ui/Icons.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

using enum ToolBarItemKind;

Text SelectMultipleTip() {
  return LoadResString(1096) + u" " + LoadResString(613) + u"...";
}

constexpr ToolBarItem kSearch[] = {
    {"SEARCH_LABEL_KEY", Label, {449}},        {"START_SEARCH_KEY", Button, {450}, "find"},
    {"STOP_KEY", Button, {451}, "stop"},       {"", Separator, {}},
    {"TOOLS_LABEL_KEY", Label, {452}},         {"FILTER_KEY", Button, {453}, "filter"},
    {"HISTORY_KEY", Button, {454}, "history"}, {"", Separator, {}},
    {"NAVIGATE_LABEL_KEY", Label, {447}},      {"RESULTSVIEW_KEY", Button, {455}, "forward"},
};

constexpr ToolBarItem kResults[] = {
    {"SELECT_LABEL_KEY", Label, {442}},        {"WIZARD_KEY", Button, {443, u"..."}, "wizard"},
    {"UNDO_KEY", Button, {444}, "undo"},       {"", Separator, {}},
    {"REMOVE_LABEL_KEY", Label, {445}},        {"REMOVE_KEY", Button, {446}, "remove"},
    {"OPTIONS_KEY", Button, {400}, "options"}, {"", Separator, {}},
    {"NAVIGATE_LABEL_KEY", Label, {447}},      {"SEARCHVIEW_KEY", Button, {448}, "back"},
};

constexpr ToolBarItem kRemoval[] = {
    {"VIEW_KEY", Button, {422}, "view_file", {1092}},
    {"PROPERTIES_KEY", Button, {437}, "file_properties", {1093}},
    {"MEDIAINFO_KEY", Button, {1088}, "media_info", {1094}},
    {"", Separator, {}},
    {"SELECT_KEY", Button, {360}, "select_file", {1099}},
    {"UNSELECT_KEY", Button, {396}, "unselect_file", {1100}},
    {"QUICKSELECT_KEY", Button, {1082}, "wizard", {SelectMultipleTip}},
};

}  // namespace

std::span<const ToolBarItem> ToolBarItems(std::string_view barName) {
  if (barName == "smtSearchToolbar") return kSearch;
  if (barName == "smtSearchResultsToolbar") return kResults;
  if (barName == "suRemovalToolbar") return kRemoval;
  return {};
}

ToolBar::ToolBar(const char* name, QWidget* parent) : QToolBar(parent) {
  setObjectName(QString::fromLatin1(name));
  setMovable(false);
  setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  setContextMenuPolicy(Qt::PreventContextMenu);
  for (const ToolBarItem& item : ToolBarItems(name)) {
    switch (item.kind) {
      case ToolBarItemKind::Label:
        AddLabel(item);
        break;
      case ToolBarItemKind::Button:
        AddButton(item);
        break;
      case ToolBarItemKind::Separator:
        addSeparator();
        break;
    }
  }
}

void ToolBar::AddLabel(const ToolBarItem& item) {
  auto* const label = new QLabel(ToQString(item.caption.Get()), this);
  label->setObjectName(QString::fromLatin1(item.key));
  QFont font = label->font();
  font.setBold(true);
  label->setFont(font);
  const int margin = fontMetrics().horizontalAdvance(u' ') * 2;
  label->setContentsMargins(margin, 0, margin, 0);
  addWidget(label);
}

void ToolBar::AddButton(const ToolBarItem& item) {
  const QString key = QString::fromLatin1(item.key);
  const QString caption = ToQString(item.caption.Get());
  QAction* const action = addAction(IconFor(QString::fromLatin1(item.icon)), caption);
  // By itself it would leave out the dots at the end.
  action->setIconText(caption);
  const QString toolTip = ToQString(item.toolTip.Get());
  action->setToolTip(toolTip.isEmpty() ? caption : toolTip);
  connect(action, &QAction::triggered, this, [this, key] { emit Pressed(key); });
  mButtons.insert(key, action);
  auto* const button = qobject_cast<QToolButton*>(widgetForAction(action));
  if (button == nullptr) return;
  button->setObjectName(key);
  button->setAccessibleName(caption);
  button->setAccessibleDescription(toolTip);
  button->setFocusPolicy(Qt::TabFocus);
}

QToolButton* ToolBar::Button(const QString& key) const {
  return qobject_cast<QToolButton*>(widgetForAction(mButtons.value(key)));
}

void ToolBar::SetButtonEnabled(const QString& key, bool isEnabled) {
  if (QAction* const action = mButtons.value(key)) action->setEnabled(isEnabled);
}

void ToolBar::SetAllEnabled(bool isEnabled, const QString& exceptKey) {
  for (auto button = mButtons.cbegin(); button != mButtons.cend(); ++button) {
    if (button.key() != exceptKey) SetButtonEnabled(button.key(), isEnabled);
  }
}

// The button may lie in the part that a narrow bar shows on demand.
QPoint ToolBar::PlaceBelow(const QString& key) const {
  const QToolButton* const button = Button(key);
  if (button == nullptr || !button->isVisible()) return QCursor::pos();
  return button->mapToGlobal(QPoint(0, button->height()));
}

}  // namespace quillmarsh
