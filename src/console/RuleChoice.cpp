// SPDX-License-Identifier: MIT
// A table of the rules, and a reader for each kind of value.
#include "console/RuleChoice.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "base/RuntimeError.h"
#include "base/ValueText.h"
#include "console/SearchRequest.h"
#include "console/StandardStreams.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "selection/clsMarkForRemovalWizard.h"

namespace quillmarsh {
namespace {

enum class Takes { Nothing, Drive, Folder, Size, Date, Mask };

struct Rule {
  const char* name;
  std::int32_t number;
  Takes takes;
  const char* value;
};

constexpr std::array kRules = {
    Rule{"newest", 0, Takes::Nothing, ""},
    Rule{"oldest", 1, Takes::Nothing, ""},
    Rule{"keep-newest", 2, Takes::Nothing, ""},
    Rule{"keep-oldest", 3, Takes::Nothing, ""},
    Rule{"drive", 4, Takes::Drive, "D"},
    Rule{"not-drive", 5, Takes::Drive, "D"},
    Rule{"folder", 6, Takes::Folder, "P"},
    Rule{"not-folder", 7, Takes::Folder, "P"},
    Rule{"larger-than", 8, Takes::Size, "SIZE"},
    Rule{"older-than", 9, Takes::Date, "DATE"},
    Rule{"mask", 10, Takes::Mask, "M"},
    Rule{"not-mask", 11, Takes::Mask, "M"},
    Rule{"smallest", 12, Takes::Nothing, ""},
    Rule{"largest", 13, Takes::Nothing, ""},
    Rule{"keep-smallest", 14, Takes::Nothing, ""},
    Rule{"keep-largest", 15, Takes::Nothing, ""},
};

// The first drive of which the place is below a folder; empty for none. Paths of its files do not
// begin with the folder's.
Text DriveBelow(TextView folder) {
  const Volumes& volumes = TheMachine().Drives();
  const Text shown = volumes.ShownPath(AddBackslash(folder));
  for (const Text& root : DriveRoots()) {
    const Text place = volumes.ShownPath(root);
    if (place.size() > shown.size() && place.starts_with(shown)) return place;
  }
  return {};
}

bool IsBlankMask(TextView mask) {
  return mask.find_first_not_of(u" ;") == TextView::npos;
}

// Each answers why the value is refused, empty for taken.
std::string TakeDrive(const std::string& value, clsMarkForRemovalWizard& options) {
  const bool isLetter = value.size() <= 3 &&
                        std::isalpha(static_cast<unsigned char>(value[0])) != 0 &&
                        std::string(":\\").starts_with(value.substr(1));
  if (isLetter) {
    const Text drive{static_cast<char16_t>(std::toupper(static_cast<unsigned char>(value[0]))),
                     u':'};
    const Text root = drive + u"\\";
    const auto roots = DriveRoots();
    if (std::find(roots.begin(), roots.end(), root) == roots.end()) return "there is no such drive";
    options.SetDriveSpec(drive);
    return {};
  }
  const CanonicalLocation location = TheMachine().Drives().LocationFromNative(value);
  if (location.error != 0) return ReasonOf(location.error);
  options.SetDriveSpec(GetDriveRootOf(AddBackslash(location.path)));
  return {};
}

std::string TakeFolder(const std::string& value, clsMarkForRemovalWizard& options) {
  const CanonicalLocation location = TheMachine().Drives().LocationFromNative(value);
  if (location.error != 0) return ReasonOf(location.error);
  const std::uint32_t attributes =
      TheMachine().Files().GetFileAttributesW(ToLongPath(location.path));
  if (attributes == INVALID_FILE_ATTRIBUTES) return ReasonOf(TheMachine().GetLastError());
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return "it is a file, not a folder";
  if (const Text drive = DriveBelow(location.path); !drive.empty())
    return "\"" + ToUtf8(drive) +
           "\" below it is another file system; name a folder that holds none";
  // With the backslash it is found in paths of this folder and of those below it, and in no others.
  options.mFolderSpec = AddBackslash(location.path);
  options.mIncludeSubFolders = true;
  return {};
}

std::string TakeSize(const std::string& value, clsMarkForRemovalWizard& options) {
  const std::size_t unitAt = std::min(value.find_first_not_of("0123456789."), value.size());
  std::string unit = value.substr(unitAt);
  std::transform(unit.begin(), unit.end(), unit.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  if (unit.size() == 2 && unit[0] != 'B' && unit[1] == 'B') unit.pop_back();
  static const std::array<std::string, 4> kUnits = {"B", "K", "M", "G"};
  const auto found = std::find(kUnits.begin(), kUnits.end(), unit.empty() ? "B" : unit);
  const Text number = FromUtf8(value.substr(0, unitAt));
  if (found == kUnits.end() || !NumberFromText(number, LocaleFacts()))
    return "a size is a number with K, M or G behind it or nothing, such as 1.5M";
  try {
    options.SetSizeIncrement(static_cast<std::int32_t>(found - kUnits.begin()));
    options.SetFileSize(CurrencyFromText(number, LocaleFacts()));
  } catch (const RuntimeError&) {
    return "no file is that large";
  }
  return {};
}

std::string TakeDate(std::string value, clsMarkForRemovalWizard& options) {
  if (value.size() > 10 && value[10] == 'T') value[10] = ' ';
  // No form of a locale: a script is to mean the same day everywhere.
  const bool isFixedForm = value.size() >= 10 && value[4] == '-' && value[7] == '-';
  const auto date = isFixedForm ? DateFromText(FromUtf8(value), LocaleFacts()) : std::nullopt;
  if (!date) return "a date is written as 2024-01-31 or \"2024-01-31 18:30:00\"";
  options.mLastModifiedDate = *date;
  return {};
}

std::string TakeValue(const Rule& rule, const std::string& value,
                      clsMarkForRemovalWizard& options) {
  switch (rule.takes) {
    case Takes::Drive:
      return TakeDrive(value, options);
    case Takes::Folder:
      return TakeFolder(value, options);
    case Takes::Size:
      return TakeSize(value, options);
    case Takes::Date:
      return TakeDate(value, options);
    case Takes::Mask:
      options.mFileMask = TheMachine().Drives().TextFromNative(value, NativeTextKind::Mask);
      return IsBlankMask(options.mFileMask) ? "an empty mask fits no name" : "";
    case Takes::Nothing:
      break;
  }
  return {};
}

bool Refuse(const std::string& rule, const std::string& reason) {
  PrintError("cannot use the rule \"" + ShownArgument(rule) + "\": " + reason);
  return false;
}

}  // namespace

const std::vector<std::string>& RuleForms() {
  static const std::vector<std::string> forms = [] {
    std::vector<std::string> made;
    for (const Rule& rule : kRules)
      made.push_back(rule.takes == Takes::Nothing ? rule.name
                                                  : std::string(rule.name) + "=" + rule.value);
    return made;
  }();
  return forms;
}

bool TakeRuleArguments(const RuleArguments& arguments) {
  const std::size_t equals = arguments.rule.find('=');
  const std::string name = arguments.rule.substr(0, equals);
  const auto rule =
      std::find_if(kRules.begin(), kRules.end(), [&](const Rule& one) { return name == one.name; });
  if (rule == kRules.end()) return Refuse(arguments.rule, "there is none of that name");
  const bool hasValue = equals != std::string::npos && equals + 1 < arguments.rule.size();
  if (rule->takes == Takes::Nothing && equals != std::string::npos)
    return Refuse(arguments.rule, "it takes nothing behind its name");
  if (rule->takes != Takes::Nothing && !hasValue)
    return Refuse(arguments.rule, std::string("write it as ") + rule->name + "=" + rule->value);
  clsMarkForRemovalWizard& options = *gMarkForRemovalWizardOptions;
  options.mRule = rule->number;
  options.mAllowRemovalOfAllFilesInGroup = arguments.allowsAll;
  const std::string reason =
      hasValue ? TakeValue(*rule, arguments.rule.substr(equals + 1), options) : std::string();
  return reason.empty() || Refuse(arguments.rule, reason);
}

}  // namespace quillmarsh
