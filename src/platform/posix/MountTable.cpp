// SPDX-License-Identifier: MIT
// Reading the mountinfo text and walking its mounts.
#include "platform/posix/MountTable.h"

#include <charconv>
#include <cstdint>
#include <optional>

namespace quillmarsh {
namespace {

std::string_view NextField(std::string_view& line) {
  const std::size_t end = line.find(' ');
  const std::string_view field = line.substr(0, end);
  line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
  return field;
}

// Blanks, tabs, line feeds and backslashes stand in the text as a backslash and three octal digits.
std::string Unescaped(std::string_view field) {
  std::string text;
  for (std::size_t place = 0; place < field.size(); ++place) {
    int code = 0;
    if (field[place] == '\\' && place + 3 < field.size() &&
        std::from_chars(field.data() + place + 1, field.data() + place + 4, code, 8).ptr ==
            field.data() + place + 4 &&
        code < 256) {
      text += static_cast<char>(code);
      place += 3;
    } else {
      text += field[place];
    }
  }
  return text;
}

bool HasOption(std::string_view options, std::string_view wanted) {
  while (!options.empty()) {
    const std::size_t end = options.find(',');
    if (options.substr(0, end) == wanted) return true;
    options.remove_prefix(end == std::string_view::npos ? options.size() : end + 1);
  }
  return false;
}

bool ReadNumber(std::string_view field, int& number) {
  return std::from_chars(field.data(), field.data() + field.size(), number).ec == std::errc();
}

std::optional<Mount> ReadLine(std::string_view line) {
  Mount mount;
  if (!ReadNumber(NextField(line), mount.id) || !ReadNumber(NextField(line), mount.parent))
    return {};
  mount.device = NextField(line);
  mount.root = Unescaped(NextField(line));
  mount.point = Unescaped(NextField(line));
  mount.readOnly = HasOption(NextField(line), "ro");
  while (!line.empty() && NextField(line) != "-") {
  }
  mount.type = Unescaped(NextField(line));
  mount.source = Unescaped(NextField(line));
  mount.readOnly = mount.readOnly || HasOption(NextField(line), "ro");
  if (mount.type.empty() || mount.point.empty() || mount.point.front() != '/') return {};
  return mount;
}

}  // namespace

bool LiesBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return !path.empty() && path.front() == '/';
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string_view BelowFolder(std::string_view path, std::string_view folder) {
  path.remove_prefix(folder == "/" ? 0 : folder.size());
  if (!path.empty() && path.front() == '/') path.remove_prefix(1);
  return path;
}

std::string JoinNative(std::string_view folder, std::string_view relative) {
  std::string path(folder);
  if (!relative.empty() && !path.ends_with('/')) path += '/';
  path += relative;
  return path;
}

MountTable::MountTable(std::string_view mountInfo) {
  while (!mountInfo.empty()) {
    const std::size_t end = mountInfo.find('\n');
    if (auto mount = ReadLine(mountInfo.substr(0, end))) mMounts.push_back(std::move(*mount));
    mountInfo.remove_prefix(end == std::string_view::npos ? mountInfo.size() : end + 1);
  }
  for (const Mount& mount : mMounts) {
    mByPoint.emplace(mount.point, &mount);
    if (mount.point != "/") {
      const std::string_view point = mount.point;
      const std::size_t slash = point.rfind('/');
      mFoldersWithMounts.insert(slash == 0 ? point.substr(0, 1) : point.substr(0, slash));
    }
    mHasAutomounts = mHasAutomounts || mount.type == "autofs";
  }
}

// The topmost mount at `path` that stands on `mount`: mounts pile up on one point. Each step takes
// one mount of the pile, so the number of mounts bounds the loop also for a damaged table.
const Mount* MountTable::OverlaidAt(const Mount* mount, std::string_view path) const {
  const auto [first, last] = mByPoint.equal_range(path);
  for (std::size_t step = 0; step < mMounts.size(); ++step) {
    const Mount* above = nullptr;
    for (auto entry = first; entry != last; ++entry)
      if (entry->second != mount && entry->second->parent == mount->id) above = entry->second;
    if (above == nullptr) break;
    mount = above;
  }
  return mount;
}

const Mount* MountTable::VisibleAt(std::string_view path) const {
  // The root is the mount at "/" that stands on no other mount of the table.
  const Mount* current = nullptr;
  const auto [first, last] = mByPoint.equal_range("/");
  for (auto entry = first; entry != last && current == nullptr; ++entry) {
    bool standsOnAnother = false;
    for (auto other = first; other != last; ++other)
      standsOnAnother = standsOnAnother || (other->second != entry->second &&
                                            other->second->id == entry->second->parent);
    if (!standsOnAnother) current = entry->second;
  }
  if (current == nullptr) return nullptr;
  current = OverlaidAt(current, "/");
  for (std::size_t slash = 0; slash != std::string_view::npos && path.size() > 1;) {
    slash = path.find('/', slash + 1);
    current = OverlaidAt(current, path.substr(0, slash));
  }
  return current;
}

const Mount* MountTable::RootedAt(std::string_view path) const {
  if (!mByPoint.contains(path)) return nullptr;
  const Mount* mount = VisibleAt(path);
  return mount != nullptr && mount->point == path ? mount : nullptr;
}

bool MountTable::HasMountsIn(std::string_view folder) const {
  return mFoldersWithMounts.contains(folder);
}

}  // namespace quillmarsh
