// SPDX-License-Identifier: MIT
// The menu bar and the pop-up menu of the main window, made of two tables: order, names, captions.
// A chosen entry is only told on by its name; a check mark changes by SetChecked alone, never by
// the choice itself. Each action and menu has its name as object name; entries of an array are
// named like "mnuOptionsFileType(0)".
#pragma once

#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <span>

#include "frame/TextTable.h"

namespace quillmarsh {

// A caption: a text of the table and what follows it, or one that is put together.
class Caption {
 public:
  constexpr Caption() = default;
  constexpr Caption(TextId id, TextView suffix = {}) : mId(id.Number()), mSuffix(suffix) {}
  constexpr Caption(Text (*maker)()) : mMaker(maker) {}
  [[nodiscard]] Text Get() const;

 private:
  int mId = 0;  // 0: none
  TextView mSuffix;
  Text (*mMaker)() = nullptr;
};

enum class MenuEntryKind { Menu, Command, Toggle, Choice, Separator };

// An entry lies in the last menu above it of a smaller depth.
struct MenuRow {
  const char* name;
  int depth;
  MenuEntryKind kind;
  Caption caption;
};

[[nodiscard]] std::span<const MenuRow> MenuBarRows();
[[nodiscard]] std::span<const MenuRow> PopupRows();

class MainMenus final : public QObject {
  Q_OBJECT
 public:
  MainMenus(QMenuBar& bar, QWidget& window);

  // Null for a name that is none.
  [[nodiscard]] QAction* Entry(const QString& name) const;
  [[nodiscard]] QMenu* Menu(const QString& name) const;
  // A name that is none does nothing.
  void SetChecked(const QString& name, bool isChecked);
  void SetEnabled(const QString& name, bool isEnabled);
  // Locks all menus, or gives them back.
  void SetLocked(bool isLocked);

 signals:
  void Chosen(const QString& name);

 private:
  void Fill(QWidget& root, std::span<const MenuRow> rows);
  void AddEntry(QWidget& menu, const MenuRow& row);

  QWidget& mWindow;
  QList<QAction*> mTopLevel;
  QList<QMenu*> mMenus;
  QHash<QString, QAction*> mEntries;
};

}  // namespace quillmarsh
