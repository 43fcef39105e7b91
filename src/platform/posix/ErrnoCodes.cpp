// SPDX-License-Identifier: MIT
// The table of errno values and the codes that the program knows them by.
#include "platform/posix/ErrnoCodes.h"

#include <cerrno>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

struct Row {
  int error;
  std::uint32_t code;
};

// A link in the middle of a path (ELOOP) and the root of another mount (EXDEV) are refused by the
// resolver on purpose: below this drive no such path exists.
constexpr Row Table[] = {
    {0, ERROR_SUCCESS},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {ELOOP, ERROR_PATH_NOT_FOUND},
    {EXDEV, ERROR_PATH_NOT_FOUND},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {ENXIO, ERROR_ACCESS_DENIED},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EBUSY, ERROR_SHARING_VIOLATION},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EBADF, ERROR_INVALID_HANDLE},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EROFS, ERROR_WRITE_PROTECT},
    {ENODEV, ERROR_NOT_READY},
    {ESTALE, ERROR_NOT_READY},
    {ENOTCONN, ERROR_NOT_READY},
    {ETIMEDOUT, ERROR_NOT_READY},
    {EHOSTDOWN, ERROR_BAD_NETPATH},
    {EHOSTUNREACH, ERROR_BAD_NETPATH},
    {ENETUNREACH, ERROR_BAD_NETPATH},
    {ECONNREFUSED, ERROR_BAD_NETPATH},
    {EEXIST, ERROR_ALREADY_EXISTS},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EFBIG, ERROR_DISK_FULL},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {EILSEQ, ERROR_INVALID_NAME},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {EOPNOTSUPP, ERROR_NOT_SUPPORTED},
    {ENOSYS, ERROR_NOT_SUPPORTED},
    {ECANCELED, ERROR_OPERATION_ABORTED},
    {EOVERFLOW, ERROR_INVALID_DATA},
};

}  // namespace

std::uint32_t SystemErrorFromErrno(int error) {
  for (const Row& row : Table)
    if (row.error == error) return row.code;
  return ERROR_IO_DEVICE;
}

}  // namespace quillmarsh
