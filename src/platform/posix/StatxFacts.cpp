// SPDX-License-Identifier: MIT
// From statx to attributes, times and sizes.
#include "platform/posix/StatxFacts.h"

#include <limits>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;
constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t FirstSecond = -59'011'459'200;  // 1 January 100
constexpr std::int64_t LastSecond =
    std::numeric_limits<std::int64_t>::max() / TicksPerSecond - SecondsFrom1601To1970 - 1;

bool HasAttribute(const struct statx& facts, std::uint64_t attribute) {
  return (facts.stx_attributes & facts.stx_attributes_mask & attribute) != 0;
}

FILETIME TicksOf(const struct statx_timestamp& time) {
  return FileTimeOf(time.tv_sec, time.tv_nsec);
}

}  // namespace

FILETIME FileTimeOf(std::int64_t seconds, std::uint32_t nanoseconds) {
  // Before 1601 the ticks are negative; before the first day that a date can be they stand still.
  if (seconds < FirstSecond) return FileTimeOf(FirstSecond, 0);
  if (seconds > LastSecond) return FILETIME::FromTicks(std::numeric_limits<std::int64_t>::max());
  return FILETIME::FromTicks((seconds + SecondsFrom1601To1970) * TicksPerSecond +
                             nanoseconds / 100);
}

timespec TimeOf(const FILETIME& moment) {
  std::int64_t seconds = moment.Ticks() / TicksPerSecond;
  std::int64_t part = moment.Ticks() % TicksPerSecond;
  if (part < 0) {  // it counts forward from the second before
    part += TicksPerSecond;
    --seconds;
  }
  return {seconds - SecondsFrom1601To1970, part * 100};
}

EntryKind KindOf(const struct statx& facts) {
  const bool isMount = HasAttribute(facts, STATX_ATTR_MOUNT_ROOT);
  if (S_ISDIR(facts.stx_mode)) {
    const bool trigger = HasAttribute(facts, STATX_ATTR_AUTOMOUNT);
    return isMount || trigger ? EntryKind::MountRoot : EntryKind::Folder;
  }
  if (S_ISREG(facts.stx_mode)) return isMount ? EntryKind::Other : EntryKind::File;
  return S_ISLNK(facts.stx_mode) ? EntryKind::FileLink : EntryKind::Other;
}

std::uint32_t AttributesOf(const struct statx& facts, EntryKind kind, std::string_view name) {
  std::uint32_t attributes = 0;
  switch (kind) {
    case EntryKind::Folder:
      attributes = FILE_ATTRIBUTE_DIRECTORY;
      break;
    case EntryKind::FolderLink:
    case EntryKind::MountRoot:
      attributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
      break;
    case EntryKind::FileLink:
      attributes = FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_REPARSE_POINT;
      break;
    default:
      attributes = FILE_ATTRIBUTE_ARCHIVE;
  }
  // A link has no permissions of its own that mean anything.
  if ((facts.stx_mode & S_IWUSR) == 0 && !S_ISLNK(facts.stx_mode))
    attributes |= FILE_ATTRIBUTE_READONLY;
  if (name.starts_with('.') && name != "." && name != "..") attributes |= FILE_ATTRIBUTE_HIDDEN;
  if (HasAttribute(facts, STATX_ATTR_COMPRESSED)) attributes |= FILE_ATTRIBUTE_COMPRESSED;
  if (HasAttribute(facts, STATX_ATTR_ENCRYPTED)) attributes |= FILE_ATTRIBUTE_ENCRYPTED;
  return attributes;
}

void FillFindData(const struct statx& facts, EntryKind kind, std::string_view name,
                  WIN32_FIND_DATAW& entry) {
  entry.dwFileAttributes = AttributesOf(facts, kind, name);
  entry.ftLastWriteTime = TicksOf(facts.stx_mtime);
  entry.ftLastAccessTime = TicksOf(facts.stx_atime);
  const bool hasBirth = (facts.stx_mask & STATX_BTIME) != 0;
  entry.ftCreationTime = hasBirth ? TicksOf(facts.stx_btime) : entry.ftLastWriteTime;
  const std::uint64_t size = kind == EntryKind::File ? facts.stx_size : 0;
  entry.nFileSizeHigh = static_cast<std::uint32_t>(size >> 32U);
  entry.nFileSizeLow = static_cast<std::uint32_t>(size);
  const bool leadsElsewhere = kind == EntryKind::FolderLink || kind == EntryKind::MountRoot;
  entry.dwReserved0 = leadsElsewhere                ? IO_REPARSE_TAG_MOUNT_POINT
                      : kind == EntryKind::FileLink ? IO_REPARSE_TAG_SYMLINK
                                                    : 0;
}

}  // namespace quillmarsh
