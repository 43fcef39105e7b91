// SPDX-License-Identifier: MIT
// The folders in which something was looked at or changed a moment ago, still open, so that a
// thousand files of one folder do not cost a thousand resolutions. Hands out a folder only while
// its path still leads to that very folder on that very mount. Holds nothing for longer than some
// tenths of a second, since an open folder keeps a person from unmounting the drive, and nothing at
// all of file systems that may not answer. Any thread may use it.
#pragma once

#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/SystemConstants.h"
#include "platform/posix/PathResolver.h"

namespace quillmarsh {

class OpenFolders {
 public:
  explicit OpenFolders(std::shared_ptr<const PathResolver> resolver);
  ~OpenFolders();
  OpenFolders(const OpenFolders&) = delete;
  OpenFolders& operator=(const OpenFolders&) = delete;

  [[nodiscard]] const PathResolver& Resolver() const { return *mResolver; }

  // The folder that holds the entry, as a place to start from, and for the root of a drive the root
  // itself. Answers a code; a missing folder is 3.
  [[nodiscard]] std::uint32_t OpenParent(const Located& located, SharedFd& parent);
  // The facts of a folder that is open here. False when it is not, which says nothing about it.
  [[nodiscard]] bool FactsOf(const Located& located, struct statx& facts);
  // Closes what nobody else holds, where descriptors have run out.
  void LetGo();

 private:
  struct Kept;
  using KeptFolder = std::shared_ptr<const Kept>;
  using Clock = std::chrono::steady_clock;

  [[nodiscard]] std::uint32_t Open(const Located& located, std::string_view relative,
                                   SharedFd& folder);
  [[nodiscard]] std::uint32_t OpenAnew(const Located& located, std::string_view relative,
                                       SharedFd& folder);
  [[nodiscard]] KeptFolder Find(char letter, std::string_view relative);
  void Keep(const Located& located, std::string_view relative, const SharedFd& folder);
  void CloseInTime();

  const std::shared_ptr<const PathResolver> mResolver;
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<KeptFolder> mKept;  // the latest in front
  bool mQuit = false;
  std::thread mCloser;  // begins with the first folder
};

// Runs an operation that answers a code, and once more without the folders kept open where
// descriptors have run out. It needs its last descriptor before it changes anything.
template <typename EntryOperation>
[[nodiscard]] std::uint32_t SparingDescriptors(OpenFolders& folders,
                                               const EntryOperation& operation) {
  const std::uint32_t code = operation();
  if (code != ERROR_TOO_MANY_OPEN_FILES) return code;
  folders.LetGo();
  return operation();
}

}  // namespace quillmarsh
