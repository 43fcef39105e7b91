// SPDX-License-Identifier: MIT
// Finding on POSIX: listings come from the reading thread, a single entry is looked at directly.
#pragma once

#include <memory>
#include <string>

#include "platform/Finding.h"
#include "platform/posix/FolderReader.h"
#include "platform/posix/HandleTable.h"
#include "platform/posix/PosixContext.h"

namespace quillmarsh {

class PosixFinding final : public Finding {
 public:
  PosixFinding(CallState& state, PosixContext& context, FolderReader::Settings settings);

 private:
  // One open search: a listing with the batch that is being handed out, or a single entry.
  struct Search {
    std::shared_ptr<Listing> listing;
    std::unique_ptr<EntryBatch> batch;
    std::size_t next = 0;
    std::uint32_t end = 0;
    Text singleName;
  };

  HANDLE DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) override;
  bool DoFindNext(HANDLE handle, WIN32_FIND_DATAW& entry) override;
  bool DoFindClose(HANDLE handle) override;
  void DoReadAhead(TextView folder) override { mReader.Hint(folder); }
  void DoDropReadAhead() override { mReader.DropHints(); }
  std::unique_ptr<BackgroundListing> DoListInBackground(TextView folder) override;

  HANDLE FindSingle(TextView path, WIN32_FIND_DATAW& entry);
  bool HandOut(Search& search, WIN32_FIND_DATAW& entry);

  PosixContext& mContext;
  const FolderReader::Settings mSettings;
  FolderReader mReader;
  HandleTable<Search> mSearches;
  std::unique_ptr<Search> mSpare;  // most searches follow one another
};

}  // namespace quillmarsh
