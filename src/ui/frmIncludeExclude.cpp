// SPDX-License-Identifier: MIT
// Two frames of two lists each, by one table.
#include "ui/frmIncludeExclude.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/ErrorReporting.h"
#include "settings/clsDupeSettings.h"
#include "settings/optionsfile/modIniFile.h"
#include "ui/DialogFrame.h"
#include "ui/Dialogs.h"
#include "ui/FilterPart.h"
#include "ui/Help.h"

namespace quillmarsh {

namespace {

using Settings = clsDupeSettings;
using enum FilterListKind;

struct StoredPart {
  FilterPartRow row;
  const Text& (Settings::*get)() const;
  void (Settings::*set)(TextView);
};

// In the order in which they are stored.
constexpr StoredPart kParts[] = {
    {{"lstUFoldersToInclude", "txtUIncludeFolderPath", "mb_SelectIncludeFolder",
      "mb_cmdAddIncludeFolder", "mb_cmdRemoveIncludeFolder", Folders, FolderFilterUse::Include, 529,
      530},
     &Settings::IncludeFolders,
     &Settings::SetIncludeFolders},
    {{"lstUFilesToInclude", "txtUIncludeFileName", "mb_SelectIncludeFile", "mb_cmdAddIncludeFile",
      "mb_cmdRemoveIncludeFile", Files, FolderFilterUse::Include, 801, 1169},
     &Settings::IncludeFiles,
     &Settings::SetIncludeFiles},
    {{"lstUFoldersToExclude", "txtUExcludeFolderPath", "mb_SelectExcludeFolder",
      "mb_cmdAddExcludeFolder", "mb_cmdRemoveExcludeFolder", Folders, FolderFilterUse::Exclude, 516,
      518},
     &Settings::ExcludeFolders,
     &Settings::SetExcludeFolders},
    {{"lstUFilesToExclude", "txtUExcludeFileName", "mb_SelectExcludeFile", "mb_cmdAddExcludeFile",
      "mb_cmdRemoveExcludeFile", Files, FolderFilterUse::Exclude, 244, 1168},
     &Settings::ExcludeFiles,
     &Settings::SetExcludeFiles},
};

}  // namespace

frmIncludeExclude::frmIncludeExclude(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmIncludeExclude"));
  setWindowTitle(TableText(256) + QStringLiteral(" - ") + TableText(800));
  auto* const frames = new QHBoxLayout;
  QVBoxLayout* frame = nullptr;
  for (const StoredPart& stored : kParts) {
    if (mParts.size() % 2 == 0) {
      auto* const box = new QGroupBox(TableText(mParts.empty() ? TextId(272) : TextId(257)));
      frame = new QVBoxLayout(box);
      frames->addWidget(box);
    } else {
      frame->addSpacing(fontMetrics().height());
    }
    mParts.push_back(new FilterPart(stored.row, (*gDupeSettings.*stored.get)()));
    frame->addWidget(mParts.back());
  }
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(frames, 1);
  MakeButtons(*layout);
}

void frmIncludeExclude::MakeButtons(QVBoxLayout& layout) {
  auto* const buttons = new QDialogButtonBox;
  const auto add = [buttons](const char* name, TextId text, QDialogButtonBox::ButtonRole role) {
    QPushButton* const button = buttons->addButton(TableText(text), role);
    button->setObjectName(QString::fromLatin1(name));
    button->setAccessibleName(TableText(text));
    button->setAutoDefault(false);
    return button;
  };
  QPushButton* const ok = add("mb_OKButton", 992, QDialogButtonBox::AcceptRole);
  add("mb_CancelButton", 214, QDialogButtonBox::RejectRole);
  QPushButton* const help = add("mb_HelpButton", 427, QDialogButtonBox::HelpRole);
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, &frmIncludeExclude::mb_OKButton_Click);
  connect(help, &QPushButton::clicked, this, [this] { ShowHelpTopic(this, help_topic::Filters); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout.addWidget(buttons);
  // The fields keep what they say until a person comes to them.
  ok->setFocus();
}

void frmIncludeExclude::mb_OKButton_Click() {
  Guarded(u"frmIncludeExclude.mb_OKButton_Click", [this] {
    const StoredPart* stored = kParts;
    for (const FilterPart* const part : mParts)
      (*gDupeSettings.*(stored++)->set)(part->StoredText());
    SaveFilterOptionsToIniFile(gDupeSettings->IncludeFolders(), gDupeSettings->IncludeFiles(),
                               gDupeSettings->ExcludeFolders(), gDupeSettings->ExcludeFiles());
  });
  accept();
}

void ShowIncludeExcludeDialog(QWidget* parent) {
  frmIncludeExclude(parent).exec();
}

}  // namespace quillmarsh
