// SPDX-License-Identifier: MIT
// The list of folders to search: adding, removing and editing. It keeps the folders in the form
// that the program's paths have and shows them as a person reads them. It knows no toolkit; where a
// person must be told something it shows message boxes. Only a search stores the list.
#pragma once

#include <string_view>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

class FolderListView {
 public:
  virtual ~FolderListView() = default;
  // The whole list anew, and which entry is selected then (-1 for none).
  virtual void ShowFolders(const std::vector<Text>& shownPaths, int selected) = 0;
};

class FolderListCommands {
 public:
  explicit FolderListCommands(FolderListView& view) : mView(view) {}

  // In the order of the list, drive form.
  [[nodiscard]] const std::vector<Text>& Folders() const { return mFolders; }

  // The stored list, joined by "<:>".
  void AddFolderLocationsToList(TextView joined);
  // What is picked in the tree; empty for nothing.
  void SetSelectedFolderPath(TextView path);
  // Adds what is picked in the tree. A folder that is in the list already is told.
  void AddFolderToList();
  // Adds a folder that is named as other programs name it; anything but a folder is passed over.
  void AddDroppedFolder(std::string_view native);
  // `position` from 0; -1 where nothing is selected, which is told.
  void RemoveFolder(int position);
  // Asks for another path; a position without an entry does nothing.
  void EditFolder(int position);

 private:
  void Add(const Text& folder);
  [[nodiscard]] bool IsInList(const Text& folder) const;
  void Show(int selected) const;

  FolderListView& mView;
  std::vector<Text> mFolders;
  Text mSelectedFolderPath;  // with a final backslash
};

}  // namespace quillmarsh
