// SPDX-License-Identifier: MIT
// The modal dialogs: the small ones that tell where things stand, and those that edit options. Each
// is made when it is shown, over the window that is given, and is gone afterwards.
#pragma once

#include <QWidget>

#include "search/SearchView.h"
#include "selection/SelectionView.h"

namespace quillmarsh {

void ShowSearchSummaryDialog(QWidget* parent, const SearchSummary& summary);
void ShowSelectSummaryDialog(QWidget* parent, const SelectSummary& summary);
// kRemovalWarningContinue or kRemovalWarningCancel; closed in any other way, Cancel.
[[nodiscard]] std::int32_t ShowRemovalWarningDialog(QWidget* parent);
void ShowGettingStartedDialog(QWidget* parent);
void ShowAboutDialog(QWidget* parent);

// Edit gMarkForRemovalWizardOptions; the mark mCancelled is set in any case but Select.
void ShowMarkForRemovalWizardDialog(QWidget* parent);
// Edit the filter lists of gDupeSettings, and the masks of gCommonFileTypes.
void ShowIncludeExcludeDialog(QWidget* parent);
void ShowEditCFTListDialog(QWidget* parent);

}  // namespace quillmarsh
