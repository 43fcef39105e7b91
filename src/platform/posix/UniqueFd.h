// SPDX-License-Identifier: MIT
// Owns one file descriptor and closes it once. Never copies, never duplicates.
#pragma once

#include <unistd.h>

#include <utility>

namespace quillmarsh {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : mFd(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) Reset(std::exchange(other.mFd, -1));
    return *this;
  }
  ~UniqueFd() { Reset(); }

  [[nodiscard]] int Get() const { return mFd; }
  [[nodiscard]] explicit operator bool() const { return mFd >= 0; }
  void Reset(int fd = -1) {
    if (mFd >= 0) ::close(mFd);
    mFd = fd;
  }

 private:
  int mFd = -1;
};

}  // namespace quillmarsh
