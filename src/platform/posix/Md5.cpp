// SPDX-License-Identifier: MIT
// By GLib.
#include "platform/Md5.h"

#include <glib.h>

namespace quillmarsh {

struct Md5::State {
  ~State() { g_checksum_free(checksum); }
  GChecksum* checksum = g_checksum_new(G_CHECKSUM_MD5);
};

Md5::Md5() : mState(std::make_unique<State>()) {}
Md5::~Md5() = default;

void Md5::Add(std::span<const std::byte> bytes) {
  g_checksum_update(mState->checksum, reinterpret_cast<const guchar*>(bytes.data()),
                    static_cast<gssize>(bytes.size()));
}

std::optional<Text> Md5::Finish() {
  return FromUtf8(g_checksum_get_string(mState->checksum));
}

}  // namespace quillmarsh
