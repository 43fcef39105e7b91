// SPDX-License-Identifier: MIT
// One question to the system, asked by the long form of the path.
#include "fsobjects/modFileEncryptionStatus.h"

#include "fsobjects/Handles.h"
#include "fsobjects/modUnicode.h"

namespace quillmarsh {

std::int32_t GetFileEncryptionStatus(TextView path) {
  const RedirectionOff redirection;
  const auto status = TheMachine().Security().FileEncryptionStatusW(ToLongPath(path));
  return status ? static_cast<std::int32_t>(*status) : -1;
}

}  // namespace quillmarsh
