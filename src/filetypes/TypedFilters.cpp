// SPDX-License-Identifier: MIT
// Names are mapped piece by piece; what stands between the pieces has a meaning of its own.
#include "filetypes/TypedFilters.h"

#include <algorithm>

#include "fsobjects/modPaths.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

constexpr TextView kWildcards = u"*?";

// Each piece as a name is shown; of what is between them a backslash becomes `separator`.
Text ShownPieces(TextView text, TextView between, char16_t separator) {
  const Volumes& volumes = TheMachine().Drives();
  Text shown;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(between), text.size());
    if (end > 0) shown += volumes.ShownPath(text.substr(0, end));
    if (end == text.size()) break;
    shown += text[end] == u'\\' ? separator : text[end];
    text.remove_prefix(end + 1);
  }
  return shown;
}

// The program's form of a path that begins at the machine's root; empty where there is none.
Text PathFromNative(TextView typed, FolderFilterUse use) {
  Volumes& volumes = TheMachine().Drives();
  const std::string native = ToUtf8(typed);
  const CanonicalLocation location = use == FolderFilterUse::Exclude
                                         ? volumes.NewLocationFromNative(native)
                                         : volumes.LocationFromNative(native);
  if (location.error != 0) return {};
  return typed.ends_with(u'/') ? AddBackslash(location.path) : location.path;
}

}  // namespace

bool IsProgramPath(TextView text) {
  return text.starts_with(u"\\\\") || (text.size() >= 2 && text[1] == u':');
}

bool HasPathsOfItsOwn() {
  return TheMachine().Drives().ShownPath(u"C:\\").starts_with(u'/');
}

Text MaskFromTyped(TextView typed) {
  return TheMachine().Drives().TextFromNative(ToUtf8(typed), NativeTextKind::Mask);
}

Text ShownMask(TextView mask) {
  return ShownPieces(mask, kWildcards, u'\\');
}

Text FolderFilterFromTyped(TextView typed, FolderFilterUse use) {
  if (typed == u"*") return Text(typed);
  Text entry;
  if (IsProgramPath(typed)) {
    entry = typed;
  } else if (typed.starts_with(u'/')) {
    entry = PathFromNative(typed, use);
  }
  if (entry.empty())
    entry = TheMachine().Drives().TextFromNative(ToUtf8(typed), NativeTextKind::PathFragment);
  return use == FolderFilterUse::Exclude ? AddBackslash(entry) : entry;
}

Text ShownFolderFilter(TextView entry) {
  if (IsProgramPath(entry)) return TheMachine().Drives().ShownPath(entry);
  return ShownPieces(entry, u"\\", HasPathsOfItsOwn() ? u'/' : u'\\');
}

}  // namespace quillmarsh
