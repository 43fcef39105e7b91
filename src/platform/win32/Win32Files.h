// SPDX-License-Identifier: MIT
// Files on Windows: the system's own calls.
#pragma once

#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Files final : public FileInputOutput {
 public:
  explicit Win32Files(CallState& calls) : FileInputOutput(calls), mCalls(calls) {}

 private:
  HANDLE DoCreateFile(TextView path, std::uint32_t access, std::uint32_t share,
                      std::uint32_t disposition, std::uint32_t flags) override;
  bool DoGetInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) override;
  bool DoRead(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) override;
  std::uint32_t DoReadAt(HANDLE file, std::int64_t position, std::span<std::byte> buffer,
                         std::uint32_t& done) override;
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

  CallState& mCalls;
};

}  // namespace quillmarsh
