// SPDX-License-Identifier: MIT
// Opening with the sharing that keeps others away, and changes through the handle.
#include "platform/win32/Win32Pinning.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include <shellapi.h>

#include "platform/win32/RecycleBinFacts.h"
#include "platform/win32/WholeCopies.h"

namespace quillmarsh {

struct Win32Pinning::Pinned {
  Text path;
  std::wstring ownPath;
  std::wstring asidePath;
  std::wstring presentPath;
  PinPurpose purpose = PinPurpose::Keep;
  ::HANDLE file = nullptr;
  FileState state;
  std::wstring leftPath;  // of a copy that could not be taken back
  bool isGone = false;
  ~Pinned() {
    if (file != nullptr) ::CloseHandle(file);
  }
};

namespace {


constexpr DWORD kAskOnly = FILE_READ_ATTRIBUTES;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kItself = FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS;
// Links of all kinds and folders are no files; other reparse points are (files of a cloud).
bool IsPlainFile(DWORD attributes, ::HANDLE file) {
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return false;
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return true;
  FILE_ATTRIBUTE_TAG_INFO tag{};
  return ::GetFileInformationByHandleEx(file, FileAttributeTagInfo, &tag, sizeof tag) != FALSE &&
         tag.ReparseTag != IO_REPARSE_TAG_SYMLINK && tag.ReparseTag != IO_REPARSE_TAG_MOUNT_POINT;
}

bool HasTrustedNumbers(const std::wstring& path) {
  std::wstring root(path.size() + 2, L'\0');
  if (::GetVolumePathNameW(path.c_str(), root.data(), static_cast<DWORD>(root.size())) == FALSE)
    return false;
  if (::GetDriveTypeW(root.c_str()) != DRIVE_FIXED) return false;
  wchar_t name[MAX_PATH + 1] = {};
  return ::GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, name,
                                 MAX_PATH) != FALSE &&
         (std::wstring(name) == L"NTFS" || std::wstring(name) == L"ReFS");
}

// A code.
std::uint32_t StateOf(::HANDLE file, FileState& state) {
  ::BY_HANDLE_FILE_INFORMATION told{};
  if (::GetFileInformationByHandle(file, &told) == FALSE) return ::GetLastError();
  state.volume = told.dwVolumeSerialNumber;
  state.mount = told.dwVolumeSerialNumber;
  state.number = (std::uint64_t{told.nFileIndexHigh} << 32U) | told.nFileIndexLow;
  state.size = (std::uint64_t{told.nFileSizeHigh} << 32U) | told.nFileSizeLow;
  state.created = win32::FromSystem(told.ftCreationTime);
  state.written = win32::FromSystem(told.ftLastWriteTime);
  state.links = told.nNumberOfLinks;
  state.isFolder = (told.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  FILE_BASIC_INFO times{};
  if (::GetFileInformationByHandleEx(file, FileBasicInfo, &times, sizeof times) != FALSE)
    state.changed = quillmarsh::FILETIME::FromTicks(times.ChangeTime.QuadPart);
  return ERROR_SUCCESS;
}

std::uint32_t LookAtPath(const std::wstring& path, FileState& state) {
  const win32::OwnedHandle file(
      ::CreateFileW(path.c_str(), kAskOnly, kShareAll, nullptr, OPEN_EXISTING, kItself, nullptr));
  return file.IsValid() ? StateOf(file.Get(), state) : ::GetLastError();
}

// The handle, or null with the last error set.
::HANDLE OpenFor(const std::wstring& path, DWORD access, DWORD share) {
  const ::HANDLE file =
      ::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                    FILE_FLAG_SEQUENTIAL_SCAN | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  return win32::FromSystem(file) == quillmarsh::INVALID_HANDLE ? nullptr : file;
}

// A file to keep is opened for writing where that can be, since only then can it be flushed.
::HANDLE OpenToKeep(const std::wstring& path, DWORD share) {
  for (const DWORD access : {GENERIC_READ | GENERIC_WRITE, GENERIC_READ})
    if (const ::HANDLE file = OpenFor(path, access, share)) return file;
  return nullptr;
}

// The shell opens what it moves, by its path.
::HANDLE OpenToRemove(const std::wstring& path) {
  return OpenFor(path, GENERIC_READ | DELETE | FILE_WRITE_ATTRIBUTES,
                 FILE_SHARE_READ | FILE_SHARE_DELETE);
}

bool SetAttributes(::HANDLE file, DWORD attributes) {
  FILE_BASIC_INFO facts{};
  facts.FileAttributes = attributes;
  return ::SetFileInformationByHandle(file, FileBasicInfo, &facts, sizeof facts) != FALSE;
}

// A code. A read-only file is deleted too, and stays read-only where it stays.
std::uint32_t DeleteThrough(::HANDLE file) {
  ::BY_HANDLE_FILE_INFORMATION told{};
  if (::GetFileInformationByHandle(file, &told) == FALSE) return ::GetLastError();
  const bool isReadOnly = (told.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  const DWORD writable = told.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  if (isReadOnly && !SetAttributes(file, writable != 0 ? writable : FILE_ATTRIBUTE_NORMAL))
    return ::GetLastError();
  FILE_DISPOSITION_INFO goes{TRUE};
  if (::SetFileInformationByHandle(file, FileDispositionInfo, &goes, sizeof goes) != FALSE)
    return ERROR_SUCCESS;
  const DWORD code = ::GetLastError();
  if (isReadOnly) SetAttributes(file, told.dwFileAttributes);
  return code;
}

std::uint32_t RenameThrough(::HANDLE file, const std::wstring& newPath) {
  const std::size_t bytes = newPath.size() * sizeof(wchar_t);
  std::vector<std::byte> buffer(sizeof(FILE_RENAME_INFO) + bytes + sizeof(wchar_t));
  auto* const order = reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
  order->ReplaceIfExists = FALSE;
  order->FileNameLength = static_cast<DWORD>(bytes);
  std::memcpy(order->FileName, newPath.data(), bytes);
  const bool isDone = ::SetFileInformationByHandle(file, FileRenameInfo, order,
                                                   static_cast<DWORD>(buffer.size())) != FALSE;
  return isDone ? ERROR_SUCCESS : ::GetLastError();
}

bool IsUnchanged(const FileState& now, const FileState& then) {
  return now.IsSameFileAs(then) && now.size == then.size && now.written == then.written;
}

}  // namespace

Win32Pinning::Win32Pinning(CallState& state) : Pinning(state), mCalls(state) {}
Win32Pinning::~Win32Pinning() = default;

Win32Pinning::Pinned* Win32Pinning::Find(HANDLE handle) {
  const auto found = mPins.find(handle);
  if (found == mPins.end()) return Fail(ERROR_INVALID_HANDLE, static_cast<Pinned*>(nullptr));
  return found->second.get();
}

bool Win32Pinning::DoLookAt(TextView path, FileState& state) {
  const win32::PathArgument argument(path);
  if (const std::uint32_t code = argument.Refusal()) return Fail(code, false);
  return End(LookAtPath(argument.Get(), state));
}

HANDLE Win32Pinning::DoPin(TextView path, PinPurpose purpose, TextView asideName,
                           FileState& state) {
  const win32::PathArgument argument(path);
  if (const std::uint32_t code = argument.Refusal()) return Fail(code, INVALID_HANDLE);
  auto pin = std::make_unique<Pinned>();
  pin->path = Text(path);
  pin->purpose = purpose;
  pin->ownPath = pin->presentPath = argument.Get();
  pin->asidePath = pin->ownPath.substr(0, pin->ownPath.rfind(L'\\') + 1) + win32::Wide(asideName);
  pin->file = purpose == PinPurpose::Remove ? OpenToRemove(pin->ownPath)
                                            : OpenToKeep(pin->ownPath, FILE_SHARE_READ);
  // The second name of a file that is pinned for its removal must share that, and only that one.
  const bool isShared = pin->file == nullptr && purpose == PinPurpose::Keep &&
                        ::GetLastError() == ERROR_SHARING_VIOLATION;
  if (isShared) pin->file = OpenToKeep(pin->ownPath, FILE_SHARE_READ | FILE_SHARE_DELETE);
  if (pin->file == nullptr) return Fail(::GetLastError(), INVALID_HANDLE);
  ::BY_HANDLE_FILE_INFORMATION told{};
  if (::GetFileInformationByHandle(pin->file, &told) == FALSE)
    return Fail(::GetLastError(), INVALID_HANDLE);
  if (!IsPlainFile(told.dwFileAttributes, pin->file))
    return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE);
  if (const std::uint32_t code = StateOf(pin->file, pin->state)) return Fail(code, INVALID_HANDLE);
  const bool isOurs = std::ranges::any_of(mPins, [&](const auto& entry) {
    const Pinned& other = *entry.second;
    return other.purpose == PinPurpose::Remove && other.state.IsSameFileAs(pin->state);
  });
  if (isShared && !isOurs) return Fail(ERROR_SHARING_VIOLATION, INVALID_HANDLE);
  pin->state.hasTrustedNumbers = HasTrustedNumbers(pin->ownPath);
  state = pin->state;
  // A number of its own: the system gives that of a closed handle to the next one.
  const HANDLE handle{++mLastPin};
  mPins[handle] = std::move(pin);
  return handle;
}

bool Win32Pinning::DoCheck(HANDLE handle) {
  const Pinned* const pin = Find(handle);
  if (pin == nullptr) return false;
  FileState held;
  if (const std::uint32_t code = StateOf(pin->file, held)) return Fail(code, false);
  FileState there;
  const std::uint32_t code = LookAtPath(pin->presentPath, there);
  if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND)
    return Fail(ERROR_FILE_INVALID, false);
  if (code != ERROR_SUCCESS) return Fail(code, false);
  const bool isIt = IsUnchanged(held, pin->state) && there.IsSameFileAs(held);
  return isIt || Fail(ERROR_FILE_INVALID, false);
}

bool Win32Pinning::DoReachAnew(HANDLE handle) {
  return DoCheck(handle);
}

std::uint32_t Win32Pinning::DoReadAt(HANDLE handle, std::int64_t position,
                                     std::span<std::byte> buffer, std::uint32_t& done) {
  done = 0;
  const Pinned* const pin = Find(handle);
  if (pin == nullptr || pin->file == nullptr) return ERROR_INVALID_HANDLE;
  OVERLAPPED place{};
  const auto bits = static_cast<std::uint64_t>(position);
  place.Offset = static_cast<DWORD>(bits);
  place.OffsetHigh = static_cast<DWORD>(bits >> 32U);
  const auto most =
      static_cast<DWORD>(std::min<std::size_t>(buffer.size(), std::numeric_limits<DWORD>::max()));
  DWORD count = 0;
  if (::ReadFile(pin->file, buffer.data(), most, &count, &place) == FALSE) {
    const std::uint32_t code = ::GetLastError();
    return code == ERROR_HANDLE_EOF ? ERROR_SUCCESS : code;
  }
  done = count;
  return ERROR_SUCCESS;
}

// A file that cannot be opened for writing cannot be flushed either; nothing is known of it then.
bool Win32Pinning::DoFlush(HANDLE handle) {
  const Pinned* const pin = Find(handle);
  if (pin == nullptr) return false;
  if (::FlushFileBuffers(pin->file) != FALSE) return true;
  const std::uint32_t code = ::GetLastError();
  return code == ERROR_ACCESS_DENIED || Fail(code, false);
}

bool Win32Pinning::RenameTo(Pinned& pin, const std::wstring& newPath) {
  if (pin.file == nullptr) return Fail(ERROR_INVALID_HANDLE, false);
  if (pin.presentPath == newPath) return true;
  if (const std::uint32_t code = RenameThrough(pin.file, newPath)) return Fail(code, false);
  pin.presentPath = newPath;
  return true;
}

bool Win32Pinning::DoTakeAside(HANDLE handle) {
  Pinned* const pin = Find(handle);
  return pin != nullptr && DoCheck(handle) && RenameTo(*pin, pin->asidePath);
}

bool Win32Pinning::DoPutBack(HANDLE handle) {
  Pinned* const pin = Find(handle);
  return pin != nullptr && RenameTo(*pin, pin->ownPath);
}

bool Win32Pinning::DoDelete(HANDLE handle) {
  Pinned* const pin = Find(handle);
  if (pin == nullptr || !DoCheck(handle)) return false;
  if (const std::uint32_t code = DeleteThrough(pin->file)) return Fail(code, false);
  // The name goes when the last handle is closed, and this one has done its work.
  ::CloseHandle(pin->file);
  pin->file = nullptr;
  FileState left;
  const bool isLeft =
      LookAtPath(pin->presentPath, left) == ERROR_SUCCESS && left.IsSameFileAs(pin->state);
  pin->isGone = !isLeft;
  return !isLeft || Fail(ERROR_SHARING_VIOLATION, false);
}

bool Win32Pinning::DoMoveTo(HANDLE handle, TextView newPath, PinnedMove way) {
  Pinned* const pin = Find(handle);
  if (pin == nullptr || !DoCheck(handle)) return false;
  const win32::PathArgument target(newPath);
  if (const std::uint32_t code = target.Refusal()) return Fail(code, false);
  if (way == PinnedMove::Rename) return RenameTo(*pin, target.Get());
  if (const std::uint32_t code = win32::CopyForMove(pin->file, pin->presentPath, target.Get()))
    return Fail(code, false);
  FileState copy;
  const bool isKnown = LookAtPath(target.Get(), copy) == ERROR_SUCCESS;
  if (DoDelete(handle)) return true;
  const std::uint32_t code = mCalls.lastError;
  // The copy is taken back, while it is that copy and the original is there.
  FileState now;
  const bool isCopy =
      isKnown && LookAtPath(target.Get(), now) == ERROR_SUCCESS && now.IsSameFileAs(copy);
  FileState original;
  const bool isThere =
      LookAtPath(pin->presentPath, original) == ERROR_SUCCESS && original.IsSameFileAs(pin->state);
  if (isCopy && isThere) ::SetFileAttributesW(target.Get(), FILE_ATTRIBUTE_NORMAL);
  if (!isCopy || !isThere || ::DeleteFileW(target.Get()) == FALSE) pin->leftPath = target.Get();
  return Fail(code, false);
}

bool Win32Pinning::DoRecycle(HANDLE handle) {
  Pinned* const pin = Find(handle);
  if (pin == nullptr || !DoCheck(handle)) return false;
  const Text path = win32::PlainPath(pin->presentPath);
  if (const std::uint32_t code = win32::WhyNotRecycled(path))
    return Fail(SystemCodeOfShellCode(static_cast<std::int32_t>(code)), false);
  std::wstring from = win32::Wide(path);
  from.append(2, L'\0');
  ::SHFILEOPSTRUCTW call{};
  call.wFunc = FO_DELETE;
  call.pFrom = from.c_str();
  call.fFlags = FOF_ALLOWUNDO | FOF_NOERRORUI | FOF_NOCONFIRMATION | FOF_SILENT;
  const std::int32_t code = ::SHFileOperationW(&call);
  if (code != 0) return Fail(SystemCodeOfShellCode(code), false);
  if (call.fAnyOperationsAborted != FALSE) return Fail(ERROR_OPERATION_ABORTED, false);
  FileState left;
  const bool isLeft =
      LookAtPath(pin->presentPath, left) == ERROR_SUCCESS && left.IsSameFileAs(pin->state);
  pin->isGone = !isLeft;
  return !isLeft || Fail(ERROR_ACCESS_DENIED, false);
}

bool Win32Pinning::DoUnpin(HANDLE handle) {
  return mPins.erase(handle) > 0 || Fail(ERROR_INVALID_HANDLE, false);
}

Text Win32Pinning::DoWhereLeft(HANDLE handle) const {
  const auto found = mPins.find(handle);
  if (found == mPins.end()) return {};
  const Pinned& pin = *found->second;
  if (!pin.leftPath.empty()) return win32::PlainPath(pin.leftPath);
  const bool isLeft = !pin.isGone && pin.presentPath == pin.asidePath;
  return isLeft ? win32::PlainPath(pin.presentPath) : Text();
}

bool Win32Pinning::DoHasBin(TextView path) {
  return End(win32::WhyNoBin(path));
}

}  // namespace quillmarsh
