// SPDX-License-Identifier: MIT
// Listing folders and finding single entries. A pattern is a path whose last component may be "*"
// (all entries of the folder, "." and ".." first) or a plain name (that one entry itself: a link is
// described, not followed).
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

// A listing that goes on beside everything else and is asked now and then what has come, for
// whoever shows a folder and must stay alive. Its end gives it up and waits for nothing. Of one
// thread, that of the machine.
class BackgroundListing {
 public:
  virtual ~BackgroundListing() = default;
  // Hands out the entries that have come since the last call, some thousands at most. 0 as long as
  // more may come, also when none has; then 18, or the code of a failure, for good.
  [[nodiscard]] virtual std::uint32_t Take(
      const std::function<void(const WIN32_FIND_DATAW&)>& entry) = 0;
};

class Finding : public Role {
 public:
  using Role::Role;

  // INVALID_HANDLE on failure: 2 no such entry, 3 no such folder, 5 denied, 21 not ready, 995 given
  // up because the user asked to stop while the file system did not answer, and others.
  [[nodiscard]] HANDLE FindFirstFileW(TextView pattern, WIN32_FIND_DATAW& entry) {
    return Run(Operation::FindFirstFileW, pattern, INVALID_HANDLE,
               [&] { return DoFindFirst(pattern, entry); });
  }
  // False at the end with code 18, and for any other failure with its own code.
  [[nodiscard]] bool FindNextFileW(HANDLE search, WIN32_FIND_DATAW& entry) {
    return Run(Operation::FindNextFileW, {}, false, [&] { return DoFindNext(search, entry); });
  }
  bool FindClose(HANDLE search) {
    return Run(Operation::FindClose, {}, false, [&] { return DoFindClose(search); });
  }

  // A hint that `folder` (with final backslash) will be listed soon, in the order of the hints. An
  // implementation may begin to read it in the background; a later listing of all its entries may
  // then show the folder as it was at any moment since the hint. A hint that is not taken up is
  // dropped by DropReadAhead. Only the walk of a search gives hints.
  void ReadAhead(TextView folder) { DoReadAhead(folder); }
  void DropReadAhead() { DoDropReadAhead(); }

  // Begins to list a folder (with final backslash). A machine without a way of its own finds the
  // entries when they are taken, and waits there for a file system that does not answer.
  [[nodiscard]] std::unique_ptr<BackgroundListing> ListInBackground(TextView folder) {
    return DoListInBackground(folder);
  }

 private:
  virtual HANDLE DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) = 0;
  virtual bool DoFindNext(HANDLE search, WIN32_FIND_DATAW& entry) = 0;
  virtual bool DoFindClose(HANDLE search) = 0;
  virtual void DoReadAhead(TextView folder) = 0;
  virtual void DoDropReadAhead() = 0;
  virtual std::unique_ptr<BackgroundListing> DoListInBackground(TextView folder);
};

}  // namespace quillmarsh
