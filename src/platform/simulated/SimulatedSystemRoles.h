// SPDX-License-Identifier: MIT
// The other roles of the simulated machine: shell, version resources, process, locale and queue.
// They answer from the shared world. Internal to this folder.
#pragma once

#include "platform/Mailbox.h"
#include "platform/simulated/SimulatedWorld.h"

namespace quillmarsh::simulated {

class SimulatedShell final : public Shell {
 public:
  SimulatedShell(CallState& state, World& world) : Shell(state), mWorld(&world) {}

 private:
  Text DoGetFolder(std::int32_t csidl) override;
  Text DoGetItemPath(std::int32_t csidl) override;
  Text DoGetTempPath() override;
  Text DoGetTypeName(TextView name) override;
  std::intptr_t DoExecute(TextView verb, TextView file, TextView parameters,
                          std::int32_t show) override;
  bool DoExecuteEx(const SHELLEXECUTEINFOW& execution) override;
  std::int32_t DoFileOperation(SHFILEOPSTRUCTW& operation) override;
  std::vector<Text> DoRecycleBinMarks() override { return {}; }

  // Answers a code of SHFileOperationW.
  std::int32_t SendToBin(TextView path);
  World* mWorld;
};

class SimulatedVersions final : public VersionResources {
 public:
  SimulatedVersions(CallState& state, World& world) : VersionResources(state), mWorld(&world) {}

 private:
  std::uint32_t DoGetSize(TextView path) override;
  bool DoGetBlock(TextView path, std::vector<std::byte>& block) override;
  std::optional<VS_FIXEDFILEINFO> DoQueryRoot(const std::vector<std::byte>& block) override;
  std::optional<VersionBlock> BlockOf(TextView path);
  World* mWorld;
};

class SimulatedModules final : public Modules {
 public:
  SimulatedModules(CallState& state, World& world) : Modules(state), mWorld(&world) {}

 private:
  Text DoGetProgram() override { return mWorld->programPath; }
  Text DoGetCurrentFolder() override { return mWorld->currentFolder; }
  Text DoModuleFileName(TextView base) const override { return Text(base) + u".dll"; }
  HANDLE DoLoadLibrary(TextView path) override;
  HANDLE DoLoadLibraryOfSystem(TextView fileName) override;
  HANDLE DoGetModuleHandle(TextView name) override;
  void* DoGetProcAddress(HANDLE module, const char* name) override;
  bool DoFreeLibrary(HANDLE module) override;
  SystemVersion DoGetVersion() override { return mWorld->version; }
  bool DoIsWow64() override { return mWorld->isWow64; }
  bool DoDisableRedirection() override;
  bool DoRevertRedirection() override;
  World* mWorld;
};

class SimulatedLocale final : public LocaleAndTime {
 public:
  SimulatedLocale(CallState& state, World& world) : LocaleAndTime(state), mWorld(&world) {}

 private:
  Text DoGetLocaleInfo(std::uint32_t type) override;
  FILETIME DoGetLocalTime() override;
  bool DoToLocal(const FILETIME& utc, FILETIME& local) override;
  bool DoToUtc(const FILETIME& local, FILETIME& utc) override;
  bool DoIsSecondPass(const FILETIME& /*local*/) override { return false; }
  Text DoFormatMessage(std::uint32_t code) override;
  World* mWorld;
};

class SimulatedQueue final : public QueueWithOwnMailbox {
 public:
  SimulatedQueue(CallState& state, World& world) : QueueWithOwnMailbox(state), mWorld(&world) {}

 private:
  std::uint32_t DoGetStatus(std::uint32_t kinds) override;
  World* mWorld;
};

}  // namespace quillmarsh::simulated
