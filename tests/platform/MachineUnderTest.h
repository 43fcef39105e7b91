// SPDX-License-Identifier: MIT
// One machine with an empty folder on it, and the few things that the seam itself cannot do to that
// folder: the common ground on which all machines are held against the same rows. Paths are
// relative to the folder, with backslashes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Machine.h"

namespace quillmarsh {

class MachineUnderTest {
 public:
  virtual ~MachineUnderTest() = default;

  [[nodiscard]] virtual Machine& Get() = 0;
  // In drive form, without final backslash.
  [[nodiscard]] virtual Text Base() const = 0;
  [[nodiscard]] Text PathOf(TextView relative) const { return Base() + u"\\" + Text(relative); }
  [[nodiscard]] virtual std::string NativeOf(TextView relative) const = 0;

  // Each makes the folders above it too.
  virtual void MakeFolder(TextView relative) = 0;
  virtual void MakeFile(TextView relative, std::string_view bytes) = 0;
  virtual void MakeLongFile(TextView relative, std::uint64_t size) = 0;  // any contents
  // A junction, or what the machine shows as one.
  virtual void MakeFolderLink(TextView relative, TextView targetRelative) = 0;
  virtual void SetWritten(TextView relative, std::int64_t utcTicks) = 0;
  virtual void SetReadOnly(TextView relative, bool readOnly) = 0;
  virtual void Remove(TextView relative) = 0;  // with everything below
  // What the Recycle Bin holds of a file that was there; "(none)" where it holds none.
  virtual std::string RecycledBytes(TextView relative) = 0;

  // Whether the answers are those of Wine, which are not always those of Windows.
  [[nodiscard]] virtual bool IsWine() const { return false; }
  // False where nobody can be kept out, as for the superuser.
  [[nodiscard]] virtual bool CanKeepOut() const = 0;
  virtual void KeepOut(TextView relative) = 0;
};

struct MachineKind {
  const char* name;
  bool tellsCaseApart;
  std::unique_ptr<MachineUnderTest> (*make)();
};
[[nodiscard]] const std::vector<MachineKind>& MachineKinds();

[[nodiscard]] std::unique_ptr<MachineUnderTest> MakePosixUnderTest();
// The same as it works where the kernel does not resolve paths within bounds by itself.
[[nodiscard]] std::unique_ptr<MachineUnderTest> MakePosixByComponentsUnderTest();
// On Windows, or where Wine stands in for it.
[[nodiscard]] std::unique_ptr<MachineUnderTest> MakeWin32UnderTest();
// The simulated machine on a volume that tells case apart, as POSIX does, or on one that does not.
[[nodiscard]] std::unique_ptr<MachineUnderTest> MakeSimulatedUnderTest(bool tellsCaseApart);

// A listing as the core makes it: the names in their order, "." and ".." left out, and the code
// that ended it (or with which it could not begin).
struct FolderListing {
  std::vector<Text> names;
  std::vector<WIN32_FIND_DATAW> records;  // their names are those above
  int dotsFirst = 0;                      // how many of "." and ".." came before all others
  std::uint32_t endCode = 0;
};
[[nodiscard]] FolderListing ListFolder(Machine& machine, TextView pattern);

}  // namespace quillmarsh
