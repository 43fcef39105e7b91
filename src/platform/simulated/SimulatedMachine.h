// SPDX-License-Identifier: MIT
// A Windows-like machine in memory, for tests and benchmarks: any number of drives, shares and
// mounted volumes with their trees, and everything else that the roles of the seam ask for. Built
// and inspected by the members below; these ignore redirection, access lists, read-only media and
// the usual path limit, and throw std::logic_error when they are asked for what cannot be. All of
// them may be called between two calls of the seam, also while listings and files are open.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/LocaleFormat.h"
#include "platform/Machine.h"
#include "platform/simulated/FileContents.h"
#include "platform/simulated/RecycledEntry.h"
#include "platform/simulated/SimulatedDrive.h"
#include "platform/simulated/StartedProgram.h"

namespace quillmarsh {

namespace simulated {
struct World;
struct Roles;
}  // namespace simulated

class SimulatedMachine final : public Machine {
 public:
  // Begins without a drive, in UTC and US English, on the morning of 21 November 2026.
  SimulatedMachine();
  ~SimulatedMachine() override;

  // Drives. A root is "C:\" or "\\server\share\".
  void AddDrive(const SimulatedDrive& drive);
  // A second name for a drive that is there, such as a letter for a share.
  void AddSecondRoot(TextView root, TextView existingRoot);
  // Makes a volume that only mount points show, and answers its name "\\?\Volume{...}\".
  Text AddVolumeWithoutLetter(const SimulatedDrive& drive);
  void SetReady(TextView root, bool ready);
  void SetFreeBytes(TextView root, std::uint64_t bytes);
  void SetReadOnlyMedium(TextView root, bool readOnly);
  // Every call on the drive waits as long as the patience lasts, then fails with 995.
  void SetAnswering(TextView root, bool answers);
  void RemoveDrive(TextView root);

  // Entries. Missing folders above a new entry are made. Attributes are those of a find record.
  void AddFolder(TextView path, const SimulatedFacts& facts = {FILE_ATTRIBUTE_DIRECTORY});
  void AddFile(TextView path, const FileContents& contents = {}, const SimulatedFacts& facts = {});
  void AddJunction(TextView path, TextView target);
  void AddMountPoint(TextView path, TextView rootOrVolumeName);
  void AddFileLink(TextView path, TextView target);    // symbolic; the target need not exist
  void AddFolderLink(TextView path, TextView target);  // symbolic; the target need not exist
  // Makes a reparse point that is no link out of an entry (deduplicated, in the cloud, ...).
  void SetReparseTag(TextView path, std::uint32_t tag);
  void SetContents(TextView path, const FileContents& contents);
  void SetAttributes(TextView path, std::uint32_t attributes);
  void SetTimes(TextView path, std::int64_t created, std::int64_t accessed, std::int64_t written);
  void SetCompressedSize(TextView path, std::uint64_t bytes);
  void SetShortName(TextView path, TextView name);
  void Remove(TextView path);  // with everything below; of a link the link
  void Move(TextView from, TextView to);

  // Rights on volumes with access lists: refuses these (FILE_ALL_ACCESS: everything), or grants
  // these alone; `below` also for everything below the entry.
  void DenyAccess(TextView path, std::uint32_t rights = FILE_ALL_ACCESS, bool below = true);
  void AllowOnly(TextView path, std::uint32_t rights, bool below = true);
  // Another program opens the file with this sharing; the handle is closed by LetGo.
  [[nodiscard]] HANDLE HoldOpen(TextView path, std::uint32_t share,
                                std::uint32_t access = GENERIC_READ);
  void LetGo(HANDLE held);

  // What is there now. Links are described, not followed, but for those on the way.
  [[nodiscard]] bool Exists(TextView path) const;
  [[nodiscard]] std::uint32_t AttributesOf(TextView path) const;
  [[nodiscard]] std::uint64_t SizeOf(TextView path) const;
  [[nodiscard]] std::string ContentsOf(TextView path) const;
  [[nodiscard]] SimulatedFacts FactsOf(TextView path) const;
  // Paths of everything below a folder, folders before their contents; links are not entered.
  [[nodiscard]] std::vector<Text> TreeOf(TextView folder) const;
  // Handles of files, listings and tokens that are open, without those of HoldOpen.
  [[nodiscard]] std::size_t OpenHandles() const;
  [[nodiscard]] bool IsImpersonating() const;
  // How many more times the file-system redirection was switched off than on.
  [[nodiscard]] int RedirectionDepth() const;

  // The rest of the machine.
  void SetClock(std::int64_t utcTicks);
  [[nodiscard]] std::int64_t Clock() const;
  void SetTimeZoneBias(std::int32_t minutes);  // UTC is local time and the bias
  void SetLocale(const LocaleFacts& facts);
  void SetLocaleText(std::uint32_t type, TextView text);  // one fact; empty makes the call fail
  void SetWow64(bool isWow64);
  void SetVersion(const SystemVersion& version);
  void SetProgramPath(TextView path);
  // A module with these functions, which any load of the path gives.
  void SetModule(TextView path, std::map<std::string, void*> exports);
  void SetCurrentFolder(TextView path);
  void SetTempPath(TextView path);
  void SetShellFolder(std::int32_t csidl, TextView path);  // empty: there is none
  void SetTypeName(TextView extension, TextView name);     // "txt", "Text Document"
  void SetShellAnswer(std::intptr_t answer);  // of ShellExecuteW; 32 and below start nothing
  [[nodiscard]] const std::vector<StartedProgram>& Started() const;
  void SetBinAnswer(std::int32_t code);  // of SHFileOperationW; any but 0 refuses everything
  [[nodiscard]] const std::vector<RecycledEntry>& Recycled() const;
  void SetWaitingEvents(std::uint32_t kinds);
  void SetPlacesWithoutLetter(std::vector<Text> places);

  Finding& Find() override;
  FileInputOutput& Files() override;
  DiskChange& Disk() override;
  Pinning& Pins() override;
  Volumes& Drives() override;
  Access& Security() override;
  Shell& Desktop() override;
  VersionResources& Versions() override;
  Modules& Process() override;
  LocaleAndTime& Locale() override;
  QueueAndMailbox& Queue() override;

 private:
  std::unique_ptr<simulated::World> mWorld;
  std::unique_ptr<simulated::Roles> mRoles;
};

}  // namespace quillmarsh
