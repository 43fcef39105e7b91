// SPDX-License-Identifier: MIT
// One file is read in blocks through the program's callbacks. A short file is one block after the
// other; of a long one two threads take the next block in turn, so that the disk sees a reading in
// sequence, and the checksums of the blocks are joined by CRC combination. Only the calling thread
// pumps and shows progress.
#include "pbcrc32/pbcrc32.h"

#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "pbcrc32/BlockPace.h"
#include "pbcrc32/Crc32.h"
#include "pbcrc32/ProgressText.h"

namespace pbcrc32 {

namespace {

// From here on a second thread is worth its start.
constexpr std::int64_t WorthTwoThreads = std::int64_t{4} << 20U;
constexpr std::chrono::milliseconds WaitBetweenPumps{5};

PB_Callbacks callbacks{};

// Memory that nobody clears first: it is read into before it is looked at.
using Block = std::unique_ptr<std::byte[]>;
Block MakeBlock(std::uint32_t bytes) {
  return std::unique_ptr<std::byte[]>(new std::byte[bytes]);
}

struct Failure {
  std::int32_t code = 0;
  const char* text = nullptr;
};
constexpr Failure Changed{PB_ERROR_FILE_CHANGED, "The file changed while it was being read."};
constexpr Failure GivenUp{PB_ERROR_GIVEN_UP, nullptr};

std::int32_t ReadAt(const PB_OpenedFile& opened, std::int64_t position, std::byte* buffer,
                    std::uint32_t length, std::uint32_t& done) {
  done = 0;
  return callbacks.Read(callbacks.context, opened.file, position, buffer, length, &done);
}

// What the calling thread does between two blocks.
class Host {
 public:
  explicit Host(std::int64_t total) : mTotal(total) {}
  // False: give up.
  [[nodiscard]] bool KeepGoing(std::int64_t done) {
    if (mClock.IsDue()) {
      const std::string text = ProgressText(done, mTotal, mClock.Seconds());
      callbacks.ShowProgress(callbacks.context, text.data(),
                             static_cast<std::uint32_t>(text.size()));
    }
    return callbacks.PumpAndKeepGoing(callbacks.context) != 0;
  }

 private:
  const std::int64_t mTotal;
  ProgressClock mClock;
};

// Why nothing more came from a place, which a read of one byte tells: it is the end, where the file
// ended when it was opened; the disk failed there; or the file is not what it was.
Failure WhyItEnds(const PB_OpenedFile& opened, std::int64_t position, std::byte* buffer) {
  std::uint32_t done = 0;
  if (const std::int32_t code = ReadAt(opened, position, buffer, 1, done)) return {code};
  return done == 0 && position == opened.size ? Failure{} : Changed;
}

// A file of less than a block is read at once, and a byte more than it has is asked for, so that
// its end needs no second look.
Failure ShortFile(const PB_OpenedFile& opened, std::uint32_t& crc) {
  const auto size = static_cast<std::uint32_t>(opened.size);
  const Block buffer = MakeBlock(size + 1);
  std::uint32_t done = 0;
  if (const std::int32_t code = ReadAt(opened, 0, buffer.get(), size + 1, done)) return {code};
  crc = Crc32(0, buffer.get(), done);
  if (callbacks.PumpAndKeepGoing(callbacks.context) == 0) return GivenUp;
  if (done == size) return {};
  return done > size ? Changed : WhyItEnds(opened, done, buffer.get());
}

Failure OneThread(const PB_OpenedFile& opened, std::uint32_t& crc) {
  const Block buffer = MakeBlock(BlockBytes);
  Host host(opened.size);
  BlockPace pace;
  std::int64_t position = 0;
  for (;;) {
    const std::uint32_t length = pace.Begin();
    std::uint32_t done = 0;
    if (const std::int32_t code = ReadAt(opened, position, buffer.get(), length, done))
      return {code};
    pace.Done();
    crc = Crc32(crc, buffer.get(), done);
    position += done;
    if (!host.KeepGoing(position)) return GivenUp;
    if (position > opened.size) return Changed;
    if (done < length)
      return position == opened.size ? Failure{} : WhyItEnds(opened, position, buffer.get());
  }
}

// What two threads share while they read one file.
class SharedReading {
 public:
  explicit SharedReading(const PB_OpenedFile& opened)
      : mOpened(opened), mCrcs(static_cast<std::size_t>((opened.size - 1) / BlockBytes + 1)) {}

  // Takes the next block; false when there is none left, or when the reading is over anyhow.
  bool TakeBlock(std::byte* buffer) {
    const std::size_t index = mNext.fetch_add(1, std::memory_order_relaxed);
    if (index >= mCrcs.size() || mIsOver.load(std::memory_order_relaxed)) return false;
    const std::uint32_t length = LengthOf(index);
    const std::int64_t position = static_cast<std::int64_t>(index) * BlockBytes;
    std::uint32_t done = 0;
    Failure failure{ReadAt(mOpened, position, buffer, length, done)};
    if (failure.code == 0 && done != length) failure = WhyItEnds(mOpened, position + done, buffer);
    if (failure.code != 0) {
      Fail(failure);
      return false;
    }
    mCrcs[index] = Crc32(0, buffer, length);
    mDone.fetch_add(length, std::memory_order_relaxed);
    return true;
  }

  void Fail(const Failure& failure) {
    const std::lock_guard lock(mMutex);
    if (mFailure.code == 0) mFailure = failure;
    mIsOver = true;
  }
  [[nodiscard]] Failure Outcome() {
    const std::lock_guard lock(mMutex);
    return mFailure;
  }
  [[nodiscard]] std::int64_t Done() const { return mDone.load(std::memory_order_relaxed); }

  void HelperIsDone() {
    const std::lock_guard lock(mMutex);
    mIsHelperDone = true;
    mHelperDone.notify_one();
  }
  [[nodiscard]] bool WaitForHelper(std::chrono::milliseconds time) {
    std::unique_lock lock(mMutex);
    return mHelperDone.wait_for(lock, time, [this] { return mIsHelperDone; });
  }

  [[nodiscard]] std::uint32_t Joined() const {
    const uLong wholeBlock = crc32_combine_gen(BlockBytes);
    uLong crc = 0;
    for (std::size_t i = 0; i < mCrcs.size(); ++i) {
      const std::uint32_t length = LengthOf(i);
      const uLong place =
          length == BlockBytes ? wholeBlock : crc32_combine_gen(static_cast<z_off_t>(length));
      crc = crc32_combine_op(crc, mCrcs[i], place);
    }
    return static_cast<std::uint32_t>(crc);
  }

 private:
  [[nodiscard]] std::uint32_t LengthOf(std::size_t index) const {
    const std::int64_t rest = mOpened.size - static_cast<std::int64_t>(index) * BlockBytes;
    return static_cast<std::uint32_t>(std::min<std::int64_t>(rest, BlockBytes));
  }

  const PB_OpenedFile& mOpened;
  std::vector<std::uint32_t> mCrcs;  // each written by the thread that took its block
  std::atomic<std::size_t> mNext = 0;
  std::atomic<std::int64_t> mDone = 0;
  std::atomic<bool> mIsOver = false;
  std::mutex mMutex;
  std::condition_variable mHelperDone;
  bool mIsHelperDone = false;
  Failure mFailure;
};

// The second thread. It is over when this goes, also on a way out that nobody foresaw.
class Helper {
 public:
  explicit Helper(SharedReading& reading) : mReading(reading), mBuffer(MakeBlock(BlockBytes)) {
    mThread = std::thread([this] {
      while (mReading.TakeBlock(mBuffer.get())) {
      }
      mReading.HelperIsDone();
    });
  }
  ~Helper() {
    mReading.Fail(GivenUp);
    mThread.join();
  }
  Helper(const Helper&) = delete;
  Helper& operator=(const Helper&) = delete;

 private:
  SharedReading& mReading;
  const Block mBuffer;
  std::thread mThread;
};

// Answers when both threads have read all that there was to read for them.
Failure ReadByTwo(const PB_OpenedFile& opened, SharedReading& reading, std::byte* buffer) {
  const Helper helper(reading);
  Host host(opened.size);
  bool areBlocksLeft = true;
  do {
    areBlocksLeft = reading.TakeBlock(buffer);
    if (!host.KeepGoing(reading.Done())) reading.Fail(GivenUp);
  } while (areBlocksLeft);
  while (!reading.WaitForHelper(WaitBetweenPumps)) {
    if (!host.KeepGoing(reading.Done())) reading.Fail(GivenUp);
  }
  return reading.Outcome();
}

Failure TwoThreads(const PB_OpenedFile& opened, std::uint32_t& crc) {
  const Block buffer = MakeBlock(BlockBytes);
  SharedReading reading(opened);
  try {
    if (const Failure failure = ReadByTwo(opened, reading, buffer.get()); failure.code != 0)
      return failure;
  } catch (const std::system_error&) {
    return OneThread(opened, crc);  // no thread is to be had
  }
  crc = reading.Joined();
  return WhyItEnds(opened, opened.size, buffer.get());
}

class ClosedAtEnd {
 public:
  explicit ClosedAtEnd(void* file) : mFile(file) {}
  ~ClosedAtEnd() { callbacks.Close(callbacks.context, mFile); }
  ClosedAtEnd(const ClosedAtEnd&) = delete;
  ClosedAtEnd& operator=(const ClosedAtEnd&) = delete;

 private:
  void* mFile;
};

Failure ChecksumOf(const PB_NarrowText& path, std::uint32_t& crc) {
  if (callbacks.Open == nullptr) return {PB_ERROR_NO_CALLBACKS};
  PB_OpenedFile opened{};
  const std::int32_t code = callbacks.Open(callbacks.context, path.bytes, path.length, &opened);
  if (code != 0) return {code};
  const ClosedAtEnd closing(opened.file);
  if (opened.size >= 0 && opened.size < BlockBytes) return ShortFile(opened, crc);
  if (opened.mayReadOnTwoThreads != 0 && opened.size >= WorthTwoThreads)
    return TwoThreads(opened, crc);
  return OneThread(opened, crc);
}

void Put(PB_NarrowText& text, std::string_view words) {
  const std::size_t length = std::min<std::size_t>(words.size(), text.capacity);
  std::memcpy(text.bytes, words.data(), length);
  text.length = static_cast<std::uint32_t>(length);
}

}  // namespace

}  // namespace pbcrc32

std::int32_t PB_GetFileCrc32(PB_NarrowText& path, std::int32_t& errorCode,
                             PB_NarrowText& errorText) {
  using namespace pbcrc32;
  std::uint32_t crc = 0;
  Failure failure;
  try {
    failure = ChecksumOf(path, crc);
  } catch (const std::exception&) {
    failure = {PB_ERROR_OUT_OF_MEMORY};
  }
  errorCode = failure.code;
  if (failure.text != nullptr) Put(errorText, failure.text);
  return failure.code == 0 ? static_cast<std::int32_t>(crc) : -1;
}

std::int32_t PB_SetCallbacks(const PB_Callbacks* lent) {
  using pbcrc32::callbacks;
  if (lent == nullptr) {
    callbacks = {};
    return 1;
  }
  const bool isComplete = lent->structSize == sizeof(PB_Callbacks) && lent->Open != nullptr &&
                          lent->Read != nullptr && lent->Close != nullptr &&
                          lent->ShowProgress != nullptr && lent->PumpAndKeepGoing != nullptr;
  if (isComplete) callbacks = *lent;
  return isComplete ? 1 : 0;
}
