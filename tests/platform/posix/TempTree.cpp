// SPDX-License-Identifier: MIT
// Making and removing real trees, and listing them through the machine.
#include "platform/posix/TempTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "platform/posix/PathResolver.h"

namespace quillmarsh::test {
namespace {

void RemoveBelow(int folder) {
  ::fchmod(folder, 0700);
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(::dup(folder)), &::closedir);
  while (const dirent* entry = listing ? ::readdir(listing.get()) : nullptr) {
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    if (::unlinkat(folder, entry->d_name, 0) == 0) continue;
    ::fchmodat(folder, entry->d_name, 0700, 0);
    const UniqueFd inner(::openat(folder, entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
    if (inner) RemoveBelow(inner.Get());
    ::unlinkat(folder, entry->d_name, AT_REMOVEDIR);
  }
}

}  // namespace

TempTree::TempTree() {
  std::string pattern = "/tmp/quillmarsh-test-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) std::abort();
  ::chmod(pattern.c_str(), 0755);
  mRoot = pattern;
}

TempTree::~TempTree() {
  const UniqueFd root(::open(mRoot.c_str(), O_RDONLY | O_DIRECTORY));
  if (root) RemoveBelow(root.Get());
  ::rmdir(mRoot.c_str());
}

std::string TempTree::Folder(const std::string& relative) const {
  for (std::size_t slash = 0; slash != std::string::npos;) {
    slash = relative.find('/', slash + 1);
    ::mkdir(At(relative.substr(0, slash)).c_str(), 0755);
  }
  return At(relative);
}

std::string TempTree::File(const std::string& relative, const std::string& bytes) const {
  if (const std::size_t slash = relative.rfind('/'); slash != std::string::npos)
    Folder(relative.substr(0, slash));
  std::ofstream(At(relative), std::ios::binary) << bytes;
  ::chmod(At(relative).c_str(), 0644);
  return At(relative);
}

void TempTree::Many(const std::string& relative, int count) const {
  const UniqueFd folder(::open(Folder(relative).c_str(), O_PATH | O_DIRECTORY));
  for (int index = 0; index < count; ++index)
    ::mknodat(folder.Get(), ("f" + std::to_string(index)).c_str(), S_IFREG | 0644, 0);
}

std::string TempTree::Link(const std::string& relative, const std::string& target) const {
  EXPECT_EQ(::symlink(target.c_str(), At(relative).c_str()), 0);
  return At(relative);
}

std::string MountList(const std::vector<MountLine>& lines) {
  std::string text = "27 1 254:0 / / rw,relatime shared:1 - ext4 /dev/root rw\n";
  int next = 100;
  for (const MountLine& line : lines)
    text += std::to_string(line.id != 0 ? line.id : next++) + " " +
            std::to_string(line.parent != 0 ? line.parent : 27) + " " + line.device + " " +
            line.root + " " + line.point + " " + line.options + " - " + line.type + " " +
            line.source + " rw\n";
  return text;
}

PosixOptions DriveAt(const TempTree& scratch, const std::string& folder, const std::string& type) {
  const UniqueFd root(::open(folder.c_str(), O_PATH | O_DIRECTORY));
  MountLine line{folder, type};
  line.id = static_cast<int>(MountIdOf(root.Get()));
  PosixOptions options;
  options.mountInfoFile = scratch.File("mountinfo-" + type, MountList({line}));
  options.dataHome = "";
  return options;
}

const Listed* WholeListing::Find(TextView name) const {
  for (const Listed& entry : entries)
    if (entry.name == name) return &entry;
  return nullptr;
}

std::multiset<Text> WholeListing::Names() const {
  std::multiset<Text> names;
  for (const Listed& entry : entries) names.insert(entry.name);
  return names;
}

WholeListing ListAll(Machine& machine, const Text& folder) {
  WholeListing listing;
  WIN32_FIND_DATAW entry;
  const HANDLE search = machine.Find().FindFirstFileW(folder + u"*", entry);
  bool more = search != INVALID_HANDLE;
  while (more) {
    listing.entries.push_back(
        {Text(entry.cFileName), entry.dwFileAttributes, entry.dwReserved0,
         (static_cast<std::uint64_t>(entry.nFileSizeHigh) << 32U) | entry.nFileSizeLow,
         entry.ftCreationTime, entry.ftLastWriteTime});
    more = machine.Find().FindNextFileW(search, entry);
  }
  listing.end = machine.GetLastError();
  if (search != INVALID_HANDLE) machine.Find().FindClose(search);
  return listing;
}

std::string ReadAll(Machine& machine, const Text& path, std::uint32_t& error) {
  std::string bytes;
  std::array<std::byte, 4096> block{};
  std::uint32_t done = 0;
  error = 0;
  const HANDLE file =
      machine.Files().CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
  bool reading = file != INVALID_HANDLE;
  while (reading) {
    if (!machine.Files().ReadFile(file, block, done)) break;
    if (done == 0) {
      machine.Files().CloseHandle(file);
      return bytes;
    }
    bytes.append(reinterpret_cast<const char*>(block.data()), done);
  }
  error = machine.GetLastError();
  if (file != INVALID_HANDLE) machine.Files().CloseHandle(file);
  return bytes;
}

std::string AsOrdinaryUser(const std::function<std::string()>& body) {
  if (::geteuid() != 0) return body();
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return "no pipe";
  const pid_t child = ::fork();
  if (child == 0) {
    std::string outcome = "could not become another user";
    if (::setgid(65534) == 0 && ::setuid(65534) == 0) outcome = body();
    const bool told = ::write(ends[1], outcome.data(), outcome.size()) >= 0;
    ::_exit(told ? 0 : 1);
  }
  ::close(ends[1]);
  std::string outcome;
  std::array<char, 1024> block{};
  for (ssize_t got = 1; got > 0;) {
    got = ::read(ends[0], block.data(), block.size());
    if (got > 0) outcome.append(block.data(), static_cast<std::size_t>(got));
  }
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  return status == 0 ? outcome : outcome + " (the child ended badly)";
}

}  // namespace quillmarsh::test
