// SPDX-License-Identifier: MIT
// The smaller roles of the Windows machine: access checks, version resources, the process, locale
// and time, the queue.
#pragma once

#include <functional>

#include "platform/Mailbox.h"
#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Access final : public Access {
 public:
  explicit Win32Access(CallState& calls) : Access(calls), mCalls(calls) {}

 private:
  bool DoGetSecurity(TextView path, std::uint32_t information, std::vector<std::byte>& descriptor,
                     std::uint32_t& lengthNeeded) override;
  bool DoImpersonate(std::uint32_t level) override;
  HANDLE DoOpenToken(std::uint32_t access, bool openAsSelf) override;
  void DoCloseToken(HANDLE token) override { ::CloseHandle(win32::ToSystem(token)); }
  bool DoRevert() override;
  bool DoAccessCheck(const std::vector<std::byte>& descriptor, HANDLE token, std::uint32_t desired,
                     const GENERIC_MAPPING& mapping, AccessCheckAnswer& answer) override;
  std::optional<std::uint32_t> DoEncryptionStatus(TextView path) override;

  CallState& mCalls;
};

class Win32Versions final : public VersionResources {
 public:
  explicit Win32Versions(CallState& calls) : VersionResources(calls), mCalls(calls) {}

 private:
  std::uint32_t DoGetSize(TextView path) override;
  bool DoGetBlock(TextView path, std::vector<std::byte>& block) override;
  std::optional<VS_FIXEDFILEINFO> DoQueryRoot(const std::vector<std::byte>& block) override;

  CallState& mCalls;
};

class Win32Modules final : public Modules {
 public:
  explicit Win32Modules(CallState& calls) : Modules(calls), mCalls(calls) {}

 private:
  Text DoGetProgram() override;
  Text DoModuleFileName(TextView base) const override { return Text(base) + u".dll"; }
  HANDLE DoLoadLibrary(TextView path) override;
  HANDLE DoLoadLibraryOfSystem(TextView fileName) override;
  HANDLE DoGetModuleHandle(TextView name) override;
  void* DoGetProcAddress(HANDLE module, const char* name) override;
  bool DoFreeLibrary(HANDLE module) override;
  Text DoGetCurrentFolder() override;
  SystemVersion DoGetVersion() override;
  bool DoIsConsole(StandardStream stream) override;
  bool DoSetConsoleCtrlHandler(void (*handler)()) override;
  bool DoIsWow64() override;
  bool DoDisableRedirection() override;
  bool DoRevertRedirection() override;

  CallState& mCalls;
  int mDisabled = 0;
  void* mRedirection = nullptr;  // what the first of several disables was told
};

class Win32Locale final : public LocaleAndTime {
 public:
  explicit Win32Locale(CallState& calls) : LocaleAndTime(calls), mCalls(calls) {}

 private:
  Text DoGetLocaleInfo(std::uint32_t type) override;
  FILETIME DoGetLocalTime() override;
  bool DoToLocal(const FILETIME& utc, FILETIME& local) override;
  bool DoToUtc(const FILETIME& local, FILETIME& utc) override;
  // The system knows one fixed offset.
  bool DoIsSecondPass(const FILETIME& /*local*/) override { return false; }
  Text DoFormatMessage(std::uint32_t code) override;

  CallState& mCalls;
};

// The mailbox is the program's own: the clipboard belongs to the person.
class Win32Queue final : public QueueWithOwnMailbox {
 public:
  Win32Queue(CallState& calls, std::function<std::uint32_t(std::uint32_t)> status)
      : QueueWithOwnMailbox(calls), mStatus(std::move(status)) {}

 private:
  std::uint32_t DoGetStatus(std::uint32_t kinds) override;

  const std::function<std::uint32_t(std::uint32_t)> mStatus;
};

}  // namespace quillmarsh
