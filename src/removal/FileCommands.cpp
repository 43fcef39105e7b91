// SPDX-License-Identifier: MIT
// Each command looks for its file first and says so where there is none.
#include "removal/FileCommands.h"

#include <algorithm>

#include "base/TextEquality.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/ProgramFlags.h"
#include "frame/RunCommand.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "removal/cRemovalRun.h"
#include "search/results/modDupe.h"

namespace quillmarsh {

namespace {

constexpr std::int32_t kNoRecord = 0;
constexpr std::uint32_t kPropertiesMask =
    SEE_MASK_INVOKEIDLIST | SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI | SEE_MASK_UNICODE;
static_assert(kPropertiesMask == 17484);

Text Shown(TextView path) {
  return TheMachine().Drives().ShownPath(path);
}

void Tell(const Text& text, const Text& title, MessageBoxIcon icon) {
  ShowMessageBox({text, title, icon});
}

void TellNoFile(TextId title) {
  Tell(LoadResString(326), LoadResString(title), MessageBoxIcon::Information);
}

void TellOfProblem(const Text& problem, TextId title, TextView path) {
  Tell(problem + u"\r\n\r\n" + Shown(path), LoadResString(title), MessageBoxIcon::Exclamation);
}

// What no single component of a path may hold. A machine whose names may have one of these carries
// it under another letter, so that what is left of them here would part or bend the path: a
// backslash leads into another folder, a colon into a stream of the file.
constexpr TextView kForbidden = u"\\/:*?\"<>|";

// Why a file cannot bear a name, `typed` by a person and `name` as the program knows it; empty if
// it can.
Text WhyNoName(TextView typed, TextView name) {
  if (name.find_first_not_of(u". ") == TextView::npos)
    return u"This is not a name that a file can have.";
  for (char16_t unit : name) {
    if (unit >= u' ' && kForbidden.find(unit) == TextView::npos) continue;
    // The separator as it was typed.
    if (unit == u'\\' && typed.find(unit) == TextView::npos) unit = u'/';
    return u"A file name cannot contain this character: " + Shown(Text(1, unit));
  }
  return {};
}

}  // namespace

std::int32_t cFileCommands::RecordAt(std::int32_t position) const {
  const std::int32_t index = mResults.ulvwDupeDetails.ItemData(position);
  return index >= 1 && index <= mResults.RecordCount() ? index : kNoRecord;
}

std::int32_t cFileCommands::SelectedRecord() const {
  return RecordAt(mResults.ulvwDupeDetails.SelectedPosition());
}

Text cFileCommands::GetSelectedFileSpec() const {
  const std::int32_t index = SelectedRecord();
  if (index == kNoRecord) return {};
  const DupeFileUDT& record = mResults.Record(index);
  const Text folder = GetFolderPathByIdx(record.ParentFolderIdx);
  return folder.empty() ? Text() : AddBackslash(folder) + Text(mResults.NameOf(record));
}

Text cFileCommands::GetSelectedFileName() const {
  if (GetSelectedFileSpec().empty()) return {};
  return Text(mResults.NameOf(mResults.Record(SelectedRecord())));
}

void cFileCommands::RenameListItem(std::int32_t position, TextView oldName, TextView newName) {
  RunCommand(u"frmFindDuplicates.RenameListItem",
             [&] { Rename(RecordAt(position), oldName, newName); });
}

void cFileCommands::RenameRecord(std::int32_t record, TextView oldName, TextView newName) {
  RunCommand(u"frmFindDuplicates.RenameListItem", [&] {
    if (record < 1 || record > mResults.RecordCount() || mResults.IsTakenOut(record)) return;
    if (Shown(mResults.NameOf(mResults.Record(record))) != Shown(oldName)) return;
    Rename(record, oldName, newName);
  });
}

void cFileCommands::Rename(std::int32_t index, TextView oldName, TextView newName) {
  if (index == kNoRecord || CompareIgnoringCase(Shown(oldName), Shown(newName)) == 0) return;
  // A stop of an earlier command is none of this one.
  gUserAbort = false;
  const BusyPointer busy;
  const Text folder = GetFolderPathByIdx(mResults.Record(index).ParentFolderIdx);
  if (folder.empty()) return;
  const Text name =
      TheMachine().Drives().TextFromNative(ToUtf8(newName), NativeTextKind::PathFragment);
  if (const Text problem = WhyNoName(newName, name); !problem.empty())
    return Tell(problem, LoadResString(361), MessageBoxIcon::Exclamation);
  const Text newPath = AddBackslash(folder) + name;
  if (FSXFileExists(newPath))
    return Tell(LoadResString(288), LoadResString(289), MessageBoxIcon::Exclamation);
  // A refusal shows itself by the name that stays.
  const Text oldPath = mResults.FullPathOf(mResults.Record(index));
  if (!TheMachine().Disk().MoveFileW(ToLongPath(oldPath), ToLongPath(newPath))) return;
  // By what the groups were made of, whatever is chosen for the next search.
  if (mResults.mCriteria.namesMatch) {
    TakeRenamedOut(index, name);
  } else {
    mResults.SetName(index, name);
    mResults.ulvwDupeDetails.TellItemsChanged();
  }
}

// Whether a listed file other than this one is marked.
bool cFileCommands::IsAnotherMarked(std::int32_t index) const {
  for (const std::int32_t group : mResults.ulvwDupeGroups.Items()) {
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (member != index && mResults.mFileMarked[static_cast<std::size_t>(member) - 1])
        return true;
    }
  }
  return false;
}

// The mark stands for the way out of the lists and not for a removal, so nobody is warned of one;
// but what has left with the file is told. The record keeps its name, which may be the one by which
// its group is listed; only where a stop left the file in its group is it told by the new one.
void cFileCommands::TakeRenamedOut(std::int32_t index, TextView newName) {
  const bool areOthersMarked = IsAnotherMarked(index);
  mResults.mFileMarked[static_cast<std::size_t>(index) - 1] = true;
  cRemovalRun(mResults, mSettings, mRemoval, mResults.mFilesSearched)
      .RemoveMarkedFilesAllGroups(true);
  if (!mResults.IsTakenOut(index)) {
    mResults.SetName(index, newName);
    mResults.ulvwDupeDetails.TellItemsChanged();
  } else if (areOthersMarked) {
    Tell(
        u"A file with a new name is no duplicate any more and leaves the lists, and all files that "
        u"were selected for removal have left them with it.\r\n\r\nNothing was removed from the "
        u"disk. A new search shows the duplicates that there are now.",
        LoadResString(361), MessageBoxIcon::Information);
  }
}

void cFileCommands::mnuFileRenameFile_Click() {
  RunCommand(u"frmFindDuplicates.mnuFileRenameFile_Click", [&] {
    const Text name = Shown(GetSelectedFileName());
    if (name.empty()) return TellNoFile(361);
    const Text answer = InputBoxText(LoadResString(245), LoadResString(361), name);
    if (!answer.empty()) Rename(SelectedRecord(), name, answer);
  });
}

void cFileCommands::mnuFileViewSelected_Click() {
  RunCommand(u"frmFindDuplicates.mnuFileViewSelected_Click", [&] {
    const Text file = GetSelectedFileSpec();
    if (file.empty()) return TellNoFile(362);
    Shell& shell = TheMachine().Desktop();
    const std::intptr_t answer = shell.ShellExecuteW(u"Open", file, {}, SW_SHOWNORMAL);
    if (answer >= kLastShellFailure) return;
    const std::intptr_t choice = shell.ShellExecuteW(
        u"Open", u"rundll32.exe", u"shell32.dll,OpenAs_RunDLL " + file, SW_SHOWNORMAL);
    if (choice > kLastShellFailure) return;
    const bool isGone = answer == SE_ERR_FNF || answer == SE_ERR_PNF;
    TellOfProblem(isGone ? u"This file is not there any more."
                         : u"There is no program that opens files of this type.",
                  362, file);
  });
}

void cFileCommands::mnuFileViewSelectedFileProperties_Click() {
  RunCommand(u"frmFindDuplicates.mnuFileViewSelectedFileProperties_Click", [&] {
    const Text file = GetSelectedFileSpec();
    if (file.empty()) return TellNoFile(363);
    if (TheMachine().Desktop().ShellExecuteExW({kPropertiesMask, u"properties", file})) return;
    const std::uint32_t error = TheMachine().GetLastError();
    const bool isGone = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    TellOfProblem(isGone ? u"This file is not there any more."
                         : u"The system cannot show the properties of this file.",
                  363, file);
  });
}

void cFileCommands::mnuFileOpenInContainingFolder_Click() {
  RunCommand(u"frmFindDuplicates.mnuFileOpenInContainingFolder_Click", [&] {
    const std::int32_t position = mResults.ulvwDupeDetails.SelectedPosition();
    if (RecordAt(position) == kNoRecord)
      return Tell(LoadResString(359), LoadResString(1112), MessageBoxIcon::Information);
    OpenInContainingFolder(position);
  });
}

// A failure is not told, but where the machine has no program for folders at all.
void cFileCommands::OpenInContainingFolder(std::int32_t position) const {
  const std::int32_t index = RecordAt(position);
  const Text folder = GetFolderPathByIdx(mResults.Record(index).ParentFolderIdx);
  if (folder.empty()) return;
  const std::intptr_t answer = TheMachine().Desktop().ShellExecuteW(
      u"Open", u"explorer.exe", EncloseInQuotes(folder), SW_SHOWNORMAL);
  if (answer == SE_ERR_NOASSOC)
    TellOfProblem(u"There is no program that shows folders.", 1112, folder);
}

}  // namespace quillmarsh
