// SPDX-License-Identifier: MIT
// The desktop's folders by the public rules for user directories, the places of the trash, type
// names from the desktop's own database where it is built in, and opening in other programs. A
// program is started only where a person asked for it.
#pragma once

#include <string>

#include "platform/Shell.h"
#include "platform/posix/PosixContext.h"

namespace quillmarsh {

// Native folders of the user; empty where there is no home.
struct UserFolders {
  std::string home;
  std::string data;    // $XDG_DATA_HOME
  std::string config;  // $XDG_CONFIG_HOME

  [[nodiscard]] static UserFolders OfProcess();
};

class PosixShell final : public Shell {
 public:
  PosixShell(CallState& state, PosixContext& context, UserFolders folders);

  // Without a drive, and with a code, where there is none that has a letter.
  Located HomeTrash(std::uint32_t& error);

 private:
  Text DoGetFolder(std::int32_t csidl) override;
  Text DoGetItemPath(std::int32_t csidl) override;
  Text DoGetTempPath() override;
  Text DoGetTypeName(TextView name) override;
  // The verb and how to show a window are the other program's own business here.
  std::intptr_t DoExecute(TextView verb, TextView file, TextView parameters,
                          std::int32_t show) override;
  // The properties by the desktop's file manager; there is no other verb.
  bool DoExecuteEx(const SHELLEXECUTEINFOW& execution) override;
  // Into the desktop's trash.
  std::int32_t DoFileOperation(SHFILEOPSTRUCTW& operation) override;
  std::vector<Text> DoRecycleBinMarks() override;

  // The native path of an entry that is there, or a code.
  [[nodiscard]] std::uint32_t NativeOf(TextView path, Located& located, std::string& native);
  // Answers a code of the system.
  std::uint32_t SendToBin(TextView path, const Located& homeTrash);
  // The drive form of a native folder that need not exist; empty, with the last error set, on
  // failure.
  Text DriveForm(const std::string& native);
  // The same with the code told instead.
  Text DriveForm(const std::string& native, std::uint32_t& error);
  [[nodiscard]] std::string UserDirectory(std::string_view key, std::string_view otherwise) const;

  PosixContext& mContext;
  const UserFolders mFolders;
};

}  // namespace quillmarsh
