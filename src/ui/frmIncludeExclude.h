// SPDX-License-Identifier: MIT
// Which folders and files a search takes and which it leaves out. The four lists are working
// copies; only OK gives them to gDupeSettings and writes them to the options file.
#pragma once

#include <QDialog>
#include <vector>

class QVBoxLayout;

namespace quillmarsh {

class FilterPart;

class frmIncludeExclude final : public QDialog {
  Q_OBJECT
 public:
  explicit frmIncludeExclude(QWidget* parent);

 private:
  void MakeButtons(QVBoxLayout& layout);
  void mb_OKButton_Click();

  std::vector<FilterPart*> mParts;
};

}  // namespace quillmarsh
