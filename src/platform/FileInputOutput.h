// SPDX-License-Identifier: MIT
// Opening, reading and writing files, and what can be asked of one path. Sizes and positions are in
// bytes, times in UTC ticks.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "platform/CallHook.h"
#include "platform/SystemConstants.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

class FileInputOutput : public Role {
 public:
  using Role::Role;

  // A hint that the file will be opened for reading soon, in the order of the hints. An
  // implementation may open it and read its beginning in the background; a handle that a later
  // CreateFileW for the same path gives may then show the file as it was at any moment since the
  // hint. A hint that is not taken up is dropped by DropReadAhead.
  void ReadAhead(TextView path) { DoReadAhead(path); }
  void DropReadAhead() { DoDropReadAhead(); }

  // INVALID_HANDLE on failure. `access`, `share`, `disposition` and `flags` as the constants say.
  // Success leaves the last error 183 when CREATE_ALWAYS or OPEN_ALWAYS met an existing file, else
  // 0.
  [[nodiscard]] HANDLE CreateFileW(TextView path, std::uint32_t access, std::uint32_t share,
                                   std::uint32_t disposition, std::uint32_t flags) {
    return Run(Operation::CreateFileW, path, INVALID_HANDLE,
               [&] { return DoCreateFile(path, access, share, disposition, flags); });
  }
  // CreateFileW of a new file that is written to and then moved over `replaced`. Where that is
  // there and a move over it would lose its permissions, the new file begins with them.
  [[nodiscard]] HANDLE CreateSuccessor(TextView path, TextView replaced) {
    return Run(Operation::CreateFileW, path, INVALID_HANDLE,
               [&] { return DoCreateSuccessor(path, replaced); });
  }
  [[nodiscard]] bool GetFileInformationByHandle(HANDLE file,
                                                BY_HANDLE_FILE_INFORMATION& information) {
    return Run(Operation::GetFileInformationByHandle, {}, false,
               [&] { return DoGetInformation(file, information); });
  }
  // Reads at the file's position. Success with `done` 0 is the end of the file.
  [[nodiscard]] bool ReadFile(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) {
    return Run(Operation::ReadFile, {}, false, [&] { return DoRead(file, buffer, done); });
  }
  // The form with a position of its own (in bytes, not negative): neither the file's position nor
  // the last error changes. Answers the code, 0 for success; `done` below the size of the buffer is
  // the end of the file.
  [[nodiscard]] std::uint32_t ReadFileAt(HANDLE file, std::int64_t position,
                                         std::span<std::byte> buffer, std::uint32_t& done) {
    return RunForCode(Operation::ReadFile, {},
                      [&] { return DoReadAt(file, position, buffer, done); });
  }
  // Whether ReadFileAt may be called for this file by two threads at once. Never with a hook, which
  // belongs to one thread.
  [[nodiscard]] bool MayReadOnTwoThreads(HANDLE file) {
    return !HasHook() && DoMayReadOnTwoThreads(file);
  }
  [[nodiscard]] bool WriteFile(HANDLE file, std::span<const std::byte> bytes, std::uint32_t& done) {
    return Run(Operation::WriteFile, {}, false, [&] { return DoWrite(file, bytes, done); });
  }
  // `newPosition` is counted from the beginning of the file.
  [[nodiscard]] bool SetFilePointerEx(HANDLE file, std::int64_t distance, std::int64_t& newPosition,
                                      std::uint32_t method) {
    return Run(Operation::SetFilePointerEx, {}, false,
               [&] { return DoSetPointer(file, distance, newPosition, method); });
  }
  [[nodiscard]] bool SetEndOfFile(HANDLE file) {
    return Run(Operation::SetEndOfFile, {}, false, [&] { return DoSetEnd(file); });
  }
  // Sets the times that are given, in UTC ticks; the file must be open for writing. A time that the
  // volume does not let itself be told (a creation time on Linux) is left as it is, which is no
  // failure.
  [[nodiscard]] bool SetFileTime(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                                 const FILETIME* written) {
    return Run(Operation::SetFileTime, {}, false,
               [&] { return DoSetTimes(file, created, accessed, written); });
  }
  [[nodiscard]] bool FlushFileBuffers(HANDLE file) {
    return Run(Operation::FlushFileBuffers, {}, false, [&] { return DoFlush(file); });
  }
  // Locks the whole of a file for this handle alone, until it is closed or its program ends,
  // however it ends. 33 while another handle has it locked, in this program or in another.
  [[nodiscard]] bool LockFileEx(HANDLE file) {
    return Run(Operation::LockFileEx, {}, false, [&] { return DoLock(file); });
  }
  bool CloseHandle(HANDLE file) {
    return Run(Operation::CloseHandle, {}, false, [&] { return DoClose(file); });
  }

  // The attribute word of the entry itself, or INVALID_FILE_ATTRIBUTES.
  [[nodiscard]] std::uint32_t GetFileAttributesW(TextView path) {
    return Run(Operation::GetFileAttributesW, path, INVALID_FILE_ATTRIBUTES,
               [&] { return DoGetAttributes(path); });
  }
  // The low half of the size on disk; 0xFFFFFFFF with a last error not 0 is a failure. A success
  // clears the last error.
  [[nodiscard]] std::uint32_t GetCompressedFileSizeW(TextView path, std::uint32_t& high) {
    return Run(Operation::GetCompressedFileSizeW, path, std::uint32_t{0xFFFFFFFF},
               [&] { return DoGetCompressedSize(path, high); });
  }
  // The 8.3 form of an existing path, the path itself where the volume keeps none; empty on
  // failure.
  [[nodiscard]] Text GetShortPathNameW(TextView path) {
    return Run(Operation::GetShortPathNameW, path, Text(), [&] { return DoGetShortPath(path); });
  }
  // The kind of an executable (SCS_...), none for any other file.
  [[nodiscard]] std::optional<std::uint32_t> GetBinaryTypeW(TextView path) {
    return Run(Operation::GetBinaryTypeW, path, std::optional<std::uint32_t>(),
               [&] { return DoGetBinaryType(path); });
  }

 private:
  virtual HANDLE DoCreateFile(TextView path, std::uint32_t access, std::uint32_t share,
                              std::uint32_t disposition, std::uint32_t flags) = 0;
  virtual HANDLE DoCreateSuccessor(TextView path, TextView /*replaced*/) {
    // It must be deletable while it is open, should its closing fail.
    return DoCreateFile(path, GENERIC_WRITE, FILE_SHARE_DELETE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
  }
  virtual void DoReadAhead(TextView /*path*/) {}
  virtual void DoDropReadAhead() {}
  virtual bool DoGetInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) = 0;
  virtual bool DoRead(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) = 0;
  virtual std::uint32_t DoReadAt(HANDLE file, std::int64_t position, std::span<std::byte> buffer,
                                 std::uint32_t& done) = 0;
  virtual bool DoMayReadOnTwoThreads(HANDLE /*file*/) { return false; }
  virtual bool DoWrite(HANDLE file, std::span<const std::byte> bytes, std::uint32_t& done) = 0;
  virtual bool DoSetPointer(HANDLE file, std::int64_t distance, std::int64_t& newPosition,
                            std::uint32_t method) = 0;
  virtual bool DoSetEnd(HANDLE file) = 0;
  virtual bool DoSetTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                          const FILETIME* written) = 0;
  virtual bool DoFlush(HANDLE file) = 0;
  virtual bool DoLock(HANDLE file) = 0;
  virtual bool DoClose(HANDLE file) = 0;
  virtual std::uint32_t DoGetAttributes(TextView path) = 0;
  virtual std::uint32_t DoGetCompressedSize(TextView path, std::uint32_t& high) = 0;
  virtual Text DoGetShortPath(TextView path) = 0;
  virtual std::optional<std::uint32_t> DoGetBinaryType(TextView path) = 0;
};

}  // namespace quillmarsh
