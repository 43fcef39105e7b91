// SPDX-License-Identifier: MIT
// Which unfinished copies go, and that nothing else does.
#include "fsobjects/FsObjectsFixture.h"
#include "fsobjects/Handles.h"
#include "removal/StaleParts.h"

namespace quillmarsh {
namespace {

class StaleParts : public FsObjectsFixture {};

TEST_F(StaleParts, GoWhenNobodyHoldsThemAndWithoutLocksWhenADayOld) {
  const std::int64_t now = TicksOf(2026, 11, 15, 12);
  machine.SetClock(now);
  const std::int64_t old = now - std::int64_t{25} * 60 * 60 * 10'000'000;
  enum class Locks : std::uint8_t { Free, Held, None };
  struct Row {
    const char* name;
    TextView file;
    std::int64_t created, written;
    std::uint32_t attributes;
    Locks locks;
    bool stays;
  };
  const Row rows[] = {
      {"new, of a killed program", u".quillmarsh-1.part", now, now, 0, Locks::Free, false},
      {"read-only", u".quillmarsh-1.part", now, now, FILE_ATTRIBUTE_READONLY, Locks::Free, false},
      {"in work, with the times of its source", u".quillmarsh-1.part", old, old, 0, Locks::Held,
       true},
      {"old, no locks", u".quillmarsh-1.part", old, old, 0, Locks::None, false},
      {"new, no locks", u".quillmarsh-1.part", now, now, 0, Locks::None, true},
      {"made now from an old source, no locks", u".quillmarsh-1.part", now, old, 0, Locks::None,
       true},
      {"taken aside", u".quillmarsh-1.aside", old, old, 0, Locks::Free, true},
      {"of the user", u".quillmarsh-x.part", old, old, 0, Locks::Free, true},
      {"below", u"sub\\.quillmarsh-1.part", old, old, 0, Locks::Free, true},
      {"a folder", u".quillmarsh-1.part\\x", old, old, 0, Locks::Free, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    machine.AddFolder(u"C:\\target");
    const Text path = u"C:\\target\\" + Text(row.file);
    machine.AddFile(path, std::string("half"),
                    {row.attributes, row.created, row.written, row.written});
    FaultHook withoutLocks;
    if (row.locks == Locks::None) withoutLocks.Fail({Operation::LockFileEx}, ERROR_NOT_SUPPORTED);
    FileInputOutput& files = machine.Files();
    constexpr std::uint32_t shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    {
      const FileHandle writer(
          row.locks != Locks::Held
              ? INVALID_HANDLE
              : files.CreateFileW(path, GENERIC_READ, shareAll, OPEN_EXISTING, 0));
      EXPECT_EQ(writer.IsValid() && files.LockFileEx(writer.Get()), row.locks == Locks::Held);
      machine.SetHook(&withoutLocks);
      RemoveStaleParts(u"C:\\target\\");
      machine.SetHook(&hook);
    }
    EXPECT_EQ(machine.Exists(path), row.stays);
    machine.Remove(u"C:\\target");
  }
}

}  // namespace
}  // namespace quillmarsh
