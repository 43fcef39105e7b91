// SPDX-License-Identifier: MIT
// The mounts of this process as the kernel lists them (the mountinfo text), and which of them is in
// sight at a path. A value: made from one text, never changed, never looks at the disk.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillmarsh {

struct Mount {
  int id = 0;
  int parent = 0;
  std::string device;  // "major:minor" of the file system
  std::string root;    // the folder of the file system that is mounted
  std::string point;   // where it is mounted, without final slash but for "/"
  std::string type;    // "ext4"
  std::string source;  // "/dev/sda1", "server:/export", "tmpfs"
  bool readOnly = false;
};

class MountTable {
 public:
  MountTable() = default;
  // Lines that cannot be read are skipped.
  explicit MountTable(std::string_view mountInfo);

  [[nodiscard]] const std::vector<Mount>& Mounts() const { return mMounts; }
  // The mount that holds the absolute path (no "." or "..", links already resolved); null only
  // where the table has no root.
  [[nodiscard]] const Mount* VisibleAt(std::string_view path) const;
  // The mount whose root is in sight at exactly this path; null when there is none.
  [[nodiscard]] const Mount* RootedAt(std::string_view path) const;
  // Whether any mount lies directly in this folder.
  [[nodiscard]] bool HasMountsIn(std::string_view folder) const;
  [[nodiscard]] bool HasAutomounts() const { return mHasAutomounts; }

 private:
  [[nodiscard]] const Mount* OverlaidAt(const Mount* mount, std::string_view path) const;

  std::vector<Mount> mMounts;
  std::unordered_multimap<std::string_view, const Mount*> mByPoint;
  std::unordered_set<std::string_view> mFoldersWithMounts;
  bool mHasAutomounts = false;

 public:
  // The indexes point into the mounts; moving a vector keeps its elements in their place.
  MountTable(MountTable&&) = default;
  MountTable& operator=(MountTable&&) = default;
  MountTable(const MountTable&) = delete;
  MountTable& operator=(const MountTable&) = delete;
};

// Whether `path` is `folder` or lies below it; both absolute, "/" holds everything.
[[nodiscard]] bool LiesBelow(std::string_view path, std::string_view folder);
// What follows the folder in a path below it: "" or "a/b", without a leading slash.
[[nodiscard]] std::string_view BelowFolder(std::string_view path, std::string_view folder);
// The folder and a relative path as one absolute path.
[[nodiscard]] std::string JoinNative(std::string_view folder, std::string_view relative);

}  // namespace quillmarsh
