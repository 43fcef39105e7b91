// SPDX-License-Identifier: MIT
// The tree of folders on real files: which events come and when, and that nothing in it waits.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <condition_variable>
#include <ctime>
#include <mutex>

#include "frame/CommandScope.h"
#include "platform/posix/TempTree.h"
#include "platform/simulated/SimulatedMachine.h"
#include "ui/FolderNode.h"
#include "ui/QtText.h"
#include "ui/ucBrowse.h"

namespace quillmarsh {
namespace {

using test::TempTree;

constexpr double kLongestWork = 50.0 * QUILLMARSH_SLOWNESS;  // milliseconds in one piece
constexpr int kPatience = 60000;  // milliseconds until a test gives up waiting

// Holds up whoever opens a folder called "stuck", as a server that does not answer would.
class Gate {
 public:
  void Pass(TextView folder) {
    if (folder.find(u"stuck") == TextView::npos) return;
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [&] { return mIsOpen; });
  }
  void Open() {
    const std::lock_guard lock(mMutex);
    mIsOpen = true;
    mChanged.notify_all();
  }

 private:
  std::mutex mMutex;
  std::condition_variable mChanged;
  bool mIsOpen = false;
};

class TreeTest : public testing::Test {
 protected:
  TreeTest() {
    mOptions = test::DriveAt(mScratch, mFiles.Root());
    mOptions.beforeFolder = [gate = mGate](TextView folder) { gate->Pass(folder); };
    mMachine = std::make_unique<PosixMachine>(mOptions);
    UseMachine(mMachine.get());
    mTree = std::make_unique<ucBrowse>();
    mTree->resize(300, 400);
    mView = mTree->findChild<QTreeView*>(QStringLiteral("SystemTreeView"));
  }
  ~TreeTest() override {
    mTree.reset();
    mGate->Open();
    UseMachine(nullptr);
  }

  void Show() {
    mTree->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(mTree.get()));
  }
  // The row of a child by the beginning of its text; invalid when there is none.
  [[nodiscard]] QModelIndex Row(const QString& text, const QModelIndex& parent = {}) const {
    const QAbstractItemModel& model = *mView->model();
    for (int row = 0; row < model.rowCount(parent); ++row) {
      const QModelIndex index = model.index(row, 0, parent);
      if (index.data().toString().startsWith(text)) return index;
    }
    return {};
  }
  [[nodiscard]] QModelIndex Drive() const { return Row(QString::fromStdString(mFiles.Root())); }
  // Opens a row and waits until it has been listed.
  void Open(const QModelIndex& index) {
    const QPersistentModelIndex kept(index);
    mView->expand(kept);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Row(QStringLiteral("Reading"), kept).isValid(); },
                                kPatience));
  }
  [[nodiscard]] QStringList Names(const QModelIndex& parent) const {
    QStringList names;
    for (int row = 0; row < mView->model()->rowCount(parent); ++row)
      names << mView->model()->index(row, 0, parent).data().toString();
    return names;
  }
  void Click(const QModelIndex& index, Qt::MouseButton button = Qt::LeftButton) {
    mView->scrollTo(index);
    QTest::mouseClick(mView->viewport(), button, {}, mView->visualRect(index).center());
  }

  TempTree mScratch;
  TempTree mFiles;
  std::shared_ptr<Gate> mGate = std::make_shared<Gate>();
  PosixOptions mOptions;
  std::unique_ptr<PosixMachine> mMachine;
  std::unique_ptr<ucBrowse> mTree;
  QTreeView* mView = nullptr;
};

TEST(NaturalOrder, RunsOfDigitsCountAsNumbersAndCaseComesLast) {
  const std::vector<Text> sorted = {u"",   u"1",   u"01a", u"2",  u"10",    u"a",
                                    u"A1", u"a01", u"a1b", u"a2", u"a2.10", u"b"};
  for (std::size_t i = 0; i < sorted.size(); ++i)
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      const int order = CompareNaturally(sorted[i], sorted[j]);
      EXPECT_EQ(order < 0, i < j) << ToUtf8(sorted[i]) << " " << ToUtf8(sorted[j]);
      EXPECT_EQ(order > 0, i > j) << ToUtf8(sorted[i]) << " " << ToUtf8(sorted[j]);
    }
}

TEST_F(TreeTest, AFolderShowsItsFoldersInNaturalOrderWithoutHiddenOnesLinksAndFiles) {
  for (const char* name : {"n10", "n9", "N2", ".hidden", "b"}) mFiles.Folder(name);
  mFiles.File("file");
  mFiles.Link("link", mFiles.Folder("target"));
  Show();
  Open(Drive());
  EXPECT_EQ(Names(Drive()), QStringList({"b", "N2", "n9", "n10", "target"}));
  EXPECT_TRUE(mView->model()->hasChildren(Row("b", Drive())));
  Open(Row("b", Drive()));
  EXPECT_FALSE(mView->model()->hasChildren(Row("b", Drive())));
}

TEST_F(TreeTest, EventsComeOncePerSelectionAndInOrder) {
  mFiles.Folder("a");
  QStringList events;
  QObject::connect(mTree.get(), &ucBrowse::StatusEvent,
                   [&](const QString& text) { events << text; });
  QObject::connect(mTree.get(), &ucBrowse::PathEvent, [&](const QString& path) { events << path; });
  QObject::connect(mTree.get(), &ucBrowse::DoubleClickEvent, [&] { events << "double"; });
  Show();
  Open(Drive());
  Click(Drive());
  Click(Row("a", Drive()));
  const QPoint place = mView->visualRect(Row("a", Drive())).center();
  QTest::mouseDClick(mView->viewport(), Qt::LeftButton, {}, place);
  QTest::keyClick(mView, Qt::Key_Return);
  QTest::keyClick(mView, Qt::Key_Up);
  mTree.reset();
  EXPECT_EQ(events, QStringList({"SystemTreeView Initalized", "D:\\", "D:\\a\\", "double", "double",
                                 "D:\\", "SystemTreeView ShutDown"}));
}

TEST_F(TreeTest, TheRightButtonDoesNothing) {
  mFiles.Folder("a");
  Show();
  Open(Drive());
  Click(Drive());
  QSignalSpy paths(mTree.get(), &ucBrowse::PathEvent);
  bool sawMenu = false;
  QTimer::singleShot(50, mTree.get(),
                     [&] { sawMenu = QApplication::activePopupWidget() != nullptr; });
  Click(Row("a", Drive()), Qt::RightButton);
  QContextMenuEvent menu(QContextMenuEvent::Mouse, {5, 5}, mView->mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(mView->viewport(), &menu);
  QTest::qWait(100);
  EXPECT_FALSE(sawMenu);
  EXPECT_TRUE(paths.isEmpty());
  EXPECT_EQ(mTree->Path(), u"D:\\");
}

TEST_F(TreeTest, APathIsSelectedOnlyWhereItExists) {
  mFiles.Folder("a/.hidden/deep");
  mFiles.Folder("a/other");
  mFiles.File("a/file");
  mFiles.Link("a/link", mFiles.At("a/other"));
  QSignalSpy paths(mTree.get(), &ucBrowse::PathEvent);
  for (const Text path : {u"D:\\none\\", u"D:\\a\\file", u"D:\\a\\link", u"D:\\a\\link\\x",
                          u"Q:\\a", u"", u"nonsense", u"D:\\A"}) {
    mTree->SetPath(path);
    EXPECT_EQ(mTree->Path(), u"") << ToUtf8(path);
  }
  EXPECT_TRUE(paths.isEmpty());
  mTree->SetPath(u"D:\\a\\.hidden\\deep");
  EXPECT_EQ(mTree->Path(), u"D:\\a\\.hidden\\deep\\");
  ASSERT_EQ(paths.size(), 1);
  EXPECT_EQ(paths.constFirst().constFirst().toString(), "D:\\a\\.hidden\\deep\\");
  mTree->SetPath(u"D:\\none");
  EXPECT_EQ(mTree->Path(), u"D:\\a\\.hidden\\deep\\");
  // What the way has put in is not there twice when its folder has been listed.
  Show();
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return Row("other", Row("a", Drive())).isValid(); }, kPatience));
  EXPECT_EQ(Names(Row("a", Drive())), QStringList({".hidden", "other"}));
  EXPECT_EQ(mTree->Path(), u"D:\\a\\.hidden\\deep\\");
}

TEST_F(TreeTest, RefreshKeepsTheSelectionAndShowsWhatIsNew) {
  mFiles.Folder("a/b");
  Show();
  Open(Drive());
  Open(Row("a", Drive()));
  Click(Row("b", Row("a", Drive())));
  QSignalSpy paths(mTree.get(), &ucBrowse::PathEvent);
  mFiles.Folder("a/new");
  mTree->Refresh();
  EXPECT_EQ(mTree->Path(), u"D:\\a\\b\\");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Row("new", Row("a", Drive())).isValid(); }, kPatience));
  EXPECT_TRUE(paths.isEmpty());
  // A folder that has gone hands the selection to the nearest one above.
  ASSERT_EQ(::rmdir(mFiles.At("a/b").c_str()), 0);
  mTree->Refresh();
  EXPECT_EQ(mTree->Path(), u"D:\\a\\");
  EXPECT_EQ(paths.size(), 1);
}

TEST_F(TreeTest, AFolderThatDoesNotAnswerHoldsUpNothing) {
  mFiles.Folder("stuck/inner");
  mFiles.Folder("well/inner");
  Show();
  Open(Drive());
  const QPersistentModelIndex stuck(Row("stuck", Drive()));
  mView->expand(stuck);
  QElapsedTimer clock;
  clock.start();
  Open(Row("well", Drive()));
  EXPECT_EQ(Names(Row("well", Drive())), QStringList("inner"));
  // A search would come to its folders too.
  const test::WholeListing listing = test::ListAll(*mMachine, u"D:\\well\\");
  EXPECT_NE(listing.Find(u"inner"), nullptr);
  EXPECT_EQ(Names(stuck), QStringList(QStringLiteral("Reading\u2026")));
  mView->collapse(stuck);
  EXPECT_TRUE(Names(stuck).isEmpty());
  mTree->Refresh();
  EXPECT_LT(clock.elapsed(), kPatience / 2);
  mGate->Open();
  Open(Drive());
  Open(Row("stuck", Drive()));
  EXPECT_EQ(Names(Row("stuck", Drive())), QStringList("inner"));
}

TEST_F(TreeTest, NothingIsListedWhileACommandRuns) {
  mFiles.Folder("a/b");
  Show();
  {
    const CommandScope command;
    mView->expand(Drive());
    QTest::qWait(100);
    EXPECT_EQ(Names(Drive()), QStringList(QStringLiteral("Reading\u2026")));
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return Row("a", Drive()).isValid(); }, kPatience));
}

TEST_F(TreeTest, AFolderThatRefusesSaysSo) {
  mFiles.Folder("gone");
  Show();
  Open(Drive());
  ASSERT_EQ(::rmdir(mFiles.At("gone").c_str()), 0);
  Open(Row("gone", Drive()));
  const QModelIndex note = mView->model()->index(0, 0, Row("gone", Drive()));
  ASSERT_TRUE(note.isValid());
  EXPECT_TRUE(note.data().toString().contains("path", Qt::CaseInsensitive))
      << note.data().toString().toStdString();
  EXPECT_FALSE(note.flags() & Qt::ItemIsSelectable);
}

double ThreadMilliseconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

TEST(HugeTree, AMillionFoldersLeaveTheWindowAliveAndAreShownInPart) {
  constexpr int kFolders = 1'000'000;
  constexpr int kShown = 100'000;
  SimulatedMachine machine;
  machine.AddDrive({u"C:\\"});
  for (int number = 0; number < kFolders; ++number)
    machine.AddFolder(u"C:\\many\\d" + DecimalText(number));
  UseMachine(&machine);
  {
    ucBrowse tree;
    tree.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&tree));
    tree.SetPath(u"C:\\many\\d5");
    auto* const view = tree.findChild<QTreeView*>();
    const QPersistentModelIndex folder(view->currentIndex().parent());

    // Between two beats; time of this thread, which does not count what runs beside the test.
    double before = ThreadMilliseconds();
    double longest = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] {
      const double now = ThreadMilliseconds();
      longest = std::max(longest, now - before);
      before = now;
    });
    heart.start(0);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return view->model()->rowCount(folder) > kShown; }, kPatience));
    QTest::qWait(50);
    EXPECT_EQ(view->model()->index(kShown - 1, 0, folder).data().toString(), "d99999");
    EXPECT_EQ(view->model()->index(kShown, 0, folder).data().toString(),
              "900,000 more folders are not shown");
    EXPECT_EQ(tree.Path(), u"C:\\many\\d5\\");
    EXPECT_LT(longest, kLongestWork);
    testing::Test::RecordProperty("longest_work_milliseconds", std::to_string(longest));
  }
  UseMachine(nullptr);
}

}  // namespace
}  // namespace quillmarsh
