// SPDX-License-Identifier: MIT
// Opens files that will be wanted soon, in the order of the hints, and reads their beginnings, on
// threads of its own; a caller who has to wait for one of them reads others meanwhile. What was not
// begun when a file is wanted stays with the caller, who is not slower for the hint. A thread that
// hangs in a file system that does not answer is left behind with all that it uses. All functions
// are for one thread, the caller's.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "platform/posix/FileOpening.h"

namespace quillmarsh {

class Patience;

// A regular file that was opened for reading, and what was read of it. Its bytes never change.
struct PrefetchedFile {
  UniqueFd fd;            // closed already where the head is all of the file
  struct statx facts {};  // just behind the opening
  std::unique_ptr<std::byte[]> head;
  std::size_t headBytes = 0;
  bool isWhole = false;  // nothing follows the head
};

class FilePrefetcher {
 public:
  struct Settings {
    std::shared_ptr<const PathResolver> resolver;
    std::function<Patience*()> patience;
    std::function<void(TextView)> beforeFile;  // on the thread that reads the file
  };

  // What a hint may cost: files that wait open, and bytes of the head of each.
  static constexpr std::size_t MostFiles = 320;
  static constexpr std::size_t HeadBytes = std::size_t{128} << 10U;

  explicit FilePrefetcher(Settings settings) : mSettings(std::move(settings)) {}
  ~FilePrefetcher();
  FilePrefetcher(const FilePrefetcher&) = delete;
  FilePrefetcher& operator=(const FilePrefetcher&) = delete;

  // A hint beyond MostFiles is not taken. Hints are best taken up in their order.
  void Hint(TextView path, Located located);
  void DropHints();
  // What became of a hint: none when nothing was read, and the caller then opens the file himself.
  // Waits for a file that is being read; 995 in `error` when the patience is lost meanwhile.
  // `located` is filled with that of the hint, if there was one.
  [[nodiscard]] std::unique_ptr<PrefetchedFile> Take(TextView path, Located& located,
                                                     std::uint32_t& error);

 private:
  struct Job;
  struct Shared;

  static void Work(const std::shared_ptr<Shared>& shared);
  static void Serve(Shared& shared, Job& job, UniqueFd& root, const Drive*& rootOf);
  void StartThreads();
  void LeaveBehind();
  void Post();
  [[nodiscard]] bool ServeOne();
  [[nodiscard]] bool AwaitEnd(const std::shared_ptr<Job>& job);

  const Settings mSettings;
  std::shared_ptr<Shared> mShared;  // null until the first hint
  std::vector<std::thread> mThreads;
  std::deque<std::shared_ptr<Job>> mJobs;  // in the order of the hints
  std::vector<std::shared_ptr<Job>> mUnposted;
};

}  // namespace quillmarsh
