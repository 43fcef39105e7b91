// SPDX-License-Identifier: MIT
// The clipboard as a private mailbox: a text under a format that only this program knows. What a
// person has copied is never touched. A failure anywhere gives an empty text and nothing more.
#pragma once

#include <string_view>

#include "base/Text.h"

namespace quillmarsh {

// The format's number, or 0.
[[nodiscard]] std::uint32_t RegisterPrivateClipboardFormat(TextView name);
// The text kept under a format, through the 8-bit code page.
[[nodiscard]] Text GetPrivateClipboardText(std::uint32_t format);

// How far a long checksum has come, as a person reads it; empty while there is nothing to tell.
[[nodiscard]] Text GetCRCProgressText();
void PublishCRCProgressText(std::string_view text);
// Takes back what was told last.
void ClearCRCProgressText();

}  // namespace quillmarsh
