// SPDX-License-Identifier: MIT
// The running process: where its program lies, the modules that it has loaded, its current folder,
// the version of the system, and the file-system redirection of a 32-bit process on a 64-bit
// system.
#pragma once

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

struct SystemVersion {
  std::uint32_t dwMajorVersion = 0;
  std::uint32_t dwPlatformId = 0;
  friend bool operator==(const SystemVersion&, const SystemVersion&) = default;
};

enum class StandardStream { Input = 0, Output = 1, Error = 2 };

class Modules : public Role {
 public:
  using Role::Role;

  // The whole path of the running program; empty on failure.
  [[nodiscard]] Text GetModuleFileNameW() {
    return Run(Operation::GetModuleFileNameW, {}, Text(), [&] { return DoGetProgram(); });
  }
  // The file name of a module as this machine writes it: "pbcrc32.dll", "pbcrc32.so".
  [[nodiscard]] Text ModuleFileName(TextView base) const { return DoModuleFileName(base); }
  // NULL_HANDLE on failure. A path names that very file; a name alone lies beside the program.
  [[nodiscard]] HANDLE LoadLibraryW(TextView path) {
    return Run(Operation::LoadLibraryW, path, NULL_HANDLE, [&] { return DoLoadLibrary(path); });
  }
  // The file name of a library that is no part of the program, as this machine writes it:
  // "MediaInfo.dll", "libmediainfo.so.0". The version is that of its interface.
  [[nodiscard]] Text LibraryFileName(TextView name, std::int32_t version) const {
    return DoLibraryFileName(name, version);
  }
  // Loads such a library by its file name, from beside the program or from where this machine keeps
  // its libraries. NULL_HANDLE on failure.
  [[nodiscard]] HANDLE LoadLibraryExW(TextView fileName) {
    return Run(Operation::LoadLibraryExW, fileName, NULL_HANDLE,
               [&] { return DoLoadLibraryOfSystem(fileName); });
  }
  // A module that is loaded, by its file name; NULL_HANDLE for none. Does not count as a load.
  [[nodiscard]] HANDLE GetModuleHandleW(TextView name) {
    return Run(Operation::GetModuleHandleW, name, NULL_HANDLE,
               [&] { return DoGetModuleHandle(name); });
  }
  // A function that the module exports; null for none.
  [[nodiscard]] void* GetProcAddress(HANDLE module, const char* name) {
    return Run(Operation::GetProcAddress, {}, static_cast<void*>(nullptr),
               [&] { return DoGetProcAddress(module, name); });
  }
  // Takes one load back; the module goes with the last.
  bool FreeLibrary(HANDLE module) {
    return Run(Operation::FreeLibrary, {}, false, [&] { return DoFreeLibrary(module); });
  }
  [[nodiscard]] Text GetCurrentDirectoryW() {
    return Run(Operation::GetCurrentDirectoryW, {}, Text(), [&] { return DoGetCurrentFolder(); });
  }
  [[nodiscard]] SystemVersion GetVersionExW() {
    return Run(Operation::GetVersionExW, {}, SystemVersion(), [&] { return DoGetVersion(); });
  }
  // Whether a person sits at the other end of a standard stream.
  [[nodiscard]] bool IsConsole(StandardStream stream) { return DoIsConsole(stream); }
  // Whether a standard stream would take a line now, as far as that can be asked without writing
  // one: a device that is full and a file on a disk without room do not. False with the last error.
  [[nodiscard]] bool CanTakeOutput(StandardStream stream) { return DoCanTakeOutput(stream); }
  // Has the handler called when a person, or the system, asks the program to end, also while the
  // program waits in a write to a pipe, which then ends early. It may run at any moment and may do
  // little. nullptr gives the system's own way back. False where this cannot be had.
  bool SetConsoleCtrlHandler(void (*handler)()) { return DoSetConsoleCtrlHandler(handler); }
  [[nodiscard]] bool IsWow64Process() {
    return Run(Operation::IsWow64Process, {}, false, [&] { return DoIsWow64(); });
  }
  // Both count: the redirection is on again after as many reverts as disables.
  bool Wow64DisableWow64FsRedirection() {
    return Run(Operation::Wow64DisableWow64FsRedirection, {}, false,
               [&] { return DoDisableRedirection(); });
  }
  bool Wow64RevertWow64FsRedirection() {
    return Run(Operation::Wow64RevertWow64FsRedirection, {}, false,
               [&] { return DoRevertRedirection(); });
  }

 private:
  virtual Text DoGetProgram() = 0;
  virtual Text DoModuleFileName(TextView base) const = 0;
  virtual HANDLE DoLoadLibrary(TextView path) = 0;
  virtual Text DoLibraryFileName(TextView name, std::int32_t /*version*/) const {
    return Text(name) + u".dll";
  }
  virtual HANDLE DoLoadLibraryOfSystem(TextView fileName) = 0;
  virtual HANDLE DoGetModuleHandle(TextView name) = 0;
  virtual void* DoGetProcAddress(HANDLE module, const char* name) = 0;
  virtual bool DoFreeLibrary(HANDLE module) = 0;
  virtual Text DoGetCurrentFolder() = 0;
  virtual SystemVersion DoGetVersion() = 0;
  virtual bool DoIsConsole(StandardStream) { return false; }
  virtual bool DoCanTakeOutput(StandardStream) { return true; }
  virtual bool DoSetConsoleCtrlHandler(void (*)()) { return false; }
  virtual bool DoIsWow64() = 0;
  virtual bool DoDisableRedirection() = 0;
  virtual bool DoRevertRedirection() = 0;
};

}  // namespace quillmarsh
