// SPDX-License-Identifier: MIT
// The smaller roles.
#include "platform/posix/PosixRoles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <memory>

#include "platform/ExecutableFormats.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/FileOpening.h"
#include "platform/posix/LocalePictures.h"
#include "platform/posix/NativeWalk.h"

namespace quillmarsh {

bool PosixAccess::DoGetSecurity(TextView /*path*/, std::uint32_t /*information*/,
                                std::vector<std::byte>& /*descriptor*/,
                                std::uint32_t& lengthNeeded) {
  lengthNeeded = 0;
  return Fail(ERROR_NOT_SUPPORTED, false);
}

HANDLE PosixAccess::DoOpenToken(std::uint32_t /*access*/, bool /*openAsSelf*/) {
  return Fail(ERROR_NOT_SUPPORTED, NULL_HANDLE);
}

bool PosixAccess::DoAccessCheck(const std::vector<std::byte>& /*descriptor*/, HANDLE /*token*/,
                                std::uint32_t /*desired*/, const GENERIC_MAPPING& /*mapping*/,
                                AccessCheckAnswer& /*answer*/) {
  return Fail(ERROR_NOT_SUPPORTED, false);
}

// By the mode bits, by lists that the file system keeps behind them, and by a mount that is
// read-only: whatever the kernel goes by.
bool PosixAccess::DoIsRefused(TextView path, std::uint32_t desired) {
  Located located;
  if (mContext.Locate(path, located) != ERROR_SUCCESS) return false;
  const int mode = desired == FILE_GENERIC_WRITE ? W_OK : R_OK;
  bool isRefused = false;
  const std::uint32_t error =
      mContext.Run(located.drive->kind.answers, isRefused,
                   [folders = mContext.folders, located, mode](bool& refused) {
                     SharedFd parent;
                     const std::uint32_t code = folders->OpenParent(located, parent);
                     refused = code == ERROR_ACCESS_DENIED;
                     if (code != ERROR_SUCCESS) return code;
                     const std::string name(located.path.Name());
                     refused = ::faccessat(parent.Get(), name.empty() ? "." : name.c_str(), mode,
                                           AT_EACCESS | AT_SYMLINK_NOFOLLOW) != 0 &&
                               (errno == EACCES || errno == EPERM || errno == EROFS);
                     return ERROR_SUCCESS;
                   });
  return isRefused && error != ERROR_OPERATION_ABORTED;
}

std::optional<std::uint32_t> PosixAccess::DoEncryptionStatus(TextView path) {
  Located located;
  EntryFacts entry;
  std::uint32_t error = mContext.Locate(path, located);
  if (error == 0) error = mContext.LookAt(located, entry);
  if (error != 0) return Fail(error, std::optional<std::uint32_t>());
  const std::uint32_t attributes = AttributesOf(entry.facts, entry.kind, {});
  return (attributes & FILE_ATTRIBUTE_ENCRYPTED) != 0 ? FILE_IS_ENCRYPTED : 0U;
}

std::uint32_t PosixVersions::ReadBlock(TextView path, std::vector<std::byte>& block) {
  Located located;
  if (const std::uint32_t error = mContext.Locate(path, located)) return error;
  return mContext.Run(located.drive->kind.answers, block,
                      [resolver = mContext.resolver, located](std::vector<std::byte>& bytes) {
                        OpenedFile file;
                        if (const auto code = OpenFileAt(*resolver, located,
                                                         {GENERIC_READ, OPEN_EXISTING, 0}, file))
                          return code;
                        VersionBlock found =
                            ReadVersionBlock([&](std::uint64_t offset, std::span<std::byte> part) {
                              std::size_t done = 0;
                              return offset <= std::numeric_limits<std::int64_t>::max() &&
                                     ReadFully(file.fd.Get(), part.data(), part.size(),
                                               static_cast<std::int64_t>(offset), done) == 0 &&
                                     done == part.size();
                            });
                        bytes = std::move(found.bytes);
                        return found.error;
                      });
}

std::uint32_t PosixVersions::DoGetSize(TextView path) {
  std::vector<std::byte> block;
  if (const std::uint32_t error = ReadBlock(path, block)) return Fail(error, 0U);
  return static_cast<std::uint32_t>(block.size());
}

bool PosixVersions::DoGetBlock(TextView path, std::vector<std::byte>& block) {
  const std::size_t room = block.size();
  std::vector<std::byte> whole;
  if (const std::uint32_t error = ReadBlock(path, whole)) return Fail(error, false);
  if (whole.size() > room) whole.resize(room);
  block = std::move(whole);
  return true;
}

std::optional<VS_FIXEDFILEINFO> PosixVersions::DoQueryRoot(const std::vector<std::byte>& block) {
  return FixedFileInfoOf(block);
}

namespace {

// The native path of the running program; empty when it cannot be told.
std::string ProgramFile() {
  std::string link(65536, '\0');
  const ssize_t length = ::readlink("/proc/self/exe", link.data(), link.size());
  link.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return link;
}

}  // namespace

Text PosixModules::DoGetProgram() {
  const std::string program = ProgramFile();
  if (program.empty()) return Fail(ERROR_PATH_NOT_FOUND, Text());
  auto form = mContext.letters->Current()->DriveForm(program);
  return form ? std::move(*form) : Fail(ERROR_INVALID_DRIVE, Text());
}

HANDLE PosixModules::DoLoadLibrary(TextView path) {
  std::string native;
  if (path.find(u'\\') == TextView::npos) {
    // A program may lie where no drive is, and its modules with it.
    const std::string program = ProgramFile();
    native = program.substr(0, program.rfind('/') + 1) + ToUtf8(path);
  } else {
    Located located;
    if (const std::uint32_t error = mContext.Locate(path, located)) return Fail(error, NULL_HANDLE);
    native = JoinNative(located.drive->mount->point, located.path.relative);
  }
  std::uint32_t code = ERROR_SUCCESS;
  const HANDLE module = mModules.Load(native, code);
  return module != NULL_HANDLE ? module : Fail(code, NULL_HANDLE);
}

Text PosixModules::DoLibraryFileName(TextView name, std::int32_t version) const {
  Text fileName = u"lib";
  for (const char16_t unit : name)
    fileName += unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
  return fileName + u".so." + DecimalText(version);
}

HANDLE PosixModules::DoLoadLibraryOfSystem(TextView fileName) {
  const std::string program = ProgramFile();
  const std::string name = ToUtf8(fileName);
  std::uint32_t code = ERROR_SUCCESS;
  HANDLE module = mModules.Load(program.substr(0, program.rfind('/') + 1) + name, code);
  if (module == NULL_HANDLE) module = mModules.LoadFromSystem(name, code);
  return module != NULL_HANDLE ? module : Fail(code, NULL_HANDLE);
}

HANDLE PosixModules::DoGetModuleHandle(TextView name) {
  const HANDLE module = mModules.Find(ToUtf8(name));
  return module != NULL_HANDLE ? module : Fail(ERROR_MOD_NOT_FOUND, NULL_HANDLE);
}

void* PosixModules::DoGetProcAddress(HANDLE module, const char* name) {
  void* const function = mModules.Function(module, name);
  return function != nullptr ? function : Fail(ERROR_PROC_NOT_FOUND, function);
}

bool PosixModules::DoFreeLibrary(HANDLE module) {
  return mModules.Free(module) || Fail(ERROR_INVALID_HANDLE, false);
}

Text PosixModules::DoGetCurrentFolder() {
  const std::unique_ptr<char, void (*)(void*)> folder(::getcwd(nullptr, 0), &std::free);
  if (folder == nullptr || folder.get()[0] != '/') return Fail(ERROR_PATH_NOT_FOUND, Text());
  auto form = mContext.letters->Current()->DriveForm(folder.get());
  return form ? std::move(*form) : Fail(ERROR_INVALID_DRIVE, Text());
}

// What a present Windows says, so that nothing falls back to the ways of very old ones.
SystemVersion PosixModules::DoGetVersion() {
  return {10, VER_PLATFORM_WIN32_NT};
}

bool PosixModules::DoSetConsoleCtrlHandler(void (*handler)()) {
  static std::atomic<void (*)()> current = nullptr;
  current = handler;
  struct sigaction action {};
  ::sigemptyset(&action.sa_mask);
  // Calls that wait are not begun again behind the signal: sa_flags stays empty.
  action.sa_handler = SIG_DFL;
  if (handler != nullptr) {
    action.sa_handler = [](int) {
      if (void (*const wanted)() = current.load()) wanted();
    };
  }
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    if (::sigaction(signal, nullptr, &before) != 0) return false;
    // Whoever had a signal ignored (nohup) wants the program to outlive it.
    const bool isIgnored = before.sa_handler == SIG_IGN;
    if (!isIgnored && ::sigaction(signal, &action, nullptr) != 0) return false;
  }
  return true;
}

bool PosixModules::DoIsConsole(StandardStream stream) {
  return isatty(static_cast<int>(stream)) == 1;
}

// A write of nothing fails on a full device as a line would.
bool PosixModules::DoCanTakeOutput(StandardStream stream) {
  const int output = static_cast<int>(stream);
  struct stat facts {};
  struct statvfs room {};
  if (::write(output, "", 0) < 0) return Fail(SystemErrorFromErrno(errno), false);
  const bool isFile = ::fstat(output, &facts) == 0 && S_ISREG(facts.st_mode);
  const bool isFull = isFile && ::fstatvfs(output, &room) == 0 && room.f_bavail == 0;
  return !isFull || Fail(ERROR_DISK_FULL, false);
}

PosixLocale::PosixLocale(CallState& state) : LocaleAndTime(state), mTexts(ReadLocaleTexts()) {}

Text PosixLocale::DoGetLocaleInfo(std::uint32_t type) {
  const auto found = mTexts.find(type);
  return found != mTexts.end() ? found->second : Fail(ERROR_INVALID_PARAMETER, Text());
}

FILETIME PosixLocale::DoGetLocalTime() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  FILETIME local;
  (void)DoToLocal(FileTimeOf(now.tv_sec, static_cast<std::uint32_t>(now.tv_nsec)), local);
  return local;
}

bool PosixLocale::DoToLocal(const FILETIME& utc, FILETIME& local) {
  const auto ticks = mZone.ToLocal(utc.Ticks());
  if (!ticks) return Fail(ERROR_INVALID_PARAMETER, false);
  local = FILETIME::FromTicks(*ticks);
  return true;
}

bool PosixLocale::DoToUtc(const FILETIME& local, FILETIME& utc) {
  const auto ticks = mZone.ToUtc(local.Ticks());
  if (!ticks) return Fail(ERROR_INVALID_PARAMETER, false);
  utc = FILETIME::FromTicks(*ticks);
  return true;
}

bool PosixLocale::DoIsSecondPass(const FILETIME& local) {
  return mZone.IsSecondPass(local.Ticks());
}

Text PosixLocale::DoFormatMessage(std::uint32_t code) {
  return Text(EnglishSystemErrorText(code));
}

}  // namespace quillmarsh
