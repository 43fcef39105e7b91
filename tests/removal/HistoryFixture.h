// SPDX-License-Identifier: MIT
// A log and a history on a simulated machine, at half past ten of a November morning.
#pragma once

#include "fsobjects/FsObjectsFixture.h"
#include "removal/history/cHistory.h"
#include "removal/history/cLog.h"

namespace quillmarsh {

inline constexpr TextView kLogPath = u"C:\\Data\\Harrow Fen\\Quillmarsh\\history.log";

class HistoryFixture : public FsObjectsFixture {
 protected:
  HistoryFixture() {
    machine.SetShellFolder(CSIDL_LOCAL_APPDATA, u"C:\\Data");
    machine.SetClock(TicksOf(2026, 11, 15, 16, 45, 49));
    gLog = std::make_unique<cLog>();
    gHistory = std::make_unique<cHistory>();
  }
  ~HistoryFixture() override {
    gHistory.reset();
    gLog.reset();
    ResetLocaleFacts();
  }

  struct Entry {
    std::int32_t kind = 0;
    TextView file = {};
    TextView target = {};
    std::int32_t number = 0;
    TextView error = {};
    TextView custom = {};
  };
  static void Add(const Entry& entry) {
    bool result = false;
    gLog->Add(entry.kind, u"never read", entry.file, entry.target, entry.number, entry.error,
              entry.custom, result);
    EXPECT_FALSE(result);
  }
  // Free text that takes so many characters of the log, its tab and line end included.
  static void AddCharacters(std::size_t count) {
    const Text text(count - 3, u'x');
    Add({.kind = log_kind::FreeText, .custom = text});
  }
  static void Flush() {
    gLog->AppendInMemoryStringToLogFile();
    gLog->ResetInMemoryLog();
  }
  std::string OnDisk() const { return machine.ContentsOf(kLogPath); }
};

// The bytes of a text in UTF-16 little-endian, without a mark.
inline std::string WideBytes(TextView text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8U);
  }
  return bytes;
}

}  // namespace quillmarsh
