// SPDX-License-Identifier: MIT
// What a copied file keeps besides its bytes. All of it is best effort: file systems that keep
// less, or nothing, are no reason to refuse a copy. Functions without state; any thread may call
// them.
#pragma once

#include <sys/stat.h>

namespace quillmarsh {

// Permissions and write time; where not all permissions can be had, read-only is tried alone. Here
// and below the group gets nothing that an access list or another group had in its place.
void CarryFactsOfCopy(int sourceFile, const struct stat& source, int copy);

// Of a file that is about to be replaced what it has besides bytes and times, as below.
void CarryFactsOfReplaced(int replaced, int file);

// Of a file that is moved by copying also the owner and the group, as far as this user may give
// them, the extended attributes with the access lists among them, and the time of the last access.
// Whoever reads the copy through this descriptor later leaves that time alone.
void CarryFactsOfMove(int sourceFile, const struct stat& source, int copy);

}  // namespace quillmarsh
