// SPDX-License-Identifier: MIT
// The commands on the selected file of the details list: renaming, viewing, its properties and its
// folder. They tell a person what is missing in message boxes and raise nothing. Nothing is owned.
#pragma once

#include "removal/RemovalView.h"
#include "search/results/cSearchResults.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

class cFileCommands {
 public:
  cFileCommands(cSearchResults& results, clsDupeSettings& settings, RemovalView& removal)
      : mResults(results), mSettings(settings), mRemoval(removal) {}

  // The full path, and the name, of the selected row; empty without one.
  [[nodiscard]] Text GetSelectedFileSpec() const;
  [[nodiscard]] Text GetSelectedFileName() const;

  // Gives the file of a row (from 0) another name, both names as a person reads and types them. A
  // name that differs in case only changes nothing; a taken one is told, and one that no file can
  // have or that leads out of the folder; what the system refuses is not. With names among the
  // criteria the file leaves the lists, since it is no duplicate any more, and so do all marked
  // files. Does nothing while another command runs.
  void RenameListItem(std::int32_t position, TextView oldName, TextView newName);
  // The same for a record (from 1), which need not be listed any more when its new name comes. Does
  // nothing where the record has another name than the old one, or has left its group.
  void RenameRecord(std::int32_t record, TextView oldName, TextView newName);

  void mnuFileRenameFile_Click();
  void mnuFileViewSelected_Click();
  void mnuFileViewSelectedFileProperties_Click();
  void mnuFileOpenInContainingFolder_Click();

 private:
  // The record (from 1) of the selected row; 0 without one.
  [[nodiscard]] std::int32_t SelectedRecord() const;
  [[nodiscard]] std::int32_t RecordAt(std::int32_t position) const;
  void Rename(std::int32_t index, TextView oldName, TextView newName);
  [[nodiscard]] bool IsAnotherMarked(std::int32_t index) const;
  void TakeRenamedOut(std::int32_t index, TextView newName);
  void OpenInContainingFolder(std::int32_t position) const;

  cSearchResults& mResults;
  clsDupeSettings& mSettings;
  RemovalView& mRemoval;
};

}  // namespace quillmarsh
