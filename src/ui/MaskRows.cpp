// SPDX-License-Identifier: MIT
// Rows change one at a time or all together.
#include "ui/MaskRows.h"

#include "filetypes/CustomFileMask.h"
#include "filetypes/TypedFilters.h"
#include "ui/QtText.h"

namespace quillmarsh {

void MaskRows::SetMasks(const std::vector<Text>& masks) {
  beginResetModel();
  mRows.clear();
  for (const Text& mask : masks) mRows.push_back({mask, {}});
  endResetModel();
}

void MaskRows::Append(const Text& mask) {
  const int row = rowCount();
  beginInsertRows({}, row, row);
  mRows.push_back({mask, {}});
  endInsertRows();
}

void MaskRows::Replace(int row, const Text& mask) {
  mRows[static_cast<std::size_t>(row)] = {mask, {}};
  emit dataChanged(index(row, MaskColumn), index(row, DescriptionColumn));
}

void MaskRows::Remove(int row) {
  beginRemoveRows({}, row, row);
  mRows.erase(mRows.begin() + row);
  endRemoveRows();
}

const Text& MaskRows::MaskAt(int row) const {
  return mRows[static_cast<std::size_t>(row)].mask;
}

int MaskRows::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mRows.size());
}

int MaskRows::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : DescriptionColumn + 1;
}

QVariant MaskRows::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const Row& row = mRows[static_cast<std::size_t>(index.row())];
  if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
  const QString mask = ToQString(ShownMask(row.mask));
  if (index.column() == MaskColumn && role == Qt::DisplayRole) return mask;
  if (!row.description) row.description = ToQString(FileTypeDescOfMask(row.mask));
  return role == Qt::DisplayRole ? *row.description : mask + QLatin1Char('\t') + *row.description;
}

}  // namespace quillmarsh
