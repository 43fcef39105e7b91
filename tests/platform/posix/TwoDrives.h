// SPDX-License-Identifier: MIT
// A machine with two drives on which things are changed, and a disk that runs full.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/posix/PathResolver.h"
#include "platform/posix/TempTree.h"

namespace quillmarsh::test {

// D: and E: are two volumes to the machine, though one file system holds both.
inline PosixOptions TwoDrives(const TempTree& scratch, const std::string& d, const std::string& e,
                              const std::string& type) {
  PosixOptions options = DriveAt(scratch, d, type);
  const UniqueFd root(::open(d.c_str(), O_PATH | O_DIRECTORY));
  MountLine first{d, type};
  MountLine second{e, type, "/dev/test2", "8:2"};
  first.id = second.id = static_cast<int>(MountIdOf(root.Get()));
  options.mountInfoFile = scratch.File("two-drives", MountList({first, second}));
  return options;
}

// Writing beyond a size fails for as long as this lives, as it does on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : mHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit limited{bytes, mBefore.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &mBefore);
    std::signal(SIGXFSZ, mHandler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*mHandler)(int);
  rlimit mBefore{};
};

class DrivesDAndE : public testing::Test {
 protected:
  explicit DrivesDAndE(const std::string& type)
      : mMachine(TwoDrives(mScratch, mTree.Root(), mOther.Root(), type)) {}

  std::uint32_t Move(TextView from, TextView to, std::uint32_t flags) {
    return mMachine.Disk().MoveFileExW(from, to, flags) ? 0 : mMachine.GetLastError();
  }
  std::uint32_t Delete(TextView path) {
    return mMachine.Disk().DeleteFileW(path) ? 0 : mMachine.GetLastError();
  }
  // "(none)" for a missing file.
  static std::string Bytes(const std::string& native) {
    std::ifstream file(native, std::ios::binary);
    if (!file) return "(none)";
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
  }
  std::size_t EntriesOf(const Text& folder) { return ListAll(mMachine, folder).entries.size() - 2; }

  TempTree mTree;
  TempTree mOther;
  TempTree mScratch;
  PosixMachine mMachine;
};

}  // namespace quillmarsh::test
