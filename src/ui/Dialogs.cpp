// SPDX-License-Identifier: MIT
// The summaries and the guidelines. Each is made of labels and buttons whose names are given.
#include "ui/Dialogs.h"

#include <QDialogButtonBox>

#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "removal/RemovalView.h"
#include "ui/DialogFrame.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

QString Grouped(std::int32_t number) {
  return ToQString(FormatGrouped(std::int64_t{number}, GetLocaleFacts()));
}

QString ShortSize(Currency bytes) {
  return ToQString(FormatByteSize(bytes));
}

class frmSearchSummary final : public DialogFrame {
 public:
  frmSearchSummary(const SearchSummary& summary, QWidget* parent)
      : DialogFrame(QStringLiteral("frmSearchSummary"), TitleWith(720),
                    QStringLiteral("files_searched"), parent) {
    const bool isCancelled = summary.SearchCancelled;
    AddHeading(QStringLiteral("lblDupeSearchCompleteLabel"),
               isCancelled ? TableText(729) : TableText(721));
    AddText(QStringLiteral("lblSummary"), isCancelled ? TableText(720) + QStringLiteral(" (") +
                                                            TableText(730) + QStringLiteral("):")
                                                      : TitleWith(720));
    AddSpace();
    AddFact(QStringLiteral("lblNumFilesSearchedLabel"), 722, QStringLiteral("lblNumFilesSearched"),
            Grouped(summary.NumFilesSearched));
    AddFact(QStringLiteral("lblNumDupesFoundLabel"), 723, QStringLiteral("lblNumDupesFound"),
            Grouped(summary.NumDuplicatesFound));
    AddFact(QStringLiteral("lblNumDupeGroupsLabel"), 724, QStringLiteral("lblNumDupeGroups"),
            Grouped(summary.NumDupeGroups));
    AddFact(QStringLiteral("lblDupesSizeLabel"), 725, QStringLiteral("lblDupesSize"),
            ShortSize(summary.TotalSizeOfDupes));
    AddLine();
    AddBoldText(QStringLiteral("lblNextStepLabel"), TableText(726));
    AddText(QStringLiteral("lblNextStep"), TableText(727));
    AddText(QStringLiteral("lblNextStepDescription"), TableText(728));
    AddSpace();
    AddText(QStringLiteral("lblNote"), TableText(1114));
    SetDefaultButton(
        AddButton(QStringLiteral("mycmdOK"), TableText(992), QDialogButtonBox::AcceptRole));
  }
};

class frmSelectSummary final : public DialogFrame {
 public:
  frmSelectSummary(const SelectSummary& summary, QWidget* parent)
      : DialogFrame(QStringLiteral("frmSelectSummary"), TitleWith(736),
                    QStringLiteral("files_selected"), parent) {
    AddHeading(QStringLiteral("lblFileSelectionCompleteLabel"), TableText(737));
    AddText(QStringLiteral("lblSummary"), TableText(736));
    AddSpace();
    AddFact(QStringLiteral("lblNumFilesSelectedLabel"), 738, QStringLiteral("lblNumFilesSelected"),
            Grouped(summary.NumFilesSelected));
    AddFact(QStringLiteral("lblSpaceSavingsLabel"), 739, QStringLiteral("lblSpaceSavings"),
            ShortSize(summary.SpaceSavings));
    AddLine();
    AddBoldText(QStringLiteral("lblNextStepLabel"), TableText(740));
    AddText(QStringLiteral("lblNextStep(0)"), TableText(752));
    AddText(QStringLiteral("lblNextStepDescription(0)"), TableText(741));
    AddSpace();
    AddText(QStringLiteral("lblNextStep(1)"), TableText(753));
    AddText(QStringLiteral("lblNextStepDescription(1)"), TableText(742));
    AddSpace();
    AddBoldText(QStringLiteral("lblNoteLabel"), TableText(743));
    AddText(QStringLiteral("lblNote"), TableText(744));
    SetDefaultButton(
        AddButton(QStringLiteral("mycmdOK"), TableText(992), QDialogButtonBox::AcceptRole));
  }
};

class frmRemovalWarning final : public DialogFrame {
 public:
  explicit frmRemovalWarning(QWidget* parent)
      : DialogFrame(QStringLiteral("frmRemovalWarning"), TitleWith(689), QStringLiteral("remove"),
                    parent) {
    AddHeading(QStringLiteral("lblRemovalGuidelinesLabel"), TableText(689));
    AddText(QStringLiteral("lblWelcome"), TableText(698));
    AddSpace();
    constexpr TextId kGuidelines[] = {692, 693, 694, 695, 696, 697};
    int index = 0;
    for (const TextId id : kGuidelines)
      AddText(QStringLiteral("lblGuidelines(%1)").arg(index++),
              QStringLiteral("- ") + TableText(id));
    AddLine();
    AddBoldText(QStringLiteral("lblDisclaimerLabel"), TableText(690) + QLatin1Char(':'));
    AddText(QStringLiteral("lblDisclaimer"), TableText(691));
    AddButton(QStringLiteral("mycmdContinue"), TableText(672), QDialogButtonBox::AcceptRole);
    // The return key must not remove anything unread.
    SetDefaultButton(
        AddButton(QStringLiteral("mycmdCancel"), TableText(214), QDialogButtonBox::RejectRole));
  }
};

class frmGettingStarted final : public DialogFrame {
 public:
  explicit frmGettingStarted(QWidget* parent)
      : DialogFrame(QStringLiteral("frmGettingStarted"), TitleWith(544),
                    QStringLiteral("application"), parent) {
    AddHeading(QStringLiteral("lblGettingStartedLabel"), TableText(544));
    AddText(QStringLiteral("lblWelcome"), TableText(545));
    AddLine();
    AddBoldText(QStringLiteral("lblStep(0)"), TableText(560));
    AddText(QStringLiteral("lblStepDescription(0)"), TableText(546));
    AddSpace();
    AddBoldText(QStringLiteral("lblStep(1)"), TableText(561));
    AddText(QStringLiteral("lblStepDescription(1)"), TableText(547));
    AddSpace();
    AddText(QStringLiteral("lblStepDescription(2)"), TableText(548));
    SetDefaultButton(
        AddButton(QStringLiteral("mycmdOK"), TableText(992), QDialogButtonBox::AcceptRole));
  }
};

}  // namespace

void ShowSearchSummaryDialog(QWidget* parent, const SearchSummary& summary) {
  frmSearchSummary(summary, parent).exec();
}

void ShowSelectSummaryDialog(QWidget* parent, const SelectSummary& summary) {
  frmSelectSummary(summary, parent).exec();
}

std::int32_t ShowRemovalWarningDialog(QWidget* parent) {
  return frmRemovalWarning(parent).exec() == QDialog::Accepted ? kRemovalWarningContinue
                                                               : kRemovalWarningCancel;
}

void ShowGettingStartedDialog(QWidget* parent) {
  frmGettingStarted(parent).exec();
}

}  // namespace quillmarsh
