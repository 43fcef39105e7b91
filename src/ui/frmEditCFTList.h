// SPDX-License-Identifier: MIT
// The file type editor: the masks of the four types that a search can be limited to. It works on a
// copy of gCommonFileTypes. OK copies changes back; so does closing the window by its frame. Cancel
// and Esc drop them.
#pragma once

#include <QDialog>

#include "filetypes/cCommonFileTypes.h"
#include "frame/TextTable.h"

class QComboBox;
class QTreeView;
class QVBoxLayout;

namespace quillmarsh {

class MaskRows;

class frmEditCFTList final : public QDialog {
  Q_OBJECT
 public:
  explicit frmEditCFTList(QWidget* parent);

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void MakeList(QVBoxLayout& layout);
  void MakeButtons(QVBoxLayout& layout);
  // The masks of the type of that name; a type that is not there leaves the list as it is.
  void LoadCFTDetails(TextView name);
  void LoadCFTFileMasksInListBox(const cCommonFileType& type);
  // That of the chosen name; none is told under `title`.
  [[nodiscard]] cCommonFileType* ChosenType(TextId title) const;
  // A row of the list, -1 for none.
  [[nodiscard]] int SelectedRow() const;
  void SelectRow(int row);
  // What a person answers, normalised and checked; empty where that ends it, which has been told.
  [[nodiscard]] Text AskForMask(const Text& prompt, TextId title, const Text& defaultMask) const;

  void cboSFTs_Change();
  void mb_cmdAddCFTDetail_Click();
  void mb_cmdEditCFTDetail_Click();
  void mb_cmdRemoveCFTDetail_Click();
  void mb_cmdOK_Click();

  QComboBox* cboSFTs = nullptr;
  QTreeView* lstCFTDetails = nullptr;
  MaskRows* mRows = nullptr;
  cCommonFileTypes mCFTs;
  bool mLoading = false;
  bool mChangesMade = false;
};

}  // namespace quillmarsh
