// SPDX-License-Identifier: MIT
// By the system's own cryptography.
#include "platform/Md5.h"

#include "platform/win32/Win32Calls.h"

#include <bcrypt.h>

#include <array>

namespace quillmarsh {

struct Md5::State {
  State() {
    isWell = ::BCryptOpenAlgorithmProvider(&provider, BCRYPT_MD5_ALGORITHM, nullptr, 0) >= 0 &&
             ::BCryptCreateHash(provider, &hash, nullptr, 0, nullptr, 0, 0) >= 0;
  }
  ~State() {
    if (hash != nullptr) ::BCryptDestroyHash(hash);
    if (provider != nullptr) ::BCryptCloseAlgorithmProvider(provider, 0);
  }
  BCRYPT_ALG_HANDLE provider = nullptr;
  BCRYPT_HASH_HANDLE hash = nullptr;
  bool isWell = false;
};

Md5::Md5() : mState(std::make_unique<State>()) {}
Md5::~Md5() = default;

// The call takes what it only reads as if it wrote there.
void Md5::Add(std::span<const std::byte> bytes) {
  auto* const first = reinterpret_cast<PUCHAR>(const_cast<std::byte*>(bytes.data()));
  mState->isWell = mState->isWell &&
                   ::BCryptHashData(mState->hash, first, static_cast<ULONG>(bytes.size()), 0) >= 0;
}

std::optional<Text> Md5::Finish() {
  std::array<UCHAR, 16> digest{};
  if (!mState->isWell ||
      ::BCryptFinishHash(mState->hash, digest.data(), static_cast<ULONG>(digest.size()), 0) < 0)
    return std::nullopt;
  static constexpr TextView digits = u"0123456789abcdef";
  Text text;
  for (const UCHAR byte : digest) {
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

}  // namespace quillmarsh
