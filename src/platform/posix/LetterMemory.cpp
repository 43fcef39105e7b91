// SPDX-License-Identifier: MIT
// drives.ini: one section, a line for each letter, bytes that would break a line percent-encoded.
#include "platform/posix/LetterMemory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <thread>

#include "platform/posix/DriveLetters.h"
#include "platform/posix/UniqueFd.h"

namespace quillmarsh {
namespace {

constexpr std::string_view Heading =
    "; A drive letter belongs to one file system for good and is never given to another.\n"
    "; A line may be deleted to set its letter free again.\n"
    "[Drives]\n";

std::string Encoded(std::string_view identity) {
  std::string text;
  for (const char byte : identity) {
    const auto code = static_cast<unsigned char>(byte);
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", code);
    if (code < 0x20 || code == 0x7F || byte == '%')
      text += escaped;
    else
      text += byte;
  }
  return text;
}

std::string Decoded(std::string_view text) {
  const auto digit = [](char c) {
    return c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
  };
  std::string identity;
  for (std::size_t place = 0; place < text.size(); ++place) {
    const bool escape = text[place] == '%' && place + 2 < text.size() &&
                        digit(text[place + 1]) >= 0 && digit(text[place + 2]) >= 0;
    identity += escape ? static_cast<char>(digit(text[place + 1]) * 16 + digit(text[place + 2]))
                       : text[place];
    place += escape ? 2 : 0;
  }
  return identity;
}

void ReadLines(std::string_view text, std::map<char, std::string>& letters) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const bool isEntry =
        line.size() > 2 && line[1] == '=' && line[0] >= 'A' && line[0] <= 'Z' && line[0] != 'C';
    if (isEntry) letters.emplace(line[0], Decoded(line.substr(2)));
  }
}

void MakeFolders(const std::string& folder) {
  for (std::size_t slash = 1; slash != std::string::npos;) {
    slash = folder.find('/', slash + 1);
    ::mkdir(folder.substr(0, slash).c_str(), 0700);
  }
}

// A program that was stopped in the middle must not stop this one: after a second it goes on.
void LockBriefly(int folder) {
  for (int attempt = 0; attempt < 50 && ::flock(folder, LOCK_EX | LOCK_NB) != 0; ++attempt)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(fd, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void Replace(const std::string& path, int folder, std::string_view text) {
  const std::string beside = path + "." + std::to_string(::getpid());
  const UniqueFd file(
      ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!file) return;
  const bool written = WriteAll(file.Get(), text) && ::fsync(file.Get()) == 0 &&
                       ::rename(beside.c_str(), path.c_str()) == 0;
  if (written)
    ::fsync(folder);
  else
    ::unlink(beside.c_str());
}

}  // namespace

void ChangeLetterMemory(const std::string& path, std::map<char, std::string>& letters,
                        const std::function<bool()>& change) {
  const std::size_t slash = path.rfind('/');
  if (path.empty() || slash == std::string::npos) {
    (void)change();
    return;
  }
  const std::string folderPath = path.substr(0, slash);
  MakeFolders(folderPath);
  const UniqueFd folder(::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) LockBriefly(folder.Get());

  int error = 0;
  const auto text = ReadWholeFile(path, error);
  if (text) ReadLines(*text, letters);
  const bool mayWrite = folder && (text || error == ENOENT);
  if (!change() || !mayWrite) return;

  std::string written(Heading);
  for (const auto& [letter, identity] : letters)
    written += std::string(1, letter) + "=" + Encoded(identity) + "\n";
  Replace(path, folder.Get(), written);
}

}  // namespace quillmarsh
