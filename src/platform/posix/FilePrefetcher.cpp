// SPDX-License-Identifier: MIT
// One queue in the order of the hints, served by two to four threads: two keep both the processor
// and a disk busy, more hide the latency of a disk that takes several requests at once. For short
// files a lock and a wake-up each would cost more than the reading, so hints are posted and taken
// up in batches, and whoever comes first to a file claims it by one atomic step.
#include "platform/posix/FilePrefetcher.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>

#include "platform/Machine.h"

namespace quillmarsh {
namespace {

constexpr unsigned FewestThreads = 2;
constexpr unsigned MostThreads = 4;
constexpr std::size_t PostedAtOnce = 32;
constexpr std::size_t TakenAtOnce = 8;
// A short file is read in some microseconds, for which it is not worth to fall asleep.
constexpr int TurnsGivenAway = 64;
// How old a beginning may be that passes for the file's own.
constexpr std::chrono::seconds StaysFresh{1};
// The longest that a wait for one file is spent on others, without a look at the patience.
constexpr std::chrono::milliseconds LongestDetour{10};
constexpr std::chrono::milliseconds AskInterval{10};
constexpr std::chrono::milliseconds FarewellLimit{200};

// None when anything goes wrong; the caller then meets the failure himself.
std::unique_ptr<PrefetchedFile> ReadBeginning(const PathResolver& resolver, int root,
                                              const Located& located) {
  auto file = std::make_unique<PrefetchedFile>();
  OpenedFile opened;
  const OpenRequest request{GENERIC_READ, OPEN_EXISTING, 0};
  if (OpenFileBelow(resolver, root, located, request, opened) != ERROR_SUCCESS) return nullptr;
  file->fd = std::move(opened.fd);
  file->facts = opened.facts;
  // A byte more than the file has, so that the end shows.
  const auto wanted = static_cast<std::size_t>(
      std::min<std::uint64_t>(file->facts.stx_size + 1, FilePrefetcher::HeadBytes));
  file->head.reset(new std::byte[wanted]);
  if (ReadFully(file->fd.Get(), file->head.get(), wanted, 0, file->headBytes) != 0) return nullptr;
  // A short count is the end only if it is the file's own; else a failing disk may be the reason.
  file->isWhole = file->headBytes < wanted && file->headBytes == file->facts.stx_size;
  // Many short files may wait, and no handle is worth keeping for them.
  if (file->isWhole) file->fd.Reset();
  return file;
}

}  // namespace

struct FilePrefetcher::Job {
  enum class State { Waiting, Running, Done, Claimed };
  Text path;
  Located located;
  std::atomic<State> state = State::Waiting;  // leaves Waiting once, by whoever claims the file
  // Of the thread that runs it, until it is done.
  std::unique_ptr<PrefetchedFile> file;
  std::chrono::steady_clock::time_point readAt;

  [[nodiscard]] bool Claim(State claimed) {
    State waiting = State::Waiting;
    return state.compare_exchange_strong(waiting, claimed);
  }
};

struct FilePrefetcher::Shared {
  std::mutex mutex;
  std::condition_variable work;
  std::condition_variable news;
  std::deque<std::shared_ptr<Job>> order;
  std::shared_ptr<const PathResolver> resolver;
  std::function<void(TextView)> beforeFile;
  std::atomic<const Job*> awaited = nullptr;
  std::size_t running = 0;  // threads
  bool quit = false;
};

FilePrefetcher::~FilePrefetcher() {
  LeaveBehind();
}

// Threads without a file leave at once and are waited for.
void FilePrefetcher::LeaveBehind() {
  if (mShared == nullptr) return;
  DropHints();
  std::unique_lock lock(mShared->mutex);
  mShared->quit = true;
  mShared->work.notify_all();
  const bool areGone =
      mShared->news.wait_for(lock, FarewellLimit, [&] { return mShared->running == 0; });
  lock.unlock();
  for (std::thread& thread : mThreads) areGone ? thread.join() : thread.detach();
  mThreads.clear();
  mShared = nullptr;
}

void FilePrefetcher::StartThreads() {
  mShared = std::make_shared<Shared>();
  mShared->resolver = mSettings.resolver;
  mShared->beforeFile = mSettings.beforeFile;
  const unsigned count =
      std::clamp(std::thread::hardware_concurrency(), FewestThreads, MostThreads);
  try {
    for (unsigned i = 0; i < count; ++i) {
      const std::lock_guard lock(mShared->mutex);
      mThreads.emplace_back([shared = mShared] { Work(shared); });
      ++mShared->running;
    }
  } catch (const std::system_error&) {
    // With fewer threads, or with none, the caller reads the more by himself.
  }
}

void FilePrefetcher::Work(const std::shared_ptr<Shared>& shared) {
  std::vector<std::shared_ptr<Job>> jobs;
  std::unique_lock lock(shared->mutex);
  while (!shared->quit) {
    if (shared->order.empty()) {
      shared->work.wait(lock);
      continue;
    }
    const auto end = shared->order.begin() +
                     static_cast<std::ptrdiff_t>(std::min(TakenAtOnce, shared->order.size()));
    jobs.assign(shared->order.begin(), end);
    shared->order.erase(shared->order.begin(), end);
    lock.unlock();
    UniqueFd root;
    const Drive* rootOf = nullptr;
    for (const auto& job : jobs) {
      if (job->Claim(Job::State::Running)) Serve(*shared, *job, root, rootOf);
    }
    jobs.clear();
    root.Reset();
    lock.lock();
  }
  --shared->running;
  shared->news.notify_all();
}

// However it ends, the file is done: the caller may be waiting for that.
void FilePrefetcher::Serve(Shared& shared, Job& job, UniqueFd& root, const Drive*& rootOf) {
  try {
    if (shared.beforeFile) shared.beforeFile(job.path);
    // The drive is kept from going by the job's own table, and files of one batch mostly share it.
    if (rootOf != job.located.drive) {
      const bool isOpen = shared.resolver->OpenRoot(*job.located.drive, root) == ERROR_SUCCESS;
      rootOf = isOpen ? job.located.drive : nullptr;
    }
    if (rootOf != nullptr) job.file = ReadBeginning(*shared.resolver, root.Get(), job.located);
  } catch (const std::exception&) {
    job.file = nullptr;
  }
  job.readAt = std::chrono::steady_clock::now();
  job.state = Job::State::Done;
  if (shared.awaited != &job) return;
  const std::lock_guard lock(shared.mutex);
  shared.news.notify_all();
}

void FilePrefetcher::Hint(TextView path, Located located) {
  if (mJobs.size() >= MostFiles) return;
  if (mShared == nullptr) StartThreads();
  auto job = std::make_shared<Job>();
  job->path = path;
  job->located = std::move(located);
  mJobs.push_back(job);
  mUnposted.push_back(std::move(job));
  if (mUnposted.size() >= PostedAtOnce) Post();
}

void FilePrefetcher::Post() {
  {
    const std::lock_guard lock(mShared->mutex);
    mShared->order.insert(mShared->order.end(), mUnposted.begin(), mUnposted.end());
  }
  mShared->work.notify_all();
  mUnposted.clear();
}

void FilePrefetcher::DropHints() {
  mUnposted.clear();
  for (const auto& job : mJobs) (void)job->Claim(Job::State::Claimed);
  mJobs.clear();
}

std::unique_ptr<PrefetchedFile> FilePrefetcher::Take(TextView path, Located& located,
                                                     std::uint32_t& error) {
  error = ERROR_SUCCESS;
  const auto found =
      std::ranges::find_if(mJobs, [path](const auto& job) { return job->path == path; });
  if (found == mJobs.end()) return nullptr;
  const std::shared_ptr<Job> job = std::move(*found);
  mJobs.erase(found);
  located = job->located;
  if (job->Claim(Job::State::Claimed)) {
    // Nothing is posted any more, so the helpers have nothing to do.
    if (!mUnposted.empty() && mUnposted.front() == job) Post();
    return nullptr;
  }
  if (!AwaitEnd(job)) {
    error = ERROR_OPERATION_ABORTED;
    return nullptr;
  }
  // A long file before this one may have taken hours.
  if (std::chrono::steady_clock::now() - job->readAt > StaysFresh) return nullptr;
  return std::move(job->file);
}

// Reads one of the files that nobody has begun, where that cannot hang; false when there is none.
bool FilePrefetcher::ServeOne() {
  for (const auto& job : mJobs) {
    if (!job->located.drive->kind.answers || !job->Claim(Job::State::Running)) continue;
    UniqueFd root;
    const Drive* rootOf = nullptr;
    Serve(*mShared, *job, root, rootOf);
    return true;
  }
  return false;
}

// False when the patience was lost. Until the file is there the time goes into those behind it.
bool FilePrefetcher::AwaitEnd(const std::shared_ptr<Job>& job) {
  const auto isDone = [&job] { return job->state == Job::State::Done; };
  const auto detourEnds = std::chrono::steady_clock::now() + LongestDetour;
  for (int turn = 0; turn < TurnsGivenAway && !isDone(); ++turn) {
    if (std::chrono::steady_clock::now() > detourEnds) break;
    if (!ServeOne()) std::this_thread::yield();
  }
  if (isDone()) return true;
  // A patience may run other commands, which may leave these threads behind.
  const std::shared_ptr<Shared> shared = mShared;
  std::unique_lock lock(shared->mutex);
  shared->awaited = job.get();
  while (!shared->news.wait_for(lock, AskInterval, isDone)) {
    lock.unlock();
    Patience* const patience = mSettings.patience ? mSettings.patience() : nullptr;
    if (patience != nullptr && !patience->KeepWaiting()) {
      if (shared == mShared) LeaveBehind();
      return false;
    }
    lock.lock();
  }
  shared->awaited = nullptr;
  return true;
}

}  // namespace quillmarsh
