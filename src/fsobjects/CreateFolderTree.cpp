// SPDX-License-Identifier: MIT
// Walks the path from its root and makes what is missing.
#include "fsobjects/CreateFolderTree.h"

#include "fsobjects/Handles.h"
#include "fsobjects/cFSXFileSystemObject.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {
namespace {

// Where the first folder ends that may have to be made. "\\server\share" cannot be made and counts
// as four pieces.
std::size_t FirstEnd(TextView path) {
  const int piecesOfRoot = IsUNCPath(path) ? 4 : 0;
  std::size_t end = path.find(u'\\');
  for (int piece = 0; piece < piecesOfRoot && end != TextView::npos; ++piece)
    end = path.find(u'\\', end + 1);
  return end;
}

// Asked without the final backslash but for a drive, since a file that stands in the way makes the
// name with a backslash an unusual failure, which would be reported.
bool IsThere(TextView folder) {
  return FSXFolderExists(folder.ends_with(u':') ? AddBackslash(folder) : Text(folder));
}

// `path` has a final backslash, so each of its folders ends at one.
bool MakeEach(TextView path, std::uint32_t& errorNumber) {
  for (std::size_t end = FirstEnd(path); end != TextView::npos; end = path.find(u'\\', end + 1)) {
    const TextView folder = path.substr(0, end);
    if (IsThere(folder)) continue;
    if (TheMachine().Disk().CreateDirectoryW(ToLongPath(folder))) continue;
    errorNumber = TheMachine().GetLastError();
    return false;
  }
  return true;
}

}  // namespace

// A path that 8-bit calls can take is done when each step was; for any other what counts is whether
// the folder is there at the end, since another program may have made it meanwhile.
bool CreateFolderTree(TextView path, std::uint32_t& errorNumber) {
  errorNumber = 0;
  const Text whole = AddBackslash(path);
  if (whole.empty()) {
    errorNumber = ERROR_PATH_NOT_FOUND;  // no folder at all, and not the current one
    return false;
  }
  const bool made = MakeEach(whole, errorNumber);
  if (whole.size() <= kLongPathLimit && !ContainsUnicodeChars(whole)) return made;
  return IsThere(RemoveBackslash(whole));
}

}  // namespace quillmarsh
