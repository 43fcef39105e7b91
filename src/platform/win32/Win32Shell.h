// SPDX-License-Identifier: MIT
// The shell of Windows: its folders, type names and programs, and its Recycle Bin. A file that the
// shell would delete for good, since its volume has no bin or the bin is too small, is refused:
// the shell asks about that only where it may show a window.
#pragma once

#include <optional>

#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Shell final : public Shell {
 public:
  // `localData` stands for the user's folder for such data where it is given.
  Win32Shell(CallState& calls, std::optional<Text> localData)
      : Shell(calls), mCalls(calls), mLocalData(std::move(localData)) {}

 private:
  Text DoGetFolder(std::int32_t csidl) override;
  Text DoGetItemPath(std::int32_t csidl) override;
  Text DoGetTempPath() override;
  Text DoGetTypeName(TextView name) override;
  std::intptr_t DoExecute(TextView verb, TextView file, TextView parameters,
                          std::int32_t show) override;
  bool DoExecuteEx(const SHELLEXECUTEINFOW& execution) override;
  std::int32_t DoFileOperation(SHFILEOPSTRUCTW& operation) override;
  // The bin's place follows from the file system of the drive here.
  std::vector<Text> DoRecycleBinMarks() override { return {}; }

  CallState& mCalls;
  const std::optional<Text> mLocalData;
};

}  // namespace quillmarsh
