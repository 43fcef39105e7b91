// SPDX-License-Identifier: MIT
// One check for each kind of parameter.
#include "selection/RuleOptions.h"

#include <algorithm>
#include <utility>

#include "base/RuntimeError.h"
#include "base/TextEquality.h"
#include "base/ValueText.h"
#include "filetypes/TypedFilters.h"
#include "frame/TextTable.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "selection/RuleTexts.h"

namespace quillmarsh {

namespace {

RuleProblem CheckFolder(const Text& folder, const Text& known) {
  const auto problem = [](TextId message) {
    return RuleProblem{RuleField::FolderSpec, LoadResString(message), LoadResString(598)};
  };
  if (folder.empty()) return problem(597);
  const Text spec = FolderSpecFromTyped(folder, known);
  // To ask for what lies on no drive would be told as a failure of the machine.
  const bool isNowhere = HasPathsOfItsOwn() && !IsProgramPath(spec);
  return isNowhere || !FSXFolderExists(spec) ? problem(599) : RuleProblem{};
}

// The classic errors do not say which control they are about, and it may be hidden.
template <typename Body>
auto NamingTheSize(Body&& body) {
  try {
    return body();
  } catch (const RuntimeError& error) {
    throw RuntimeError(error.Number(), error.Source(),
                       LoadResString(364) + u": " + error.Description());
  }
}

// Zero passes, and so does what rounds to it.
RuleProblem CheckFileSize(const Text& size) {
  const auto problem = [](TextId message) {
    return RuleProblem{RuleField::FileSize, LoadResString(message), LoadResString(601)};
  };
  if (size.empty()) return problem(600);
  if (!NumberFromText(size, GetLocaleFacts())) return problem(602);
  const auto whole = NamingTheSize([&] { return LongFromText(size, GetLocaleFacts()); });
  if (whole < 0) return problem(603);
  return {};
}

// Only the first dot counts.
RuleProblem CheckFileMask(const Text& mask) {
  const auto problem = [](Text message) {
    return RuleProblem{RuleField::FileMask, std::move(message), LoadResString(605)};
  };
  if (mask.empty()) return problem(LoadResString(604));
  const Text lineBreak = u"\r\n";
  const Text notValid = LoadResString(606) + lineBreak;
  const std::size_t dot = mask.find(u'.');
  if (dot == Text::npos) return problem(notValid + LoadResString(607));
  if (dot == mask.size() - 1) return problem(notValid + LoadResString(608));
  if (dot != 0) return {};
  return problem(notValid + LoadResString(609) + lineBreak + lineBreak + LoadResString(610));
}

// As a person would type it.
Text ShownSize(Currency size) {
  Text text = size.ToText();
  if (const std::size_t point = text.find(u'.'); point != Text::npos)
    text.replace(point, 1, GetLocaleFacts().decimalSeparator);
  return text;
}

const Text& Trimmed(Text& text) {
  return text = Text(TrimBlanks(text));
}

}  // namespace

RuleParameter ParameterOfRule(std::int32_t rule) {
  switch (rule) {
    case selection_rule::InDrive:
    case selection_rule::NotInDrive:
      return RuleParameter::Drive;
    case selection_rule::InFolder:
    case selection_rule::NotInFolder:
      return RuleParameter::Folder;
    case selection_rule::BySize:
      return RuleParameter::Size;
    case selection_rule::ByDate:
      return RuleParameter::Date;
    case selection_rule::ByFileMask:
    case selection_rule::NotByFileMask:
      return RuleParameter::Mask;
    default:
      return RuleParameter::None;
  }
}

RuleProblem ValidateRuleOptions(std::int32_t rule, RuleControls& controls) {
  switch (ParameterOfRule(rule)) {
    case RuleParameter::Folder:
      return CheckFolder(Trimmed(controls.folderSpec), controls.knownFolderSpec);
    case RuleParameter::Size:
      return CheckFileSize(FixedFormOfTyped(Trimmed(controls.fileSize), GetLocaleFacts()));
    case RuleParameter::Mask:
      return CheckFileMask(Trimmed(controls.fileMask));
    default:
      return {};
  }
}

void SaveControlsToOptions(const RuleControls& controls, clsMarkForRemovalWizard& options) {
  clsMarkForRemovalWizard saved = options;
  saved.mRule = controls.rule;
  saved.SetDriveSpec(controls.drive);
  saved.mFolderSpec = FolderSpecFromTyped(controls.folderSpec, controls.knownFolderSpec);
  saved.mIncludeSubFolders = controls.includeSubFolders;
  NamingTheSize([&] {
    // A size must not be multiplied by the unit of the one before it.
    saved.SetFileSize({});
    saved.SetSizeIncrement(controls.sizeIncrement);
    saved.SetFileSize(
        CurrencyFromText(FixedFormOfTyped(controls.fileSize, GetLocaleFacts()), GetLocaleFacts()));
  });
  saved.mLastModifiedDate = controls.lastModifiedDate;
  saved.mFileMask = MaskFromTyped(controls.fileMask);
  saved.mAllowRemovalOfAllFilesInGroup = controls.allowRemovalOfAllFilesInGroup;
  options = std::move(saved);
}

RuleControls LoadControlsFromOptions(const clsMarkForRemovalWizard& options) {
  RuleControls controls;
  controls.rule = options.mRule;
  controls.drive = options.DriveSpec();
  controls.folderSpec = TheMachine().Drives().ShownPath(options.mFolderSpec);
  controls.knownFolderSpec = options.mFolderSpec;
  controls.includeSubFolders = options.mIncludeSubFolders;
  controls.fileSize = ShownSize(options.FileSize());
  controls.sizeIncrement = options.SizeIncrement();
  controls.lastModifiedDate = options.mLastModifiedDate;
  controls.fileMask = ShownMask(options.mFileMask);
  controls.allowRemovalOfAllFilesInGroup = options.mAllowRemovalOfAllFilesInGroup;
  return controls;
}

std::vector<RuleDrive> GetRuleDrives() {
  Volumes& volumes = TheMachine().Drives();
  const Text roots = volumes.GetLogicalDriveStringsW();
  std::vector<RuleDrive> drives;
  for (std::size_t begin = 0; begin < roots.size();) {
    const std::size_t end = std::min(roots.find(u'\0', begin), roots.size());
    const Text root = roots.substr(begin, end - begin);
    begin = end + 1;
    Text shown = volumes.ShownPath(root);
    if (shown == root) shown = RemoveBackslash(root);
    if (shown.size() > 1 && shown.ends_with(u'/')) shown.pop_back();
    VolumeInformation volume;
    if (volumes.GetVolumeInformationW(root, volume) && !volume.label.empty())
      shown += u" [" + volume.label + u"]";
    drives.push_back({RemoveBackslash(root), std::move(shown)});
  }
  return drives;
}

int PositionOfDrive(const std::vector<RuleDrive>& drives, TextView driveSpec) {
  const Text wanted = driveSpec.size() == 1 ? Text(driveSpec) + u":" : Text(driveSpec);
  for (std::size_t position = 0; position < drives.size(); ++position) {
    if (CompareIgnoringCase(drives[position].drive, wanted) == 0) return static_cast<int>(position);
  }
  return -1;
}

// The final backslash decides whether a folder is found without its subfolders, so it stays, or
// stays away, as it was typed.
Text FolderSpecFromTyped(TextView typed, TextView known) {
  Volumes& volumes = TheMachine().Drives();
  if (typed == volumes.ShownPath(known)) return Text(known);
  if (!typed.starts_with(u'/')) return Text(typed);
  const std::string native = ToUtf8(typed);
  const CanonicalLocation location = volumes.LocationFromNative(native);
  if (location.error != 0) return volumes.TextFromNative(native, NativeTextKind::PathFragment);
  return typed.ends_with(u'/') ? AddBackslash(location.path) : location.path;
}

}  // namespace quillmarsh
