// SPDX-License-Identifier: MIT
// Between the controls of the Selection Assistant and the options of the rules: whether what a
// person left in the controls will do, and the way there and back as plain values. Nothing here
// shows anything.
#pragma once

#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {

// The controls' values, numbers as text where a person types them.
struct RuleControls {
  std::int32_t rule = 0;
  Text drive;            // an entry of the list of drives, or any path on the drive
  Text folderSpec;       // as a person reads and types it
  Text knownFolderSpec;  // the folder that the options held when the controls were loaded
  bool includeSubFolders = false;
  Text fileSize;
  std::int32_t sizeIncrement = 0;
  Date lastModifiedDate;
  Text fileMask;
  bool allowRemovalOfAllFilesInGroup = false;
};

enum class RuleField { None, FolderSpec, FileSize, FileMask };

// What is wrong with a control: the message box, and the field that gets the focus.
struct RuleProblem {
  RuleField field = RuleField::None;
  Text message;
  Text title;
};

// Looks only at what the rule needs, and first takes the blanks off both ends of that text. No
// problem where it is valid. Error 6 for a size beyond 32 bits, though it is a number. Asks the
// disk whether a folder exists.
[[nodiscard]] RuleProblem ValidateRuleOptions(std::int32_t rule, RuleControls& controls);

// Writes every option, also those that the rule does not need, in one order; an error ends it
// there. A size that is no number is error 13 whatever the rule; one that is too large, error 6.
void SaveControlsToOptions(const RuleControls& controls, clsMarkForRemovalWizard& options);
[[nodiscard]] RuleControls LoadControlsFromOptions(const clsMarkForRemovalWizard& options);

// The text of a folder rule out of what a person typed. Where that is how `known` is shown, it is
// `known`, since not every name can be typed as it is shown. Else a path that is written as
// programs of the machine write it becomes the form that the program's paths have, and anything
// else stays as it is.
[[nodiscard]] Text FolderSpecFromTyped(TextView typed, TextView known);

}  // namespace quillmarsh
