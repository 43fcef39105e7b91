// SPDX-License-Identifier: MIT
// Gives the mounted file systems their drive letters and remembers them in a file, so that a letter
// belongs to one file system for good. Hands out unchangeable snapshots; any thread may ask for the
// current one. Never enters a file system to find out about it.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/Text.h"
#include "platform/posix/FileSystemKinds.h"
#include "platform/posix/MountTable.h"
#include "platform/posix/UniqueFd.h"

namespace quillmarsh {

struct Drive {
  char letter = 0;
  const Mount* mount = nullptr;  // of the snapshot's own table
  FileSystemKind kind;
  std::string identity;  // what the letter is remembered by
  std::string uuid;      // empty where the device has none
  std::string label;
  // Folders below this drive, relative, that are the root of another drive too (the whole of a file
  // system beside a part of it that has its own letter). They are not entered from here.
  std::vector<std::string> innerRoots;
};

// One state of the mounts and letters. Not copied or moved, since drives point into the mounts.
struct DriveTable {
  MountTable mounts;
  std::vector<Drive> drives;               // C: first, then by letter
  std::vector<std::string> withoutLetter;  // mount points that found no letter left
  std::string remembered;                  // letters of file systems that are not here now

  [[nodiscard]] const Drive* ByLetter(char letter) const;
  // The drive form of an absolute native path without links; none where no drive holds it. Where
  // two drives hold one file, the one whose root is the deeper folder answers: the form is unique.
  [[nodiscard]] std::optional<Text> DriveForm(std::string_view native) const;
};

class DriveLetters {
 public:
  struct Sources {
    std::string mountInfoFile;
    std::string memoryFile;   // drives.ini; empty: letters are remembered in memory only
    std::string uuidFolder;   // links named by UUID to devices
    std::string labelFolder;  // links named by label to devices
    std::string letters;      // to be given, in this order; never holds C
  };

  explicit DriveLetters(Sources sources);

  [[nodiscard]] std::shared_ptr<const DriveTable> Current() const;
  // Looks whether the mounts have changed. A snapshot that was handed out stays as it was.
  void Refresh();
  // The same where the system tells that they have. It costs one short system call.
  void RefreshIfChanged();

 private:
  using Memory = std::map<char, std::string>;  // letter to identity

  void GiveLetters(DriveTable& table);
  [[nodiscard]] char LetterFor(const std::string& identity, const DriveTable& table);

  const Sources mSources;
  const UniqueFd mWatched;  // the mount list, open for its events
  std::string mMountInfo;
  Memory mMemory;
  mutable std::mutex mMutex;  // guards mCurrent
  std::shared_ptr<const DriveTable> mCurrent;
};

// The whole of a small file; none when it cannot be read.
[[nodiscard]] std::optional<std::string> ReadWholeFile(const std::string& path, int& error);

}  // namespace quillmarsh
