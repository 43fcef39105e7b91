// SPDX-License-Identifier: MIT
// Listings read the folder as it is at each call: an entry that is added or removed in between
// appears or not by its place in the order, and no entry comes twice.
#include <iterator>

#include "platform/simulated/SimulatedRoles.h"

namespace quillmarsh::simulated {

namespace {

void Describe(const Node& node, TextView name, WIN32_FIND_DATAW& entry) {
  entry.dwFileAttributes = World::ToldAttributes(node);
  entry.ftCreationTime = FILETIME::FromTicks(node.created);
  entry.ftLastAccessTime = FILETIME::FromTicks(node.accessed);
  entry.ftLastWriteTime = FILETIME::FromTicks(node.written);
  entry.nFileSizeHigh = static_cast<std::uint32_t>(node.size >> 32U);
  entry.nFileSizeLow = static_cast<std::uint32_t>(node.size);
  const bool isReparsePoint = (node.attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  entry.dwReserved0 = isReparsePoint && node.extra ? node.extra->reparseTag : 0;
  entry.cFileName = name;
}

// The next entry of a folder behind the one that was given last, none at the end.
template <typename Entries, typename Iterator, typename Key>
const Node* NextOf(const Entries& entries, Iterator& next, const Key& lastGiven, bool isFresh) {
  if (!isFresh) next = entries.upper_bound(lastGiven);
  return next == entries.end() ? nullptr : *next++;
}

bool GiveNext(Search& search, WIN32_FIND_DATAW& entry) {
  Folder& folder = *search.folder->folder;
  if (search.dotsGiven < 2) {
    const bool isParent = search.dotsGiven++ == 1;
    const Node* const above = search.folder->parent;
    Describe(isParent && above != nullptr ? *above : *search.folder, isParent ? u".." : u".",
             entry);
    return true;
  }
  const bool isFresh = search.changes == folder.changes;
  search.changes = folder.changes;
  const Node* const node =
      search.volume->ListsByAge()
          ? NextOf(folder.byAge, search.nextByAge, search.lastNumber, isFresh)
          : NextOf(folder.byName, search.nextByName, TextView(search.lastName), isFresh);
  if (node == nullptr) return false;
  search.lastName = node->Name();
  search.lastNumber = node->number;
  Describe(*node, node->Name(), entry);
  return true;
}

}  // namespace

HANDLE SimulatedFinding::FindOne(const ParsedPath& path, WIN32_FIND_DATAW& entry) {
  // The entry is looked up in its folder, so the folder must be one and let itself be listed.
  ParsedPath folderPath = path;
  folderPath.components.pop_back();
  const Resolved folder = mWorld->Resolve(folderPath, LastLink::Follow);
  if (folder.error != 0) {
    const bool missing = folder.error == ERROR_FILE_NOT_FOUND;
    return Fail(missing ? ERROR_PATH_NOT_FOUND : folder.error, INVALID_HANDLE);
  }
  if (!folder.node->IsFolder()) return Fail(ERROR_DIRECTORY, INVALID_HANDLE);
  if (!mWorld->Grants(*folder.node, FILE_READ_DATA))
    return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE);
  const Node* const node = mWorld->disk.FindChild(*folder.node, path.components.back());
  if (node == nullptr) return Fail(ERROR_FILE_NOT_FOUND, INVALID_HANDLE);
  Describe(*node, node->Name(), entry);
  const HANDLE handle = mWorld->NewHandle();
  Search& search = mWorld->searches[handle];
  search.volume = folder.volume;
  return handle;
}

HANDLE SimulatedFinding::FindAll(ParsedPath path, WIN32_FIND_DATAW& entry) {
  path.components.pop_back();
  const Resolved place = mWorld->Resolve(path, LastLink::Follow);
  if (place.error != 0) {
    const bool missing = place.error == ERROR_FILE_NOT_FOUND;
    return Fail(missing ? ERROR_PATH_NOT_FOUND : place.error, INVALID_HANDLE);
  }
  if (!place.node->IsFolder()) return Fail(ERROR_DIRECTORY, INVALID_HANDLE);
  if (!mWorld->Grants(*place.node, FILE_READ_DATA))
    return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE);
  Search search;
  search.folder = place.node;
  search.volume = place.volume;
  search.changes = place.node->folder->changes;
  search.nextByName = place.node->folder->byName.begin();
  search.nextByAge = place.node->folder->byAge.begin();
  search.dotsGiven = place.node->parent == nullptr ? 2 : 0;
  if (!GiveNext(search, entry)) return Fail(ERROR_FILE_NOT_FOUND, INVALID_HANDLE);
  const HANDLE handle = mWorld->NewHandle();
  mWorld->searches.emplace(handle, std::move(search));
  return handle;
}

HANDLE SimulatedFinding::DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) {
  ParsedPath path = mWorld->Parse(pattern, UsualPathLimit, true);
  if (path.error != 0) return Fail(path.error, INVALID_HANDLE);
  if (path.components.empty() || path.endsInBackslash) {
    // No last component to look for: nothing is found, whatever the path before it is.
    path.components.clear();
    const Resolved root = mWorld->Resolve(path, LastLink::Follow);
    return Fail(root.error != 0 ? root.error : ERROR_FILE_NOT_FOUND, INVALID_HANDLE);
  }
  return path.components.back() == u"*" ? FindAll(std::move(path), entry) : FindOne(path, entry);
}

bool SimulatedFinding::DoFindNext(HANDLE handle, WIN32_FIND_DATAW& entry) {
  const auto found = mWorld->searches.find(handle);
  if (found == mWorld->searches.end()) return Fail(ERROR_INVALID_HANDLE, false);
  Search& search = found->second;
  if (const std::uint32_t error = mWorld->CheckVolume(*search.volume); error != 0)
    return Fail(error, false);
  if (search.folder == nullptr || !GiveNext(search, entry)) return Fail(ERROR_NO_MORE_FILES, false);
  return true;
}

bool SimulatedFinding::DoFindClose(HANDLE handle) {
  if (mWorld->searches.erase(handle) == 0) return Fail(ERROR_INVALID_HANDLE, false);
  return true;
}

}  // namespace quillmarsh::simulated
