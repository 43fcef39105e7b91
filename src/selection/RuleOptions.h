// SPDX-License-Identifier: MIT
// Between the controls of the Selection Assistant and the options of the rules: whether what a
// person left in the controls will do, and the way there and back as plain values. Nothing here
// shows anything.
#pragma once

#include <vector>

#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {

// The controls' values, numbers as text where a person types them.
struct RuleControls {
  std::int32_t rule = 0;
  Text drive;            // of the list of drives, or any path on the drive
  Text folderSpec;       // as a person reads and types it
  Text knownFolderSpec;  // the folder that the options held when the controls were loaded
  bool includeSubFolders = false;
  Text fileSize;
  std::int32_t sizeIncrement = 0;
  Date lastModifiedDate;
  Text fileMask;  // as a person reads and types it
  bool allowRemovalOfAllFilesInGroup = false;
};

// What a rule wants to be told.
enum class RuleParameter { None, Drive, Folder, Size, Date, Mask };
// None for a number without a rule, too.
[[nodiscard]] RuleParameter ParameterOfRule(std::int32_t rule);

enum class RuleField { None, FolderSpec, FileSize, FileMask };

// What is wrong with a control: the message box, and the field that gets the focus.
struct RuleProblem {
  RuleField field = RuleField::None;
  Text message;
  Text title;
};

// Looks only at what the rule needs, and first takes the blanks off both ends of that text. No
// problem where it is valid. Error 6, with a description that names the size, for one beyond 32
// bits, though it is a number. Asks the disk whether a folder exists.
[[nodiscard]] RuleProblem ValidateRuleOptions(std::int32_t rule, RuleControls& controls);

// Writes every option, also those that the rule does not need: all, or after an error none. A size
// that is no number is error 13 whatever the rule; one that is too large, error 6.
void SaveControlsToOptions(const RuleControls& controls, clsMarkForRemovalWizard& options);
[[nodiscard]] RuleControls LoadControlsFromOptions(const clsMarkForRemovalWizard& options);

// An entry of the list of drives.
struct RuleDrive {
  Text drive;  // "C:"
  Text shown;  // with the label in brackets: "C: [System]", "/media/stick [Photos]"
};
// Those that the machine has now, in its order; asks each for its label.
[[nodiscard]] std::vector<RuleDrive> GetRuleDrives();
// The position from 0 of an option's drive, which may be a lone letter; -1 where it is not there.
[[nodiscard]] int PositionOfDrive(const std::vector<RuleDrive>& drives, TextView driveSpec);

// The text of a folder rule out of what a person typed. Where that is how `known` is shown, it is
// `known`, since not every name can be typed as it is shown. Else a path that is written as
// programs of the machine write it becomes the form that the program's paths have, and anything
// else stays as it is.
[[nodiscard]] Text FolderSpecFromTyped(TextView typed, TextView known);

}  // namespace quillmarsh
