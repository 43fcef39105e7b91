// SPDX-License-Identifier: MIT
// The machines that are built here: the simulated one always, and over a temporary folder the one
// of the system.
#include "platform/MachineUnderTest.h"

#include <algorithm>

#include "platform/simulated/SimulatedMachine.h"

namespace quillmarsh {

namespace {

class SimulatedUnderTest final : public MachineUnderTest {
 public:
  explicit SimulatedUnderTest(bool caseSensitive) {
    SimulatedDrive drive;
    drive.root = u"D:\\";
    drive.caseSensitive = caseSensitive;
    mMachine.AddDrive(drive);
    mMachine.AddFolder(Base());
  }
  Machine& Get() override { return mMachine; }
  [[nodiscard]] Text Base() const override { return u"D:\\ground"; }
  [[nodiscard]] std::string NativeOf(TextView relative) const override {
    return ToUtf8(PathOf(relative));
  }
  void MakeFolder(TextView relative) override { mMachine.AddFolder(PathOf(relative)); }
  void MakeFile(TextView relative, std::string_view bytes) override {
    mMachine.AddFile(PathOf(relative), bytes);
  }
  void MakeLongFile(TextView relative, std::uint64_t size) override {
    mMachine.AddFile(PathOf(relative), FileContents::Recipe(1, size));
  }
  void MakeFolderLink(TextView relative, TextView targetRelative) override {
    mMachine.AddJunction(PathOf(relative), PathOf(targetRelative));
  }
  void SetWritten(TextView relative, std::int64_t utcTicks) override {
    const SimulatedFacts facts = mMachine.FactsOf(PathOf(relative));
    mMachine.SetTimes(PathOf(relative), facts.created, facts.accessed, utcTicks);
  }
  void SetReadOnly(TextView relative, bool readOnly) override {
    const std::uint32_t others = mMachine.AttributesOf(PathOf(relative)) & ~FILE_ATTRIBUTE_READONLY;
    mMachine.SetAttributes(PathOf(relative), others | (readOnly ? FILE_ATTRIBUTE_READONLY : 0U));
  }
  void Remove(TextView relative) override { mMachine.Remove(PathOf(relative)); }
  std::string RecycledBytes(TextView relative) override {
    for (const RecycledEntry& entry : mMachine.Recycled())
      if (entry.originalPath == PathOf(relative)) return mMachine.ContentsOf(entry.binPath);
    return "(none)";
  }
  [[nodiscard]] bool CanKeepOut() const override { return true; }
  void KeepOut(TextView relative) override { mMachine.DenyAccess(PathOf(relative)); }

 private:
  SimulatedMachine mMachine;
};

std::unique_ptr<MachineUnderTest> MakeSimulated() {
  return MakeSimulatedUnderTest(false);
}

}  // namespace

std::unique_ptr<MachineUnderTest> MakeSimulatedUnderTest(bool tellsCaseApart) {
  return std::make_unique<SimulatedUnderTest>(tellsCaseApart);
}

const std::vector<MachineKind>& MachineKinds() {
  static const std::vector<MachineKind> kinds = {
      {"Simulated", false, MakeSimulated},
#ifdef QUILLMARSH_TEST_POSIX_MACHINE
      {"Posix", true, MakePosixUnderTest},
      {"PosixByComponents", true, MakePosixByComponentsUnderTest},
#endif
#ifdef QUILLMARSH_TEST_WIN32_MACHINE
      {"Win32", false, MakeWin32UnderTest},
#endif
  };
  return kinds;
}

FolderListing ListFolder(Machine& machine, TextView pattern) {
  FolderListing listing;
  WIN32_FIND_DATAW entry;
  const HANDLE search = machine.Find().FindFirstFileW(pattern, entry);
  if (search == INVALID_HANDLE) {
    listing.endCode = machine.GetLastError();
    return listing;
  }
  do {
    const bool isDots = entry.cFileName == u"." || entry.cFileName == u"..";
    if (isDots && listing.names.empty()) ++listing.dotsFirst;
    if (isDots) continue;
    listing.names.emplace_back(entry.cFileName);
    listing.records.push_back(entry);
    listing.records.back().cFileName = {};
  } while (machine.Find().FindNextFileW(search, entry));
  listing.endCode = machine.GetLastError();
  machine.Find().FindClose(search);
  return listing;
}

}  // namespace quillmarsh
