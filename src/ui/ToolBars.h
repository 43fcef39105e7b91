// SPDX-License-Identifier: MIT
// The three tool bars of the main window, made of tables by key. A pressed button is only told on.
// Each button has its key as object name; the keys of one bar are unique.
#pragma once

#include <QHash>
#include <QToolBar>
#include <QToolButton>
#include <span>
#include <string_view>

#include "ui/MainMenus.h"

namespace quillmarsh {

enum class ToolBarItemKind { Label, Button, Separator };

struct ToolBarItem {
  const char* key;
  ToolBarItemKind kind;
  Caption caption;
  const char* icon = "";  // as IconFor takes it
  Caption toolTip = {};
};

// What stands in the bar of a name: smtSearchToolbar, smtSearchResultsToolbar or suRemovalToolbar.
[[nodiscard]] std::span<const ToolBarItem> ToolBarItems(std::string_view barName);

class ToolBar final : public QToolBar {
  Q_OBJECT
 public:
  ToolBar(const char* name, QWidget* parent);

  // Null for a key that is none.
  [[nodiscard]] QToolButton* Button(const QString& key) const;
  void SetButtonEnabled(const QString& key, bool isEnabled);
  // All of them, apart from one.
  void SetAllEnabled(bool isEnabled, const QString& exceptKey = {});
  // Where something that belongs to a button drops down, on the screen.
  [[nodiscard]] QPoint PlaceBelow(const QString& key) const;

 signals:
  void Pressed(const QString& key);

 private:
  void AddLabel(const ToolBarItem& item);
  void AddButton(const ToolBarItem& item);

  QHash<QString, QAction*> mButtons;
};

}  // namespace quillmarsh
