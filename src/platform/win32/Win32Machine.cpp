// SPDX-License-Identifier: MIT
// Puts the Windows machine together.
#include "platform/win32/Win32Machine.h"

#include "platform/win32/Win32Disk.h"
#include "platform/win32/Win32Files.h"
#include "platform/win32/Win32Finding.h"
#include "platform/win32/Win32Pinning.h"
#include "platform/win32/Win32Roles.h"
#include "platform/win32/Win32Shell.h"
#include "platform/win32/Win32Volumes.h"

namespace quillmarsh {

struct Win32Machine::Roles {
  Roles(CallState& calls, const Win32Options& options)
      : find(calls),
        files(calls),
        disk(calls),
        drives(calls),
        security(calls),
        desktop(calls, options.localData),
        versions(calls),
        process(calls),
        locale(calls),
        queue(calls, options.queueStatus),
        pins(calls) {}

  Win32Finding find;
  Win32Files files;
  Win32Disk disk;
  Win32Volumes drives;
  Win32Access security;
  Win32Shell desktop;
  Win32Versions versions;
  Win32Modules process;
  Win32Locale locale;
  Win32Queue queue;
  Win32Pinning pins;
};

Win32Machine::Win32Machine(const Win32Options& options)
    : mRoles(std::make_unique<Roles>(mCalls, options)) {}

Win32Machine::~Win32Machine() = default;

Finding& Win32Machine::Find() {
  return mRoles->find;
}
FileInputOutput& Win32Machine::Files() {
  return mRoles->files;
}
DiskChange& Win32Machine::Disk() {
  return mRoles->disk;
}
Pinning& Win32Machine::Pins() {
  return mRoles->pins;
}
Volumes& Win32Machine::Drives() {
  return mRoles->drives;
}
Access& Win32Machine::Security() {
  return mRoles->security;
}
Shell& Win32Machine::Desktop() {
  return mRoles->desktop;
}
VersionResources& Win32Machine::Versions() {
  return mRoles->versions;
}
Modules& Win32Machine::Process() {
  return mRoles->process;
}
LocaleAndTime& Win32Machine::Locale() {
  return mRoles->locale;
}
QueueAndMailbox& Win32Machine::Queue() {
  return mRoles->queue;
}

}  // namespace quillmarsh
