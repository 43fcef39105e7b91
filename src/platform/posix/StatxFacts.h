// SPDX-License-Identifier: MIT
// The facts of one entry as the program knows them, from what statx tells. Pure functions.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

#include <cstdint>
#include <string_view>

#include "platform/SystemTypes.h"

namespace quillmarsh {

inline constexpr unsigned FactsWanted = STATX_BASIC_STATS | STATX_BTIME;
inline constexpr int FactsOfEntryItself = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;

// Ticks of a moment. Moments before 1601 become 1601, those after the last tick become the last.
[[nodiscard]] FILETIME FileTimeOf(std::int64_t seconds, std::uint32_t nanoseconds);
// The other way, for any number of ticks.
[[nodiscard]] timespec TimeOf(const FILETIME& moment);

// What an entry is to the program.
enum class EntryKind { File, Folder, FolderLink, FileLink, MountRoot, Other };

// The kind by the entry's own facts alone; a link is told as FileLink until somebody has looked
// where it leads. A file that is a mount of its own is Other: it may be a second name of another
// file.
[[nodiscard]] EntryKind KindOf(const struct statx& facts);

// The attribute word. The name decides whether the entry is hidden ("." and ".." are not).
[[nodiscard]] std::uint32_t AttributesOf(const struct statx& facts, EntryKind kind,
                                         std::string_view name);

// Everything but the name.
void FillFindData(const struct statx& facts, EntryKind kind, std::string_view name,
                  WIN32_FIND_DATAW& entry);

}  // namespace quillmarsh
