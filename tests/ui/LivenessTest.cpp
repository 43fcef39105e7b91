// SPDX-License-Identifier: MIT
// The window answers at least every 50 milliseconds while it searches one folder of a million
// files, sorts, marks by a rule and removes.
#include <QApplication>
#include <QDialog>
#include <QHeaderView>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "filetypes/cCommonFileTypes.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "removal/history/cHistory.h"
#include "search/ProgramFixture.h"
#include "ui/MainWindowParts.h"

namespace quillmarsh {
namespace {

constexpr std::int32_t kSlowness = QUILLMARSH_SLOWNESS;
constexpr std::int32_t kFiles = 1'000'000 / (kSlowness * kSlowness);
constexpr std::int32_t kFilesOfGroup = 5;
constexpr double kLongestWork = 50 * kSlowness;  // milliseconds

double ThreadMilliseconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// Between two pumps; time of this thread, which does not count what runs beside the test.
class WorkBetweenPumps final : public PumpView {
 public:
  explicit WorkBetweenPumps(PumpView& pump) : mPump(pump) {}
  void Reset() {
    mLongest = 0;
    mBefore = ThreadMilliseconds();
  }
  void End() { mLongest = std::max(mLongest, ThreadMilliseconds() - mBefore); }
  [[nodiscard]] double Longest() const { return mLongest; }
  void PumpEvents() override {
    End();
    mPump.PumpEvents();
    mBefore = ThreadMilliseconds();
  }

 private:
  PumpView& mPump;
  double mBefore = 0;
  double mLongest = 0;
};

class Liveness : public ProgramFixture {
 protected:
  Liveness() {
    gCommonFileTypes = std::make_unique<cCommonFileTypes>();
    gHistory = std::make_unique<cHistory>();
    machine.SetHook(nullptr);  // which keeps a journal of millions of calls
    machine.SetWaitingEvents(QS_PAINT);
    for (std::int32_t file = 0; file < kFiles; ++file)
      Make(u"C:\\many\\" + DecimalText(file) + u".jpg",
           static_cast<std::uint64_t>(1 + file % (kFiles / kFilesOfGroup)), file % 86400);
    gViews.messages = &messages;
    gViews.pump = &between;
    window.emplace(views);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&*window));
    gDupeSettings->SetNamesMatch(false);
    gDupeSettings->SetSizesMatch(true);
    gDupeSettings->SetIgnoreZeroByteFiles(false);
    QObject::connect(&closer, &QTimer::timeout, [] {
      if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) box->reject();
    });
    closer.start(0);
  }
  ~Liveness() override {
    window.reset();
    gCommonFileTypes.reset();
    gHistory.reset();
  }
  frmFindDuplicates::Parts& Parts() { return window->GetParts(); }
  template <typename Work>
  void ExpectAlive(const char* what, Work&& work) {
    views.ResetLongestGap();
    between.Reset();
    work();
    between.End();
    const QtViews::Gap& gap = views.LongestGap();
    std::printf("%s: %.1f ms of work; longest gap %lld ms, from %s:%u to %s:%u\n", what,
                between.Longest(), static_cast<long long>(gap.milliseconds), gap.before.file_name(),
                gap.before.line(), gap.after.file_name(), gap.after.line());
    EXPECT_LE(between.Longest(), kLongestWork) << what;
  }
  void Do(const char* command) { PerformCommand(Parts(), QString::fromLatin1(command)); }

  QtViews views;
  WorkBetweenPumps between{views};
  QTimer closer;
  std::optional<frmFindDuplicates> window;
};

TEST_F(Liveness, AMillionFilesOfOneFolderLeaveTheWindowAlive) {
  Parts().folders.SetSelectedFolderPath(u"C:\\many\\");
  Parts().folders.AddFolderToList();
  ExpectAlive("search", [&] { Do("START_SEARCH_KEY"); });
  ASSERT_EQ(Parts().results.mGroupCount, kFiles / kFilesOfGroup);
  ExpectAlive("rule", [&] { Do("mnuFileKeepOldest"); });
  ExpectAlive("undo", [&] { Do("UNDO_KEY"); });
  ExpectAlive("sort", [&] {
    QHeaderView& header = *Parts().ulvwDupeGroups->header();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      QPoint(header.sectionViewportPosition(2) + 10, header.height() / 2));
  });

  Do("mnuFileKeepNewest");
  gDupeSettings->SetRemoveWarningShown(true);
  gDupeSettings->SetRemoveMethod(RemoveMethod::Delete);
  ExpectAlive("removal", [&] {
    messages.Expect(MessageBoxResult::Yes);
    messages.Expect();
    QTimer::singleShot(1000, [] { gUserAbort = true; });
    Do("REMOVE_KEY");
  });
  EXPECT_LT(Parts().results.mDupeFileCount, kFiles);
}

}  // namespace
}  // namespace quillmarsh
