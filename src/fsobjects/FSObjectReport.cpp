// SPDX-License-Identifier: MIT
// Line by line; the words and their order are what support staff know. The two reports differ on
// purpose in how they show a size. Where an entry is there but nothing of it can be read, its facts
// are unknown and not zero.
#include "fsobjects/FSObjectReport.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/TextTable.h"
#include "fsobjects/Handles.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/clsStringAppend.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {
namespace {

constexpr TextView kLineBreak = u"\r\n";

Text Shown(TextView path) {
  return TheMachine().Drives().ShownPath(path);
}

class ReportLines {
 public:
  void Line(TextView text) {
    mText.Append(text);
    mText.Append(kLineBreak);
  }
  void Fact(TextView label, TextView value) { Line(Text(label) + u"= " + Text(value)); }
  // A fact of an entry of which nothing can be read is not known.
  void SetAreFactsKnown(bool areKnown) { mAreFactsKnown = areKnown; }
  void KnownFact(TextView label, TextView value) {
    Fact(label, mAreFactsKnown ? Text(value) : LoadResString(353));
  }
  void Flag(TextView label, bool value) { Fact(label, BoolToText(value)); }
  void KnownFlag(TextView label, bool value) { KnownFact(label, BoolToText(value)); }
  [[nodiscard]] Text Take() const { return mText.CurrentString(); }

 private:
  clsStringAppend mText;
  bool mAreFactsKnown = true;
};

// The code of a first look at a path: 0 where it is there.
std::uint32_t LookAt(TextView path) {
  const RedirectionOff redirection;
  TheMachine().SetLastError(ERROR_SUCCESS);
  const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(ToLongPath(path));
  return attributes != INVALID_FILE_ATTRIBUTES ? ERROR_SUCCESS : TheMachine().GetLastError();
}

// Of an entry that another program keeps for itself the folder's listing still tells.
bool AreFactsReadable(TextView path) {
  if (LookAt(path) == ERROR_SUCCESS) return true;
  const RedirectionOff redirection;
  WIN32_FIND_DATAW entry;
  return FindHandle(TheMachine().Find().FindFirstFileW(ToLongPath(path), entry)).IsValid();
}

// Failures after which "does not exist" would be more than is known. They have been reported.
bool IsUnusual(std::uint32_t code) {
  switch (code) {
    case ERROR_SUCCESS:
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DATA:
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return false;
    default:
      return true;
  }
}

bool IsStopped(std::uint32_t code) {
  return gUserAbort && code == ERROR_OPERATION_ABORTED;
}

FSObjectReport StoppedReport() {
  FSObjectReport report;
  report.isStopped = true;
  report.text = StoppedReportText();
  return report;
}

Text FirstLine(Text text) {
  text.resize(std::min(text.find_first_of(kLineBreak), text.size()));
  return text;
}

FSObjectReport NoObject(std::uint32_t code, bool existsNevertheless, TextView kind) {
  if (gUserAbort) return StoppedReport();
  FSObjectReport report;
  if (existsNevertheless)
    report.text = Text(kind) + u" object is NOTHING";
  else if (IsUnusual(code))
    report.text = FirstLine(GetSystemErrorText(code));
  else
    report.text = Text(kind) + u" does not exist";
  return report;
}

void AppendDrive(ReportLines& lines, TextView driveName, const cFSXDrive* drive) {
  lines.Fact(u"Drive ", Shown(driveName));
  lines.Fact(u"Drive Type ", drive != nullptr ? drive->DriveTypeEx() : Text());
  lines.Fact(u"File System ", drive != nullptr ? drive->FileSystem() : Text());
}

// The objects grant in doubt, so that a search tries to read what it may perhaps not. Here what the
// machine is known to refuse is no yes.
template <typename Object>
void AppendPermissions(ReportLines& lines, Object& object, TextView path) {
  Access& security = TheMachine().Security();
  lines.Flag(u"User Can Read From ",
             object.HasReadPermission() && !security.IsRefused(path, FILE_GENERIC_READ));
  lines.Flag(u"User Can Write To ",
             object.HasWritePermission() && !security.IsRefused(path, FILE_GENERIC_WRITE));
}

Text GeneralDate(Date date) {
  return FormatGeneralDate(date, GetLocaleFacts());
}

void AppendFile(ReportLines& lines, cFSXFile& file) {
  const auto decimal = [](std::uint32_t word) {
    return DecimalText(static_cast<std::int32_t>(word));
  };
  lines.Line(u"**** File Properties ****");
  lines.Line(u"");
  lines.Fact(u"Name", Shown(file.Name()));
  lines.Fact(u"Path ", Shown(file.Path()));
  lines.Fact(u"File Type ", file.FileTypeDesc());
  AppendPermissions(lines, file, file.Path());
  lines.KnownFact(u"Attributes ", decimal(file.Attributes()));
  lines.KnownFlag(u"IsHidden ", file.IsHidden());
  lines.KnownFlag(u"IsSystem ", file.IsSystem());
  lines.KnownFlag(u"IsTemporary ", file.IsTemporary());
  lines.KnownFlag(u"IsReadOnly ", file.IsReadOnly());
  lines.KnownFlag(u"IsCompressed ", file.IsCompressed());
  lines.KnownFlag(u"IsEncrypted ", file.IsEncrypted());
  lines.KnownFlag(u"IsShortcut ", file.IsShortcut());
  lines.KnownFlag(u"InUse ", file.InUse());
  lines.KnownFact(u"Created Date ", GeneralDate(file.CreatedDate()));
  lines.KnownFact(u"Last Accessed Date ", GeneralDate(file.LastAccessedDate()));
  lines.KnownFact(u"Last Modified Date ", GeneralDate(file.LastModifiedDate()));
  lines.KnownFact(u"Size ", file.Size().ToText());
  lines.Fact(u"Version ", file.VersionNumber());
  AppendDrive(lines, file.DriveName(), file.Drive().get());
  lines.Line(u"");
}

// Of a stopped count the second line does not speak of the whole.
TextView ExtentOf(bool isRecursive, bool isStopped) {
  if (isStopped) return u"(Stopped: what follows was counted so far)";
  return isRecursive ? u"(Entire Tree)" : u"(Root Level only)";
}

void AppendFolder(ReportLines& lines, cFSXFolder& folder) {
  lines.Line(u"");
  lines.Fact(u"Name", Shown(folder.Name()));
  lines.Fact(u"Path ", Shown(folder.Path()));
  AppendPermissions(lines, folder, folder.Path());
  lines.KnownFact(u"Attributes ", DecimalText(folder.Attributes()));
  lines.KnownFlag(u"IsHidden ", folder.IsHidden());
  lines.KnownFlag(u"IsSystem ", folder.IsSystem());
  lines.KnownFlag(u"IsTemporary ", folder.IsTemporary());
  lines.KnownFlag(u"IsReparsePoint ", folder.IsReparsePoint());
  lines.KnownFlag(u"IsDirectoryJunction ", folder.IsDirectoryJunction());
  lines.KnownFlag(u"IsVolumeMount ", folder.IsVolumeMount());
  if (folder.IsVolumeMount()) lines.Fact(u"Volume Mount Name ", folder.VolumeMountName());
  lines.KnownFlag(u"IsReadOnly ", folder.IsReadOnly());
}

// Sizes are sums in floating point; beyond what a whole number holds they stay at the largest.
Text GroupedBytes(double bytes) {
  constexpr double largest = 9.0e18;
  const double whole = std::nearbyint(std::min(bytes, largest));
  return FormatGrouped(static_cast<std::int64_t>(whole), GetLocaleFacts()) + u" bytes";
}

void AppendCounts(ReportLines& lines, const cFSXFolderCounts& counts, bool isRecursive,
                  bool isStopped) {
  const TextView level = isRecursive ? u" " : u" (Root Level) ";
  const TextView soFar = isStopped ? u" (so far)" : u"";
  const auto fact = [&](TextView label, std::int32_t count) {
    lines.Fact(Text(label) + Text(level), DecimalText(count) + Text(soFar));
  };
  fact(u"Number Files", counts.files);
  fact(u"Number SubFolders", counts.subFolders);
  fact(u"Number Junction Points", counts.junctions);
  lines.Fact(u"Size ", GroupedBytes(counts.size) + Text(soFar));
}

std::unique_ptr<cFSXFolder> FolderAt(TextView path) {
  return cFSXFileSystemObject().GetFolder(path);
}

// GetFile would cut blanks off, and tell of another file where names end in blanks.
std::unique_ptr<cFSXFile> FileAt(TextView path) {
  if (!FSXFileExists(path)) return nullptr;
  auto file = std::make_unique<cFSXFile>();
  file->SetPath(path);
  return file;
}

// "b" of "/a/b". Empty where the last part is no name.
std::string_view LastPart(std::string_view native) {
  const std::string_view part = native.substr(native.rfind('/') + 1);
  return part == "." || part == ".." ? std::string_view() : part;
}

}  // namespace

AnalysisScope::AnalysisScope() {
  gUserAbort = false;
}

CanonicalLocation LocateForReport(std::string_view native) {
  while (native.size() > 1 && native.ends_with('/')) native.remove_suffix(1);
  Volumes& volumes = TheMachine().Drives();
  const std::string_view name = LastPart(native);
  if (!name.empty()) {
    const std::string_view above = native.substr(0, native.size() - name.size());
    const CanonicalLocation parent = volumes.LocationFromNative(above.empty() ? "." : above);
    if (parent.error == ERROR_OPERATION_ABORTED) return parent;
    if (parent.error == ERROR_SUCCESS) {
      cFSXFolder folder;
      const Text path =
          AddBackslash(parent.path) + volumes.TextFromNative(name, NativeTextKind::PathFragment);
      folder.SetPath(AddBackslash(path));
      if (LookAt(path) == ERROR_SUCCESS && folder.IsDirectoryJunction())
        return {path, ERROR_SUCCESS};
    }
  }
  return volumes.NewLocationFromNative(native);
}

FSObjectReport ReportOnFile(TextView path) {
  if (path.empty()) return {};
  const std::uint32_t code = LookAt(path);
  if (IsStopped(code)) return StoppedReport();
  const std::unique_ptr<cFSXFile> file = FileAt(path);
  if (file == nullptr)
    return NoObject(code, cFSXFileSystemObject().FileExists(path, false), u"File");
  ReportLines lines;
  lines.SetAreFactsKnown(AreFactsReadable(path));
  AppendFile(lines, *file);
  if (gUserAbort) return StoppedReport();
  FSObjectReport report;
  report.text = lines.Take();
  report.isThere = true;
  return report;
}

FSObjectReport ReportOnFolder(TextView path, const std::function<bool()>& recurses) {
  if (path.empty()) return {};
  const Text withBackslash = AddBackslash(path);
  const std::uint32_t code = LookAt(withBackslash);
  if (IsStopped(code)) return StoppedReport();
  // A file, the path of which ends like that of a folder.
  if (code == ERROR_INVALID_NAME && LookAt(RemoveBackslash(withBackslash)) == ERROR_SUCCESS)
    return NoObject(ERROR_FILE_NOT_FOUND, false, u"Folder");
  const std::unique_ptr<cFSXFolder> folder = FolderAt(withBackslash);
  if (folder == nullptr)
    return NoObject(code, cFSXFileSystemObject().FolderExists(withBackslash, false), u"Folder");

  FSObjectReport report;
  report.isThere = true;
  const bool isRecursive = recurses();
  ReportLines facts;
  facts.SetAreFactsKnown(folder->Attributes() != -1);
  AppendFolder(facts, *folder);
  const cFSXFolderCounts counts = folder->CountOfAllFSObjects(isRecursive);
  report.isStopped = gUserAbort;
  if (!report.isStopped) report.failedPath = counts.failedPath;
  ReportLines lines;
  lines.Line(u"**** Folder Properties ****");
  lines.Line(ExtentOf(isRecursive, report.isStopped));
  ReportLines ends;
  AppendCounts(ends, counts, isRecursive, report.isStopped);
  if (isRecursive) AppendDrive(ends, folder->DriveName(), folder->Drive().get());
  report.text = lines.Take() + facts.Take() + ends.Take();
  return report;
}

Text StoppedReportText() {
  return u"The analysis was stopped.";
}

}  // namespace quillmarsh
