// SPDX-License-Identifier: MIT
// Puts the POSIX machine together.
#include "platform/posix/PosixMachine.h"

#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixFinding.h"
#include "platform/posix/PosixPinning.h"
#include "platform/posix/PosixRoles.h"
#include "platform/posix/PosixShell.h"
#include "platform/posix/PosixVolumes.h"

namespace quillmarsh {
namespace {

UserFolders FoldersFor(const PosixOptions& options) {
  UserFolders folders = UserFolders::OfProcess();
  if (options.dataHome) folders.data = *options.dataHome;
  return folders;
}

std::shared_ptr<DriveLetters> LettersFor(const PosixOptions& options, const UserFolders& folders) {
  DriveLetters::Sources sources;
  sources.mountInfoFile = options.mountInfoFile;
  if (!folders.data.empty())
    sources.memoryFile = folders.data + "/Harrow Fen/Quillmarsh/drives.ini";
  sources.uuidFolder = options.uuidFolder;
  sources.labelFolder = options.labelFolder;
  sources.letters = options.letters;
  return std::make_shared<DriveLetters>(std::move(sources));
}

FolderReader::Settings ReaderFor(const PosixOptions& options, const PosixContext& context,
                                 const std::function<Patience*()>& patience) {
  FolderReader::Settings settings;
  settings.letters = context.letters;
  settings.resolver = context.resolver;
  settings.beforeFolder = options.beforeFolder;
  settings.patience = patience;
  settings.bufferedBytes = options.bufferedBytes;
  return settings;
}

}  // namespace

struct PosixMachine::Roles {
  Roles(CallState& calls, const PosixOptions& options, const std::function<Patience*()>& patience)
      : folders(FoldersFor(options)),
        context(LettersFor(options, folders),
                std::make_shared<const PathResolver>(options.byComponents), patience),
        find(calls, context, ReaderFor(options, context, patience)),
        files(calls, context, {context.resolver, patience, options.beforeFile}),
        disk(calls, context),
        drives(calls, context),
        security(calls, context),
        desktop(calls, context, folders),
        versions(calls, context),
        process(calls, context),
        locale(calls),
        queue(calls, options.queueStatus),
        pins(calls, context, desktop) {}

  UserFolders folders;
  PosixContext context;
  PosixFinding find;
  PosixFiles files;
  PosixDisk disk;
  PosixVolumes drives;
  PosixAccess security;
  PosixShell desktop;
  PosixVersions versions;
  PosixModules process;
  PosixLocale locale;
  PosixQueue queue;
  PosixPinning pins;
};

PosixMachine::PosixMachine(const PosixOptions& options)
    : mRoles(std::make_unique<Roles>(mCalls, options, [this] { return CurrentPatience(); })) {}

PosixMachine::~PosixMachine() = default;

Finding& PosixMachine::Find() {
  return mRoles->find;
}
FileInputOutput& PosixMachine::Files() {
  return mRoles->files;
}
DiskChange& PosixMachine::Disk() {
  return mRoles->disk;
}
Pinning& PosixMachine::Pins() {
  return mRoles->pins;
}
Volumes& PosixMachine::Drives() {
  return mRoles->drives;
}
Access& PosixMachine::Security() {
  return mRoles->security;
}
Shell& PosixMachine::Desktop() {
  return mRoles->desktop;
}
VersionResources& PosixMachine::Versions() {
  return mRoles->versions;
}
Modules& PosixMachine::Process() {
  return mRoles->process;
}
LocaleAndTime& PosixMachine::Locale() {
  return mRoles->locale;
}
QueueAndMailbox& PosixMachine::Queue() {
  return mRoles->queue;
}

}  // namespace quillmarsh
