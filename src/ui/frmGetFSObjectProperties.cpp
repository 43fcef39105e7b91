// SPDX-License-Identifier: MIT
// The controls, and how a path that a person typed gets to the report.
#include "ui/frmGetFSObjectProperties.h"

#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStatusBar>
#include <QVBoxLayout>

#include "frame/Pickers.h"
#include "frame/ProgramFlags.h"
#include "frame/RunCommand.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/FSObjectReport.h"
#include "fsobjects/modPaths.h"
#include "platform/Machine.h"
#include "ui/DialogFrame.h"
#include "ui/PlaceProblem.h"
#include "ui/ProgressAnimation.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kWidthInLetters = 84;
constexpr int kHeightInLines = 34;
constexpr int kOpenWidthInLetters = 8;

Text Shown(const Text& path) {
  return TheMachine().Drives().ShownPath(path);
}

bool AsksForWholeTree() {
  return ShowMessageBox({u"Recurse into sub-folders?", u"Get Folder Properties",
                         MessageBoxIcon::Question, MessageBoxButtons::YesNo,
                         MessageBoxResult::Yes}) == MessageBoxResult::Yes;
}

void TellIncomplete(const Text& failedPath) {
  ShowMessageBox(
      {u"Unable to get object counts. An error occurred enumerating the following "
       u"folder:\r\n" +
           Shown(failedPath),
       u"Folder Analysis Incomplete", MessageBoxIcon::Exclamation});
}

template <typename Control>
Control* Named(Control* control, const char* name, const QString& accessibleName) {
  control->setObjectName(QString::fromLatin1(name));
  control->setAccessibleName(accessibleName);
  return control;
}

}  // namespace

frmGetFSObjectProperties::frmGetFSObjectProperties(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmGetFSObjectProperties"));
  setWindowTitle(QStringLiteral("Analyze File/Folder"));
  MakeControls();
  LayOut();
  connect(cmdOpen, &QPushButton::clicked, this, &frmGetFSObjectProperties::cmdOpen_Click);
  connect(cmdShowProperties, &QPushButton::clicked, this,
          &frmGetFSObjectProperties::cmdShowProperties_Click);
  const QSize wanted(fontMetrics().averageCharWidth() * kWidthInLetters,
                     fontMetrics().lineSpacing() * kHeightInLines);
  resize(wanted.boundedTo(screen()->availableSize() * 0.9));
}

void frmGetFSObjectProperties::MakeControls() {
  txtUPath = Named(new QLineEdit, "txtUPath", TableText(486));
  cmdOpen = Named(new QPushButton(QStringLiteral("...")), "cmdOpen", TableText(486));
  cmdOpen->setAutoDefault(false);
  cmdOpen->setMaximumWidth(fontMetrics().averageCharWidth() * kOpenWidthInLetters);
  optFile = Named(new QRadioButton(TableText(393)), "optObjectType(0)", TableText(393));
  optFolder = Named(new QRadioButton(TableText(374)), "optObjectType(1)", TableText(374));
  optFile->setChecked(true);
  cmdShowProperties = Named(new QPushButton(QStringLiteral("Show Properties")), "cmdShowProperties",
                            QStringLiteral("Show Properties"));
  cmdShowProperties->setDefault(true);
  txtUProperties = Named(new QPlainTextEdit, "txtUProperties", TableText(437));
  txtUProperties->setReadOnly(true);
  txtUProperties->setTabChangesFocus(true);
  txtUProperties->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  Animation1 = Named(new ProgressAnimation, "Animation1", TableText(449));
  StatusBar1 = Named(new QStatusBar, "StatusBar1", {});
}

void frmGetFSObjectProperties::LayOut() {
  auto* const lblPath = Named(new QLabel(TableText(486) + QLatin1Char(':')), "lblPath", {});
  lblPath->setBuddy(txtUPath);
  auto* const path = new QHBoxLayout;
  path->addWidget(lblPath);
  path->addWidget(txtUPath, 1);
  path->addWidget(cmdOpen);
  auto* const choice = new QHBoxLayout;
  choice->addWidget(optFile);
  choice->addWidget(optFolder);
  choice->addStretch();
  choice->addWidget(cmdShowProperties);
  // The report does not jump when the animation comes and goes.
  QSizePolicy policy = Animation1->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  policy.setHorizontalPolicy(QSizePolicy::Fixed);
  Animation1->setSizePolicy(policy);
  auto* const foot = new QHBoxLayout;
  foot->addWidget(StatusBar1, 1);
  foot->addWidget(Animation1);
  StatusBar1->setSizeGripEnabled(false);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(path);
  layout->addLayout(choice);
  layout->addWidget(txtUProperties, 1);
  layout->addLayout(foot);
  txtUPath->setFocus();
}

void frmGetFSObjectProperties::cmdOpen_Click() {
  if (mIsRunning) return;
  RunCommand(u"frmGetFSObjectProperties.cmdOpen_Click", [&] {
    const Text start = TheMachine().Desktop().SHGetFolderPathW(CSIDL_PERSONAL);
    Text path;
    if (optFile->isChecked()) {
      path = OpenFileName(u"Select FILE to analyze", start);
    } else {
      path = BrowseForFolder(u"Select FOLDER to analyze", start);
      if (!path.empty()) path = AddBackslash(path);
    }
    if (!path.empty()) SetPath(path);
  });
}

void frmGetFSObjectProperties::cmdShowProperties_Click() {
  if (mIsRunning) return;
  SetRunning(true);
  RunCommand(u"frmGetFSObjectProperties.cmdShowProperties_Click", [&] {
    const AnalysisScope analysis;
    const BusyPointer busy;
    if (optFile->isChecked())
      ShowFileProperties();
    else
      ShowFolderProperties();
  });
  StopAnimation();
  SetRunning(false);
  if (mIsToClose) QDialog::reject();
}

void frmGetFSObjectProperties::ShowFolderProperties() {
  const std::optional<Text> path = PathFromLine();
  if (!path) return;
  const FSObjectReport report = ReportOnFolder(*path, [&] {
    ShowText({});
    const bool isRecursive = AsksForWholeTree();
    if (isRecursive) StartAnimation();
    return isRecursive;
  });
  if (!report.failedPath.empty()) TellIncomplete(report.failedPath);
  StopAnimation();
  ShowText(report.text);
}

void frmGetFSObjectProperties::ShowFileProperties() {
  if (const std::optional<Text> path = PathFromLine()) ShowText(ReportOnFile(*path).text);
}

void frmGetFSObjectProperties::StartAnimation() {
  Animation1->Start();
  StatusBar1->showMessage(QStringLiteral("Counting. Press Esc to stop."));
}

void frmGetFSObjectProperties::StopAnimation() {
  Animation1->Stop();
  StatusBar1->clearMessage();
}

std::optional<Text> frmGetFSObjectProperties::PathFromLine() {
  const Text line = FromQString(txtUPath->text());
  if (!mPicked.empty() && line == Shown(mPicked)) return mPicked;
  const TextView typed = TrimBlanks(line);
  if (typed.empty()) return std::nullopt;
  if (!typed.starts_with(u'/')) return Text(typed);
  const CanonicalLocation location = LocateForReport(ToUtf8(typed));
  if (location.error == ERROR_SUCCESS) return location.path;
  ShowText(gUserAbort ? StoppedReportText() : ReasonOfPlace(location.error));
  return std::nullopt;
}

void frmGetFSObjectProperties::SetPath(const Text& path) {
  mPicked = path;
  txtUPath->setText(ToQString(Shown(path)));
  ShowText({});
}

void frmGetFSObjectProperties::ShowText(const Text& text) {
  txtUProperties->setPlainText(ToQString(text));
}

// The focus waits in the report, where Esc reaches the dialog.
void frmGetFSObjectProperties::SetRunning(bool isRunning) {
  mIsRunning = isRunning;
  QWidget* const focus = isRunning ? txtUProperties : static_cast<QWidget*>(txtUPath);
  if (isRunning) focus->setFocus();
  for (QWidget* const control :
       std::initializer_list<QWidget*>{txtUPath, cmdOpen, optFile, optFolder, cmdShowProperties})
    control->setEnabled(!isRunning);
  if (!isRunning) focus->setFocus();
}

// Esc, too. What runs is stopped first.
void frmGetFSObjectProperties::reject() {
  if (!mIsRunning) return QDialog::reject();
  gUserAbort = true;
}

void frmGetFSObjectProperties::closeEvent(QCloseEvent* event) {
  if (!mIsRunning) return QDialog::closeEvent(event);
  gUserAbort = true;
  mIsToClose = true;
  event->ignore();
}

}  // namespace quillmarsh
