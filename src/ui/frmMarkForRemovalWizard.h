// SPDX-License-Identifier: MIT
// The Selection Assistant: a rule, what it wants to be told, and whether it may take all files of a
// group. It shows gMarkForRemovalWizardOptions and, when a person presses Select and all is well,
// writes all of it there; nothing otherwise. It marks nothing itself.
#pragma once

#include <QDialog>

#include "selection/RuleOptions.h"

class QCheckBox;
class QComboBox;
class QDateTimeEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace quillmarsh {

class frmMarkForRemovalWizard final : public QDialog {
  Q_OBJECT
 public:
  explicit frmMarkForRemovalWizard(QWidget* parent);

  // Shows only what the rule wants to be told. A number above those of the rules is told, and
  // changes nothing.
  void SetControlsForRule(std::int32_t rule);

 private:
  void MakeControls();
  void MakeParameters(QVBoxLayout& layout);
  void ReserveRoom();
  void FillLists();
  void LoadControlsFromOptions();
  [[nodiscard]] RuleControls ReadControls() const;
  // Tells what is wrong, and moves the focus there.
  [[nodiscard]] bool ValidateRuleOptions(RuleControls& controls);
  [[nodiscard]] bool SaveControlsToOptions(const RuleControls& controls);
  // The number behind the chosen entry, -1 without one.
  [[nodiscard]] std::int32_t ChosenRule() const;

  void cboMarkForRemovalMethods_Change();
  void mb_cmdSelectFolder_Click();
  void mb_cmdMarkNow_Click();

  QComboBox* cboMarkForRemovalMethods = nullptr;
  QLabel* lblDescriptionOfMethod = nullptr;
  QLabel* lblAdditionalInfo = nullptr;
  QWidget* mParameters = nullptr;
  QLineEdit* txtUFolderSpec = nullptr;
  QPushButton* mb_cmdSelectFolder = nullptr;
  QCheckBox* chkIncludeSubFolders = nullptr;
  QComboBox* Drive1 = nullptr;
  QLineEdit* txtFileSize = nullptr;
  QComboBox* cboSizeIncrements = nullptr;
  QDateTimeEdit* dtLastModifiedDate = nullptr;
  QLineEdit* txtFileMask = nullptr;
  QCheckBox* chkAllowRemovalOfAllFilesInGroup = nullptr;
  QLabel* lblRetainOneFile = nullptr;
  QPushButton* mb_cmdMarkNow = nullptr;

  std::vector<RuleDrive> mDrives;
  Text mKnownFolderSpec;       // what the folder field shows, unless somebody typed in it
  Date mLoadedDate;            // finer than the picker can show
  bool mIsValidating = false;  // which may wait for a disk while events run
};

}  // namespace quillmarsh
