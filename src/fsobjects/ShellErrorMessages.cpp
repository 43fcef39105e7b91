// SPDX-License-Identifier: MIT
// What the shell's own codes mean. Most of them are no system codes, so the system has no texts for
// them.
#include <algorithm>
#include <iterator>

#include "fsobjects/modFSXFSO_SupportRoutines.h"

namespace quillmarsh {
namespace {

struct ShellError {
  std::int32_t code;
  TextView text;
};
constexpr ShellError kShellErrors[] = {
    {113, u"Source and destination file are the same"},
    {114,
     u"Multiple paths were specified in the source of the operation, but only one destination "
     u"path"},
    {115,
     u"Rename operation was specified but the destination path is a different directory.  Use move "
     u"instead."},
    {116, u"Destination is a root directory, cannot be renamed"},
    {117,
     u"Operation was cancelled by the user (or silently cancelled if the specified flags were "
     u"supplied to SHFileOperation)"},
    {118, u"The destination is a sub-tree of the source"},
    {120, u"Security problems on source"},
    {121, u"The source or destination path exceeded or would exceed MAX_PATH"},
    {122,
     u"Operation involved multiple destination paths which can fail in the case of a move "
     u"operation"},
    {124, u"The paths in the source or destination were invalid"},
    {125, u"Source and destination have the same parent folder."},
    {126, u"The destination path is to an existing file"},
    {128, u"The destination path is to an existing folder"},
    {129, u"The name of the file exceeds MAX_PATH"},
    {130, u"Destination is a Read-Only CDRom, possibly unformatted"},
    {131, u"Destination is a Read-Only DVD, possibly unformatted"},
    {132, u"Destination is a Recordable (AudioL) CDRom, possibly unformatted"},
    {133,
     u"The file involved in the operation is too large for the destination media or file system"},
    {134, u"Source is a Read-Only CDRom, possibly unformatted"},
    {135, u"Source is a Read-Only DVD, possibly unformatted"},
    {136, u"Source is a Recordable (AudioL) CDRom, possibly unformatted"},
    {183, u"MAX_PATH was exceeded during the operation."},
    {1026,
     u"An unknown error occurred. This is typically due to invalid paths in the source or "
     u"destination."},
    {65536, u"An unspecified error occurred on the destination."},
    {65652, u"Source is a root directory, cannot be moved or renamed"},
};

}  // namespace

Text GetShellErrorMessage(std::int32_t code) {
  const auto* const found = std::ranges::find(kShellErrors, code, &ShellError::code);
  return Text(found == std::end(kShellErrors) ? u"An unknown error occurred." : found->text);
}

}  // namespace quillmarsh
