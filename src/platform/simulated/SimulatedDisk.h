// SPDX-License-Identifier: MIT
// The volumes of a simulated machine and the trees on them: entries, names, order, access masks.
// It knows no paths and no error codes. Entries live as long as the disk, also removed ones, so
// that open handles and listings stay valid whatever happens in between.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "platform/simulated/FileContents.h"
#include "platform/simulated/SimulatedDrive.h"

namespace quillmarsh::simulated {

struct Volume;
struct Node;

// Orders the entries of a folder by upper-cased name; where the volume tells case apart, equal ones
// by their exact spelling.
struct NameOrder {
  using is_transparent = void;
  bool caseSensitive = false;
  bool operator()(const Node* a, const Node* b) const;
  bool operator()(const Node* a, TextView b) const;
  bool operator()(TextView a, const Node* b) const;
};

struct AgeOrder {
  using is_transparent = void;
  bool operator()(const Node* a, const Node* b) const;
  bool operator()(std::uint64_t a, const Node* b) const;
};

struct Folder {
  explicit Folder(bool caseSensitive) : byName(NameOrder{caseSensitive}) {}
  std::set<Node*, NameOrder> byName;
  std::set<Node*, AgeOrder> byAge;  // kept only where the volume lists by age
  std::uint64_t changes = 0;        // grows with every entry added or removed
};

enum class LinkKind : std::uint8_t { None, Junction, MountPoint, SymbolicLink };

// The rare facts of an entry.
struct NodeExtra {
  std::string bytes;  // stored contents
  bool hasBytes = false;
  std::optional<std::uint64_t> changedByte;
  std::optional<std::uint64_t> compressedSize;
  LinkKind link = LinkKind::None;
  std::uint32_t reparseTag = 0;
  Text linkTarget;
  Volume* volume = nullptr;  // the volume of a root, the target of a mount point
  Text shortName;
  std::uint32_t denied = 0;  // rights refused here and, where inherited, below
  std::uint32_t allowed = 0xFFFFFFFF;
  bool inherited = true;
};

struct Node {
  const char16_t* nameUnits = nullptr;
  Node* parent = nullptr;  // none for a root and for a removed entry
  std::int64_t created = 0;
  std::int64_t accessed = 0;
  std::int64_t written = 0;
  std::uint64_t size = 0;
  std::uint64_t seed = 0;
  std::uint64_t number = 0;  // ascending by age, never used twice
  std::unique_ptr<Folder> folder;
  std::unique_ptr<NodeExtra> extra;
  std::uint32_t attributes = 0;
  std::uint16_t nameLength = 0;

  [[nodiscard]] TextView Name() const { return {nameUnits, nameLength}; }
  [[nodiscard]] bool IsFolder() const { return folder != nullptr; }
  [[nodiscard]] LinkKind Link() const { return extra ? extra->link : LinkKind::None; }
  [[nodiscard]] NodeExtra& Extra();
};

struct Volume {
  SimulatedDrive facts;
  std::vector<Text> roots;  // all with final backslash; the first is the canonical one
  Text volumeName;          // "\\?\Volume{...}\"
  Node* root = nullptr;
  Node* mountedAt = nullptr;  // the first mount point that shows it
  bool present = true;
  bool answers = true;

  [[nodiscard]] bool ListsByAge() const;
  [[nodiscard]] std::uint32_t Flags() const;
};

class Disk {
 public:
  Volume& AddVolume(const SimulatedDrive& drive);
  // By any of its roots or its volume name, case ignored; absent volumes are not found.
  [[nodiscard]] Volume* FindVolume(TextView root);
  [[nodiscard]] std::deque<Volume>& Volumes() { return mVolumes; }

  // Whether an entry is the folder or lies below it.
  [[nodiscard]] static bool IsWithin(const Node& node, const Node& folder);
  // By name, or by short name where the volume keeps them.
  [[nodiscard]] Node* FindChild(Node& folder, TextView name);
  // The name must not be taken.
  Node& AddChild(Node& parent, TextView name, const SimulatedFacts& facts, bool isFolder);
  void Remove(Node& node);  // with everything below it
  void Move(Node& node, Node& newParent, TextView newName);

  void SetContents(Node& node, const FileContents& contents);
  // Gives one file the contents of another.
  void CopyContents(const Node& from, Node& to);
  // Bytes copied; less than asked for at the end of the file.
  [[nodiscard]] std::size_t Read(const Node& node, std::uint64_t offset,
                                 std::span<std::byte> bytes) const;
  // The stored bytes, made from the recipe first where there is one.
  [[nodiscard]] std::string& BytesForWriting(Node& node);

  [[nodiscard]] const Text& ShortNameOf(Node& node);
  void SetShortName(Node& node, TextView name);

  void SetAccess(Node& node, std::uint32_t allowed, std::uint32_t denied, bool inherited);
  // Rights that the entry grants, by its own list and those inherited from the folders above it.
  [[nodiscard]] std::uint32_t GrantedRights(const Node& node) const;

 private:
  [[nodiscard]] const char16_t* StoreName(TextView name);
  void Insert(Node& parent, Node& node);
  void Detach(Node& node);

  std::deque<Node> mNodes;
  std::deque<Volume> mVolumes;
  std::vector<std::unique_ptr<char16_t[]>> mNameBlocks;
  std::size_t mNameBlockLeft = 0;
  char16_t* mNameNext = nullptr;
  std::uint64_t mNextNumber = 1;
  bool mHasAccessLists = false;
};

[[nodiscard]] bool EqualIgnoringCase(TextView a, TextView b);
[[nodiscard]] const Volume* VolumeOf(const Node& node);
// The canonical path, without final backslash except for a root.
[[nodiscard]] Text PathOf(const Node& node);

}  // namespace quillmarsh::simulated
