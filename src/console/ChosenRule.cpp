// SPDX-License-Identifier: MIT
// The rule's options before the search, its marks after it.
#include "console/ChosenRule.h"

#include "console/StandardStreams.h"
#include "selection/cGroupSelection.h"

namespace quillmarsh {

bool ChosenRule::Take(const RuleArguments& arguments) {
  if (!TakeRuleArguments(arguments)) return false;
  mChosen = *gMarkForRemovalWizardOptions;
  return true;
}

bool ChosenRule::Mark(cSearchResults& results) const {
  *gMarkForRemovalWizardOptions = mChosen;
  const std::int64_t errorsBefore = mObjects.ErrorCount();
  cGroupSelection(results).MarkFilesBasedOnWizardOptions();
  if (mObjects.ErrorCount() == errorsBefore) return true;
  PrintError("the rule failed; nothing is selected");
  return false;
}

}  // namespace quillmarsh
