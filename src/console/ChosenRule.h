// SPDX-License-Identifier: MIT
// A rule of the command line, from its arguments to the marks. The end of a search sets the rule
// options to those of its own selection, so what was taken before it is kept here meanwhile.
#pragma once

#include "console/ProgramObjects.h"
#include "console/RuleChoice.h"
#include "search/results/cSearchResults.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {

class ChosenRule {
 public:
  explicit ChosenRule(const ProgramObjects& objects) : mObjects(objects) {}

  // False when it was refused, which has been told.
  [[nodiscard]] bool Take(const RuleArguments& arguments);
  // False when the rule failed, which has been told; the marks are then no rule's.
  [[nodiscard]] bool Mark(cSearchResults& results) const;

 private:
  const ProgramObjects& mObjects;
  clsMarkForRemovalWizard mChosen;
};

}  // namespace quillmarsh
