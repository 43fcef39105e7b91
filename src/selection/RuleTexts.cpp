// SPDX-License-Identifier: MIT
// Names and descriptions stand in the text table in the order of the rules; menu captions do not.
#include "selection/RuleTexts.h"

#include <iterator>

#include "frame/TextTable.h"

namespace quillmarsh {

namespace {

constexpr int kFirstName = 620;
constexpr int kFirstDescription = 581;
constexpr TextId kMenuTitles[] = {1072, 1073, 1076, 1077, 1074, 1075};

bool IsRule(std::int32_t rule) {
  return rule >= 0 && rule < kRuleCount;
}

}  // namespace

Text GetRuleName(std::int32_t rule) {
  return IsRule(rule) ? LoadResStringAt(kFirstName + rule) : Text();
}

Text GetRuleDescription(std::int32_t rule) {
  return IsRule(rule) ? LoadResStringAt(kFirstDescription + rule) : Text();
}

Text GetRuleMenuTitle(std::int32_t rule) {
  if (rule < selection_rule::KeepNewest || rule > selection_rule::NotInFolder) return {};
  return LoadResString(kMenuTitles[rule - selection_rule::KeepNewest]);
}

}  // namespace quillmarsh
