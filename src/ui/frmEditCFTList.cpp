// SPDX-License-Identifier: MIT
// The list, and what is done to its masks. A mask is found by its text, so of several that are
// equal the first goes; nobody can tell.
#include "ui/frmEditCFTList.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>

#include "filetypes/CustomFileMask.h"
#include "filetypes/SFT_CFT_Interface.h"
#include "filetypes/TypedFilters.h"
#include "filetypes/modCommonFileTypes.h"
#include "filetypes/modSearchFileTypes.h"
#include "frame/ErrorReporting.h"
#include "frame/Views.h"
#include "ui/DialogFrame.h"
#include "ui/Dialogs.h"
#include "ui/MaskRows.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kSearchFileTypes = 4;
constexpr int kLettersOfMask = 24;
constexpr int kLettersOfRow = 72;
constexpr int kRows = 16;

void Tell(const Text& text, TextId title) {
  ShowMessageBox({text, LoadResString(title), MessageBoxIcon::Information});
}

struct ButtonRow {
  const char* name;
  TextId caption;
  TextView behind;  // the caption
  TextId tipTitle;
  TextId tip;
};
constexpr ButtonRow kEdit = {"mb_cmdEditCFTDetail", 1011, u"...", 1024, 1025};
constexpr ButtonRow kAdd = {"mb_cmdAddCFTDetail", 816, u"...", 1026, 1027};
constexpr ButtonRow kRemove = {"mb_cmdRemoveCFTDetail", 445, u"", 1028, 1029};
constexpr ButtonRow kOK = {"mb_cmdOK", 992, u"", 993, 1008};
constexpr ButtonRow kCancel = {"mb_cmdCancel", 214, u"", 1009, 1010};

QPushButton* MakeButton(const ButtonRow& row) {
  const QString caption = TableText(row.caption) + ToQString(row.behind);
  auto* const button = new QPushButton(caption);
  button->setObjectName(QString::fromLatin1(row.name));
  button->setAccessibleName(caption);
  button->setAccessibleDescription(TableText(row.tip));
  button->setToolTip(QStringLiteral("<b>") + TableText(row.tipTitle) + QStringLiteral("</b><br>") +
                     TableText(row.tip));
  button->setAutoDefault(false);
  return button;
}

}  // namespace

frmEditCFTList::frmEditCFTList(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmEditCFTList"));
  setWindowTitle(TableText(979));
  mLoading = true;
  auto* const layout = new QVBoxLayout(this);
  cboSFTs = new QComboBox;
  cboSFTs->setObjectName(QStringLiteral("cboSFTs"));
  cboSFTs->setAccessibleName(TableText(978));
  layout->addWidget(cboSFTs);
  MakeList(*layout);
  MakeButtons(*layout);
  Guarded(u"frmEditCFTList.Form_Load", [this] {
    CopyCFTsObject(*gCommonFileTypes, &mCFTs);
    for (std::int32_t number = 1; number <= kSearchFileTypes; ++number)
      cboSFTs->addItem(ToQString(SFTNameFromEnum(number)));
    cboSFTs->setCurrentIndex(0);
    LoadCFTDetails(FromQString(cboSFTs->currentText()));
  });
  connect(cboSFTs, &QComboBox::currentIndexChanged, this, &frmEditCFTList::cboSFTs_Change);
  mLoading = false;
}

void frmEditCFTList::MakeList(QVBoxLayout& layout) {
  mRows = new MaskRows(this);
  lstCFTDetails = new QTreeView;
  lstCFTDetails->setObjectName(QStringLiteral("lstCFTDetails"));
  lstCFTDetails->setAccessibleName(TableText(979));
  lstCFTDetails->setModel(mRows);
  lstCFTDetails->setHeaderHidden(true);
  lstCFTDetails->setRootIsDecorated(false);
  lstCFTDetails->setItemsExpandable(false);
  lstCFTDetails->setUniformRowHeights(true);
  lstCFTDetails->setAllColumnsShowFocus(true);
  lstCFTDetails->setSelectionMode(QAbstractItemView::SingleSelection);
  lstCFTDetails->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstCFTDetails->setTextElideMode(Qt::ElideRight);
  lstCFTDetails->installEventFilter(this);
  const int letter = fontMetrics().averageCharWidth();
  lstCFTDetails->header()->resizeSection(MaskRows::MaskColumn, letter * kLettersOfMask);
  lstCFTDetails->header()->setStretchLastSection(true);
  lstCFTDetails->setMinimumSize(letter * kLettersOfRow, fontMetrics().height() * kRows);
  connect(lstCFTDetails, &QTreeView::doubleClicked, this,
          &frmEditCFTList::mb_cmdEditCFTDetail_Click);
  layout.addWidget(lstCFTDetails, 1);
}

void frmEditCFTList::MakeButtons(QVBoxLayout& layout) {
  auto* const row = new QHBoxLayout;
  const auto add = [&](const ButtonRow& button, void (frmEditCFTList::*clicked)()) {
    QPushButton* const made = MakeButton(button);
    connect(made, &QPushButton::clicked, this, clicked);
    row->addWidget(made);
  };
  add(kEdit, &frmEditCFTList::mb_cmdEditCFTDetail_Click);
  add(kAdd, &frmEditCFTList::mb_cmdAddCFTDetail_Click);
  add(kRemove, &frmEditCFTList::mb_cmdRemoveCFTDetail_Click);
  row->addStretch();
  layout.addLayout(row);

  auto* const buttons = new QDialogButtonBox;
  QPushButton* const ok = MakeButton(kOK);
  buttons->addButton(ok, QDialogButtonBox::AcceptRole);
  buttons->addButton(MakeButton(kCancel), QDialogButtonBox::RejectRole);
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, &frmEditCFTList::mb_cmdOK_Click);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout.addSpacing(fontMetrics().height() / 2);
  layout.addWidget(buttons);
}

void frmEditCFTList::closeEvent(QCloseEvent* event) {
  if (mChangesMade) mb_cmdOK_Click();
  QDialog::closeEvent(event);
}

bool frmEditCFTList::eventFilter(QObject* watched, QEvent* event) {
  const bool isDelete = watched == lstCFTDetails && event->type() == QEvent::KeyPress &&
                        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete;
  if (!isDelete) return QDialog::eventFilter(watched, event);
  mb_cmdRemoveCFTDetail_Click();
  return true;
}

void frmEditCFTList::LoadCFTDetails(TextView name) {
  const std::int32_t index = mCFTs.GetCommonFileTypeIndexBasedOnKey(CFTNameFromSFTName(name));
  if (index != -1) LoadCFTFileMasksInListBox(*mCFTs.CommonFileTypes().Item(index));
}

void frmEditCFTList::LoadCFTFileMasksInListBox(const cCommonFileType& type) {
  std::vector<Text> masks;
  for (const Text& mask : type.FileMasks())
    if (!mask.empty()) masks.push_back(mask);
  mRows->SetMasks(masks);
}

cCommonFileType* frmEditCFTList::ChosenType(TextId title) const {
  const Text name = CFTNameFromSFTName(FromQString(cboSFTs->currentText()));
  const std::int32_t index = mCFTs.GetCommonFileTypeIndexBasedOnKey(name);
  if (index != -1) return mCFTs.CommonFileTypes().Item(index).get();
  Tell(LoadResString(1016), title);
  return nullptr;
}

int frmEditCFTList::SelectedRow() const {
  const QModelIndexList selected = lstCFTDetails->selectionModel()->selectedRows();
  return selected.isEmpty() ? -1 : selected.constFirst().row();
}

void frmEditCFTList::SelectRow(int row) {
  const QModelIndex index = mRows->index(row, MaskRows::MaskColumn);
  if (!index.isValid()) return;
  lstCFTDetails->setCurrentIndex(index);
  lstCFTDetails->scrollTo(index);
}

void frmEditCFTList::cboSFTs_Change() {
  if (mLoading) return;
  Guarded(u"frmEditCFTList.cboSFTs_Change", [this] {
    LoadCFTDetails(FromQString(cboSFTs->currentText()));
    if (mRows->rowCount() == 0) return;
    SelectRow(0);
    lstCFTDetails->setFocus();
  });
}

Text frmEditCFTList::AskForMask(const Text& prompt, TextId title, const Text& defaultMask) const {
  const Text mask = NormalizedFileMask(InputBoxText(prompt, LoadResString(title), defaultMask));
  Text message;
  if (mask.empty()) return {};
  if (!IsCustomFileMaskValid(mask, message)) {
    Tell(message, title);
    return {};
  }
  return mask;
}

void frmEditCFTList::mb_cmdAddCFTDetail_Click() {
  constexpr TextId kTitle = 1102;
  Guarded(u"frmEditCFTList.mb_cmdAddCFTDetail_Click", [&] {
    if (cboSFTs->currentIndex() < 0) return Tell(LoadResString(1040), kTitle);
    const Text prompt = LoadResString(1110) + u"\n\n" + LoadResString(1111);
    const Text mask = MaskFromTyped(AskForMask(prompt, kTitle, u"*.ext"));
    if (mask.empty()) return;
    cCommonFileType* const type = ChosenType(kTitle);
    if (type == nullptr) return;
    if (type->DoesThisFileMaskExist(mask)) return Tell(LoadResString(1108), kTitle);
    if (!type->AddFileMask(mask)) return Tell(LoadResString(1106), kTitle);
    mChangesMade = true;
    mRows->Append(mask);
    SelectRow(mRows->rowCount() - 1);
  });
}

void frmEditCFTList::mb_cmdEditCFTDetail_Click() {
  constexpr TextId kTitle = 1101;
  Guarded(u"frmEditCFTList.mb_cmdEditCFTDetail_Click", [&] {
    const int row = SelectedRow();
    if (row < 0) return Tell(LoadResString(1105), kTitle);
    const Text known = mRows->MaskAt(row);
    const Text shown = ShownMask(known);
    const Text typed = AskForMask(LoadResString(1107), kTitle, shown);
    if (typed.empty() || typed == shown) return;
    const Text mask = MaskFromTyped(typed);
    cCommonFileType* const type = ChosenType(kTitle);
    if (type == nullptr) return;
    if (type->DoesThisFileMaskExist(mask)) return Tell(LoadResString(1108), kTitle);
    if (!type->RenameFileMask(known, mask)) {
      Tell(LoadResString(1109), kTitle);
      return LoadCFTFileMasksInListBox(*type);  // the old one may be gone
    }
    mChangesMade = true;
    mRows->Replace(row, mask);
  });
}

void frmEditCFTList::mb_cmdRemoveCFTDetail_Click() {
  constexpr TextId kTitle = 1103;
  Guarded(u"frmEditCFTList.mb_cmdRemoveCFTDetail_Click", [&] {
    const int row = SelectedRow();
    if (row < 0) return Tell(LoadResString(1105), kTitle);
    cCommonFileType* const type = ChosenType(kTitle);
    if (type == nullptr) return;
    type->RemoveFileMask(mRows->MaskAt(row));
    mChangesMade = true;
    mRows->Remove(row);
    SelectRow(std::min(row, mRows->rowCount() - 1));
  });
}

void frmEditCFTList::mb_cmdOK_Click() {
  Guarded(u"frmEditCFTList.mb_cmdOK_Click", [this] {
    if (mChangesMade) CopyCFTsObject(mCFTs, gCommonFileTypes.get());
  });
  accept();
}

void ShowEditCFTListDialog(QWidget* parent) {
  frmEditCFTList(parent).exec();
}

}  // namespace quillmarsh
