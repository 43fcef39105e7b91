// SPDX-License-Identifier: MIT
// Lists folders on one background thread, ahead of the caller where hints tell what comes next.
// Entries come in batches, and the sum of what is buffered is bounded. A thread that hangs in a
// file system which does not answer is left behind with all that it uses, and a new one takes over;
// nothing here ever waits for it. All functions are for one thread, the caller's.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <unordered_map>

#include "base/Text.h"
#include "platform/posix/FolderCursor.h"

namespace quillmarsh {

class Patience;

// One listing, shared between the caller and the reading thread.
class Listing {
 public:
  explicit Listing(Text folder) : cursor(std::move(folder)) {}

 private:
  friend class FolderReader;

  FolderCursor cursor;               // of the thread that holds the listing
  std::atomic<bool> dropped{false};  // nobody wants it any more
  std::atomic<bool> hasNews{false};  // a batch or the end is there
  bool orphaned = false;             // of the caller: a thread that was left behind holds it
  bool taken = false;                // of the caller: opened, and not only hinted
  // Guarded by the mutex of the reader's shared state.
  bool held = false;
  bool queued = false;
  std::uint32_t end = 0;  // 0 while unfinished, else the code that the listing ends with
  std::deque<std::unique_ptr<EntryBatch>> ready;
};

class FolderReader {
 public:
  struct Settings {
    std::shared_ptr<const DriveLetters> letters;
    std::shared_ptr<const PathResolver> resolver;
    std::function<void(TextView)> beforeFolder;  // see ReadingTools
    std::function<Patience*()> patience;
    std::size_t bufferedBytes = std::size_t{16} << 20U;
    // How long the end of the reader waits for its thread before it is left behind.
    std::chrono::milliseconds farewell{200};
  };
  // Either a batch, or none and the end; a batch may carry the end that follows it.
  struct Portion {
    std::unique_ptr<EntryBatch> batch;
    std::uint32_t end = 0;
  };

  explicit FolderReader(Settings settings);
  ~FolderReader();
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;

  // Folders in drive form with their final backslash.
  void Hint(TextView folder);
  void DropHints();

  // Begins a listing, or takes over one that a hint began.
  [[nodiscard]] std::shared_ptr<Listing> Open(TextView folder);
  // Has the reading begin, for a caller that asks HasNews instead of waiting in Next.
  void Begin(const std::shared_ptr<Listing>& listing);
  [[nodiscard]] static bool HasNews(const Listing& listing) {
    return listing.hasNews.load(std::memory_order_acquire);
  }
  // Waits for the next portion. Without a batch the end is 995 when the patience was lost.
  [[nodiscard]] Portion Next(const std::shared_ptr<Listing>& listing);
  // Gives a used batch back for another listing.
  void Recycle(std::unique_ptr<EntryBatch> batch);
  void Close(const std::shared_ptr<Listing>& listing);

 private:
  struct Shared;

  static void Work(const std::shared_ptr<Shared>& shared);
  static std::shared_ptr<Listing> Pick(Shared& shared);
  static void Publish(Shared& shared, Listing& listing, std::unique_ptr<EntryBatch> batch,
                      std::uint32_t end);
  static bool ShouldWake(Shared& shared, bool nothingToRead);
  void Post(Shared& shared, const std::shared_ptr<Listing>& listing, bool first);
  bool AwaitNews(const std::shared_ptr<Listing>& listing);
  void LeaveBehind();
  void StartThread();

  const Settings mSettings;
  std::shared_ptr<Shared> mShared;
  std::thread mThread;
  std::unordered_map<TextView, std::shared_ptr<Listing>> mHints;  // keyed by the listing's own text
  std::vector<std::unique_ptr<EntryBatch>> mSpare;
};

}  // namespace quillmarsh
