// SPDX-License-Identifier: MIT
// Files on POSIX. A file is opened without waiting and without following a link, and must be a
// regular file. The system knows no share modes: `share` is accepted and means nothing, so no open
// ever fails because another program has the file open. Files keep their own position, so that a
// read that was given up cannot move it later.
#pragma once

#include <memory>

#include "platform/FileInputOutput.h"
#include "platform/posix/FilePrefetcher.h"
#include "platform/posix/HandleTable.h"
#include "platform/posix/PosixContext.h"

namespace quillmarsh {

class PosixFiles final : public FileInputOutput {
 public:
  PosixFiles(CallState& state, PosixContext& context, FilePrefetcher::Settings settings);

 private:
  struct OpenFile {
    // Shared with a read that hangs, which then is the one to close the file.
    std::shared_ptr<UniqueFd> fd;
    std::unique_ptr<PrefetchedFile> ahead;  // what was read ahead, if it was
    // As they were when the file was opened: good for the first question only, and for all of them
    // where the file was read whole and closed.
    std::optional<struct statx> facts;
    std::string name;  // hidden or not shows in it
    bool answers = true;
    bool reads = false;
    bool writes = false;
    bool appends = false;  // writes, but at the end only
    std::int64_t position = 0;
    std::uint32_t volumeSerial = 0;
  };

  HANDLE DoCreateFile(TextView path, std::uint32_t access, std::uint32_t share,
                      std::uint32_t disposition, std::uint32_t flags) override;
  HANDLE DoCreateSuccessor(TextView path, TextView replaced) override;
  void DoReadAhead(TextView path) override;
  void DoDropReadAhead() override { mPrefetcher.DropHints(); }
  bool DoGetInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) override;
  bool DoRead(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) override;
  std::uint32_t DoReadAt(HANDLE file, std::int64_t position, std::span<std::byte> buffer,
                         std::uint32_t& done) override;
  bool DoMayReadOnTwoThreads(HANDLE file) override;
  bool DoWrite(HANDLE file, std::span<const std::byte> bytes, std::uint32_t& done) override;
  bool DoSetPointer(HANDLE file, std::int64_t distance, std::int64_t& newPosition,
                    std::uint32_t method) override;
  bool DoSetEnd(HANDLE file) override;
  bool DoSetTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                  const FILETIME* written) override;
  bool DoFlush(HANDLE file) override;
  bool DoLock(HANDLE file) override;
  bool DoClose(HANDLE file) override;
  std::uint32_t DoGetAttributes(TextView path) override;
  std::uint32_t DoGetCompressedSize(TextView path, std::uint32_t& high) override;
  Text DoGetShortPath(TextView path) override;
  std::optional<std::uint32_t> DoGetBinaryType(TextView path) override;

  // The entry's facts, or the last error set.
  bool Look(TextView path, EntryFacts& entry);
  // A handle for a file that was opened.
  HANDLE Add(std::unique_ptr<OpenFile> file, const OpenRequest& request, const Located& located);
  // A code, and the file if there is none.
  std::uint32_t Open(TextView path, const OpenRequest& request, OpenFile& file, Located& located,
                     bool& existed);
  // Answers a code. Any thread may call it for a file that answers.
  std::uint32_t ReadBytes(const OpenFile& file, std::int64_t position, std::span<std::byte> buffer,
                          std::uint32_t& done);
  bool SizeOf(const OpenFile& file, std::int64_t& size);

  PosixContext& mContext;
  FilePrefetcher mPrefetcher;
  HandleTable<OpenFile> mFiles;
};

}  // namespace quillmarsh
