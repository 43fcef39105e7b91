// SPDX-License-Identifier: MIT
// Copies of files that appear under their name when they are whole and on the disk, and never
// before: made beside their place under a name of their own, flushed, compared, and renamed. The
// system's own copy would stand there half after a kill. Alternate streams and attributes come
// along.
#pragma once

#include <cstdint>
#include <string>

namespace quillmarsh::win32 {

enum class WhenTaken { Fail, Replace };

// Answers a code of the system, 0 for success; nothing is left besides after a failure.
[[nodiscard]] std::uint32_t CopyWhole(const std::wstring& existing, const std::wstring& newPath,
                                      WhenTaken whenTaken);
// The same with the creation time, and then the source goes. Nobody can write to the source
// meanwhile. Where it cannot be deleted it stays, which is no failure.
[[nodiscard]] std::uint32_t MoveByCopy(const std::wstring& existing, const std::wstring& newPath,
                                       WhenTaken whenTaken);

// The copy alone, from a source that is open and that no other program can write to; with the
// creation time. 183 where the new path is taken.
[[nodiscard]] std::uint32_t CopyForMove(void* source, const std::wstring& existing,
                                        const std::wstring& newPath);

}  // namespace quillmarsh::win32
