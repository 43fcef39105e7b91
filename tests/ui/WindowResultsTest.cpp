// SPDX-License-Identifier: MIT
// What a person does with the results: the rules of the menu, marks, names and sorting.
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QTest>

#include "WindowFixture.h"
#include "frame/TextTable.h"
#include "ui/QtText.h"

namespace quillmarsh {
namespace {

// Three groups of two, each with an older file in "one" and a newer one in "two".
class WindowResultsTest : public WindowFixture {
 protected:
  void SetUp() override {
    MakeWindow();
    Trigger("mnuOptionsFileType(0)");
    for (int pair = 1; pair <= 3; ++pair) {
      const QString name = QStringLiteral("pair%1.txt").arg(pair);
      MakeAged(QStringLiteral("one/") + name, pair, 2020);
      MakeAged(QStringLiteral("two/") + name, pair, 2024);
    }
    AddFolder(FilesFolder());
    Search();
    dialogsShown = 0;
  }
  // The size tells the pair.
  void MakeAged(const QString& path, int bytes, int year) {
    QFile file(MakeFile(path, QByteArray(bytes, 'x')));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime(QDate(year, 1, 1), QTime(12, 0)),
                                 QFileDevice::FileModificationTime));
  }
  void Trigger(const char* entry) { Parts().menus->Entry(QString::fromLatin1(entry))->trigger(); }
  void SelectDetail(int row) {
    DetailList& list = *Parts().ulvwDupeDetails;
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualRect(list.model()->index(row, 1)).center());
  }
  [[nodiscard]] int RowInFolder(const char* folder) {
    const QAbstractItemModel& model = *Parts().ulvwDupeDetails->model();
    for (int row = 0; row < model.rowCount(); ++row)
      for (int column = 0; column < model.columnCount(); ++column)
        if (model.index(row, column).data().toString().contains(QLatin1String(folder))) return row;
    return -1;
  }
  // Such as "one/pair1 two/pair2", in the order of their names.
  [[nodiscard]] std::string Marked() {
    QStringList names;
    const cSearchResults& results = Parts().results;
    for (std::int32_t record = 1; record <= results.RecordCount(); ++record) {
      if (!results.mFileMarked[static_cast<std::size_t>(record) - 1]) continue;
      const QString path = ToQString(results.FullPathOf(results.Record(record)));
      names << path.section(QLatin1Char('\\'), -2).replace(u'\\', u'/').chopped(4);
    }
    names.sort();
    return names.join(QLatin1Char(' ')).toStdString();
  }
  [[nodiscard]] QStringList GroupNames() {
    QStringList names;
    const QAbstractItemModel& model = *Parts().ulvwDupeGroups->model();
    for (int row = 0; row < model.rowCount(); ++row) names << model.index(row, 0).data().toString();
    return names;
  }
  void Rename(const char* folder, const QString& name) {
    DetailList& list = *Parts().ulvwDupeDetails;
    SelectDetail(RowInFolder(folder));
    QTest::keyClick(&list, Qt::Key_F2);
    auto* const editor = list.viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(name);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY_WITH_TIMEOUT(list.viewport()->findChild<QLineEdit*>() == nullptr, 5000);
    QTest::qWait(50);  // the name is told once the editor has gone
  }
};

constexpr const char* kAllOfOne = "one/pair1 one/pair2 one/pair3";
constexpr const char* kAllOfTwo = "two/pair1 two/pair2 two/pair3";

TEST_F(WindowResultsTest, EachRuleOfTheMenuMarksAndIsTicked) {
  const std::string all = std::string(kAllOfOne) + ' ' + kAllOfTwo;
  struct Rule {
    const char* entry;
    const char* tick;
    std::string marked;
    bool asksFolder;
  };
  const Rule rules[] = {
      {"mnuPopupKeepOldest", "mnuFileKeepOldest", kAllOfTwo, false},
      {"mnuFileKeepNewest", "mnuPopupKeepNewest", kAllOfOne, false},
      {"mnuFileSelectDupesInFolder", "mnuPopupSelectDupesInFolder", kAllOfTwo, true},
      {"mnuPopupSelectDupesNotInFolder", "mnuFileSelectDupesNotInFolder", kAllOfOne, true},
      {"mnuFileSelectDupesInDrive", "mnuPopupSelectDupesInDrive", all, false},
      {"mnuPopupSelectDupesNotInDrive", "mnuFileSelectDupesNotInDrive", "", false},
  };
  const char* ticked = "mnuFileKeepNewest";
  for (const Rule& rule : rules) {
    SCOPED_TRACE(rule.entry);
    Press(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
    EXPECT_EQ(Marked(), "");
    SelectDetail(RowInFolder("/two"));
    if (rule.asksFolder) {
      const Text folder = FromQString(FilesFolder() + QStringLiteral("/two/"));
      boxes.ExpectInput(folder, folder);
    }
    dialogsShown = 0;
    Trigger(rule.entry);
    EXPECT_EQ(Marked(), rule.marked);
    EXPECT_EQ(dialogsShown, 1) << "the summary";
    EXPECT_EQ(IsChecked(ticked), std::string(ticked) == rule.tick);
    EXPECT_TRUE(IsChecked(rule.tick));
    ticked = rule.tick;
  }
}

TEST_F(WindowResultsTest, ASingleFileIsMarkedByMenuAndCheckBox) {
  Press(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
  SelectDetail(RowInFolder("/two"));
  Trigger("mnuFileMark");
  EXPECT_EQ(Panel(FILES_SELECTED).section(QLatin1Char(' '), 0, 0), QStringLiteral("Selected:1"));
  QTest::keyClick(Parts().ulvwDupeDetails, Qt::Key_Space);
  EXPECT_EQ(Marked(), "");
  QTest::keyClick(Parts().ulvwDupeDetails, Qt::Key_Space);
  Trigger("mnuPopupUnmarkFile");
  EXPECT_EQ(Panel(FILES_SELECTED), QStringLiteral("Selected:0"));
}

TEST_F(WindowResultsTest, ANewNameEndsADuplicateOnlyWhereNamesCount) {
  Press(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
  boxes.Expect(LoadResString(288));
  MakeFile(QStringLiteral("two/taken.txt"), "");
  Rename("/two", QStringLiteral("taken.txt"));
  EXPECT_EQ(GroupNames().size(), 3);
  Rename("/two", QStringLiteral("other.txt"));
  EXPECT_TRUE(QFile::exists(FilesFolder() + QStringLiteral("/two/other.txt")));
  EXPECT_EQ(GroupNames().size(), 2);
  EXPECT_EQ(Panel(DUPLICATES).section(QLatin1Char(' '), 0, 0), QStringLiteral("Duplicates:4"));

  Trigger("mnuOptionsDupeCriteriaOption(0)");
  Press(*Parts().smtSearchResultsToolbar, "SEARCHVIEW_KEY");
  Search();
  ASSERT_EQ(GroupNames().size(), 3) << "by size";
  Rename("/two", QStringLiteral("third.txt"));
  EXPECT_EQ(GroupNames().size(), 3);
  EXPECT_EQ(Parts().ulvwDupeDetails->model()->index(RowInFolder("/two"), 0).data().toString(),
            QStringLiteral("third.txt"));
  EXPECT_EQ(Panel(DUPLICATES).section(QLatin1Char(' '), 0, 0), QStringLiteral("Duplicates:6"));
}

TEST_F(WindowResultsTest, ANewNameIsThatOfItsFileAlsoWhenAnotherGroupIsShownByThen) {
  Press(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
  DetailList& list = *Parts().ulvwDupeDetails;
  SelectDetail(RowInFolder("/two"));
  QTest::keyClick(&list, Qt::Key_F2);
  list.viewport()->findChild<QLineEdit*>()->setText(QStringLiteral("new.txt"));
  GroupList& groups = *Parts().ulvwDupeGroups;
  QTest::mouseClick(groups.viewport(), Qt::LeftButton, {},
                    groups.visualRect(groups.model()->index(2, 0)).center());
  QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(FilesFolder() + QStringLiteral("/two/new.txt")), 5000);
  EXPECT_FALSE(QFile::exists(FilesFolder() + QStringLiteral("/two/pair1.txt")));
  EXPECT_TRUE(QFile::exists(FilesFolder() + QStringLiteral("/two/pair3.txt")));
  EXPECT_EQ(GroupNames(), (QStringList{QStringLiteral("pair2.txt"), QStringLiteral("pair3.txt")}));
  EXPECT_EQ(list.model()->index(0, 0).data().toString(), QStringLiteral("pair3.txt"));
}

TEST_F(WindowResultsTest, WhatACriterionHasClearedIsNotRemovedNorCalledNotFound) {
  EXPECT_EQ(Parts().lastSearch, SearchOutcome::Complete);
  Trigger("mnuOptionsDupeCriteriaOption(3)");
  EXPECT_EQ(Parts().lastSearch, std::nullopt);
  gDupeSettings->SetRemoveWarningShown(true);
  boxes.Expect(LoadResString(376));
  Trigger("mnuFileRemovedMarkedFiles");
  EXPECT_EQ(Panel(FILES_SELECTED), QStringLiteral("Selected:0"));
  Press(*Parts().smtSearchResultsToolbar, "UNDO_KEY");
  EXPECT_EQ(Parts().ulvwDupeDetails->model()->rowCount(), 0);
}

TEST_F(WindowResultsTest, AClickOnAHeadingSortsAndTheNextOneTurnsItRound) {
  QHeaderView& header = *Parts().ulvwDupeGroups->header();
  const auto click = [&](int column) {
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      QPoint(header.sectionViewportPosition(column) + 10, header.height() / 2));
    QApplication::processEvents();
  };
  for (const int column : {0, 2}) {  // the copies in between are two everywhere
    click(column);
    const QStringList first = GroupNames();
    ASSERT_EQ(first.size(), 3);
    click(column);
    EXPECT_EQ(GroupNames(), QStringList(first.rbegin(), first.rend())) << column;
  }
}

}  // namespace
}  // namespace quillmarsh
