// SPDX-License-Identifier: MIT
// One reader of blocks under both facts. A failure anywhere makes the fact unknown, never partial.
#include "fsobjects/WholeFileReading.h"

#include <array>
#include <vector>

#include "fsobjects/Handles.h"
#include "fsobjects/modUnicode.h"
#include "platform/Md5.h"

namespace quillmarsh {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;
constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

constexpr bool IsPlainText(unsigned byte) {
  return byte == '\t' || byte == '\n' || byte == '\r' || (byte >= 0x20 && byte <= 0x7E);
}

}  // namespace

bool ReadInBlocks(TextView path, const TakeBlock& take) {
  const RedirectionOff redirection;
  FileInputOutput& files = TheMachine().Files();
  const FileHandle file(files.CreateFileW(ToLongPath(path), GENERIC_READ, kShareAll, OPEN_EXISTING,
                                          FILE_FLAG_SEQUENTIAL_SCAN));
  if (!file.IsValid()) return false;
  std::vector<std::byte> block(kBlockBytes);
  std::uint32_t done = 0;
  while (files.ReadFile(file.Get(), block, done)) {
    if (done == 0) return true;
    take(std::span<const std::byte>(block).first(done));
  }
  return false;
}

std::optional<Text> Md5OfFile(TextView path) {
  Md5 digest;
  if (!ReadInBlocks(path, [&](std::span<const std::byte> block) { digest.Add(block); }))
    return std::nullopt;
  return digest.Finish();
}

std::optional<std::int32_t> PlainTextPercentage(TextView path, bool highCharactersToo) {
  std::array<std::uint64_t, 256> counts{};
  const bool whole = ReadInBlocks(path, [&](std::span<const std::byte> block) {
    for (const std::byte byte : block) ++counts[std::to_integer<std::size_t>(byte)];
  });
  if (!whole) return std::nullopt;
  std::uint64_t all = 0;
  std::uint64_t plain = 0;
  for (unsigned byte = 0; byte < counts.size(); ++byte) {
    all += counts[byte];
    if (IsPlainText(byte) || (highCharactersToo && byte >= 0x80)) plain += counts[byte];
  }
  return all == 0 ? 0 : static_cast<std::int32_t>(plain * 100 / all);
}

}  // namespace quillmarsh
