// SPDX-License-Identifier: MIT
// A file mask that a person enters for a file type: what is made of it, whether it will do, and
// what the shell calls the files that it stands for. Pure but for the last, which asks for a name
// alone and never for a file.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// Without blanks at its ends; one that begins with a dot gets an asterisk in front.
[[nodiscard]] Text NormalizedFileMask(TextView typed);

// Only the first dot is looked at. Where the mask will not do, `message` tells why.
[[nodiscard]] bool IsCustomFileMaskValid(TextView mask, Text& message);

// Empty where the mask stands for files of more than one type, and where the shell has no name.
[[nodiscard]] Text FileTypeDescOfMask(TextView mask);

}  // namespace quillmarsh
