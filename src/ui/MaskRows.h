// SPDX-License-Identifier: MIT
// The rows of the file type editor: a mask, and what the shell calls such files. That is asked when
// a row is first drawn, since a type may have hundreds of masks.
#pragma once

#include <QAbstractTableModel>
#include <optional>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

class MaskRows final : public QAbstractTableModel {
  Q_OBJECT
 public:
  static constexpr int MaskColumn = 0;
  static constexpr int DescriptionColumn = 1;

  using QAbstractTableModel::QAbstractTableModel;

  void SetMasks(const std::vector<Text>& masks);
  void Append(const Text& mask);
  void Replace(int row, const Text& mask);
  void Remove(int row);
  [[nodiscard]] const Text& MaskAt(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  struct Row {
    Text mask;
    mutable std::optional<QString> description;
  };
  std::vector<Row> mRows;
};

}  // namespace quillmarsh
