// SPDX-License-Identifier: MIT
// Parsing follows the platform: '/' becomes '\', "." and ".." are worked out on the text, and then
// final dots and blanks fall off. An absolute path in which there is nothing to work out means the
// very names that it says, as in all machines. After "\\?\" nothing is worked out, and what is no
// name is refused.
#include "platform/simulated/SimulatedPaths.h"

#include <algorithm>

#include "base/CaseMapping.h"

namespace quillmarsh::simulated {

namespace {

constexpr TextView verbatimPrefix = u"\\\\?\\";
constexpr TextView verbatimUnc = u"UNC\\";
constexpr TextView verbatimVolume = u"Volume{";
constexpr int maximumLinks = 63;

bool IsDriveLetter(char16_t unit) {
  const char16_t upper = UpperCase(unit);
  return upper >= u'A' && upper <= u'Z';
}

bool StartsWithDrive(TextView path) {
  return path.size() >= 2 && path[1] == u':' && IsDriveLetter(path[0]);
}

bool StartsWithIgnoringCase(TextView text, TextView part) {
  return text.size() >= part.size() && EqualIgnoringCase(text.substr(0, part.size()), part);
}

bool IsForbidden(char16_t unit) {
  switch (unit) {
    case u'"':
    case u'*':
    case u':':
    case u'<':
    case u'>':
    case u'?':
    case u'|':
    case u'/':
    case u'\\':
      return true;
    default:
      return unit < 0x20;
  }
}

bool IsValidName(TextView name) {
  if (name.empty() || name.size() > 255) return false;
  const char16_t* const units = name.data();
  for (std::size_t i = 0; i < name.size(); ++i)
    if (IsForbidden(units[i])) return false;
  return true;
}

std::vector<TextView> SplitAtBackslashes(TextView text) {
  std::vector<TextView> parts;
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t end = std::min(text.find(u'\\', start), text.size());
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

// Takes "server\share\" off the front of `rest`, which stands behind the two backslashes.
Text TakeShareRoot(TextView& rest) {
  const std::size_t serverEnd = rest.find(u'\\');
  if (serverEnd == TextView::npos || serverEnd == 0) return {};
  const std::size_t shareEnd = std::min(rest.find(u'\\', serverEnd + 1), rest.size());
  if (shareEnd == serverEnd + 1) return {};
  Text root = u"\\\\" + Text(rest.substr(0, shareEnd)) + u"\\";
  rest.remove_prefix(std::min(shareEnd + 1, rest.size()));
  return root;
}

ParsedPath Failed(std::uint32_t error) {
  ParsedPath path;
  path.error = error;
  return path;
}

void CheckNames(ParsedPath& path, bool lastMayBeStar) {
  for (std::size_t i = 0; i < path.components.size(); ++i) {
    const TextView name = path.components[i];
    const bool isLast = i + 1 == path.components.size();
    if (isLast && lastMayBeStar && !path.endsInBackslash && name == u"*") continue;
    if (!IsValidName(name) || name == u"." || name == u"..") path.error = ERROR_INVALID_NAME;
  }
}

ParsedPath ParseVerbatim(TextView rest, bool lastMayBeStar) {
  ParsedPath path;
  if (StartsWithIgnoringCase(rest, verbatimUnc)) {
    rest.remove_prefix(verbatimUnc.size());
    path.root = TakeShareRoot(rest);
    if (path.root.empty()) return Failed(ERROR_BAD_NETPATH);
  } else if (StartsWithIgnoringCase(rest, verbatimVolume)) {
    const std::size_t end = rest.find(u'\\');
    if (end == TextView::npos) return Failed(ERROR_INVALID_NAME);
    path.root = Text(verbatimPrefix) + Text(rest.substr(0, end + 1));
    rest.remove_prefix(end + 1);
  } else if (StartsWithDrive(rest) && rest.size() >= 3 && rest[2] == u'\\') {
    path.root = rest.substr(0, 3);
    rest.remove_prefix(3);
  } else {
    return Failed(ERROR_INVALID_NAME);
  }
  if (rest.ends_with(u'\\')) {
    path.endsInBackslash = true;
    rest.remove_suffix(1);
  }
  if (!rest.empty())
    for (const TextView part : SplitAtBackslashes(rest)) path.components.emplace_back(part);
  CheckNames(path, lastMayBeStar);
  return path;
}

// A name as it is left after the platform has taken off final dots and blanks.
TextView WithoutFinalDots(TextView name, bool isLast) {
  if (!isLast) {
    if (name.ends_with(u'.') && !name.ends_with(u"..")) name.remove_suffix(1);
    return name;
  }
  while (name.ends_with(u'.') || name.ends_with(u' ')) name.remove_suffix(1);
  return name;
}

// Whether there is nothing to work out in the part behind the root.
bool IsExact(TextView rest) {
  if (rest.ends_with(u'\\')) rest.remove_suffix(1);
  const auto isSpecial = [](TextView part) {
    return part.empty() || part == u"." || part == u"..";
  };
  return rest.empty() || std::ranges::none_of(SplitAtBackslashes(rest), isSpecial);
}

void AddExactly(ParsedPath& path, TextView rest) {
  path.endsInBackslash = rest.ends_with(u'\\');
  if (path.endsInBackslash) rest.remove_suffix(1);
  if (rest.empty()) return;
  for (const TextView part : SplitAtBackslashes(rest)) path.components.emplace_back(part);
}

void AddNormalised(ParsedPath& path, TextView rest) {
  const auto parts = SplitAtBackslashes(rest);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const TextView part = parts[i];
    if (part.empty() || part == u".") continue;
    if (part == u"..") {
      if (!path.components.empty()) path.components.pop_back();
      continue;
    }
    const TextView name = WithoutFinalDots(part, i + 1 == parts.size());
    if (!name.empty()) path.components.emplace_back(name);
  }
  path.endsInBackslash = rest.ends_with(u'\\');
}

std::size_t LengthOf(const ParsedPath& path) {
  std::size_t length = path.root.size() + (path.endsInBackslash ? 1 : 0);
  for (const Text& name : path.components) length += name.size() + 1;
  return path.components.empty() ? path.root.size() : length - 1;
}

// Root and components that a relative path goes on from.
ParsedPath StartOfRelative(TextView path, TextView currentFolder) {
  const bool namesDrive = StartsWithDrive(path);
  const bool sameDrive =
      !namesDrive || EqualIgnoringCase(path.substr(0, 2), currentFolder.substr(0, 2));
  if (sameDrive) {
    ParsedPath start = ParsePath(currentFolder, {}, NoPathLimit, false);
    if (!namesDrive && path.starts_with(u'\\')) start.components.clear();
    return start;
  }
  ParsedPath start;
  start.root = Text(path.substr(0, 2)) + u"\\";
  return start;
}

}  // namespace

ParsedPath ParsePath(TextView given, TextView currentFolder, std::size_t limit,
                     bool lastMayBeStar) {
  if (given.empty()) return Failed(ERROR_PATH_NOT_FOUND);
  if (given.starts_with(verbatimPrefix))
    return ParseVerbatim(given.substr(verbatimPrefix.size()), lastMayBeStar);
  Text text(given);
  std::ranges::replace(text, u'/', u'\\');
  TextView rest = text;
  ParsedPath path;
  bool isAbsolute = true;
  if (rest.starts_with(u"\\\\")) {
    rest.remove_prefix(2);
    path.root = TakeShareRoot(rest);
    if (path.root.empty()) return Failed(ERROR_BAD_NETPATH);
  } else if (StartsWithDrive(rest) && rest.size() >= 3 && rest[2] == u'\\') {
    path.root = rest.substr(0, 3);
    rest.remove_prefix(3);
  } else {
    isAbsolute = false;
    if (currentFolder.empty()) return Failed(ERROR_BAD_PATHNAME);
    path = StartOfRelative(rest, currentFolder);
    if (path.error != 0) return path;
    if (StartsWithDrive(rest)) rest.remove_prefix(2);
  }
  if (isAbsolute && given.find(u'/') == TextView::npos && IsExact(rest))
    AddExactly(path, rest);
  else
    AddNormalised(path, rest);
  if (LengthOf(path) >= limit) return Failed(ERROR_FILENAME_EXCED_RANGE);
  CheckNames(path, lastMayBeStar);
  return path;
}

bool IsPlainName(TextView name) {
  return IsValidName(name) && !name.ends_with(u'.') && !name.ends_with(u' ');
}

std::uint32_t Resolver::CheckVolume(Volume& volume) {
  while (!volume.answers)
    if (!KeepWaiting()) return ERROR_OPERATION_ABORTED;
  if (!volume.present || !volume.facts.ready) return ERROR_NOT_READY;
  return ERROR_SUCCESS;
}

Resolved Resolver::Target(Node& link, int depth) {
  Resolved target;
  if (depth >= maximumLinks) {
    target.error = ERROR_CANT_RESOLVE_FILENAME;
    return target;
  }
  if (link.Link() == LinkKind::MountPoint) {
    Volume& volume = *link.extra->volume;
    target.error = CheckVolume(volume);
    target.node = volume.root;
    target.volume = &volume;
    return target;
  }
  const ParsedPath path = ParsePath(link.extra->linkTarget, {}, NoPathLimit, false);
  target = Resolve(path, LastLink::Follow, depth + 1);
  // A link that leads nowhere takes no new entry at the place it points to.
  if (target.error != 0) target.parent = nullptr;
  return target;
}

Resolved Resolver::Resolve(const ParsedPath& path, LastLink lastLink, int depth) {
  Resolved place;
  place.error = path.error;
  if (place.error != 0) return place;
  place.volume = mDisk->FindVolume(path.root);
  if (place.volume == nullptr) {
    const bool isShare = path.root.starts_with(u"\\\\") && !path.root.starts_with(verbatimPrefix);
    place.error = isShare ? ERROR_BAD_NETPATH : ERROR_PATH_NOT_FOUND;
    return place;
  }
  place.error = CheckVolume(*place.volume);
  if (place.error != 0) return place;
  place.node = place.volume->root;
  for (std::size_t i = 0; i < path.components.size(); ++i) {
    const bool isLast = i + 1 == path.components.size();
    Node* const folder = place.node;
    Node* const child =
        folder->IsFolder() ? mDisk->FindChild(*folder, path.components[i]) : nullptr;
    if (child == nullptr) {
      const bool canTakeIt = isLast && folder->IsFolder();
      return {canTakeIt ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND, nullptr,
              canTakeIt ? folder : nullptr, place.volume};
    }
    place.parent = folder;
    place.node = child;
    if (child->Link() == LinkKind::None || (isLast && lastLink == LastLink::Keep)) continue;
    const Resolved target = Target(*child, depth);
    if (target.error != 0) {
      const bool missing = target.error == ERROR_FILE_NOT_FOUND && !isLast;
      return {missing ? ERROR_PATH_NOT_FOUND : target.error, nullptr, nullptr, place.volume};
    }
    place.node = target.node;
    place.volume = target.volume;
  }
  if (path.endsInBackslash && !place.node->IsFolder()) place.error = ERROR_INVALID_NAME;
  return place;
}

}  // namespace quillmarsh::simulated
