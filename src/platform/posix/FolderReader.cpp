// SPDX-License-Identifier: MIT
// The reading thread, its queue, and how the caller waits for it.
#include "platform/posix/FolderReader.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/Machine.h"

namespace quillmarsh {
namespace {

constexpr std::chrono::milliseconds AskInterval{10};
constexpr std::chrono::milliseconds KeepRootsFor{300};
constexpr std::size_t MostHints = 1U << 17U;
constexpr std::size_t MostSpareBatches = 64;
constexpr std::size_t LargestSpare = 1U << 14U;
constexpr int SpinTurns = 200;
constexpr int PortionsPerWake = 16;

// Most folders are read in less time than a sleeping thread takes to wake up.
void SpinUntil(const std::atomic<bool>& flag) {
  static const bool hasOtherCores = std::thread::hardware_concurrency() > 1;
  for (int turn = 0; hasOtherCores && turn < SpinTurns && !flag.load(std::memory_order_acquire);
       ++turn) {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#else
    std::atomic_signal_fence(std::memory_order_seq_cst);
#endif
  }
}

}  // namespace

// All that a reading thread touches. It belongs to the thread as much as to the reader, so a thread
// that is left behind never meets freed memory.
struct FolderReader::Shared {
  std::shared_ptr<const DriveLetters> letters;
  std::shared_ptr<const PathResolver> resolver;
  std::function<void(TextView)> beforeFolder;
  std::size_t limit = 0;

  std::mutex mutex;
  std::condition_variable work;
  std::condition_variable news;
  std::deque<std::shared_ptr<Listing>> order;
  std::shared_ptr<Listing> urgent;   // what the caller needs next, before all others
  const Listing* awaited = nullptr;  // what the caller sleeps for
  int publishedMeanwhile = 0;        // portions since the awaited one came
  std::vector<std::unique_ptr<EntryBatch>> spare;
  std::size_t buffered = 0;
  bool idle = false;
  bool quit = false;
  bool exited = false;
};

FolderReader::FolderReader(Settings settings) : mSettings(std::move(settings)) {
  StartThread();
}

FolderReader::~FolderReader() {
  std::unique_lock lock(mShared->mutex);
  mShared->quit = true;
  for (const auto& listing : mShared->order) listing->dropped = true;
  mShared->work.notify_all();
  const bool exited =
      mShared->news.wait_for(lock, mSettings.farewell, [&] { return mShared->exited; });
  lock.unlock();
  if (exited)
    mThread.join();
  else
    mThread.detach();
}

void FolderReader::StartThread() {
  mShared = std::make_shared<Shared>();
  mShared->letters = mSettings.letters;
  mShared->resolver = mSettings.resolver;
  mShared->beforeFolder = mSettings.beforeFolder;
  mShared->limit = mSettings.bufferedBytes;
  mThread = std::thread([shared = mShared] { Work(shared); });
}

void FolderReader::Work(const std::shared_ptr<Shared>& shared) {
  auto tools = std::make_unique<ReadingTools>();
  tools->letters = shared->letters;
  tools->resolver = shared->resolver;
  tools->beforeFolder = shared->beforeFolder;
  std::shared_ptr<Listing> listing;
  std::unique_lock lock(shared->mutex);
  while (!shared->quit) {
    listing = Pick(*shared);
    const bool wake = ShouldWake(*shared, listing == nullptr);
    if (listing == nullptr) {
      if (wake) shared->news.notify_one();
      shared->idle = true;
      if (tools->roots.empty())
        shared->work.wait(lock);
      else if (shared->work.wait_for(lock, KeepRootsFor) == std::cv_status::timeout)
        tools->roots.clear();
      shared->idle = false;
      continue;
    }
    listing->held = true;
    std::unique_ptr<EntryBatch> batch;
    if (!shared->spare.empty()) {
      batch = std::move(shared->spare.back());
      shared->spare.pop_back();
    }
    lock.unlock();
    if (wake) shared->news.notify_one();
    if (batch == nullptr) batch = std::make_unique<EntryBatch>();
    batch->Clear();
    batch->entries.reserve(16);
    const std::uint32_t end = listing->cursor.ReadOn(*tools, *batch, listing->dropped);
    lock.lock();
    if (shared->quit) break;  // left behind: the listing is no longer of interest
    listing->held = false;
    Publish(*shared, *listing, std::move(batch), end);
  }
  lock.unlock();
  listing.reset();
  tools.reset();
  lock.lock();
  shared->exited = true;
  shared->news.notify_all();
}

std::shared_ptr<Listing> FolderReader::Pick(Shared& shared) {
  const auto isDone = [](const Listing& listing) { return listing.end != 0 || listing.dropped; };
  if (shared.urgent != nullptr && !isDone(*shared.urgent) && shared.urgent->ready.empty())
    return shared.urgent;
  while (!shared.order.empty() && isDone(*shared.order.front())) shared.order.pop_front();
  if (shared.order.empty() || shared.buffered >= shared.limit) return nullptr;
  return shared.order.front();
}

void FolderReader::Publish(Shared& shared, Listing& listing, std::unique_ptr<EntryBatch> batch,
                           std::uint32_t end) {
  if (listing.dropped) {
    listing.end = end != 0 ? end : ERROR_OPERATION_ABORTED;
    return;
  }
  if (batch->entries.empty()) {
    shared.spare.push_back(std::move(batch));
  } else {
    shared.buffered += batch->Bytes();
    listing.ready.push_back(std::move(batch));
  }
  listing.end = end;
  if (!listing.ready.empty() || end != 0) listing.hasNews.store(true, std::memory_order_release);
  if (shared.awaited != nullptr && shared.awaited->hasNews) ++shared.publishedMeanwhile;
}

// A caller that sleeps is faster than the reader: it is woken when some portions have gathered or
// when there is nothing else to read, and not for each small folder. Should the reader hang
// meanwhile, the caller looks by itself when its own time is up.
bool FolderReader::ShouldWake(Shared& shared, bool nothingToRead) {
  if (shared.awaited == nullptr || shared.publishedMeanwhile == 0) return false;
  if (!nothingToRead && shared.publishedMeanwhile < PortionsPerWake) return false;
  shared.publishedMeanwhile = 0;
  return true;
}

void FolderReader::Post(Shared& shared, const std::shared_ptr<Listing>& listing, bool first) {
  listing->queued = true;
  if (first)
    shared.order.push_front(listing);
  else
    shared.order.push_back(listing);
  if (shared.idle && (first || shared.buffered < shared.limit)) shared.work.notify_one();
}

void FolderReader::Hint(TextView folder) {
  if (mHints.size() >= MostHints) return;
  folder = WithoutLongPrefix(folder);
  if (mHints.contains(folder)) return;
  auto listing = std::make_shared<Listing>(Text(folder));
  mHints.emplace(listing->cursor.Folder(), listing);
  const std::lock_guard lock(mShared->mutex);
  Post(*mShared, listing, false);
}

void FolderReader::DropHints() {
  for (const auto& [folder, listing] : mHints) listing->dropped = true;
  const std::lock_guard lock(mShared->mutex);
  for (const auto& [folder, listing] : mHints) {
    for (const auto& batch : listing->ready)
      mShared->buffered -= std::min(mShared->buffered, batch->Bytes());
    listing->ready.clear();
  }
  std::erase_if(mShared->order, [](const auto& listing) { return listing->dropped.load(); });
  mHints.clear();
}

std::shared_ptr<Listing> FolderReader::Open(TextView folder) {
  folder = WithoutLongPrefix(folder);
  std::shared_ptr<Listing> listing;
  if (const auto hint = mHints.find(folder); hint != mHints.end()) {
    listing = hint->second;
    mHints.erase(hint);
  } else {
    listing = std::make_shared<Listing>(Text(folder));
  }
  listing->taken = true;
  return listing;
}

FolderReader::Portion FolderReader::Next(const std::shared_ptr<Listing>& listing) {
  if (!AwaitNews(listing)) return {nullptr, ERROR_OPERATION_ABORTED};
  const std::shared_ptr<Shared> shared = mShared;
  const std::lock_guard lock(shared->mutex);
  Portion portion;
  if (!listing->ready.empty()) {
    portion.batch = std::move(listing->ready.front());
    listing->ready.pop_front();
    const std::size_t before = shared->buffered;
    shared->buffered -= std::min(before, portion.batch->Bytes());
    const bool hasRoomAgain = shared->buffered < shared->limit / 2 && shared->idle;
    if (hasRoomAgain && !shared->order.empty()) shared->work.notify_one();
  }
  if (listing->ready.empty()) {
    portion.end = listing->end;
    // The end stays for a call behind the end.
    listing->hasNews.store(listing->end != 0, std::memory_order_relaxed);
  }
  while (!mSpare.empty() && shared->spare.size() < MostSpareBatches) {
    shared->spare.push_back(std::move(mSpare.back()));
    mSpare.pop_back();
  }
  return portion;
}

void FolderReader::Begin(const std::shared_ptr<Listing>& listing) {
  const std::lock_guard lock(mShared->mutex);
  mShared->urgent = listing;
  if (!listing->queued)
    Post(*mShared, listing, true);
  else if (mShared->idle)
    mShared->work.notify_one();
}

// False when the listing was given up.
bool FolderReader::AwaitNews(const std::shared_ptr<Listing>& listing) {
  if (listing->hasNews.load(std::memory_order_acquire)) return true;
  if (listing->orphaned) return false;
  Begin(listing);
  SpinUntil(listing->hasNews);
  while (!listing->hasNews.load(std::memory_order_acquire)) {
    // The patience may run other commands of this thread, which may leave the thread behind.
    const std::shared_ptr<Shared> shared = mShared;
    std::unique_lock lock(shared->mutex);
    shared->urgent = listing;
    shared->awaited = listing.get();
    shared->publishedMeanwhile = 0;
    const bool came = shared->news.wait_for(
        lock, AskInterval, [&] { return listing->hasNews.load(std::memory_order_relaxed); });
    shared->awaited = nullptr;
    lock.unlock();
    if (came) break;
    Patience* const patience = mSettings.patience ? mSettings.patience() : nullptr;
    const bool keep = patience == nullptr || patience->KeepWaiting();
    if (listing->orphaned) return false;
    if (!keep) {
      listing->orphaned = true;
      LeaveBehind();
      return false;
    }
  }
  const std::lock_guard lock(mShared->mutex);
  mShared->urgent.reset();
  return true;
}

// The thread is stuck in a call that may never return. What it holds stays with it; listings that
// wait for their turn go over to a new thread; hints are forgotten.
void FolderReader::LeaveBehind() {
  const std::shared_ptr<Shared> old = mShared;
  std::deque<std::shared_ptr<Listing>> rest;
  {
    const std::lock_guard lock(old->mutex);
    old->quit = true;
    if (old->urgent != nullptr) old->order.push_back(std::move(old->urgent));
    for (const auto& listing : old->order) {
      if (listing->held || !listing->taken || listing->orphaned) {
        listing->orphaned = true;
        listing->dropped = true;
      } else if (listing->end == 0 && !listing->dropped &&
                 std::find(rest.begin(), rest.end(), listing) == rest.end()) {
        rest.push_back(listing);
      }
    }
    old->order.clear();
    old->work.notify_all();
  }
  mHints.clear();
  mThread.detach();
  StartThread();
  const std::lock_guard lock(mShared->mutex);
  for (const auto& listing : rest) {
    for (const auto& batch : listing->ready) mShared->buffered += batch->Bytes();
    Post(*mShared, listing, false);
  }
}

void FolderReader::Recycle(std::unique_ptr<EntryBatch> batch) {
  if (batch != nullptr && batch->Bytes() <= LargestSpare && mSpare.size() < MostSpareBatches)
    mSpare.push_back(std::move(batch));
}

void FolderReader::Close(const std::shared_ptr<Listing>& listing) {
  if (listing->orphaned) return;
  if (listing->hasNews.load(std::memory_order_acquire)) {
    const std::lock_guard lock(mShared->mutex);
    if (listing->end != 0 && listing->ready.empty()) return;  // read to its end
  }
  listing->dropped = true;
  const std::lock_guard lock(mShared->mutex);
  for (const auto& batch : listing->ready)
    mShared->buffered -= std::min(mShared->buffered, batch->Bytes());
  listing->ready.clear();
  if (mShared->urgent == listing) mShared->urgent.reset();
  if (mShared->idle) mShared->work.notify_one();
}

}  // namespace quillmarsh
