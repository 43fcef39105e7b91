// SPDX-License-Identifier: MIT
// The POSIX machine over a temporary folder, which goes with it. Its drive letters are remembered
// inside that folder, never in the person's home.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "platform/MachineUnderTest.h"
#include "platform/posix/PosixMachine.h"

namespace quillmarsh {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t ticksPerSecond = 10'000'000;
constexpr std::int64_t ticksBefore1970 = 116'444'736'000'000'000;

fs::path NewFolder() {
  std::string pattern = (fs::temp_directory_path() / "quillmarsh-ground-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr)
    throw std::runtime_error("no temporary folder could be made");
  return fs::canonical(pattern);
}

PosixOptions OptionsIn(const fs::path& folder, bool byComponents) {
  PosixOptions options;
  options.dataHome = (folder / "data").string();
  options.byComponents = byComponents;
  return options;
}

std::string ReadBytes(const fs::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

class PosixUnderTest final : public MachineUnderTest {
 public:
  explicit PosixUnderTest(bool byComponents)
      : mFolder(NewFolder()), mMachine(OptionsIn(mFolder, byComponents)) {
    fs::create_directory(mFolder / "ground");
    mBase = mMachine.Drives().LocationFromNative((mFolder / "ground").string()).path;
    if (mBase.empty()) throw std::runtime_error("the temporary folder lies below no letter");
  }
  ~PosixUnderTest() override {
    for (const fs::path& path : mKeptOut) ::chmod(path.c_str(), 0700);
    std::error_code ignored;
    fs::remove_all(mFolder, ignored);
  }

  Machine& Get() override { return mMachine; }
  [[nodiscard]] Text Base() const override { return mBase; }
  [[nodiscard]] std::string NativeOf(TextView relative) const override {
    return Native(relative).string();
  }
  void MakeFolder(TextView relative) override { fs::create_directories(Native(relative)); }

  // Folder by folder from a handle, since a whole path may be too long for the system.
  void MakeFile(TextView relative, std::string_view bytes) override {
    std::string rest = Native(relative).string().substr(1);
    int folder = ::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (std::size_t end = rest.find('/'); end != std::string::npos; end = rest.find('/')) {
      const std::string name = rest.substr(0, end);
      ::mkdirat(folder, name.c_str(), 0700);
      const int next = ::openat(folder, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
      ::close(folder);
      folder = next;
      rest.erase(0, end + 1);
    }
    const int file = ::openat(folder, rest.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool written = ::write(file, bytes.data(), bytes.size()) == std::ssize(bytes);
    ::close(file);
    ::close(folder);
    if (!written) throw std::runtime_error("a file could not be made");
  }

  void MakeLongFile(TextView relative, std::uint64_t size) override {
    MakeFile(relative, {});
    fs::resize_file(Native(relative), size);
  }
  void MakeFolderLink(TextView relative, TextView targetRelative) override {
    fs::create_directories(Native(relative).parent_path());
    fs::create_directory_symlink(Native(targetRelative), Native(relative));
  }
  void SetWritten(TextView relative, std::int64_t utcTicks) override {
    const std::int64_t ticks = utcTicks - ticksBefore1970;
    const timespec moment = {static_cast<time_t>(ticks / ticksPerSecond),
                             static_cast<long>(ticks % ticksPerSecond * 100)};
    const timespec times[2] = {moment, moment};
    if (::utimensat(AT_FDCWD, Native(relative).c_str(), times, 0) != 0)
      throw std::runtime_error("a write time could not be set");
  }
  void SetReadOnly(TextView relative, bool readOnly) override {
    fs::permissions(Native(relative), readOnly ? fs::perms(0444) : fs::perms(0644));
  }
  void Remove(TextView relative) override { fs::remove_all(Native(relative)); }
  // Names that need no encoding only.
  std::string RecycledBytes(TextView relative) override {
    const fs::path trash = mFolder / "data/Trash";
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(trash / "files", ignored)) {
      const std::string note =
          ReadBytes(trash / "info" / (entry.path().filename().string() + ".trashinfo"));
      if (note.find("\nPath=" + NativeOf(relative) + "\n") != std::string::npos)
        return ReadBytes(entry.path());
    }
    return "(none)";
  }
  [[nodiscard]] bool CanKeepOut() const override { return ::geteuid() != 0; }
  void KeepOut(TextView relative) override {
    mKeptOut.push_back(Native(relative));
    fs::permissions(mKeptOut.back(), fs::perms::none);
  }

 private:
  [[nodiscard]] fs::path Native(TextView relative) const {
    std::string native = ToUtf8(relative);
    for (char& unit : native)
      if (unit == '\\') unit = '/';
    if (native.ends_with('/')) native.pop_back();
    return mFolder / "ground" / native;
  }

  fs::path mFolder;
  PosixMachine mMachine;
  Text mBase;
  std::vector<fs::path> mKeptOut;
};

}  // namespace

std::unique_ptr<MachineUnderTest> MakePosixUnderTest() {
  return std::make_unique<PosixUnderTest>(false);
}

std::unique_ptr<MachineUnderTest> MakePosixByComponentsUnderTest() {
  return std::make_unique<PosixUnderTest>(true);
}

}  // namespace quillmarsh
