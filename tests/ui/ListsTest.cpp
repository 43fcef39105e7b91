// SPDX-License-Identifier: MIT
// The two lists as a person uses them: rows, marks, names, keys and mouse, while the list behind
// them is filled, sorted and emptied.
#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>

#include "frame/TextTable.h"
#include "ui/ListsFixture.h"
#include "ui/ResultsDelegate.h"

namespace quillmarsh {
namespace {

class Lists : public ListsFixture {
 protected:
  Lists() {
    for (ResultsList* const list :
         {static_cast<ResultsList*>(&groups), static_cast<ResultsList*>(&details)}) {
      list->resize(900, 300);
      list->show();
    }
    QObject::connect(&groups, &GroupList::RowSelected, [this](int position) {
      results.DisplayDupeGroupDetails(results.ulvwDupeGroups.ItemData(position), false);
    });
    QObject::connect(&details.Model(), &DetailsModel::CheckBoxChanged,
                     [this](int position, bool isChecked) { Mark(position, isChecked); });
  }
  void Mark(int position, bool isMarked) {
    const std::int32_t record = results.ulvwDupeDetails.ItemData(position);
    results.mFileMarked[static_cast<std::size_t>(record) - 1] = isMarked;
    groups.Model().MarksChanged();
    details.Model().MarksChanged();
  }
  [[nodiscard]] std::string Marks() const {
    std::string marks;
    for (const bool isMarked : results.mFileMarked) marks += isMarked ? 'x' : '-';
    return marks;
  }
  [[nodiscard]] static QRect CheckBox(DetailList& list, int row) {
    const QModelIndex index = list.model()->index(row, 0);
    QStyleOptionViewItem option;
    option.initFrom(&list);
    option.widget = &list;
    option.rect = list.visualRect(index);
    return static_cast<ResultsDelegate*>(list.itemDelegate())->CheckBoxOf(option, index);
  }
  [[nodiscard]] static QLineEdit* Editor(DetailList& list) {
    return list.viewport()->findChild<QLineEdit*>();
  }

  GroupList groups{results};
  DetailList details{results};
};

TEST_F(Lists, ModelsKeepTheirWordThroughFillSortRemovalAndClear) {
  const auto fatal = QAbstractItemModelTester::FailureReportingMode::Fatal;
  const QAbstractItemModelTester groupsTester(&groups.Model(), fatal);
  const QAbstractItemModelTester detailsTester(&details.Model(), fatal);
  Make(50, 3);
  List(50, 3);
  EXPECT_EQ(groups.Model().rowCount(), 50);
  EXPECT_EQ(details.Model().rowCount(), 3);
  {
    const cResultsList::UpdateLock lock(results.ulvwDupeGroups);
    EXPECT_EQ(groups.Model().rowCount(), 0);
    QApplication::processEvents();
    results.ulvwDupeGroups.RemoveIf([](std::int32_t group) { return group % 2 == 0; });
    EXPECT_EQ(groups.Model().rowCount(), 0);
  }
  EXPECT_EQ(groups.Model().rowCount(), 25);
  for (int column = 0; column < 3; ++column) ClickHeading(groups, column);
  for (int column = 0; column < 6; ++column) ClickHeading(details, column);
  Mark(0, true);
  results.ulvwDupeGroups.RemoveIf([](std::int32_t group) { return group % 3 == 0; });
  results.DisplayDupeGroupDetails(77, true);
  EXPECT_EQ(Cell(details, 0, 0), ToQString(LoadResString(492)));
  QApplication::processEvents();
  results.ulvwDupeGroups.Clear();
  results.ulvwDupeDetails.Clear();
  QApplication::processEvents();
  EXPECT_EQ(groups.Model().rowCount() + details.Model().rowCount(), 0);
}

TEST_F(Lists, TheSelectedRowIsThatOfTheListOnBothWays) {
  Make(200, 2);
  List(200, 2);
  EXPECT_EQ(groups.currentIndex().row(), 0);
  EXPECT_TRUE(groups.selectionModel()->isRowSelected(0));
  QSignalSpy selected(&groups, &GroupList::RowSelected);
  ClickRow(groups, 3);
  QTest::keyClick(&groups, Qt::Key_Down);
  EXPECT_EQ(selected.size(), 2);
  EXPECT_EQ(results.ulvwDupeGroups.SelectedPosition(), 4);
  EXPECT_EQ(results.mCurrentGroup, 5);
  QTest::mouseClick(groups.viewport(), Qt::LeftButton, Qt::ControlModifier,
                    groups.visualRect(groups.currentIndex()).center());
  EXPECT_TRUE(groups.selectionModel()->isRowSelected(4)) << "a selection cannot be taken back";
  ClickHeading(groups, 2);
  EXPECT_EQ(results.ulvwDupeGroups.ItemData(groups.currentIndex().row()), 5) << "it goes along";
  EXPECT_TRUE(groups.selectionModel()->isRowSelected(groups.currentIndex().row()));
  EXPECT_TRUE(groups.viewport()->rect().intersects(groups.visualRect(groups.currentIndex())));
  EXPECT_EQ(selected.size(), 2) << "only a person selects";

  EXPECT_EQ(results.ulvwDupeDetails.SelectedPosition(), cResultsList::NoItem);
  QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
  QApplication::sendEvent(&details, &focus);
  EXPECT_EQ(results.ulvwDupeDetails.SelectedPosition(), cResultsList::NoItem)
      << "the focus chooses nothing";
  QTest::keyClick(&details, Qt::Key_Down);
  EXPECT_EQ(results.ulvwDupeDetails.SelectedPosition(), 0);
}

TEST_F(Lists, RowsStandWhereTheyStoodAfterARemovalAndAtTheTopAfterAFill) {
  Make(200, 2);
  List(200, 2);
  groups.setCurrentIndex(groups.model()->index(150, 0));
  groups.verticalScrollBar()->setValue(145);
  results.ulvwDupeGroups.RemoveIf([](std::int32_t group) { return group == 200; });
  EXPECT_EQ(groups.verticalScrollBar()->value(), 145);
  List(200, 2);
  EXPECT_EQ(groups.verticalScrollBar()->value(), 0);
}

TEST_F(Lists, CheckBoxesAndSpaceMarkFilesWithoutAQuestion) {
  Make(1, 3);
  List(1, 3);
  QTest::mouseClick(details.viewport(), Qt::LeftButton, {}, CheckBox(details, 1).center());
  EXPECT_EQ(Marks(), "-x-");
  QSignalSpy activated(&details, &DetailList::FileActivated);
  QTest::mouseDClick(details.viewport(), Qt::LeftButton, {}, CheckBox(details, 1).center());
  EXPECT_EQ(activated.size(), 0) << "two clicks on a box open nothing";
  ClickRow(details, 0, 4);
  const bool before = results.mFileMarked[0];
  QTest::keyClick(&details, Qt::Key_Space);
  EXPECT_NE(results.mFileMarked[0], before) << "whichever column was clicked";
  EXPECT_EQ(details.Model().index(0, 0).data(Qt::CheckStateRole).toInt(),
            before ? Qt::Unchecked : Qt::Checked);
}

TEST_F(Lists, AGroupOfWhichEveryFileIsMarkedIsShownAsSuch) {
  Make(2, 2);
  List(2, 2);
  const QModelIndex first = groups.Model().index(0, 0);
  const auto isShown = [&] {
    return first.data(Qt::FontRole).value<QFont>().bold() &&
           !first.data(Qt::DecorationRole).value<QIcon>().isNull() &&
           first.data(Qt::ToolTipRole).toString().contains(ToQString(LoadResString(439))) &&
           first.data(Qt::AccessibleTextRole).toString().contains(ToQString(LoadResString(439)));
  };
  Mark(0, true);
  EXPECT_FALSE(isShown());
  Mark(1, true);
  EXPECT_TRUE(isShown());
  EXPECT_FALSE(groups.Model().IsWhollyMarkedAt(groups.Model().index(1, 0)));
  Mark(1, false);
  EXPECT_FALSE(isShown());
}

TEST_F(Lists, ANameIsEditedInPlaceAndToldWhenTheEditorHasGone) {
  Make(1, 3);
  List(1, 3);
  QSignalSpy edited(&details.Model(), &DetailsModel::NameEdited);
  ClickRow(details, 1, 4);
  QTest::keyClick(&details, Qt::Key_F2);
  ASSERT_NE(Editor(details), nullptr) << "whichever column was clicked";
  EXPECT_EQ(Editor(details)->text(), Cell(details, 1, 0));
  Editor(details)->setText(QStringLiteral("new.jpg"));
  QTest::keyClick(Editor(details), Qt::Key_Return);
  EXPECT_EQ(edited.size(), 0);
  QTRY_COMPARE_WITH_TIMEOUT(edited.size(), 1, 5000);
  const std::int32_t record = results.ulvwDupeDetails.ItemData(1);
  EXPECT_EQ(edited.at(0),
            (QList<QVariant>{record, Cell(details, 1, 0), QStringLiteral("new.jpg")}));
  for (const QString& same : {QString(), Cell(details, 1, 0)})
    EXPECT_FALSE(details.Model().setData(details.Model().index(1, 0), same, Qt::EditRole));
}

TEST_F(Lists, AResetInTheMiddleOfAnEditDropsTheEdit) {
  Make(2, 3);
  List(2, 3);
  QSignalSpy edited(&details.Model(), &DetailsModel::NameEdited);
  for (const bool isCommitted : {false, true}) {
    ClickRow(details, 2, 0);
    details.EditSelectedName();
    ASSERT_NE(Editor(details), nullptr);
    Editor(details)->setText(QStringLiteral("never.jpg"));
    if (isCommitted) QTest::keyClick(Editor(details), Qt::Key_Return);
    results.DisplayDupeGroupDetails(2, true);
    QApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(Editor(details), nullptr);
  }
  QTest::mousePress(details.viewport(), Qt::LeftButton, {}, {50, 30});
  results.ulvwDupeDetails.Clear();
  QTest::mouseMove(details.viewport(), {60, 80});
  QTest::mouseRelease(details.viewport(), Qt::LeftButton, {}, {60, 80});
  EXPECT_EQ(edited.size(), 0);
}

TEST_F(Lists, MouseAndKeysAskForTheMenuAndTheFile) {
  Make(1, 3);
  List(1, 3);
  QSignalSpy menu(&details, &DetailList::MenuRequested);
  QSignalSpy activated(&details, &DetailList::FileActivated);
  ClickRow(details, 1, 1, Qt::RightButton);
  EXPECT_EQ(menu.size(), 1);
  EXPECT_EQ(results.ulvwDupeDetails.SelectedPosition(), 1) << "of the row under the pointer";
  QContextMenuEvent key(QContextMenuEvent::Keyboard, {}, {});
  QApplication::sendEvent(details.viewport(), &key);
  ASSERT_EQ(menu.size(), 2);
  EXPECT_TRUE(details.visualRect(details.currentIndex())
                  .contains(details.viewport()->mapFromGlobal(menu.at(1).at(0).toPoint())));
  QTest::keyClick(&details, Qt::Key_Return);
  QTest::mouseDClick(details.viewport(), Qt::LeftButton, {},
                     details.visualRect(details.model()->index(2, 1)).center());
  EXPECT_EQ(activated.size(), 2);
  EXPECT_EQ(Editor(details), nullptr);
}

TEST_F(Lists, NamesAreShownAsTheyAreAndOnOneLine) {
  const std::int32_t folder = gFolderPathsList->AddFolder(u"C:\\a\\");
  AddRecord(u"<b>line\nbreak\u2028\u2029", 5, folder);
  AddRecord(u"x", 5, folder);
  results.mFileMarked.assign(2, false);
  List(1, 2);
  for (const ResultsList* const list :
       {static_cast<ResultsList*>(&groups), static_cast<ResultsList*>(&details)}) {
    EXPECT_EQ(Cell(*list, 0, 0), QStringLiteral(u"<b>line\u240Abreak\uFFFD\uFFFD"));
    EXPECT_TRUE(list->model()
                    ->index(0, 0)
                    .data(Qt::ToolTipRole)
                    .toString()
                    .contains(QStringLiteral("&lt;b&gt;line")));
  }
  EXPECT_EQ(details.model()->index(1, 1).data(Qt::ToolTipRole).toString(), "C:\\a\\x");
}

TEST_F(Lists, ColumnsShareTheWidthUntilAPersonGivesThemAnother) {
  details.resize(1400, 300);
  QApplication::processEvents();
  EXPECT_EQ(details.columnWidth(0), 200);
  EXPECT_EQ(details.columnWidth(1), details.viewport()->width() - 5 * 200)
      << "the path has what is left";
  EXPECT_EQ(groups.columnWidth(1), 900 / 6);
  EXPECT_EQ(groups.model()->columnCount() + details.model()->columnCount(), 9)
      << "without the hidden ones";
  details.header()->resizeSection(1, 333);
  details.resize(700, 300);
  QApplication::processEvents();
  EXPECT_EQ(details.columnWidth(1), 333);
  groups.Model().SetCaption(LoadResString(364));
  EXPECT_EQ(groups.model()->headerData(0, Qt::Horizontal, Qt::TextAlignmentRole).toInt(),
            Qt::AlignRight | Qt::AlignVCenter)
      << "sizes are numbers";
}

TEST_F(Lists, AnEmptyListSaysWhatToDoInThePalettesColour) {
  const QImage plain = groups.grab().toImage();
  groups.SetEmptyText([] { return QStringLiteral("Press Find"); });
  EXPECT_NE(groups.grab().toImage(), plain);
  Make(1, 2);
  List(1, 2);
  const QImage filled = groups.grab().toImage();
  groups.SetEmptyText({});
  EXPECT_EQ(groups.grab().toImage(), filled);
}

}  // namespace
}  // namespace quillmarsh
