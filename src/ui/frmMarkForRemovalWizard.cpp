// SPDX-License-Identifier: MIT
// The controls, what of them a rule shows, and the way to the options and back.
#include "ui/frmMarkForRemovalWizard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/Views.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "selection/RuleTexts.h"
#include "ui/DatePictures.h"
#include "ui/DialogFrame.h"
#include "ui/Dialogs.h"
#include "ui/Impatience.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kWidthInLetters = 70;
constexpr double kSecond = 1.0 / 86400;  // of a day

QString WithColon(TextId id) {
  return TableText(id) + QLatin1Char(':');
}

template <typename Control>
Control* Named(Control* control, const char* name) {
  control->setObjectName(QString::fromLatin1(name));
  return control;
}
template <typename Control>
Control* Named(Control* control, const char* name, TextId accessibleName) {
  control->setAccessibleName(TableText(accessibleName));
  return Named(control, name);
}

QLabel* MakeText(const char* name, const QString& text) {
  auto* const label = Named(new QLabel(text), name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

QHBoxLayout* Row(std::initializer_list<QWidget*> controls) {
  auto* const row = new QHBoxLayout;
  for (QWidget* const control : controls) row->addWidget(control);
  return row;
}

// A label that wraps its text does not tell the layout how high it must be at the least.
void ReserveLines(QLabel& label, const QStringList& texts) {
  const int width = label.fontMetrics().averageCharWidth() * kWidthInLetters;
  const QRect wide(0, 0, width, QWIDGETSIZE_MAX);
  int height = 0;
  for (const QString& text : texts)
    height =
        std::max(height, label.fontMetrics().boundingRect(wide, Qt::TextWordWrap, text).height());
  label.setMinimumSize(width, height);
}

void TellUnknownRule() {
  ShowMessageBox(
      {u"Unrecognized Select for Removal Method", LoadResString(580), MessageBoxIcon::Exclamation});
}

}  // namespace

frmMarkForRemovalWizard::frmMarkForRemovalWizard(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmMarkForRemovalWizard"));
  setWindowTitle(TableText(612));
  MakeControls();
  FillLists();
  ReserveRoom();
  SetControlsForRule(0);
  connect(cboMarkForRemovalMethods, &QComboBox::currentIndexChanged, this,
          &frmMarkForRemovalWizard::cboMarkForRemovalMethods_Change);
  LoadControlsFromOptions();
}

void frmMarkForRemovalWizard::MakeControls() {
  auto* const layout = new QVBoxLayout(this);
  const int gap = fontMetrics().height() / 2;
  layout->addWidget(MakeText("lblMarkForRemovalMethods", WithColon(613)));
  cboMarkForRemovalMethods = Named(new QComboBox, "cboMarkForRemovalMethods", 613);
  cboMarkForRemovalMethods->setMaxVisibleItems(kRuleCount);
  layout->addWidget(cboMarkForRemovalMethods);
  layout->addSpacing(gap);

  layout->addWidget(MakeText("lblRuleDescriptionLabel", WithColon(614)));
  lblDescriptionOfMethod = MakeText("lblDescriptionOfMethod", {});
  lblDescriptionOfMethod->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  layout->addWidget(lblDescriptionOfMethod);
  layout->addSpacing(gap);

  lblAdditionalInfo = MakeText("lblAdditionalInfo", WithColon(576));
  layout->addWidget(lblAdditionalInfo);
  MakeParameters(*layout);
  layout->addSpacing(gap);

  chkAllowRemovalOfAllFilesInGroup =
      Named(new QCheckBox(TableText(617)), "chkAllowRemovalOfAllFilesInGroup", 617);
  layout->addWidget(chkAllowRemovalOfAllFilesInGroup);
  lblRetainOneFile = MakeText("lblRetainOneFile", TableText(618));
  layout->addWidget(lblRetainOneFile);
  layout->addStretch();
  layout->addSpacing(gap);

  auto* const buttons = new QDialogButtonBox;
  mb_cmdMarkNow =
      Named(buttons->addButton(TableText(442), QDialogButtonBox::AcceptRole), "mb_cmdMarkNow", 442);
  mb_cmdMarkNow->setDefault(true);
  QPushButton* const close =
      Named(buttons->addButton(TableText(214), QDialogButtonBox::RejectRole), "mb_cmdClose", 214);
  close->setAutoDefault(false);
  connect(mb_cmdMarkNow, &QPushButton::clicked, this,
          &frmMarkForRemovalWizard::mb_cmdMarkNow_Click);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

// All stand one above the other; of most of them a rule shows none.
void frmMarkForRemovalWizard::MakeParameters(QVBoxLayout& layout) {
  txtUFolderSpec = Named(new QLineEdit, "txtUFolderSpec", 576);
  mb_cmdSelectFolder = Named(new QPushButton(TableText(615)), "mb_cmdSelectFolder", 615);
  mb_cmdSelectFolder->setAutoDefault(false);
  connect(mb_cmdSelectFolder, &QPushButton::clicked, this,
          &frmMarkForRemovalWizard::mb_cmdSelectFolder_Click);
  chkIncludeSubFolders = Named(new QCheckBox(TableText(616)), "chkIncludeSubFolders", 616);
  Drive1 = Named(new QComboBox, "Drive1", 577);
  Drive1->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  txtFileSize = Named(new QLineEdit(QStringLiteral("300")), "txtFileSize", 364);
  cboSizeIncrements = Named(new QComboBox, "cboSizeIncrements", 364);
  dtLastModifiedDate = Named(new QDateTimeEdit, "dtLastModifiedDate", 578);
  dtLastModifiedDate->setCalendarPopup(true);
  dtLastModifiedDate->setTimeSpec(Qt::UTC);
  dtLastModifiedDate->setDateTimeRange(ToPicker(Date(Date::FirstDay)),
                                       ToPicker(Date(Date::LastDay + 1 - kSecond)));
  dtLastModifiedDate->setDisplayFormat(PickerFormat(GetLocaleFacts()));
  txtFileMask = Named(new QLineEdit(QStringLiteral("*.*")), "txtFileMask", 579);

  mParameters = new QWidget;
  auto* const column = new QVBoxLayout(mParameters);
  column->setContentsMargins({});
  column->addLayout(Row({txtUFolderSpec, mb_cmdSelectFolder}));
  column->addWidget(chkIncludeSubFolders);
  column->addWidget(Drive1);
  column->addLayout(Row({txtFileSize, cboSizeIncrements}));
  column->addWidget(dtLastModifiedDate);
  column->addWidget(txtFileMask);
  column->addStretch();
  layout.addWidget(mParameters);
}

// The dialog keeps its size whatever the rule: as high as the longest description and the tallest
// parameter want it.
void frmMarkForRemovalWizard::ReserveRoom() {
  QStringList descriptions;
  for (std::int32_t rule = 0; rule < kRuleCount; ++rule)
    descriptions << ToQString(GetRuleDescription(rule));
  ReserveLines(*lblDescriptionOfMethod, descriptions);
  ReserveLines(*lblRetainOneFile, {lblRetainOneFile->text()});
  SetControlsForRule(selection_rule::InFolder);
  mParameters->setMinimumHeight(mParameters->layout()->sizeHint().height());
}

void frmMarkForRemovalWizard::FillLists() {
  const QString units[] = {TableText(619), QStringLiteral("KB"), QStringLiteral("MB"),
                           QStringLiteral("GB")};
  for (const QString& unit : units) cboSizeIncrements->addItem(unit);
  for (std::int32_t rule = 0; rule < kRuleCount; ++rule)
    cboMarkForRemovalMethods->addItem(ToQString(GetRuleName(rule)), rule);
  cboMarkForRemovalMethods->setCurrentIndex(-1);
  // A medium that does not answer goes without its label.
  const Impatience impatience;
  mDrives = GetRuleDrives();
  for (const RuleDrive& drive : mDrives) Drive1->addItem(ToQString(drive.shown));
}

// What the options hold and a control cannot show, an edited file for instance, leaves the control
// as it is.
void frmMarkForRemovalWizard::LoadControlsFromOptions() {
  const RuleControls loaded = quillmarsh::LoadControlsFromOptions(*gMarkForRemovalWizardOptions);
  if (loaded.rule >= 0 && loaded.rule < kRuleCount)
    cboMarkForRemovalMethods->setCurrentIndex(loaded.rule);
  if (const int drive = PositionOfDrive(mDrives, loaded.drive); drive >= 0)
    Drive1->setCurrentIndex(drive);
  mKnownFolderSpec = loaded.knownFolderSpec;
  txtUFolderSpec->setText(ToQString(loaded.folderSpec));
  chkIncludeSubFolders->setChecked(loaded.includeSubFolders);
  txtFileSize->setText(ToQString(loaded.fileSize));
  if (loaded.sizeIncrement >= 0 && loaded.sizeIncrement < cboSizeIncrements->count())
    cboSizeIncrements->setCurrentIndex(loaded.sizeIncrement);
  mLoadedDate = loaded.lastModifiedDate;
  if (mLoadedDate.IsValid()) dtLastModifiedDate->setDateTime(ToPicker(mLoadedDate));
  txtFileMask->setText(ToQString(loaded.fileMask));
  chkAllowRemovalOfAllFilesInGroup->setChecked(loaded.allowRemovalOfAllFilesInGroup);
}

RuleControls frmMarkForRemovalWizard::ReadControls() const {
  RuleControls controls;
  controls.rule = ChosenRule();
  if (Drive1->currentIndex() >= 0)
    controls.drive = mDrives[static_cast<std::size_t>(Drive1->currentIndex())].drive;
  controls.folderSpec = FromQString(txtUFolderSpec->text());
  controls.knownFolderSpec = mKnownFolderSpec;
  controls.includeSubFolders = chkIncludeSubFolders->isChecked();
  controls.fileSize = FromQString(txtFileSize->text());
  controls.sizeIncrement = cboSizeIncrements->currentIndex();
  // Whoever leaves the date alone keeps it as exact as it was.
  const QDateTime shown = dtLastModifiedDate->dateTime();
  const bool isUntouched = mLoadedDate.IsValid() && ToPicker(mLoadedDate) == shown;
  controls.lastModifiedDate = isUntouched ? mLoadedDate : FromPicker(shown);
  controls.fileMask = FromQString(txtFileMask->text());
  controls.allowRemovalOfAllFilesInGroup = chkAllowRemovalOfAllFilesInGroup->isChecked();
  return controls;
}

std::int32_t frmMarkForRemovalWizard::ChosenRule() const {
  const QVariant rule = cboMarkForRemovalMethods->currentData();
  return rule.isValid() ? rule.toInt() : -1;
}

void frmMarkForRemovalWizard::SetControlsForRule(std::int32_t rule) {
  if (rule >= kRuleCount) return TellUnknownRule();
  const RuleParameter parameter = ParameterOfRule(rule);
  const auto caption = [&]() -> TextId {
    switch (parameter) {
      case RuleParameter::Drive:
        return 577;
      case RuleParameter::Size:
        return 364;
      case RuleParameter::Date:
        return 578;
      case RuleParameter::Mask:
        return 579;
      default:
        return 576;
    }
  };
  lblAdditionalInfo->setText(WithColon(caption()));
  lblAdditionalInfo->setEnabled(parameter != RuleParameter::None);
  // The folder shows that there is nothing to be told.
  const bool isFolderUsed = parameter == RuleParameter::Folder;
  const bool isFolderShown = isFolderUsed || parameter == RuleParameter::None;
  QWidget* const folderControls[] = {txtUFolderSpec, mb_cmdSelectFolder, chkIncludeSubFolders};
  for (QWidget* const control : folderControls) {
    control->setVisible(isFolderShown);
    control->setEnabled(isFolderUsed);
  }
  QPalette palette = this->palette();
  palette.setColor(QPalette::Disabled, QPalette::Base, palette.color(QPalette::Button));
  txtUFolderSpec->setPalette(palette);
  Drive1->setVisible(parameter == RuleParameter::Drive);
  txtFileSize->setVisible(parameter == RuleParameter::Size);
  cboSizeIncrements->setVisible(parameter == RuleParameter::Size);
  dtLastModifiedDate->setVisible(parameter == RuleParameter::Date);
  txtFileMask->setVisible(parameter == RuleParameter::Mask);
}

void frmMarkForRemovalWizard::cboMarkForRemovalMethods_Change() {
  lblDescriptionOfMethod->setText(ToQString(GetRuleDescription(ChosenRule())));
  SetControlsForRule(ChosenRule());
}

void frmMarkForRemovalWizard::mb_cmdSelectFolder_Click() {
  Guarded(u"frmMarkForRemoval.mb_cmdSelectFolder_Click", [this] {
    const Text start = TheMachine().Process().GetCurrentDirectoryW();
    const Text folder = AddBackslash(BrowseForFolder(LoadResString(611), start));
    if (folder.empty()) return;
    mKnownFolderSpec = folder;
    txtUFolderSpec->setText(ToQString(TheMachine().Drives().ShownPath(folder)));
  });
}

bool frmMarkForRemovalWizard::ValidateRuleOptions(RuleControls& controls) {
  RuleProblem problem{RuleField::FileSize, {}, {}};  // of all fields only this one can raise
  const bool isChecked = Guarded(u"frmMarkForRemovalWizard.ValidateRuleOptions", [&] {
    problem = quillmarsh::ValidateRuleOptions(controls.rule, controls);
  });
  if (problem.field == RuleField::None) return true;
  if (isChecked) ShowMessageBox({problem.message, problem.title, MessageBoxIcon::Exclamation});
  QLineEdit* const field = problem.field == RuleField::FolderSpec ? txtUFolderSpec
                           : problem.field == RuleField::FileSize ? txtFileSize
                                                                  : txtFileMask;
  field->setFocus();
  field->selectAll();
  return false;
}

// The size is converted whatever the rule, also where its field is hidden.
bool frmMarkForRemovalWizard::SaveControlsToOptions(const RuleControls& controls) {
  if (Guarded(u"frmMarkForRemovalWizard.SaveControlsToOptions",
              [&] { quillmarsh::SaveControlsToOptions(controls, *gMarkForRemovalWizardOptions); }))
    return true;
  QWidget* const field = txtFileSize;
  (field->isVisible() ? field : cboMarkForRemovalMethods)->setFocus();
  return false;
}

void frmMarkForRemovalWizard::mb_cmdMarkNow_Click() {
  if (mIsValidating) return;
  const QScopedValueRollback<bool> validating(mIsValidating, true);
  RuleControls controls = ReadControls();
  if (controls.rule < 0) {
    TellUnknownRule();
    return cboMarkForRemovalMethods->setFocus();
  }
  if (!ValidateRuleOptions(controls)) return;
  // A person may have given up meanwhile.
  if (isVisible() && SaveControlsToOptions(controls)) accept();
}

void ShowMarkForRemovalWizardDialog(QWidget* parent) {
  frmMarkForRemovalWizard dialog(parent);
  if (dialog.exec() != QDialog::Accepted) gMarkForRemovalWizardOptions->mCancelled = true;
}

}  // namespace quillmarsh
