// SPDX-License-Identifier: MIT
// The two lists of results for the toolkit's views. A model owns nothing: it asks the results for a
// cell when it is drawn, is reset when its list changes, and shows an empty list while that is
// locked for a mass fill. Nothing here pumps.
#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <unordered_map>

#include "search/results/cSearchResults.h"

namespace quillmarsh {

// What both have in common: rows are the items of a list, which they listen to.
class ResultsModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  ~ResultsModel() override;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;
  // The heading of column 0.
  void SetCaption(TextView caption);
  [[nodiscard]] const QString& Caption() const { return mHeadings[0]; }
  // Rows are to be drawn anew.
  void MarksChanged();

 signals:
  // The list's selected item is another one, not by way of a view.
  void SelectionMoved();

 protected:
  ResultsModel(cSearchResults& results, cResultsList& list, QStringList headings, QObject* parent);
  [[nodiscard]] virtual bool IsNumber(int column) const = 0;
  // Something that a row's marks decide is to be worked out anew.
  virtual void ForgetMarks() {}
  [[nodiscard]] std::int32_t ItemAt(const QModelIndex& index) const;
  // As it may be drawn: on one line.
  [[nodiscard]] QString CellAt(const QModelIndex& index) const;

  cSearchResults& mResults;

 private:
  void ListChanged(ListChange change);

  cResultsList& mList;
  QStringList mHeadings;
  int mRows = 0;  // as the views know it
};

class GroupsModel final : public ResultsModel {
  Q_OBJECT
 public:
  explicit GroupsModel(cSearchResults& results, QObject* parent = nullptr);

  // A group of which every file is marked is shown as such.
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] bool IsWhollyMarkedAt(const QModelIndex& index) const;

 private:
  [[nodiscard]] bool IsNumber(int column) const override;
  void ForgetMarks() override { mIsWhollyMarked.clear(); }

  // By group, of those that were drawn since marks changed: a group may have a million files.
  mutable std::unordered_map<std::int32_t, bool> mIsWhollyMarked;
  mutable QIcon mWarning;
};

class DetailsModel final : public ResultsModel {
  Q_OBJECT
 public:
  explicit DetailsModel(cSearchResults& results, QObject* parent = nullptr);

  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  // A check box, or a name that was edited in place; each is only told on.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  void CheckBoxChanged(int position, bool isChecked);
  void NameEdited(int record, const QString& oldName, const QString& newName);

 private:
  [[nodiscard]] bool IsNumber(int column) const override;
  // Not the line that stands for an emptied group.
  [[nodiscard]] bool IsFile(const QModelIndex& index) const;
};

}  // namespace quillmarsh
