// SPDX-License-Identifier: MIT
// The roles of the simulated machine that have to do with its disks. Each turns one group of
// operations into questions to the shared world and sets the code that the platform documents.
// Internal to this folder.
#pragma once

#include "platform/simulated/SimulatedWorld.h"

namespace quillmarsh::simulated {

class SimulatedFinding final : public Finding {
 public:
  SimulatedFinding(CallState& state, World& world) : Finding(state), mWorld(&world) {}

 private:
  HANDLE DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) override;
  bool DoFindNext(HANDLE search, WIN32_FIND_DATAW& entry) override;
  bool DoFindClose(HANDLE search) override;
  void DoReadAhead(TextView /*folder*/) override {}
  void DoDropReadAhead() override {}

  HANDLE FindOne(const ParsedPath& path, WIN32_FIND_DATAW& entry);
  HANDLE FindAll(ParsedPath path, WIN32_FIND_DATAW& entry);
  World* mWorld;
};

class SimulatedFiles final : public FileInputOutput {
 public:
  SimulatedFiles(CallState& state, World& world) : FileInputOutput(state), mWorld(&world) {}

 private:
  HANDLE DoCreateFile(TextView path, std::uint32_t access, std::uint32_t share,
                      std::uint32_t disposition, std::uint32_t flags) override;
  bool DoGetInformation(HANDLE file, BY_HANDLE_FILE_INFORMATION& information) override;
  bool DoRead(HANDLE file, std::span<std::byte> buffer, std::uint32_t& done) override;
  std::uint32_t DoReadAt(HANDLE file, std::int64_t position, std::span<std::byte> buffer,
                         std::uint32_t& done) override;
  bool DoWrite(HANDLE file, std::span<const std::byte> bytes, std::uint32_t& done) override;
  bool DoSetPointer(HANDLE file, std::int64_t distance, std::int64_t& newPosition,
                    std::uint32_t method) override;
  bool DoSetEnd(HANDLE file) override;
  bool DoSetTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                  const FILETIME* written) override;
  bool DoFlush(HANDLE file) override;
  bool DoLock(HANDLE file) override;
  bool DoClose(HANDLE file) override;
  std::uint32_t DoGetAttributes(TextView path) override;
  std::uint32_t DoGetCompressedSize(TextView path, std::uint32_t& high) override;
  Text DoGetShortPath(TextView path) override;
  std::optional<std::uint32_t> DoGetBinaryType(TextView path) override;

  // The open file, none with the code set when the handle is none of ours or its volume is gone.
  OpenFile* Opened(HANDLE file);
  bool GrowTo(OpenFile& file, std::uint64_t size);
  World* mWorld;
};

class SimulatedDiskChange final : public DiskChange {
 public:
  SimulatedDiskChange(CallState& state, World& world) : DiskChange(state), mWorld(&world) {}

 private:
  bool DoDeleteFile(TextView path) override;
  bool DoMoveFile(TextView existing, TextView newPath, std::uint32_t flags) override;
  bool DoCopyFile(TextView existing, TextView newPath, bool failIfExists) override;
  bool DoCreateDirectory(TextView path) override;
  bool DoRemoveDirectory(TextView path) override;
  bool DoSetAttributes(TextView path, std::uint32_t attributes) override;
  World* mWorld;
};

class SimulatedVolumes final : public Volumes {
 public:
  SimulatedVolumes(CallState& state, World& world) : Volumes(state), mWorld(&world) {}

 private:
  Text DoGetDriveStrings() override;
  std::uint32_t DoGetDriveType(TextView root) override;
  bool DoGetVolumeInformation(TextView root, VolumeInformation& information) override;
  bool DoGetFreeSpace(TextView root, DiskSpace& space) override;
  Text DoGetMountVolume(TextView path) override;
  bool DoSetLabel(TextView root, TextView label) override;
  CanonicalLocation DoLocationFromNative(std::string_view native) override;
  CanonicalLocation DoNewLocationFromNative(std::string_view native) override;
  Text DoShownPath(TextView path) const override;
  std::string DoNativePath(TextView path) const override;
  std::vector<Text> DoPlacesWithoutLetter() const override;

  // The volume whose root a path is, which must end in a backslash; a code otherwise.
  Volume* VolumeAtRoot(TextView root);
  World* mWorld;
};

class SimulatedAccess final : public Access {
 public:
  SimulatedAccess(CallState& state, World& world) : Access(state), mWorld(&world) {}

 private:
  bool DoGetSecurity(TextView path, std::uint32_t information, std::vector<std::byte>& descriptor,
                     std::uint32_t& lengthNeeded) override;
  bool DoImpersonate(std::uint32_t level) override;
  HANDLE DoOpenToken(std::uint32_t access, bool openAsSelf) override;
  void DoCloseToken(HANDLE token) override;
  bool DoRevert() override;
  bool DoAccessCheck(const std::vector<std::byte>& descriptor, HANDLE token, std::uint32_t desired,
                     const GENERIC_MAPPING& mapping, AccessCheckAnswer& answer) override;
  std::optional<std::uint32_t> DoEncryptionStatus(TextView path) override;
  World* mWorld;
};

}  // namespace quillmarsh::simulated
