// SPDX-License-Identifier: MIT
// One walk over the runs of neighbours that agree finds the candidates; then each is read, while
// the machine is told which ones come next.
#include "search/cContentComparison.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <random>

#include "frame/ProgramFlags.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/FileChecksum.h"
#include "fsobjects/PrivateClipboard.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "removal/history/cLog.h"

namespace quillmarsh {

namespace {

// Short files do not flood the status bar.
const Currency kNamedAbove = Currency::FromInteger(20 * 1024 * 1024);     // bytes
const Currency kProgressAbove = Currency::FromInteger(50 * 1024 * 1024);  // bytes
constexpr std::chrono::milliseconds kProgressInterval{500};
constexpr std::int32_t kRecordsPerLook = 4096;
// How far the hints go: enough that nobody runs dry, and no more memory than a little.
constexpr std::size_t kFilesAhead = 256;
constexpr std::int64_t kBytesAhead = 8 * 1024 * 1024;
constexpr std::int64_t kMostBytesOfOne = 128 * 1024;

struct ReadAheadScope {
  ReadAheadScope() = default;
  ~ReadAheadScope() { TheMachine().Files().DropReadAhead(); }
  ReadAheadScope(const ReadAheadScope&) = delete;
  ReadAheadScope& operator=(const ReadAheadScope&) = delete;
};

void ShowProgressText() {
  const Text progress = GetCRCProgressText();
  if (!progress.empty()) SetPanel(PANEL2, progress);
}

}  // namespace

std::int32_t GetRandomCRC() {
  std::mt19937 generator(
      static_cast<std::uint32_t>(std::chrono::system_clock::now().time_since_epoch().count()));
  return std::uniform_int_distribution<std::int32_t>(0, 32766)(generator);
}

cContentComparison::cContentComparison(cSearchResults& results)
    : mResults(results), tmrCRCStatusCheck(kProgressInterval, ShowProgressText) {}

bool cContentComparison::ComputeChecksums() {
  SetPanel(PANEL1, LoadResString(292) + u"...");
  SetPanel(PANEL2, {});
  if (gViews.status != nullptr) gViews.status->ShowProgress(mResults.mFileCount);
  DoEvents_Fast();
  if (!FindCandidates()) return false;
  const ReadAheadScope hints;
  // Of the candidates from the present one to the last that was hinted.
  std::deque<Text> paths;
  std::int64_t bytesAhead = 0;
  const auto bytesOf = [this](std::size_t candidate) {
    const Currency size = mResults.Record(mCandidates[candidate]).Size;
    return std::min(size.ToInteger(), kMostBytesOfOne);
  };
  std::size_t next = 0;
  for (std::size_t present = 0; present < mCandidates.size(); ++present) {
    for (; next < mCandidates.size() && paths.size() <= kFilesAhead &&
           (bytesAhead < kBytesAhead || paths.empty());
         ++next) {
      paths.push_back(mResults.FullPathOf(mResults.Record(mCandidates[next])));
      TheMachine().Files().ReadAhead(ToLongPath(paths.back()));
      bytesAhead += bytesOf(next);
    }
    if (!HandleCandidate(mCandidates[present], paths.front())) return false;
    bytesAhead -= bytesOf(present);
    paths.pop_front();
  }
  mResults.mAreContentsKnown = true;
  return true;
}

bool cContentComparison::FindCandidates() {
  const std::int32_t count = mResults.RecordCount();
  RecordKeyReader reader(mResults.Facts(), mResults.mCriteria.WithoutContents());
  RecordKey previous = reader.Next(mResults.Record(1));
  bool isInRun = false;
  for (std::int32_t i = 2; i <= count; ++i) {
    if (i % kRecordsPerLook == 0) DoEvents_Fast();
    if (gUserAbort) return false;
    const RecordKey key = reader.Next(mResults.Record(i));
    const bool isPartner = reader.AreEqual(previous, key);
    if (isPartner && !isInRun) mCandidates.push_back(i - 1);
    if (isPartner) mCandidates.push_back(i);
    isInRun = isPartner;
    previous = key;
  }
  return true;
}

bool cContentComparison::HandleCandidate(std::int32_t index, const Text& path) {
  DupeFileUDT& record = mResults.mDupeFiles[static_cast<std::size_t>(index) - 1];
  ShowCandidate(index, path);
  tmrCRCStatusCheck.SetEnabled(record.Size > kProgressAbove);
  bool errorFlag = false;
  std::int32_t errorNumber = 0;
  Text errorText;
  const std::int32_t value = GetFileCRC32(path, errorFlag, errorNumber, errorText);
  tmrCRCStatusCheck.SetEnabled(false);
  // The value that stands for a stop may also be the true one of a file.
  if (!errorFlag && value == kChecksumStopped && gStopCRC) gUserAbort = true;
  DoEvents_Fast();
  if (gUserAbort) return false;
  record.CRC32 = value;
  if (errorFlag) {
    AddChecksumErrorToLog(TheMachine().Drives().ShownPath(path), errorNumber, errorText);
    record.CRC32 = GetRandomCRC();
    mResults.mUnreadable.insert(record.Name);
  }
  return true;
}

void cContentComparison::ShowCandidate(std::int32_t index, const Text& path) {
  if (gViews.status == nullptr) return;
  gViews.status->SetProgress(index);
  SetPanel(PANEL2, DecimalText(index) + u"/" + DecimalText(mResults.mFileCount));
  if (mResults.Record(index).Size > kNamedAbove) {
    const Text shown = TheMachine().Drives().ShownPath(path);
    SetPanel(PANEL1, shown);
    SetPanelToolTip(PANEL1, shown);
    mIsHintShown = false;
  } else if (!mIsHintShown) {
    SetPanel(PANEL1, LoadResString(787));
    SetPanelToolTip(PANEL1, {});
    mIsHintShown = true;
  }
}

}  // namespace quillmarsh
