// SPDX-License-Identifier: MIT
// One of the four lists of filters with its heading, the field for what is to be added, and its
// buttons. It works on a copy of the list. Folders are shown as people of the machine write them,
// and kept as the search needs them.
#pragma once

#include <QWidget>

#include "filetypes/TypedFilters.h"
#include "filetypes/cFilterList.h"
#include "frame/TextTable.h"

class QLineEdit;
class QListWidget;
class QPushButton;

namespace quillmarsh {

// What tells the four from one another.
struct FilterPartRow {
  const char* list;
  const char* entry;
  const char* pick;
  const char* add;
  const char* remove;
  FilterListKind kind;
  FolderFilterUse use;  // of folders
  TextId heading;
  TextId prompt;  // of the dialog that picks one
};

class FilterPart final : public QWidget {
  Q_OBJECT
 public:
  FilterPart(const FilterPartRow& row, TextView stored);

  // What is to be stored.
  [[nodiscard]] const Text& StoredText() const { return mFilters.StoredText(); }

 protected:
  // Of the field: a placeholder goes when a person comes, and the return key adds.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void MakeField();
  [[nodiscard]] bool IsOfFolders() const { return mRow.kind == FilterListKind::Folders; }
  [[nodiscard]] Text ShownEntry(const Text& entry) const;
  // What is in the field, as the list keeps it; empty for nothing and for the placeholder.
  [[nodiscard]] Text EntryOfField() const;
  void ClearPlaceholder();
  void ShowEntries(int selected);

  void Pick();
  void Add();
  void Remove();

  const FilterPartRow& mRow;
  cFilterList mFilters;
  QListWidget* mList;
  QLineEdit* mEntry;
  Text mPicked;  // behind what the field shows, unless somebody typed in it
  bool mIsAdding = false;
};

}  // namespace quillmarsh
