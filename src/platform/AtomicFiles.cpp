// SPDX-License-Identifier: MIT
// Write beside, flush, move over.
#include "platform/AtomicFiles.h"

#include <algorithm>
#include <random>
#include <span>

namespace quillmarsh {
namespace {

// No such file is longer; one that is has come to be it by accident, and would take all memory.
constexpr std::size_t kMostBytesRead = std::size_t{64} << 20U;
constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kBlockBytes = std::size_t{1} << 18U;
constexpr std::size_t kLongestPlainPath = 248;
constexpr int kMostNames = 16;

// Closes what it owns and keeps the last error of what came before.
class OpenedFile {
 public:
  OpenedFile(Machine& machine, HANDLE handle) : mMachine(machine), mHandle(handle) {}
  ~OpenedFile() {
    if (!IsValid()) return;
    const std::uint32_t code = mMachine.GetLastError();
    mMachine.Files().CloseHandle(mHandle);
    mMachine.SetLastError(code);
  }
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  [[nodiscard]] bool IsValid() const { return mHandle != INVALID_HANDLE; }
  [[nodiscard]] HANDLE Get() const { return mHandle; }

 private:
  Machine& mMachine;
  HANDLE mHandle;
};

// A name that no other writer has, in the folder of the path.
Text NameBeside(TextView path) {
  constexpr TextView digits = u"0123456789abcdef";
  std::random_device source;
  Text name(path.substr(0, path.rfind(u'\\') + 1));
  name += u"~qm";
  for (int i = 0; i < 12; ++i) name += digits[source() % digits.size()];
  name += u".tmp";
  // The path itself may just have been short enough.
  if (name.size() <= kLongestPlainPath || name.starts_with(u"\\\\?\\")) return name;
  return name.starts_with(u"\\\\") ? u"\\\\?\\UNC" + name.substr(1) : u"\\\\?\\" + name;
}

// True as well where there is no file yet.
bool MayBeWritten(Machine& machine, TextView path) {
  const OpenedFile file(machine, machine.Files().CreateFileW(path, GENERIC_WRITE, kShareAll,
                                                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  return file.IsValid() || machine.GetLastError() == ERROR_FILE_NOT_FOUND;
}

HANDLE MakeBeside(Machine& machine, TextView path, Text& name) {
  HANDLE file = INVALID_HANDLE;
  for (int attempt = 0; attempt < kMostNames && file == INVALID_HANDLE; ++attempt) {
    name = NameBeside(path);
    file = machine.Files().CreateSuccessor(name, path);
    if (file == INVALID_HANDLE && machine.GetLastError() != ERROR_FILE_EXISTS) break;
  }
  return file;
}

}  // namespace

bool ReadFileContents(Machine& machine, TextView path, std::uint32_t share, std::string& bytes) {
  bytes.clear();
  const OpenedFile file(machine,
                        machine.Files().CreateFileW(path, GENERIC_READ, share, OPEN_EXISTING,
                                                    FILE_FLAG_SEQUENTIAL_SCAN));
  if (!file.IsValid()) return false;
  for (std::uint32_t done = 1; done != 0;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + std::max(kBlockBytes, before));
    const auto room = std::as_writable_bytes(std::span(bytes).subspan(before));
    if (!machine.Files().ReadFile(file.Get(), room, done)) return false;
    bytes.resize(before + done);
    if (bytes.size() > kMostBytesRead) {
      machine.SetLastError(ERROR_FILE_TOO_LARGE);
      return false;
    }
  }
  return true;
}

FileReplacement::~FileReplacement() {
  const std::uint32_t code = mMachine.GetLastError();
  if (mFile != INVALID_HANDLE) mMachine.Files().CloseHandle(mFile);
  if (!mBeside.empty()) static_cast<void>(mMachine.Disk().DeleteFileW(mBeside));
  mMachine.SetLastError(code);
}

bool FileReplacement::Begin() {
  if (!MayBeWritten(mMachine, mPath)) return false;
  Text beside;
  mFile = MakeBeside(mMachine, mPath, beside);
  if (mFile == INVALID_HANDLE) return false;
  mBeside = std::move(beside);
  return true;
}

bool FileReplacement::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view block = bytes.substr(0, kBlockBytes);
    std::uint32_t done = 0;
    if (!mMachine.Files().WriteFile(mFile, std::as_bytes(std::span(block)), done)) return false;
    if (done == 0) {
      mMachine.SetLastError(ERROR_DISK_FULL);
      return false;
    }
    bytes.remove_prefix(std::min<std::size_t>(done, block.size()));
  }
  return true;
}

// The closing may be what fails, where a file system writes late. Then it is tried again in the
// end.
bool FileReplacement::PutInPlace() {
  constexpr std::uint32_t flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  FileInputOutput& files = mMachine.Files();
  if (!files.FlushFileBuffers(mFile) || !files.CloseHandle(mFile)) return false;
  mFile = INVALID_HANDLE;
  if (!mMachine.Disk().MoveFileExW(mBeside, mPath, flags)) return false;
  mBeside.clear();
  return true;
}

bool ReplaceFileContents(Machine& machine, TextView path, std::string_view bytes) {
  FileReplacement replacement(machine, path);
  return replacement.Begin() && replacement.Write(bytes) && replacement.PutInPlace();
}

}  // namespace quillmarsh
