// SPDX-License-Identifier: MIT
// From path texts to entries of a simulated disk: the platform's normalising, its limits and the
// error code of every way in which a path can fail. Links on the way are followed, the last
// component only when asked for.
#pragma once

#include <vector>

#include "platform/simulated/SimulatedDisk.h"

namespace quillmarsh::simulated {

// Without the prefix "\\?\" a path of this many characters or more is refused with 206.
inline constexpr std::size_t UsualPathLimit = 260;
inline constexpr std::size_t NewFolderPathLimit = 248;
inline constexpr std::size_t NoPathLimit = static_cast<std::size_t>(-1);

inline constexpr std::uint32_t ERROR_CANT_RESOLVE_FILENAME = 1921;

struct ParsedPath {
  std::uint32_t error = 0;
  Text root;  // as volumes bear it, with final backslash
  std::vector<Text> components;
  bool endsInBackslash = false;
};

// `currentFolder` is an absolute path, for relative ones. `lastMayBeStar` lets "*" stand last.
[[nodiscard]] ParsedPath ParsePath(TextView path, TextView currentFolder, std::size_t limit,
                                   bool lastMayBeStar);

// Whether a name of any path stands for itself: no forbidden character, no final dot or blank.
[[nodiscard]] bool IsPlainName(TextView name);

enum class LastLink : std::uint8_t { Follow, Keep };

// On success the entry. With error 2 the entry is missing, but its parent folder is there and can
// take an entry of the name of the last component.
struct Resolved {
  std::uint32_t error = 0;
  Node* node = nullptr;
  Node* parent = nullptr;
  Volume* volume = nullptr;
};

class Resolver {
 public:
  explicit Resolver(Disk& disk) : mDisk(&disk) {}
  virtual ~Resolver() = default;
  Resolver(const Resolver&) = delete;
  Resolver& operator=(const Resolver&) = delete;

  [[nodiscard]] Resolved Resolve(const ParsedPath& path, LastLink lastLink, int depth = 0);
  // What a link leads to, through further links.
  [[nodiscard]] Resolved Target(Node& link, int depth = 0);
  // 0, 21 for a volume that is not ready, 995 for one that does not answer.
  [[nodiscard]] std::uint32_t CheckVolume(Volume& volume);

 private:
  // Called while a volume does not answer; false gives the operation up.
  virtual bool KeepWaiting() = 0;

  Disk* mDisk;
};

}  // namespace quillmarsh::simulated
