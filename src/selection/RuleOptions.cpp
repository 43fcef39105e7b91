// SPDX-License-Identifier: MIT
// One check for each kind of parameter.
#include "selection/RuleOptions.h"

#include "base/ValueText.h"
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
  if (!FSXFolderExists(FolderSpecFromTyped(folder, known))) return problem(599);
  return {};
}

// Zero passes, and so does what rounds to it.
RuleProblem CheckFileSize(const Text& size) {
  const auto problem = [](TextId message) {
    return RuleProblem{RuleField::FileSize, LoadResString(message), LoadResString(601)};
  };
  if (size.empty()) return problem(600);
  if (!NumberFromText(size, GetLocaleFacts())) return problem(602);
  if (LongFromText(size, GetLocaleFacts()) < 0) return problem(603);
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

const Text& Trimmed(Text& text) {
  return text = Text(TrimBlanks(text));
}

}  // namespace

RuleProblem ValidateRuleOptions(std::int32_t rule, RuleControls& controls) {
  switch (rule) {
    case selection_rule::InFolder:
    case selection_rule::NotInFolder:
      return CheckFolder(Trimmed(controls.folderSpec), controls.knownFolderSpec);
    case selection_rule::BySize:
      return CheckFileSize(Trimmed(controls.fileSize));
    case selection_rule::ByFileMask:
    case selection_rule::NotByFileMask:
      return CheckFileMask(Trimmed(controls.fileMask));
    default:
      return {};
  }
}

void SaveControlsToOptions(const RuleControls& controls, clsMarkForRemovalWizard& options) {
  options.mRule = controls.rule;
  options.SetDriveSpec(controls.drive);
  options.mFolderSpec = FolderSpecFromTyped(controls.folderSpec, controls.knownFolderSpec);
  options.mIncludeSubFolders = controls.includeSubFolders;
  options.SetFileSize(CurrencyFromText(controls.fileSize, GetLocaleFacts()));
  options.SetSizeIncrement(controls.sizeIncrement);
  options.mLastModifiedDate = controls.lastModifiedDate;
  options.mFileMask = controls.fileMask;
  options.mAllowRemovalOfAllFilesInGroup = controls.allowRemovalOfAllFilesInGroup;
}

RuleControls LoadControlsFromOptions(const clsMarkForRemovalWizard& options) {
  RuleControls controls;
  controls.rule = options.mRule;
  controls.drive = options.DriveSpec();
  controls.folderSpec = TheMachine().Drives().ShownPath(options.mFolderSpec);
  controls.knownFolderSpec = options.mFolderSpec;
  controls.includeSubFolders = options.mIncludeSubFolders;
  controls.fileSize = options.FileSize().ToText();
  controls.sizeIncrement = options.SizeIncrement();
  controls.lastModifiedDate = options.mLastModifiedDate;
  controls.fileMask = options.mFileMask;
  controls.allowRemovalOfAllFilesInGroup = options.mAllowRemovalOfAllFilesInGroup;
  return controls;
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
