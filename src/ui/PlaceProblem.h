// SPDX-License-Identifier: MIT
// Why a place that a person chose or typed is none for the program.
#pragma once

#include "frame/ErrorReporting.h"
#include "platform/SystemConstants.h"

namespace quillmarsh {

// The reason of a system error number as one or two sentences.
[[nodiscard]] inline Text ReasonOfPlace(std::uint32_t error) {
  if (error == ERROR_INVALID_DRIVE)
    return u"It lies on a file system without a drive letter: one of a kind that does not hold a "
           u"person's files, or none of the letters was free.";
  return GetSystemErrorText(error);
}

}  // namespace quillmarsh
