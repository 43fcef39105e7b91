// SPDX-License-Identifier: MIT
// Text in, text out; the 8.3 form is the one question to the disk.
#include "fsobjects/modPaths.h"

#include <algorithm>

#include "fsobjects/Handles.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

Text AddBackslash(TextView path) {
  Text result(path);
  if (!result.empty() && result.back() != u'\\') result += u'\\';
  return result;
}

Text RemoveBackslash(TextView path) {
  if (path.ends_with(u'\\')) path.remove_suffix(1);
  return Text(path);
}

Text GetParentFolderPathOf(TextView path) {
  if (path.size() <= 1) return {};
  const bool drive = path.find(u':') == 1;
  if (!drive && !IsUNCPath(path)) return {};
  if (path.ends_with(u'\\')) path.remove_suffix(1);
  const std::size_t last = path.rfind(u'\\');
  if (last == TextView::npos) return {};
  // Two backslashes lead a server, the third leads its share.
  if (!drive && std::ranges::count(path, u'\\') < 4) return {};
  return Text(path.substr(0, last + 1));
}

bool IsRootPath(TextView path) {
  return GetParentFolderPathOf(path).empty();
}

Text GetLastFolderName(TextView path) {
  if (path.ends_with(u'\\')) path.remove_suffix(1);
  const std::size_t last = path.rfind(u'\\');
  return last == TextView::npos ? Text() : Text(path.substr(last + 1));
}

NameParts SplitNameAndExtension(TextView name) {
  const std::size_t dot = name.rfind(u'.');
  if (dot == TextView::npos) return {Text(name), {}};
  return {Text(name.substr(0, dot)), Text(name.substr(dot + 1))};
}

Text GetShortPath(TextView path) {
  const RedirectionOff redirection;
  const Text shortPath = TheMachine().Files().GetShortPathNameW(ToLongPath(path));
  return FromLongPath(shortPath.empty() ? path : TextView(shortPath));
}

Text GetFolderPathByIdx(std::int32_t key) {
  if (gFolderPathsList == nullptr || key == -1) return {};
  return gFolderPathsList->GetFolderByIndex(key);
}

Text GetExtensionNameOf(TextView path) {
  return gFileSpecParser->GetExtension(path);
}
Text GetFileNameOf(TextView path) {
  return gFileSpecParser->GetFileName(path);
}
Text GetFolderPartOf(TextView path) {
  return gFileSpecParser->GetFolderPath(path);
}
Text GetDriveRootOf(TextView path) {
  return gFileSpecParser->GetRoot(path);
}

}  // namespace quillmarsh
