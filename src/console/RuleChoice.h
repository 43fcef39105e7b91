// SPDX-License-Identifier: MIT
// A selection rule as it is written on a command line, "keep-newest" or "older-than=2024-01-31",
// put into the options that the rules read.
#pragma once

#include <string>
#include <vector>

namespace quillmarsh {

struct RuleArguments {
  std::string rule = "keep-newest";
  bool allowsAll = false;  // every file of a group may be marked
};

// The rules with what they take, for the help: "older-than=DATE".
[[nodiscard]] const std::vector<std::string>& RuleForms();

// Sets gMarkForRemovalWizardOptions. False when the rule or what it takes was refused, which has
// been told.
[[nodiscard]] bool TakeRuleArguments(const RuleArguments& arguments);

}  // namespace quillmarsh
