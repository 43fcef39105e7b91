// SPDX-License-Identifier: MIT
// What the commands of the selection ask of the window beyond message and input boxes and status
// panels. Which rows are selected, the two lists tell by themselves.
#pragma once

#include "selection/MarkedFiles.h"

namespace quillmarsh {

// The box after a rule has run.
struct SelectSummary {
  std::int32_t NumFilesSelected = 0;
  Currency SpaceSavings;
};

class SelectionView {
 public:
  virtual ~SelectionView() = default;

  // Takes the check mark off the two items (menu and pop-up) of each of the rules 2 to 7.
  virtual void ClearChosenMultiSelectRule() = 0;
  // Checks the two items of a rule from 2 to 7.
  virtual void CheckRuleItems(std::int32_t rule) = 0;
  // Marks have changed: rows of both lists are to be drawn anew.
  virtual void MarksChanged() = 0;
  // Modal: the Selection Assistant, which leaves the rule, its parameters and whether it was
  // cancelled in gMarkForRemovalWizardOptions.
  virtual void ShowMarkForRemovalWizard() = 0;
  // Modal; also for no file at all.
  virtual void ShowSelectSummary(const SelectSummary& summary) = 0;
};

}  // namespace quillmarsh
