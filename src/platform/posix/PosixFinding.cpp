// SPDX-License-Identifier: MIT
// Handing out what the reading thread has listed.
#include "platform/posix/PosixFinding.h"

namespace quillmarsh {
namespace {

// A reader of its own, so that a file system which does not answer holds up no search.
class ListingOfItsOwn final : public BackgroundListing {
 public:
  ListingOfItsOwn(FolderReader::Settings settings, TextView folder)
      : mReader(std::move(settings)), mListing(mReader.Open(folder)) {
    mReader.Begin(mListing);
  }
  ~ListingOfItsOwn() override { mReader.Close(mListing); }

  std::uint32_t Take(const std::function<void(const WIN32_FIND_DATAW&)>& entry) override {
    if (!FolderReader::HasNews(*mListing)) return 0;
    FolderReader::Portion portion = mReader.Next(mListing);
    if (portion.batch != nullptr) {
      for (const WIN32_FIND_DATAW& found : portion.batch->entries) entry(found);
      mReader.Recycle(std::move(portion.batch));
    }
    return portion.end;
  }

 private:
  FolderReader mReader;
  const std::shared_ptr<Listing> mListing;
};

}  // namespace

PosixFinding::PosixFinding(CallState& state, PosixContext& context, FolderReader::Settings settings)
    : Finding(state), mContext(context), mSettings(std::move(settings)), mReader(mSettings) {}

HANDLE PosixFinding::DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) {
  const std::size_t backslash = pattern.rfind(u'\\');
  const TextView last = pattern.substr(backslash == TextView::npos ? 0 : backslash + 1);
  if (last != u"*" && last != u"*.*") return FindSingle(pattern, entry);
  if (backslash == TextView::npos) return Fail(ERROR_BAD_PATHNAME, INVALID_HANDLE);

  std::unique_ptr<Search> search = mSpare ? std::move(mSpare) : std::make_unique<Search>();
  search->listing = mReader.Open(pattern.substr(0, backslash + 1));
  search->next = 0;
  search->end = 0;
  if (!HandOut(*search, entry)) {
    mReader.Close(search->listing);
    return INVALID_HANDLE;
  }
  return mSearches.Add(std::move(search));
}

bool PosixFinding::DoFindNext(HANDLE handle, WIN32_FIND_DATAW& entry) {
  Search* const search = mSearches.Find(handle);
  if (search == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  return HandOut(*search, entry);
}

bool PosixFinding::HandOut(Search& search, WIN32_FIND_DATAW& entry) {
  while (search.batch == nullptr || search.next == search.batch->entries.size()) {
    mReader.Recycle(std::move(search.batch));
    if (search.end != 0) return Fail(search.end, false);
    FolderReader::Portion portion = mReader.Next(search.listing);
    search.batch = std::move(portion.batch);
    search.end = portion.end;
    search.next = 0;
  }
  entry = search.batch->entries[search.next++];
  return true;
}

bool PosixFinding::DoFindClose(HANDLE handle) {
  std::unique_ptr<Search> search = mSearches.Remove(handle);
  if (search == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (search->listing != nullptr) {
    mReader.Close(search->listing);
    mReader.Recycle(std::move(search->batch));
    search->listing.reset();
    mSpare = std::move(search);
  }
  return true;
}

std::unique_ptr<BackgroundListing> PosixFinding::DoListInBackground(TextView folder) {
  FolderReader::Settings settings = mSettings;
  settings.patience = nullptr;
  settings.farewell = std::chrono::milliseconds(0);
  return std::make_unique<ListingOfItsOwn>(std::move(settings), folder);
}

HANDLE PosixFinding::FindSingle(TextView path, WIN32_FIND_DATAW& entry) {
  Located located;
  if (const std::uint32_t error = mContext.Locate(path, located))
    return Fail(error, INVALID_HANDLE);
  // A root, or a folder named with a final backslash, has no entry of its own to find.
  if (located.path.relative.empty() || located.path.endsInBackslash)
    return Fail(ERROR_FILE_NOT_FOUND, INVALID_HANDLE);
  EntryFacts found;
  if (const std::uint32_t error = mContext.LookAt(located, found))
    return Fail(error, INVALID_HANDLE);
  auto search = std::make_unique<Search>();
  search->end = ERROR_NO_MORE_FILES;
  search->singleName = path.substr(path.rfind(u'\\') + 1);
  FillFindData(found.facts, found.kind, located.path.Name(), entry);
  entry.cFileName = search->singleName;
  return mSearches.Add(std::move(search));
}

}  // namespace quillmarsh
