// SPDX-License-Identifier: MIT
// Names and notes of trashed entries.
#include "platform/posix/TrashEntry.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>

#include "platform/posix/FolderEntry.h"

namespace quillmarsh {
namespace {

constexpr std::string_view NoteEnding = ".trashinfo";
constexpr int CountedNames = 20;

bool StandsForItself(unsigned char byte) {
  const bool isLetter = (byte | 0x20U) >= 'a' && (byte | 0x20U) <= 'z';
  const bool isDigit = byte >= '0' && byte <= '9';
  return isLetter || isDigit ||
         std::string_view("/-_.~").find(static_cast<char>(byte)) != std::string_view::npos;
}

std::string PercentEncoded(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (StandsForItself(byte)) {
      text += character;
    } else {
      text += '%';
      text += digits[byte >> 4U];
      text += digits[byte & 0xFU];
    }
  }
  return text;
}

// At most `length` bytes, and not the beginning of a character without its end.
std::string_view CutAtCharacter(std::string_view name, std::size_t length) {
  if (name.size() <= length) return name;
  const auto continues = [&](std::size_t place) {
    return (static_cast<unsigned char>(name[place]) & 0xC0U) == 0x80U;
  };
  std::size_t end = length;
  while (end > 0 && length - end < 3 && continues(end)) --end;
  return name.substr(0, continues(end) ? length : end);  // bytes that are no UTF-8 may be cut
}

int WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t put = ::write(fd, text.data(), text.size());
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return put < 0 ? errno : ENOSPC;
    text.remove_prefix(static_cast<std::size_t>(put));
  }
  return ::fsync(fd) == 0 ? 0 : errno;
}

}  // namespace

std::string TrashNoteText(std::string_view path, const std::tm& moment) {
  std::array<char, 64> date{};
  const std::size_t length = std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &moment);
  return "[Trash Info]\nPath=" + PercentEncoded(path) +
         "\nDeletionDate=" + std::string(date.data(), length) + "\n";
}

std::string TrashName(std::string_view name, int attempt, std::size_t longest) {
  std::uint64_t number = static_cast<std::uint64_t>(attempt);
  if (attempt > CountedNames) (void)!::getrandom(&number, sizeof number, GRND_NONBLOCK);
  const std::string ending = attempt == 1 ? std::string() : "." + std::to_string(number);
  const std::size_t taken = ending.size() + NoteEnding.size();
  const std::size_t room = longest > taken ? longest - taken : 1;
  return std::string(CutAtCharacter(name, room)) + ending;
}

TrashNote::TrashNote(int infoFolder, const std::string& entryName, ChangePermit& permit)
    : mFolder(infoFolder), mName(entryName + std::string(NoteEnding)), mPermit(permit) {}

TrashNote::~TrashNote() {
  if (mIsMade) (void)mPermit.Use([&] { return ::unlinkat(mFolder, mName.c_str(), 0); });
}

int TrashNote::Write(const std::string& text) {
  UniqueFd file;
  const int error = mPermit.Use([&] {
    file.Reset(::openat(mFolder, mName.c_str(),
                        O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file ? 0 : -1;
  });
  if (error != 0) return error;
  mIsMade = true;
  if (const int failed = WriteAll(file.Get(), text)) return failed;
  return SyncFolder(mFolder);
}

}  // namespace quillmarsh
