// SPDX-License-Identifier: MIT
// Owns one file descriptor and closes it once, alone or together with others. Never duplicates.
#pragma once

#include <unistd.h>

#include <memory>
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
  // For whoever closes it from now on.
  [[nodiscard]] int Release() { return std::exchange(mFd, -1); }
  void Reset(int fd = -1) {
    if (mFd >= 0) ::close(mFd);
    mFd = fd;
  }

 private:
  int mFd = -1;
};

// One descriptor that several hold; the last of them closes it.
class SharedFd {
 public:
  SharedFd() = default;
  explicit SharedFd(UniqueFd fd) : mFd(std::make_shared<const UniqueFd>(std::move(fd))) {}

  [[nodiscard]] int Get() const { return mFd != nullptr ? mFd->Get() : -1; }
  [[nodiscard]] explicit operator bool() const { return Get() >= 0; }
  void Reset(int fd = -1) { *this = fd >= 0 ? SharedFd(UniqueFd(fd)) : SharedFd(); }

 private:
  std::shared_ptr<const UniqueFd> mFd;
};

}  // namespace quillmarsh
