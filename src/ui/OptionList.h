// SPDX-License-Identifier: MIT
// The list of search options: headed groups, and in each row a name and the value chosen for it. It
// knows neither settings nor menus; what a person changes it tells on, what the program sets it
// does not.
#pragma once

#include <QComboBox>
#include <QHash>
#include <QLabel>
#include <QScrollArea>

class QGridLayout;

namespace quillmarsh {

class OptionList final : public QScrollArea {
  Q_OBJECT
 public:
  explicit OptionList(QWidget* parent = nullptr);

  // The row with its key as object name; null for a heading and for a key that is none.
  [[nodiscard]] QComboBox* Row(const QString& key) const { return mRows.value(key); }
  // A text that the row does not offer shows none.
  void SetRowText(const QString& key, const QString& text);
  void SetRowEnabled(const QString& key, bool isEnabled);
  // What all rows want, without scrolling.
  [[nodiscard]] QSize sizeHint() const override;

 signals:
  // `property` is the text by which the program knows the value of a row.
  void PropertyChanged(const QString& rowKey, const QString& property, const QString& text);

 private:
  void AddHeading(QGridLayout& grid, const char* key, const QString& caption);
  void AddRow(QGridLayout& grid, const char* key, const QString& caption,
              const QStringList& values);

  QHash<QString, QComboBox*> mRows;
};

}  // namespace quillmarsh
