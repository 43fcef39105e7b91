// SPDX-License-Identifier: MIT
// Trees of entries in memory. A folder keeps its entries in one ordered set (a second one where it
// is listed by age); names lie packed in blocks. About 170 bytes for a file with a common name.
#include "platform/simulated/SimulatedDisk.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "base/CaseMapping.h"

namespace quillmarsh::simulated {

namespace {

int CompareExactly(TextView a, TextView b) {
  return a.compare(b);
}

int CompareUpperCased(TextView a, TextView b) {
  const char16_t* const table = UpperCaseTable();
  const char16_t* const unitsA = a.data();
  const char16_t* const unitsB = b.data();
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (unitsA[i] == unitsB[i]) continue;
    const int difference = int{table[unitsA[i]]} - int{table[unitsB[i]]};
    if (difference != 0) return difference;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

int CompareNames(TextView a, TextView b, bool caseSensitive) {
  const int order = CompareUpperCased(a, b);
  return order == 0 && caseSensitive ? CompareExactly(a, b) : order;
}

bool FitsShortPart(TextView part) {
  return std::ranges::all_of(part, [](char16_t unit) {
    return unit > 0x20 && unit < 0x7F && TextView(u".+,;=[]").find(unit) == TextView::npos;
  });
}

bool FitsShortForm(TextView name) {
  const std::size_t dot = name.rfind(u'.');
  const TextView base = name.substr(0, dot);
  const TextView extension = dot == TextView::npos ? TextView() : name.substr(dot + 1);
  if (base.empty() || base.size() > 8 || extension.size() > 3) return false;
  if (dot != TextView::npos && extension.empty()) return false;
  return FitsShortPart(base) && FitsShortPart(extension);
}

Text ShortPart(TextView part, std::size_t length) {
  Text result;
  for (const char16_t unit : part) {
    if (unit == u' ' || unit == u'.') continue;
    result.push_back(FitsShortPart({&unit, 1}) ? UpperCase(unit) : u'_');
    if (result.size() == length) break;
  }
  return result;
}

Text NumberedShortName(TextView name, std::size_t number) {
  const std::size_t dot = name.rfind(u'.');
  const bool hasExtension = dot != TextView::npos && dot != 0 && dot + 1 < name.size();
  const Text tail = u"~" + DecimalText(static_cast<std::int64_t>(number));
  Text result = ShortPart(hasExtension ? name.substr(0, dot) : name,
                          8 - std::min<std::size_t>(tail.size(), 7));
  result += tail;
  if (hasExtension) result += u"." + ShortPart(name.substr(dot + 1), 3);
  return result;
}

Text VolumeName(std::size_t number) {
  Text digits = DecimalText(static_cast<std::int64_t>(number));
  digits.insert(0, 12 - digits.size(), u'0');
  return u"\\\\?\\Volume{5eed0000-0000-4000-8000-" + digits + u"}\\";
}

}  // namespace

bool NameOrder::operator()(const Node* a, const Node* b) const {
  return CompareNames(a->Name(), b->Name(), caseSensitive) < 0;
}
bool NameOrder::operator()(const Node* a, TextView b) const {
  return CompareNames(a->Name(), b, caseSensitive) < 0;
}
bool NameOrder::operator()(TextView a, const Node* b) const {
  return CompareNames(a, b->Name(), caseSensitive) < 0;
}
bool AgeOrder::operator()(const Node* a, const Node* b) const {
  return a->number < b->number;
}
bool AgeOrder::operator()(std::uint64_t a, const Node* b) const {
  return a < b->number;
}

NodeExtra& Node::Extra() {
  if (!extra) extra = std::make_unique<NodeExtra>();
  return *extra;
}

bool Volume::ListsByAge() const {
  return facts.fileSystem == u"FAT" || facts.fileSystem == u"FAT32" || facts.fileSystem == u"exFAT";
}

std::uint32_t Volume::Flags() const {
  std::uint32_t flags = FS_CASE_IS_PRESERVED | FS_UNICODE_STORED_ON_DISK;
  if (facts.fileSystem == u"NTFS") flags |= FS_CASE_SENSITIVE | FS_PERSISTENT_ACLS;
  if (facts.flags) flags = *facts.flags;
  return facts.readOnly ? flags | FS_READ_ONLY_VOLUME : flags;
}

Volume& Disk::AddVolume(const SimulatedDrive& drive) {
  if (!drive.root.empty() && FindVolume(drive.root) != nullptr)
    throw std::logic_error("there is a drive of that name already");
  Volume& volume = mVolumes.emplace_back();
  volume.facts = drive;
  if (!drive.root.empty()) volume.roots.push_back(drive.root);
  volume.volumeName = VolumeName(mVolumes.size());
  Node& root = mNodes.emplace_back();
  root.number = mNextNumber++;
  root.attributes = FILE_ATTRIBUTE_DIRECTORY;
  // The root of an NTFS volume carries both bits, which a walk from a root has to live with.
  if (drive.fileSystem == u"NTFS") root.attributes |= FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  root.folder = std::make_unique<Folder>(drive.caseSensitive);
  root.Extra().volume = &volume;
  volume.root = &root;
  return volume;
}

Volume* Disk::FindVolume(TextView root) {
  for (Volume& volume : mVolumes) {
    if (!volume.present) continue;
    if (EqualIgnoringCase(volume.volumeName, root)) return &volume;
    for (const Text& name : volume.roots)
      if (EqualIgnoringCase(name, root)) return &volume;
  }
  return nullptr;
}

bool Disk::IsWithin(const Node& node, const Node& folder) {
  for (const Node* place = &node; place != nullptr; place = place->parent)
    if (place == &folder) return true;
  return false;
}

Node* Disk::FindChild(Node& folder, TextView name) {
  auto& children = folder.folder->byName;
  if (const auto found = children.find(name); found != children.end()) return *found;
  if (name.find(u'~') == TextView::npos) return nullptr;
  const Volume* const volume = VolumeOf(folder);
  if (volume == nullptr || !volume->facts.keepsShortNames) return nullptr;
  for (Node* child : children)
    if (EqualIgnoringCase(ShortNameOf(*child), name)) return child;
  return nullptr;
}

const char16_t* Disk::StoreName(TextView name) {
  constexpr std::size_t blockUnits = std::size_t{1} << 16U;
  if (name.size() >= blockUnits) throw std::logic_error("the name is too long");
  if (name.size() > mNameBlockLeft) {
    mNameBlocks.push_back(std::make_unique_for_overwrite<char16_t[]>(blockUnits));
    mNameNext = mNameBlocks.back().get();
    mNameBlockLeft = blockUnits;
  }
  char16_t* const place = mNameNext;
  std::copy(name.begin(), name.end(), place);
  mNameNext += name.size();
  mNameBlockLeft -= name.size();
  return place;
}

void Disk::Insert(Node& parent, Node& node) {
  node.parent = &parent;
  if (!parent.folder->byName.insert(&node).second)
    throw std::logic_error(ToUtf8(node.Name()) + ": an entry of that name is there already");
  const Volume* const volume = VolumeOf(parent);
  if (volume != nullptr && volume->ListsByAge()) parent.folder->byAge.insert(&node);
  ++parent.folder->changes;
}

void Disk::Detach(Node& node) {
  Folder& folder = *node.parent->folder;
  folder.byName.erase(&node);
  folder.byAge.erase(&node);
  ++folder.changes;
  node.parent = nullptr;
}

Node& Disk::AddChild(Node& parent, TextView name, const SimulatedFacts& facts, bool isFolder) {
  Node& node = mNodes.emplace_back();
  node.nameUnits = StoreName(name);
  node.nameLength = static_cast<std::uint16_t>(name.size());
  node.number = mNextNumber++;
  node.attributes = facts.attributes;
  node.created = facts.created;
  node.accessed = facts.accessed;
  node.written = facts.written;
  if (isFolder) {
    node.attributes |= FILE_ATTRIBUTE_DIRECTORY;
    node.folder = std::make_unique<Folder>(parent.folder->byName.key_comp().caseSensitive);
  }
  Insert(parent, node);
  return node;
}

void Disk::Remove(Node& node) {
  if (node.IsFolder()) {
    while (!node.folder->byName.empty()) Remove(**node.folder->byName.begin());
  }
  for (Volume& volume : mVolumes)
    if (volume.mountedAt == &node) volume.mountedAt = nullptr;
  Detach(node);
}

void Disk::Move(Node& node, Node& newParent, TextView newName) {
  for (const Node* above = &newParent; above != nullptr; above = above->parent)
    if (above == &node) throw std::logic_error("a folder cannot be moved below itself");
  const Node* const taken = FindChild(newParent, newName);
  if (taken != nullptr && taken != &node)
    throw std::logic_error("an entry of that name is there already");
  Detach(node);
  node.nameUnits = StoreName(newName);
  node.nameLength = static_cast<std::uint16_t>(newName.size());
  node.number = mNextNumber++;
  if (node.extra) node.extra->shortName.clear();
  Insert(newParent, node);
}

void Disk::SetContents(Node& node, const FileContents& contents) {
  node.size = contents.Size();
  node.seed = contents.Seed();
  const bool needsExtra =
      contents.ChangedPosition().has_value() || (!contents.IsRecipe() && contents.Size() != 0);
  if (!needsExtra && !node.extra) return;
  NodeExtra& extra = node.Extra();
  extra.hasBytes = !contents.IsRecipe();
  extra.bytes = contents.StoredBytes();
  extra.changedByte = contents.ChangedPosition();
}

void Disk::CopyContents(const Node& from, Node& to) {
  to.size = from.size;
  to.seed = from.seed;
  if (!from.extra && !to.extra) return;
  NodeExtra& extra = to.Extra();
  extra.hasBytes = from.extra && from.extra->hasBytes;
  extra.bytes = from.extra ? from.extra->bytes : std::string();
  extra.changedByte = from.extra ? from.extra->changedByte : std::nullopt;
  extra.compressedSize.reset();
}

std::size_t Disk::Read(const Node& node, std::uint64_t offset, std::span<std::byte> bytes) const {
  if (offset >= node.size) return 0;
  const auto count =
      static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), node.size - offset));
  if (node.extra && node.extra->hasBytes) {
    std::memcpy(bytes.data(), node.extra->bytes.data() + offset, count);
    return count;
  }
  FillFromRecipe(node.seed, offset, bytes.first(count));
  if (node.extra && node.extra->changedByte) {
    const std::uint64_t place = *node.extra->changedByte;
    if (place >= offset && place < offset + count) bytes[place - offset] = ~bytes[place - offset];
  }
  return count;
}

std::string& Disk::BytesForWriting(Node& node) {
  NodeExtra& extra = node.Extra();
  if (!extra.hasBytes) {
    if (node.size > (std::uint64_t{1} << 28U))
      throw std::logic_error("a recipe of that size is not written into");
    std::string bytes(node.size, '\0');
    (void)Read(node, 0, std::as_writable_bytes(std::span(bytes)));
    extra.bytes = std::move(bytes);
    extra.hasBytes = true;
    extra.changedByte.reset();
  }
  return extra.bytes;
}

const Text& Disk::ShortNameOf(Node& node) {
  NodeExtra& extra = node.Extra();
  if (!extra.shortName.empty()) return extra.shortName;
  if (FitsShortForm(node.Name())) {
    extra.shortName = node.Name();
    return extra.shortName;
  }
  for (std::size_t number = 1;; ++number) {
    Text candidate = NumberedShortName(node.Name(), number);
    const bool taken = std::ranges::any_of(node.parent->folder->byName, [&](const Node* other) {
      return EqualIgnoringCase(other->Name(), candidate) ||
             (other->extra && EqualIgnoringCase(other->extra->shortName, candidate));
    });
    if (taken) continue;
    extra.shortName = std::move(candidate);
    return extra.shortName;
  }
}

void Disk::SetShortName(Node& node, TextView name) {
  node.Extra().shortName = name;
}

void Disk::SetAccess(Node& node, std::uint32_t allowed, std::uint32_t denied, bool inherited) {
  NodeExtra& extra = node.Extra();
  extra.allowed = allowed;
  extra.denied = denied;
  extra.inherited = inherited;
  mHasAccessLists = true;
}

std::uint32_t Disk::GrantedRights(const Node& node) const {
  std::uint32_t granted = 0xFFFFFFFF;
  if (!mHasAccessLists) return granted;
  for (const Node* place = &node; place != nullptr; place = place->parent) {
    if (!place->extra || (place != &node && !place->extra->inherited)) continue;
    granted &= place->extra->allowed & ~place->extra->denied;
  }
  return granted;
}

bool EqualIgnoringCase(TextView a, TextView b) {
  return a.size() == b.size() && CompareUpperCased(a, b) == 0;
}

const Volume* VolumeOf(const Node& node) {
  const Node* top = &node;
  while (top->parent != nullptr) top = top->parent;
  const bool isRoot = top->extra && top->extra->link == LinkKind::None;
  return isRoot ? top->extra->volume : nullptr;
}

Text PathOf(const Node& node) {
  if (node.parent == nullptr) {
    const Volume* const volume = VolumeOf(node);
    if (volume == nullptr) return {};
    if (!volume->roots.empty()) return volume->roots.front();
    return volume->mountedAt != nullptr ? PathOf(*volume->mountedAt) : volume->volumeName;
  }
  Text path = PathOf(*node.parent);
  if (!path.ends_with(u'\\')) path += u'\\';
  path += node.Name();
  return path;
}

}  // namespace quillmarsh::simulated
