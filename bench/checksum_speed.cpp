// SPDX-License-Identifier: MIT
// The checksum of one large file in the page cache, by one thread and by two, against its floor: a
// bare read of the same file with a buffer of 256 KiB. The three take turns, since machines are
// shared and noisy, and the best of each is compared.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

#include "frame/ProgramFlags.h"
#include "fsobjects/ChecksumLibrary.h"
#include "platform/posix/PosixMachine.h"

namespace quillmarsh {
namespace {

constexpr int Rounds = 9;

// Lets every call through. A machine with a hook reads on one thread.
class NoHook final : public CallHook {
 public:
  std::optional<std::uint32_t> Before(Operation, TextView) override { return std::nullopt; }
  void After(Operation, TextView, bool) override {}
};

double SecondsOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void ReadBare(const char* path) {
  std::vector<char> buffer(std::size_t{256} << 10U);
  const int file = ::open(path, O_RDONLY | O_CLOEXEC);
  while (::read(file, buffer.data(), buffer.size()) > 0) {
  }
  ::close(file);
}

int Measure(const char* native) {
  PosixMachine machine;
  UseMachine(&machine);
  const Text program = machine.Process().GetModuleFileNameW();
  gAppPath = program.substr(0, program.rfind(u'\\') + 1);
  LoadChecksumLibrary();
  const CanonicalLocation location = machine.Drives().LocationFromNative(native);
  if (location.error != 0) {
    std::fprintf(stderr, "%s: error %u\n", native, location.error);
    return 2;
  }
  NoHook hook;
  std::int32_t checksums[2]{};
  const auto checksum = [&](bool onOneThread) {
    machine.SetHook(onOneThread ? &hook : nullptr);
    const LibraryChecksum answer = AskLibraryForCRC32(location.path);
    checksums[onOneThread ? 0 : 1] = answer.errorNumber == 0 ? answer.value : 0;
  };
  double bare = 1e9;
  double one = 1e9;
  double two = 1e9;
  for (int round = 0; round < Rounds; ++round) {
    bare = std::min(bare, SecondsOf([&] { ReadBare(native); }));
    one = std::min(one, SecondsOf([&] { checksum(true); }));
    two = std::min(two, SecondsOf([&] { checksum(false); }));
  }
  std::printf("bare read %.3f s; one thread %.2f times that; two threads %.2f; CRC %08X %s\n", bare,
              one / bare, two / bare, static_cast<std::uint32_t>(checksums[0]),
              checksums[0] == checksums[1] ? "both" : "AND THEY DIFFER");
  FreeChecksumLibrary();
  machine.SetHook(nullptr);
  UseMachine(nullptr);
  return checksums[0] == checksums[1] ? 0 : 1;
}

}  // namespace
}  // namespace quillmarsh

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "checksum_speed FILE\n");
    return 2;
  }
  return quillmarsh::Measure(argv[1]);
}
