// SPDX-License-Identifier: MIT
// The steps of a copy, each of which may fail and then takes the new file away again.
#include "platform/win32/WholeCopies.h"

#include <array>
#include <cstring>
#include <memory>
#include <random>

#include "base/OwnFiles.h"
#include "platform/win32/Win32Calls.h"

namespace quillmarsh::win32 {
namespace {

constexpr DWORD kShareReading = FILE_SHARE_READ | FILE_SHARE_DELETE;
constexpr std::size_t kBlockBytes = 1U << 20U;
constexpr DWORD kNeverReplaced = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;

// A file that goes at its end unless it has been put in its place.
class NewFile {
 public:
  explicit NewFile(const std::wstring& beside) {
    std::random_device random;
    const std::uint64_t number = (std::uint64_t{random()} << 32U) | random();
    mPath = beside.substr(0, beside.rfind(L'\\') + 1) + Wide(OwnFileName(OwnFile::Part, number));
  }
  ~NewFile() {
    if (mPath.empty()) return;
    ::SetFileAttributesW(mPath.c_str(), FILE_ATTRIBUTE_NORMAL);
    ::DeleteFileW(mPath.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  [[nodiscard]] const wchar_t* Path() const { return mPath.c_str(); }
  void Keep() { mPath.clear(); }

 private:
  std::wstring mPath;
};

// Reads to the end of the buffer or of the file.
std::uint32_t ReadBlock(::HANDLE file, std::span<char> buffer, std::size_t& done) {
  done = 0;
  while (done < buffer.size()) {
    DWORD count = 0;
    if (::ReadFile(file, buffer.data() + done, static_cast<DWORD>(buffer.size() - done), &count,
                   nullptr) == FALSE)
      return ::GetLastError();
    if (count == 0) break;
    done += count;
  }
  return ERROR_SUCCESS;
}

// 0 when both hold the same bytes from here to their ends; 1117 when they do not.
std::uint32_t Compare(::HANDLE first, ::HANDLE second) {
  const auto buffers = std::make_unique<std::array<char, 2 * kBlockBytes>>();
  const std::span<char> one(buffers->data(), kBlockBytes);
  const std::span<char> other(buffers->data() + kBlockBytes, kBlockBytes);
  for (;;) {
    std::size_t done = 0;
    std::size_t otherDone = 0;
    if (const std::uint32_t error = ReadBlock(first, one, done)) return error;
    if (const std::uint32_t error = ReadBlock(second, other, otherDone)) return error;
    if (done != otherDone || std::memcmp(one.data(), other.data(), done) != 0)
      return ERROR_IO_DEVICE;
    if (done == 0) return ERROR_SUCCESS;
  }
}

// Has the copy on the disk, with the source's times, and sees that it is one.
std::uint32_t Settle(::HANDLE source, const NewFile& copy, bool withCreation) {
  ::FILETIME created{};
  ::FILETIME accessed{};
  ::FILETIME written{};
  if (::GetFileTime(source, &created, &accessed, &written) == FALSE) return ::GetLastError();
  const OwnedHandle file(::CreateFileW(copy.Path(), GENERIC_READ | GENERIC_WRITE, kShareReading,
                                       nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file.IsValid()) return ::GetLastError();
  if (::SetFileTime(file.Get(), withCreation ? &created : nullptr, nullptr, &written) == FALSE ||
      ::FlushFileBuffers(file.Get()) == FALSE)
    return ::GetLastError();
  return Compare(source, file.Get());
}

// 0, or the code with which a place does not take a new file; an entry that has one of the bits
// `kept` is never written over.
std::uint32_t WhyNotTaken(const std::wstring& path, WhenTaken whenTaken, DWORD kept) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD code = ::GetLastError();
    if (code != ERROR_FILE_NOT_FOUND) return code;
    return path.ends_with(L'\\') ? ERROR_INVALID_NAME : ERROR_SUCCESS;
  }
  if (whenTaken == WhenTaken::Fail) return ERROR_ALREADY_EXISTS;
  return (attributes & kept) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

bool AreOneFile(::HANDLE file, const std::wstring& path) {
  const OwnedHandle other(::CreateFileW(path.c_str(), 0,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
  ::BY_HANDLE_FILE_INFORMATION one{};
  ::BY_HANDLE_FILE_INFORMATION two{};
  return other.IsValid() && ::GetFileInformationByHandle(file, &one) != FALSE &&
         ::GetFileInformationByHandle(other.Get(), &two) != FALSE &&
         one.dwVolumeSerialNumber == two.dwVolumeSerialNumber &&
         one.nFileIndexHigh == two.nFileIndexHigh && one.nFileIndexLow == two.nFileIndexLow;
}

struct CopyOrder {
  const std::wstring& existing;
  const std::wstring& newPath;
  WhenTaken whenTaken;
  bool withCreation;
};

// The path with its last name as it is stored, where it is there: what is replaced keeps its case.
std::wstring AsStored(const std::wstring& path) {
  ::WIN32_FIND_DATAW entry{};
  const ::HANDLE search =
      ::FindFirstFileExW(path.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr, 0);
  if (FromSystem(search) == quillmarsh::INVALID_HANDLE) return path;
  ::FindClose(search);
  const std::size_t name = path.rfind(L'\\') + 1;
  const bool isIt = AreOneName(path.substr(name), entry.cFileName);
  return isIt ? path.substr(0, name) + entry.cFileName : path;
}

// From a source that is open.
std::uint32_t CopyFrom(::HANDLE source, const CopyOrder& order) {
  NewFile copy(order.newPath);
  if (::CopyFileExW(order.existing.c_str(), copy.Path(), nullptr, nullptr, nullptr,
                    COPY_FILE_FAIL_IF_EXISTS) == FALSE)
    return ::GetLastError();
  const DWORD attributes = ::GetFileAttributesW(order.existing.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES ||
      ::SetFileAttributesW(copy.Path(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) == FALSE)
    return ::GetLastError();
  if (const std::uint32_t error = Settle(source, copy, order.withCreation)) return error;
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
      ::SetFileAttributesW(copy.Path(), attributes) == FALSE)
    return ::GetLastError();
  const DWORD replaces = order.whenTaken == WhenTaken::Replace ? MOVEFILE_REPLACE_EXISTING : 0;
  const std::wstring target = replaces != 0 ? AsStored(order.newPath) : order.newPath;
  if (::MoveFileExW(copy.Path(), target.c_str(), replaces | MOVEFILE_WRITE_THROUGH) == FALSE)
    return ::GetLastError();
  copy.Keep();
  return ERROR_SUCCESS;
}

::HANDLE OpenSource(const std::wstring& path, DWORD share) {
  return ::CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                       FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

// Also a read-only one, which stays read-only where it stays.
void DeleteSource(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return;
  const bool isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (isReadOnly) ::SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
  if (::DeleteFileW(path.c_str()) == FALSE && isReadOnly)
    ::SetFileAttributesW(path.c_str(), attributes);
}

}  // namespace

std::uint32_t CopyWhole(const std::wstring& existing, const std::wstring& newPath,
                        WhenTaken whenTaken) {
  const OwnedHandle source(OpenSource(existing, kShareReading | FILE_SHARE_WRITE));
  if (!source.IsValid()) return ::GetLastError();
  // The system's own copy writes over what is hidden or read-only as little.
  constexpr DWORD kept = kNeverReplaced | FILE_ATTRIBUTE_HIDDEN;
  std::uint32_t code = WhyNotTaken(newPath, whenTaken, kept);
  if (code == ERROR_SUCCESS && AreOneFile(source.Get(), newPath)) code = ERROR_SHARING_VIOLATION;
  if (code == ERROR_SUCCESS) code = CopyFrom(source.Get(), {existing, newPath, whenTaken, false});
  return code == ERROR_ALREADY_EXISTS ? ERROR_FILE_EXISTS : code;
}

std::uint32_t MoveByCopy(const std::wstring& existing, const std::wstring& newPath,
                         WhenTaken whenTaken) {
  const OwnedHandle source(OpenSource(existing, kShareReading));
  if (!source.IsValid()) return ::GetLastError();
  if (newPath.ends_with(L'\\')) return ERROR_INVALID_NAME;
  if (const std::uint32_t code = WhyNotTaken(newPath, whenTaken, kNeverReplaced)) return code;
  if (const std::uint32_t code = CopyFrom(source.Get(), {existing, newPath, whenTaken, true}))
    return code;
  // What was saved under the source's name meanwhile has not been copied, and stays.
  if (AreOneFile(source.Get(), existing)) DeleteSource(existing);
  return ERROR_SUCCESS;
}

std::uint32_t CopyForMove(void* source, const std::wstring& existing, const std::wstring& newPath) {
  if (newPath.ends_with(L'\\')) return ERROR_INVALID_NAME;
  if (const std::uint32_t code = WhyNotTaken(newPath, WhenTaken::Fail, kNeverReplaced)) return code;
  if (::SetFilePointerEx(source, {}, nullptr, FILE_BEGIN) == FALSE) return ::GetLastError();
  return CopyFrom(source, {existing, newPath, WhenTaken::Fail, true});
}

}  // namespace quillmarsh::win32
