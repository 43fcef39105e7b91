// SPDX-License-Identifier: MIT
// Files that are held open from the look at them to their removal, so that the file that was looked
// at and compared is the file that is removed, whatever other programs do to names meanwhile. A pin
// holds the file and the folder that it is in. It never waits for another program, never replaces
// anything, and changes nothing until it is told to. Sizes are in bytes, times in UTC ticks.
#pragma once

#include <cstddef>
#include <span>

#include "platform/CallHook.h"
#include "platform/SystemTypes.h"

namespace quillmarsh {

// What tells one file from another, and one state of a file from another.
struct FileState {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;  // of the file on its volume
  std::uint64_t mount = 0;   // the way to the volume
  std::uint64_t size = 0;
  FILETIME created;
  FILETIME written;
  FILETIME changed;  // also by a change of attributes, names or times
  std::uint32_t links = 1;
  // Two numbers on one mount are two files for sure: no file system of another machine or another
  // program, and none that lies above another one.
  bool hasTrustedNumbers = false;
  bool isVolatile = false;  // lost with the power: a file system in memory
  bool isFolder = false;

  [[nodiscard]] bool IsSameFileAs(const FileState& other) const {
    return volume == other.volume && number == other.number;
  }
  // Whether numbers alone prove that these are two files.
  [[nodiscard]] bool IsSurelyAnotherThan(const FileState& other) const {
    return hasTrustedNumbers && other.hasTrustedNumbers && mount == other.mount &&
           volume == other.volume && number != other.number;
  }
};

enum class PinPurpose : std::uint8_t { Remove, Keep };
enum class PinnedMove : std::uint8_t {
  Rename,       // 17 to another volume
  CopyIfNeeded  // whole, compared and on the disk before the original goes; can be stopped till
                // then
};

class Pinning : public Role {
 public:
  using Role::Role;

  // The state of a file or folder, without opening it for reading. Links are not followed.
  [[nodiscard]] bool LookAt(TextView path, FileState& state) {
    return Run(Operation::GetFileInformationByName, path, false,
               [&] { return DoLookAt(path, state); });
  }
  // Opens a regular file for reading, no link. INVALID_HANDLE on failure: 2 and 3 where it is
  // missing, 5 where it may not be read, 32 where another program keeps it. `asideName` is the name
  // that a file to remove may have in its folder for a moment.
  [[nodiscard]] HANDLE Pin(TextView path, PinPurpose purpose, TextView asideName,
                           FileState& state) {
    return Run(Operation::CreateFileW, path, INVALID_HANDLE,
               [&] { return DoPin(path, purpose, asideName, state); });
  }
  // Locks a file to remove for this pin alone, a file to keep against those. 33 where another
  // program holds it. True where the file system has no locks.
  [[nodiscard]] bool Lock(HANDLE pin) {
    return Run(Operation::LockFileEx, {}, false, [&] { return DoLock(pin); });
  }
  // Whether the file is as it was when it was pinned, under the same path. 1006 where it is not.
  [[nodiscard]] bool IsAsPinned(HANDLE pin) {
    return Run(Operation::GetFileInformationByHandleEx, {}, false, [&] { return DoCheck(pin); });
  }
  // Has other programs wait that want to write to the file, while the pin lives. 32 where one has
  // it open for writing and that can be known. What is removed is always held so for its removal.
  [[nodiscard]] bool HoldOffWriters(HANDLE pin) {
    return Run(Operation::LockFileEx, {}, false, [&] { return DoHoldOffWriters(pin); });
  }
  // Finds the file once more by its path, past all that is remembered of it, and reads from it. The
  // change time may be another one. 1006 where the path leads to another file.
  [[nodiscard]] bool IsReachedAnew(HANDLE pin) {
    return Run(Operation::CreateFileW, {}, false, [&] { return DoReachAnew(pin); });
  }
  // Returns the code, 0 for success; `done` below the size of the buffer is the end of the file.
  [[nodiscard]] std::uint32_t ReadAt(HANDLE pin, std::int64_t position, std::span<std::byte> buffer,
                                     std::uint32_t& done) {
    return RunForCode(Operation::ReadFile, {},
                      [&] { return DoReadAt(pin, position, buffer, done); });
  }
  // Brings the file to the disk, and where the system can do so all of its volume.
  [[nodiscard]] bool Flush(HANDLE pin) {
    return Run(Operation::FlushFileBuffers, {}, false, [&] { return DoFlush(pin); });
  }

  // The next ones act on a file that was pinned for its removal, and only while it is as it was
  // pinned (1006). 32 where another program has it open for writing and that can be known. What
  // turns out to be another file is put back.
  [[nodiscard]] bool TakeAside(HANDLE pin) { return Change(pin, &Pinning::DoTakeAside); }
  // Back to its own name, or to one like it where that is taken.
  [[nodiscard]] bool PutBack(HANDLE pin) { return Change(pin, &Pinning::DoPutBack); }
  // Also of a read-only file. Where names can change under a pin the file must have been taken
  // aside.
  [[nodiscard]] bool Delete(HANDLE pin) { return Change(pin, &Pinning::DoDelete); }
  // Makes a deleted file again, out of the pin.
  [[nodiscard]] bool Restore(HANDLE pin) { return Change(pin, &Pinning::DoRestore); }
  // To a free name, also from aside. 183 where the name is taken.
  [[nodiscard]] bool MoveTo(HANDLE pin, TextView newPath, PinnedMove way) {
    return Run(Operation::SetFileInformationByHandle, newPath, false,
               [&] { return DoMoveTo(pin, newPath, way); });
  }
  // Also from aside.
  [[nodiscard]] bool Recycle(HANDLE pin) {
    return Run(Operation::SHFileOperationW, {}, false, [&] { return DoRecycle(pin); });
  }
  void Unpin(HANDLE pin) {
    static_cast<void>(Run(Operation::CloseHandle, {}, false, [&] { return DoUnpin(pin); }));
  }

  // What a removal that failed had to leave under another path, as the file itself or a copy of it.
  [[nodiscard]] Text WhereLeft(HANDLE pin) const { return DoWhereLeft(pin); }
  // Whether a pinned file is removed through its handle, so that it need not be taken aside first,
  // and a copy to keep cannot be renamed or deleted while it is pinned.
  [[nodiscard]] virtual bool HoldsNames() const = 0;
  // Whether Flush brings all of a volume to the disk, and not the one file alone.
  [[nodiscard]] virtual bool FlushesVolumes() const { return true; }
  // Whether what lies at the path could go to a Recycle Bin at all.
  [[nodiscard]] bool HasRecycleBin(TextView path) {
    return Run(Operation::SHQueryRecycleBinW, path, false, [&] { return DoHasBin(path); });
  }

 private:
  bool Change(HANDLE pin, bool (Pinning::*change)(HANDLE)) {
    return Run(Operation::SetFileInformationByHandle, {}, false,
               [&] { return (this->*change)(pin); });
  }

  virtual bool DoLookAt(TextView path, FileState& state) = 0;
  virtual HANDLE DoPin(TextView path, PinPurpose purpose, TextView asideName, FileState& state) = 0;
  virtual bool DoLock(HANDLE pin) = 0;
  virtual bool DoHoldOffWriters(HANDLE /*pin*/) { return true; }
  virtual bool DoCheck(HANDLE pin) = 0;
  virtual bool DoReachAnew(HANDLE pin) = 0;
  virtual std::uint32_t DoReadAt(HANDLE pin, std::int64_t position, std::span<std::byte> buffer,
                                 std::uint32_t& done) = 0;
  virtual bool DoFlush(HANDLE pin) = 0;
  virtual bool DoTakeAside(HANDLE pin) = 0;
  virtual bool DoPutBack(HANDLE pin) = 0;
  virtual bool DoDelete(HANDLE pin) = 0;
  virtual bool DoRestore(HANDLE pin) = 0;
  virtual bool DoMoveTo(HANDLE pin, TextView newPath, PinnedMove way) = 0;
  virtual bool DoRecycle(HANDLE pin) = 0;
  virtual bool DoUnpin(HANDLE pin) = 0;
  virtual Text DoWhereLeft(HANDLE pin) const = 0;
  virtual bool DoHasBin(TextView path) = 0;
};

}  // namespace quillmarsh
