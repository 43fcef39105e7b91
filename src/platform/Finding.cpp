// SPDX-License-Identifier: MIT
// The listing that is taken in portions on machines that do not list in the background.
#include "platform/Finding.h"

#include "platform/SystemErrors.h"

namespace quillmarsh {

namespace {

constexpr int kEntriesPerPortion = 500;

class ListingInSteps final : public BackgroundListing {
 public:
  ListingInSteps(Finding& find, const CallState& state, TextView folder)
      : mFind(find), mState(state), mPattern(Text(folder) + u"*") {}
  ~ListingInSteps() override { Close(); }

  std::uint32_t Take(const std::function<void(const WIN32_FIND_DATAW&)>& entry) override {
    WIN32_FIND_DATAW found;
    for (int count = 0; mEnd == 0 && count < kEntriesPerPortion; ++count) {
      if (Next(found))
        entry(found);
      else
        mEnd = mState.lastError;
    }
    if (mEnd != 0) Close();
    return mEnd;
  }

 private:
  bool Next(WIN32_FIND_DATAW& found) {
    if (mSearch != INVALID_HANDLE) return mFind.FindNextFileW(mSearch, found);
    mSearch = mFind.FindFirstFileW(mPattern, found);
    return mSearch != INVALID_HANDLE;
  }
  void Close() {
    if (mSearch != INVALID_HANDLE) mFind.FindClose(mSearch);
    mSearch = INVALID_HANDLE;
  }

  Finding& mFind;
  const CallState& mState;
  const Text mPattern;
  HANDLE mSearch = INVALID_HANDLE;
  std::uint32_t mEnd = 0;
};

}  // namespace

std::unique_ptr<BackgroundListing> Finding::DoListInBackground(TextView folder) {
  return std::make_unique<ListingInSteps>(*this, State(), folder);
}

}  // namespace quillmarsh
