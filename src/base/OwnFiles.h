// SPDX-License-Identifier: MIT
// The names of the files that the program itself puts beside those of the user. A search lists none
// of them. Case counts.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

enum class OwnFile : std::uint8_t {
  Part,   // ".quillmarsh-<number>.part", a copy that is not yet whole, in the folder it is for
  Aside,  // ".quillmarsh-<number>.aside", a file taken aside while it is removed for good
};

// Lies in each folder that is or was a DUPES folder.
inline constexpr TextView kDupesMarkerName = u".quillmarsh-dupes";

[[nodiscard]] Text OwnFileName(OwnFile kind, std::uint64_t number);
[[nodiscard]] bool IsOwnFileName(TextView name, OwnFile kind);

// Of either kind, or the marker. Costs next to nothing for a name that begins with another letter.
[[nodiscard]] inline bool IsOwnFileName(TextView name) {
  return name.starts_with(u'.') &&
         (name == kDupesMarkerName || IsOwnFileName(name, OwnFile::Part) ||
          IsOwnFileName(name, OwnFile::Aside));
}

}  // namespace quillmarsh
