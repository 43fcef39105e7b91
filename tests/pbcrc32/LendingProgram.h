// SPDX-License-Identifier: MIT
// A program around the checksum library: lends it callbacks over one file that is not there, and
// watches what the library does with them. In every test a file is closed as often as it was
// opened, read only between the two and by at most two threads at once, and only the thread that
// asked is pumped on and shown progress.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <thread>
#include <vector>

#include "pbcrc32/pbcrc32.h"

namespace pbcrc32::test {

struct Outcome {
  std::uint32_t crc = 0;
  std::int32_t code = 0;
  std::string text;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};
inline void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << std::hex << outcome.crc << std::dec << ", code " << outcome.code << ", " << outcome.text;
}
inline Outcome Failed(std::int32_t code, const char* text = "") {
  return {0xFFFFFFFF, code, text};
}

class LendingProgram {
 public:
  explicit LendingProgram(PB_SetCallbacks_Function setCallbacks = PB_SetCallbacks,
                          PB_GetFileCrc32_Function getFileCrc32 = PB_GetFileCrc32)
      : mSetCallbacks(setCallbacks), mGetFileCrc32(getFileCrc32) {
    const PB_Callbacks lent = Lent();
    EXPECT_EQ(mSetCallbacks(&lent), 1);
  }
  ~LendingProgram() { mSetCallbacks(nullptr); }
  LendingProgram(const LendingProgram&) = delete;
  LendingProgram& operator=(const LendingProgram&) = delete;

  // The file: its bytes, or a filler of any length; what is told of it at its opening.
  std::string bytes;
  std::function<void(std::int64_t, std::span<char>)> filler;
  std::optional<std::int64_t> size;
  bool mayReadOnTwoThreads = false;
  std::int32_t openCode = 0;
  // Before each read, on its thread: may shorten it. A code fails it.
  std::function<std::int32_t(std::int64_t position, std::uint32_t& length)> beforeRead;
  std::function<bool()> onPump;  // false: give up

  // What was seen.
  std::atomic<int> reads = 0;
  std::atomic<std::uint32_t> longestRead = 0;
  int pumps = 0;
  int closes = 0;
  std::string openedPath;
  std::vector<std::string> progress;
  std::set<std::thread::id> readers;

  Outcome Ask(std::string path = "a path", std::uint32_t room = 100) {
    reads = pumps = closes = 0;
    readers.clear();
    std::string words(room + 8, '~');
    PB_NarrowText pathText{path.data(), static_cast<std::uint32_t>(path.size()), 0};
    PB_NarrowText errorText{words.data(), 0, room};
    Outcome outcome;
    outcome.crc = static_cast<std::uint32_t>(mGetFileCrc32(pathText, outcome.code, errorText));
    EXPECT_LE(errorText.length, room);
    EXPECT_EQ(words.substr(room), "~~~~~~~~") << "written beyond the room that was given";
    outcome.text = words.substr(0, errorText.length);
    EXPECT_EQ(mReadsNow, 0);
    EXPECT_FALSE(mIsOpen);
    EXPECT_LE(closes, 1);
    return outcome;
  }

  [[nodiscard]] PB_Callbacks Lent() {
    return {sizeof(PB_Callbacks), this, Open, Read, Close, ShowProgress, Pump};
  }

 private:
  static std::int32_t Open(void* context, const char* path, std::uint32_t length,
                           PB_OpenedFile* opened) {
    auto& self = *static_cast<LendingProgram*>(context);
    self.openedPath.assign(path, length);
    if (self.openCode != 0) return self.openCode;
    self.mAsker = std::this_thread::get_id();
    self.mIsOpen = true;
    opened->file = &self.bytes;
    opened->size = self.size.value_or(static_cast<std::int64_t>(self.bytes.size()));
    opened->mayReadOnTwoThreads = self.mayReadOnTwoThreads ? 1 : 0;
    return 0;
  }

  static std::int32_t Read(void* context, void* file, std::int64_t position, void* buffer,
                           std::uint32_t length, std::uint32_t* done) {
    auto& self = *static_cast<LendingProgram*>(context);
    EXPECT_EQ(file, &self.bytes);
    EXPECT_TRUE(self.mIsOpen);
    EXPECT_LE(++self.mReadsNow, 2);
    ++self.reads;
    self.longestRead = std::max(length, self.longestRead.load());
    {
      const std::lock_guard lock(self.mMutex);
      self.readers.insert(std::this_thread::get_id());
    }
    std::int32_t code = self.beforeRead ? self.beforeRead(position, length) : 0;
    if (code == 0) {
      const auto end = self.filler ? *self.size : static_cast<std::int64_t>(self.bytes.size());
      const auto count = std::clamp<std::int64_t>(end - position, 0, length);
      const std::span<char> out(static_cast<char*>(buffer), static_cast<std::size_t>(count));
      if (self.filler)
        self.filler(position, out);
      else if (count > 0)
        std::memcpy(out.data(), self.bytes.data() + position, out.size());
      *done = static_cast<std::uint32_t>(count);
    }
    --self.mReadsNow;
    return code;
  }

  static void Close(void* context, void* file) {
    auto& self = *static_cast<LendingProgram*>(context);
    EXPECT_EQ(file, &self.bytes);
    EXPECT_EQ(self.mReadsNow, 0) << "closed under a reader";
    self.mIsOpen = false;
    ++self.closes;
  }

  static void ShowProgress(void* context, const char* text, std::uint32_t length) {
    auto& self = *static_cast<LendingProgram*>(context);
    EXPECT_EQ(std::this_thread::get_id(), self.mAsker);
    self.progress.emplace_back(text, length);
  }

  static std::int32_t Pump(void* context) {
    auto& self = *static_cast<LendingProgram*>(context);
    EXPECT_EQ(std::this_thread::get_id(), self.mAsker);
    ++self.pumps;
    return !self.onPump || self.onPump() ? 1 : 0;
  }

  const PB_SetCallbacks_Function mSetCallbacks;
  const PB_GetFileCrc32_Function mGetFileCrc32;
  std::mutex mMutex;
  std::thread::id mAsker;
  std::atomic<bool> mIsOpen = false;
  std::atomic<int> mReadsNow = 0;
};

}  // namespace pbcrc32::test
