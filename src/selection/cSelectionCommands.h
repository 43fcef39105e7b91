// SPDX-License-Identifier: MIT
// What the menus, the tool bar and the check boxes do to the marks. The pop-up items call the same
// handlers as those of the menu. One command runs at a time: while another one or a search runs, a
// command here does nothing. Boxes, check marks of the menus and redrawing go through the views.
#pragma once

#include <optional>

#include "selection/SelectionView.h"

namespace quillmarsh {

class cSelectionCommands {
 public:
  cSelectionCommands(cSearchResults& results, SelectionView& view)
      : mResults(results), mView(view) {}

  // Rules by menu. They let all files of a group be marked, and leave that option so.
  void mnuFileKeepNewest_Click();
  void mnuFileKeepOldest_Click();
  // By the drive or folder of the selected file; the folder is asked for confirmation.
  void mnuFileSelectDupesInDrive_Click();
  void mnuFileSelectDupesNotInDrive_Click();
  void mnuFileSelectDupesInFolder_Click();
  void mnuFileSelectDupesNotInFolder_Click();
  // The rule that a person chooses in the assistant. The menus' check marks stay as they are.
  void ShowSelectionAssistant();

  // The selected file.
  void mnuFileMark_Click();
  void mnuFileUnmark_Click();
  // The check box of a row of the details list (position from 0). Gives no warning.
  void DetailCheckBoxChanged(std::int32_t position, bool isChecked);
  // The tool bar's key "UNDO_KEY".
  void UndoMarks();

  // For a rule outside 2 to 7 a message, and the menus stay as they are.
  void CheckMarkChosenMultiSelectRule(std::int32_t rule);

  // Inside another command, for a row of the details list; a position without a file is told.
  // MarkFile warns when it marks the last file of a group, unless all files of a group may go.
  void MarkFile(std::int32_t position);
  void UnmarkFile(std::int32_t position);

 private:
  void SelectByDrive(TextView handler, std::int32_t rule);
  void SelectByFolder(TextView handler, std::int32_t rule);
  void KeepByDate(TextView handler, std::int32_t rule);
  void ApplyMenuRule(std::int32_t rule);
  void ApplyRule();
  void WarnIfWholeGroupIsMarked();
  void SetMark(std::int32_t index, bool isMarked);
  void ShowTotal();
  // The record (from 1) of a row; none for the line of an emptied group.
  [[nodiscard]] std::optional<std::int32_t> RecordAt(std::int32_t position) const;
  [[nodiscard]] std::optional<Text> PathOfSelectedFile() const;

  cSearchResults& mResults;
  SelectionView& mView;
};

}  // namespace quillmarsh
