// SPDX-License-Identifier: MIT
// The smaller roles of the POSIX machine, each a thin layer over what stands in a file of its own:
// changing the disk, access checks, version resources, the process, locale and time, the queue.
#pragma once

#include <chrono>
#include <functional>
#include <map>

#include "platform/Access.h"
#include "platform/DiskChange.h"
#include "platform/LocaleAndTime.h"
#include "platform/Mailbox.h"
#include "platform/Modules.h"
#include "platform/VersionResources.h"
#include "platform/posix/FileCopying.h"
#include "platform/posix/LoadedModules.h"
#include "platform/posix/PosixContext.h"
#include "platform/posix/ReadOnlyBit.h"
#include "platform/posix/ZoneRules.h"

namespace quillmarsh {

class PosixDisk final : public DiskChange {
 public:
  PosixDisk(CallState& state, PosixContext& context) : DiskChange(state), mContext(context) {}

 private:
  bool DoDeleteFile(TextView path) override;
  bool DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) override;
  bool DoCopyFile(TextView existing, TextView newPath, bool failIfExists) override;
  bool DoCreateDirectory(TextView path) override;
  bool DoRemoveDirectory(TextView path) override;
  bool DoSetAttributes(TextView path, std::uint32_t attributes) override;

  // Both answer a code.
  using EntryOperation = std::uint32_t(OpenFolders&, const Located&, ChangePermit&);
  std::uint32_t RunChange(const Located& located, EntryOperation* operation);
  // Runs what takes the target's name away, with regard to its other names. `operation` answers a
  // code and runs on a helper where the file systems may not answer; a long one always does.
  struct TargetChange {
    Located target;
    bool answers = true;
    bool isLong = false;
    std::function<std::uint32_t(OpenFolders&, ChangePermit&)> operation;
  };
  std::uint32_t RunOnTarget(TargetChange change);
  using CopyOperation = std::uint32_t(OpenFolders&, const CopyRequest&, ChangePermit&);
  bool RunCopy(const CopyRequest& request, CopyOperation* operation);

  PosixContext& mContext;
  // Until an operation takes a name of that file away, but not for long: it may also have been a
  // person who wanted it so.
  std::optional<LiftedBit> mLifted;
  std::chrono::steady_clock::time_point mLiftedAt;
};

// Volumes here keep no access lists, so there is no descriptor to check against: every question
// about one answers 50 (not supported). Whether an entry can be read shows when it is opened.
class PosixAccess final : public Access {
 public:
  PosixAccess(CallState& state, PosixContext& context) : Access(state), mContext(context) {}

 private:
  bool DoGetSecurity(TextView path, std::uint32_t information, std::vector<std::byte>& descriptor,
                     std::uint32_t& lengthNeeded) override;
  bool DoImpersonate(std::uint32_t /*level*/) override { return true; }
  HANDLE DoOpenToken(std::uint32_t access, bool openAsSelf) override;
  void DoCloseToken(HANDLE /*token*/) override {}
  bool DoRevert() override { return true; }
  bool DoAccessCheck(const std::vector<std::byte>& descriptor, HANDLE token, std::uint32_t desired,
                     const GENERIC_MAPPING& mapping, AccessCheckAnswer& answer) override;
  bool DoIsRefused(TextView path, std::uint32_t desired) override;
  std::optional<std::uint32_t> DoEncryptionStatus(TextView path) override;
  PosixContext& mContext;
};

class PosixVersions final : public VersionResources {
 public:
  PosixVersions(CallState& state, PosixContext& context)
      : VersionResources(state), mContext(context) {}

 private:
  std::uint32_t DoGetSize(TextView path) override;
  bool DoGetBlock(TextView path, std::vector<std::byte>& block) override;
  std::optional<VS_FIXEDFILEINFO> DoQueryRoot(const std::vector<std::byte>& block) override;
  std::uint32_t ReadBlock(TextView path, std::vector<std::byte>& block);
  PosixContext& mContext;
};

class PosixModules final : public Modules {
 public:
  PosixModules(CallState& state, PosixContext& context) : Modules(state), mContext(context) {}

 private:
  Text DoGetProgram() override;
  Text DoGetCurrentFolder() override;
  Text DoModuleFileName(TextView base) const override { return Text(base) + u".so"; }
  HANDLE DoLoadLibrary(TextView path) override;
  Text DoLibraryFileName(TextView name, std::int32_t version) const override;
  HANDLE DoLoadLibraryOfSystem(TextView fileName) override;
  HANDLE DoGetModuleHandle(TextView name) override;
  void* DoGetProcAddress(HANDLE module, const char* name) override;
  bool DoFreeLibrary(HANDLE module) override;
  SystemVersion DoGetVersion() override;
  bool DoIsConsole(StandardStream stream) override;
  bool DoCanTakeOutput(StandardStream stream) override;
  bool DoSetConsoleCtrlHandler(void (*handler)()) override;
  bool DoIsWow64() override { return false; }
  // There is nothing to redirect; both succeed, so that callers that count stay in balance.
  bool DoDisableRedirection() override { return true; }
  bool DoRevertRedirection() override { return true; }
  PosixContext& mContext;
  LoadedModules mModules;
};

class PosixLocale final : public LocaleAndTime {
 public:
  explicit PosixLocale(CallState& state);

 private:
  Text DoGetLocaleInfo(std::uint32_t type) override;
  FILETIME DoGetLocalTime() override;
  bool DoToLocal(const FILETIME& utc, FILETIME& local) override;
  bool DoToUtc(const FILETIME& local, FILETIME& utc) override;
  bool DoIsSecondPass(const FILETIME& local) override;
  Text DoFormatMessage(std::uint32_t code) override;

  const std::map<std::uint32_t, Text> mTexts;
  ZoneRules mZone;
};

class PosixQueue final : public QueueWithOwnMailbox {
 public:
  PosixQueue(CallState& state, std::function<std::uint32_t(std::uint32_t)> status)
      : QueueWithOwnMailbox(state), mStatus(std::move(status)) {}

 private:
  std::uint32_t DoGetStatus(std::uint32_t kinds) override { return mStatus ? mStatus(kinds) : 0; }
  const std::function<std::uint32_t(std::uint32_t)> mStatus;
};

}  // namespace quillmarsh
