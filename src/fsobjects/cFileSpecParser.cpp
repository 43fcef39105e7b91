// SPDX-License-Identifier: MIT
// Each member makes one pass from the end of the text and allocates only its result.
#include "fsobjects/cFileSpecParser.h"

#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

std::unique_ptr<cFileSpecParser> gFileSpecParser;

namespace {

Text Behind(TextView path, TextView part) {
  if (path.empty() || part.empty()) return {};
  const std::size_t place = path.find(part);
  return place == TextView::npos ? Text() : Text(path.substr(place + part.size()));
}

}  // namespace

// A final backslash of a text of odd length is not seen as one but belongs to the extension:
// "ab.c\" has the extension "c\", "abc.c\" has none. Masks that were made from such extensions are
// in people's lists of file types, so the same text must go on giving the same extension.
Text cFileSpecParser::GetExtension(TextView path) const {
  const std::size_t dot = path.rfind(u'.');
  if (dot == TextView::npos) return {};
  const TextView extension = path.substr(dot + 1);
  TextView tested = extension;
  if (path.size() % 2 == 1 && tested.ends_with(u'\\')) tested.remove_suffix(1);
  return tested.find(u'\\') != TextView::npos ? Text() : Text(extension);
}

Text cFileSpecParser::GetFileName(TextView path) const {
  const std::size_t last = path.rfind(u'\\');
  return Text(last == TextView::npos ? path : path.substr(last + 1));
}

Text cFileSpecParser::GetFileNameWithoutExtension(TextView path) const {
  const Text name = GetFileName(path);
  const std::size_t dot = name.rfind(u'.');
  return dot == Text::npos ? Text() : name.substr(0, dot);
}

// A bare name is its own folder: a relative name that reaches the object layer then gives a path
// that cannot exist, and not one in the root of some drive.
Text cFileSpecParser::GetFolderPath(TextView path) const {
  const std::size_t last = path.rfind(u'\\');
  return Text(last == TextView::npos ? path : path.substr(0, last + 1));
}

Text cFileSpecParser::GetPathWithoutRoot(TextView path) const {
  return Behind(path, GetRoot(path));
}

Text cFileSpecParser::GetPathWithoutUNCRoot(TextView path) const {
  return Behind(path, GetUNCRoot(path));
}

Text cFileSpecParser::GetUNCRoot(TextView path) const {
  return IsUNC(path) ? AddBackslash(StripToRoot(path)) : Text();
}

Text cFileSpecParser::GetRoot(TextView path) const {
  Text trimmed(TrimBlanks(path));
  if (trimmed.size() == 1) {
    trimmed += u":\\";
  } else if (trimmed.size() == 2 && trimmed[1] == u':') {
    trimmed += u'\\';
  }
  if (trimmed.size() >= 3 && trimmed[1] == u':' && trimmed[2] == u'\\') return trimmed.substr(0, 3);
  return IsUNCPath(trimmed) ? AddBackslash(StripToRoot(path)) : Text();
}

bool cFileSpecParser::IsUNC(TextView path) const {
  return IsUNCPath(path);
}

}  // namespace quillmarsh
