// SPDX-License-Identifier: MIT
// What the headers and version resources of executable files say, against what the system says of
// them: of all files in its own folders and of the programs beside this one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "RealCalls.h"
#include "platform/ExecutableFormats.h"
#include "platform/win32/Win32Machine.h"

namespace quillmarsh {
namespace {

ReadBytesAt ReaderOf(std::ifstream& file) {
  return [&file](std::uint64_t offset, std::span<std::byte> bytes) {
    file.clear();
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.gcount() == static_cast<std::streamsize>(bytes.size());
  };
}

std::vector<std::filesystem::path> Files() {
  wchar_t own[MAX_PATH] = {};
  wchar_t system[MAX_PATH] = {};
  wchar_t windows[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, own, MAX_PATH);
  ::GetSystemDirectoryW(system, MAX_PATH);
  ::GetWindowsDirectoryW(windows, MAX_PATH);
  std::vector<std::filesystem::path> files;
  for (const std::filesystem::path& folder :
       {std::filesystem::path(own).parent_path(), std::filesystem::path(system),
        std::filesystem::path(windows)})
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.is_regular_file()) files.push_back(entry.path());
  return files;
}

TEST(RealExecutableTest, KindsAreWhatTheSystemSays) {
  Win32Machine machine;
  int programs = 0;
  for (const std::filesystem::path& path : Files()) {
    std::ifstream file(path, std::ios::binary);
    if (!file) continue;
    const auto real = machine.Files().GetBinaryTypeW(win32::Narrow(path.wstring()));
    EXPECT_EQ(KindOfExecutable(ReaderOf(file)), real) << path;
    programs += real.has_value() ? 1 : 0;
  }
  EXPECT_GT(programs, 10);
}

// The program asks for the fixed part. Behind it stand texts, of which we read the first language's
// and the system the person's own: Wine has one file with several.
TEST(RealExecutableTest, VersionsAreWhatTheSystemReads) {
  Win32Machine machine;
  VersionResources& versions = machine.Versions();
  int blocks = 0;
  int sameBlocks = 0;
  bool isOwnSeen = false;
  for (const std::filesystem::path& path : Files()) {
    SCOPED_TRACE(path);
    std::ifstream file(path, std::ios::binary);
    if (!file) continue;
    const VersionBlock ours = ReadVersionBlock(ReaderOf(file));
    const Text name = win32::Narrow(path.wstring());
    std::vector<std::byte> real(versions.GetFileVersionInfoSizeW(name));
    ASSERT_EQ(ours.bytes.empty(), real.empty());
    if (real.empty()) {
      // Wine never tells that there are other resources.
      const bool isFolded = IsWine() && ours.error == ERROR_RESOURCE_TYPE_NOT_FOUND;
      EXPECT_EQ(isFolded ? ERROR_RESOURCE_DATA_NOT_FOUND : ours.error, machine.GetLastError());
      continue;
    }
    ++blocks;
    isOwnSeen = isOwnSeen || path.filename() == "quillmarsh-cli.exe";
    ASSERT_TRUE(versions.GetFileVersionInfoW(name, real));
    const auto realInfo = versions.VerQueryValueRoot(real);
    const auto ourInfo = FixedFileInfoOf(ours.bytes);
    ASSERT_EQ(ourInfo.has_value(), realInfo.has_value());
    if (ourInfo) {
      EXPECT_EQ(std::memcmp(&*ourInfo, &*realInfo, sizeof(*ourInfo)), 0);
    }
    const bool isSame = real.size() >= ours.bytes.size() &&
                        std::equal(ours.bytes.begin(), ours.bytes.end(), real.begin());
    sameBlocks += isSame ? 1 : 0;
  }
  EXPECT_GT(blocks, 10);
  EXPECT_TRUE(isOwnSeen);
  if (IsWine()) {
    EXPECT_GE(sameBlocks, blocks - 1);
  }
}

int Shown(std::optional<std::uint32_t> kind) {
  return kind ? static_cast<int>(*kind) : -1;
}

// Copies of a program with one other byte where the headers are told from one another.
TEST(RealExecutableTest, KindsOfDamagedProgramsAreWhatTheSystemSays) {
  constexpr unsigned ExecutableBit = 2;
  Win32Machine machine;
  wchar_t system[MAX_PATH] = {};
  ::GetSystemDirectoryW(system, MAX_PATH);
  std::ifstream original(std::filesystem::path(system) / "attrib.exe", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(original), {}};
  ASSERT_GT(bytes.size(), 4096U);
  const std::size_t at = static_cast<unsigned char>(bytes[60]);
  // The two signatures and where the second one lies, the characteristics, the magic number.
  const std::size_t places[] = {0,      1,      60,      61,      at,      at + 1,
                                at + 2, at + 3, at + 22, at + 23, at + 24, at + 25};
  const std::filesystem::path path = std::filesystem::temp_directory_path() /
                                     ("kind" + std::to_string(::GetCurrentProcessId()) + ".exe");
  FewFailures failures;
  int programs = 0;
  for (std::uint32_t seed = 1; seed <= 500 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    std::string damaged = bytes;
    const std::size_t place = dice.Of(places);
    const auto before = static_cast<unsigned char>(bytes[place]);
    const std::size_t after = dice.OneIn(2) ? dice.Below(256) : before ^ (1U << dice.Below(8));
    // Wine runs what its linker has not called complete.
    if (IsWine() && place == at + 22 && (after & ExecutableBit) == 0) continue;
    damaged[place] = static_cast<char>(after);
    std::ofstream(path, std::ios::binary) << damaged;
    const auto real = machine.Files().GetBinaryTypeW(win32::Narrow(path.wstring()));
    std::ifstream file(path, std::ios::binary);
    const auto ours = KindOfExecutable(ReaderOf(file));
    programs += real.has_value() ? 1 : 0;
    if (ours == real) continue;
    failures.Count();
    ADD_FAILURE() << "seed " << seed << ": byte " << place << " (headers at " << at << ") is "
                  << after << ": " << Shown(real) << " and not " << Shown(ours);
  }
  std::filesystem::remove(path);
  EXPECT_GT(programs, 50);
}

}  // namespace
}  // namespace quillmarsh
