// SPDX-License-Identifier: MIT
// Filters between what a person types and reads and what a search holds names and paths against. On
// a machine whose people write paths otherwise than the program does, the two differ. The way there
// asks the disk where a path leads; the way back asks nothing.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// Whether a text looks like a path in the program's own form: of a drive or of a server.
[[nodiscard]] bool IsProgramPath(TextView text);
// Whether people of this machine write "C:\" as something else.
[[nodiscard]] bool HasPathsOfItsOwn();

// A mask of file names; '*' and '?' keep their meaning.
[[nodiscard]] Text MaskFromTyped(TextView typed);
[[nodiscard]] Text ShownMask(TextView mask);

// What a list of folders is for decides what its entries must look like.
enum class FolderFilterUse {
  Include,  // a text that the paths of the wanted folders hold
  Exclude,  // the whole path of a folder, with its final backslash
};

// Nothing needs to exist. "*" stays what it is, and so does a path in the program's own form.
[[nodiscard]] Text FolderFilterFromTyped(TextView typed, FolderFilterUse use);
[[nodiscard]] Text ShownFolderFilter(TextView entry);

}  // namespace quillmarsh
