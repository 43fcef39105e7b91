// SPDX-License-Identifier: MIT
// The Windows machine over a temporary folder on the system's drive, which goes with it, also from
// the Recycle Bin. Where Wine stands in for Windows, a junction is a link of the system below it,
// which Wine shows as one.
#include <stdexcept>

#include "platform/MachineUnderTest.h"
#include "platform/win32/BinUnderTest.h"
#include "platform/win32/Win32Calls.h"
#include "platform/win32/Win32Machine.h"
#include "platform/win32/WineUnderTest.h"

#include <aclapi.h>
#include <winioctl.h>

namespace quillmarsh {

namespace {

using win32::ExactPath;
using win32::OwnedHandle;

void Require(bool succeeded, const char* what) {
  if (!succeeded)
    throw std::runtime_error(std::string(what) + ": error " + std::to_string(::GetLastError()));
}

bool IsMade(const Text& path) {
  return ::CreateDirectoryW(ExactPath(path).c_str(), nullptr) != FALSE ||
         ::GetLastError() == ERROR_ALREADY_EXISTS;
}

void MakeFolders(const Text& path) {
  if (IsMade(path)) return;
  const std::size_t end = path.rfind(u'\\');
  Require(::GetLastError() == ERROR_PATH_NOT_FOUND && end != Text::npos,
          "a folder could not be made");
  MakeFolders(path.substr(0, end));
  Require(IsMade(path), "a folder could not be made in another");
}

// With everything below; of a link the link.
void RemoveTree(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return;
  ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    Require(::DeleteFileW(path.c_str()) != FALSE, "a file could not be removed");
    return;
  }
  const bool isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  if (isLink && RunsOnWine()) return Require(RemoveLinkBelowWine(path), "a link stays");
  if (!isLink) {
    ::WIN32_FIND_DATAW entry;
    const ::HANDLE search = ::FindFirstFileW((path + L"\\*").c_str(), &entry);
    Require(win32::FromSystem(search) != INVALID_HANDLE, "a folder could not be listed");
    do {
      const std::wstring name = entry.cFileName;
      if (name != L"." && name != L"..") RemoveTree(path + L"\\" + name);
    } while (::FindNextFileW(search, &entry) != FALSE);
    ::FindClose(search);
  }
  Require(::RemoveDirectoryW(path.c_str()) != FALSE, "a folder could not be removed");
}

// Makes a junction out of an empty folder.
bool MakeJunction(const std::wstring& path, const std::wstring& target) {
  struct {
    DWORD tag;
    WORD dataBytes, reserved;
    WORD substituteOffset, substituteBytes, printOffset, printBytes;
    wchar_t names[1000];
  } data{};
  const std::wstring names = L"\\??\\" + target + L'\0' + target + L'\0';
  const auto bytes = [](std::size_t units) { return static_cast<WORD>(units * sizeof(wchar_t)); };
  if (names.size() > std::size(data.names)) return false;
  data.tag = IO_REPARSE_TAG_MOUNT_POINT;
  data.dataBytes = static_cast<WORD>(8 + bytes(names.size()));
  data.substituteBytes = bytes(target.size() + 4);
  data.printOffset = static_cast<WORD>(data.substituteBytes + sizeof(wchar_t));
  data.printBytes = bytes(target.size());
  names.copy(data.names, names.size());
  const OwnedHandle folder(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                         nullptr));
  DWORD ignored = 0;
  return folder.IsValid() &&
         ::DeviceIoControl(folder.Get(), FSCTL_SET_REPARSE_POINT, &data, data.dataBytes + 8U,
                           nullptr, 0, &ignored, nullptr) != FALSE;
}

// Refuses everybody everything, or lets everybody in again, also below; an owner always may.
bool SetEveryone(std::wstring path, ACCESS_MODE mode) {
  EXPLICIT_ACCESSW entry{};
  std::wstring everyone = L"EVERYONE";
  ::BuildExplicitAccessWithNameW(&entry, everyone.data(), FILE_ALL_ACCESS, mode,
                                 SUB_CONTAINERS_AND_OBJECTS_INHERIT);
  PACL list = nullptr;
  if (::SetEntriesInAclW(1, &entry, nullptr, &list) != ERROR_SUCCESS) return false;
  const DWORD code = ::SetNamedSecurityInfoW(
      path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
      nullptr, nullptr, list, nullptr);
  ::LocalFree(list);
  return code == ERROR_SUCCESS;
}

void LetIn(const std::wstring& path) {
  if (!SetEveryone(path, GRANT_ACCESS))
    Require(RunsOnWine() && LetInBelowWine(path), "nobody could be let in again");
}

// Found out by trying, since it depends on who one is, and on the system below Wine.
bool CanKeepOutFrom(const std::wstring& probe) {
  OwnedHandle(::CreateFileW(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  const bool isShut = SetEveryone(probe, DENY_ACCESS);
  OwnedHandle opened(
      ::CreateFileW(probe.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  const bool isOpen = opened.IsValid();
  opened.Close();
  LetIn(probe);
  return isShut && !isOpen;
}

Text NewFolder() {
  wchar_t temporary[MAX_PATH + 2] = {};
  wchar_t whole[MAX_PATH + 2] = {};
  ::GetTempPathW(MAX_PATH + 2, temporary);
  Require(::GetLongPathNameW(temporary, whole, MAX_PATH + 2) != 0, "there is no temporary folder");
  for (int i = 0;; ++i) {
    const Text folder = win32::Narrow(whole) + u"quillmarsh-ground-" +
                        DecimalText(::GetCurrentProcessId()) + u"-" + DecimalText(i);
    if (::CreateDirectoryW(ExactPath(folder).c_str(), nullptr) != FALSE) return folder;
    Require(::GetLastError() == ERROR_ALREADY_EXISTS, "no temporary folder could be made");
  }
}

class Win32UnderTest final : public MachineUnderTest {
 public:
  Win32UnderTest() : mFolder(NewFolder()) { MakeFolders(Base()); }
  ~Win32UnderTest() override {
    EmptyBinOf(Base());
    try {
      for (const std::wstring& path : mKeptOut) LetIn(path);
      // Wine does not show a link that leads nowhere, so they go before what they lead to.
      for (const std::wstring& path : mLinks) RemoveTree(path);
      RemoveTree(ExactPath(mFolder));
    } catch (const std::runtime_error&) {
      // What a failed test has left open stays.
    }
  }

  Machine& Get() override { return mMachine; }
  [[nodiscard]] Text Base() const override { return mFolder + u"\\ground"; }
  [[nodiscard]] std::string NativeOf(TextView relative) const override {
    return ToUtf8(PathOf(relative));
  }
  void MakeFolder(TextView relative) override { MakeFolders(PathOf(relative)); }
  void MakeFile(TextView relative, std::string_view bytes) override {
    const OwnedHandle file(NewFile(relative));
    DWORD done = 0;
    Require(::WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &done,
                        nullptr) != FALSE,
            "a file could not be written");
  }
  void MakeLongFile(TextView relative, std::uint64_t size) override {
    const OwnedHandle file(NewFile(relative));
    DWORD ignored = 0;
    ::DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &ignored, nullptr);
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    Require(::SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN) != FALSE &&
                ::SetEndOfFile(file.Get()) != FALSE,
            "a long file could not be made");
  }
  void MakeFolderLink(TextView relative, TextView targetRelative) override {
    const Text path = PathOf(relative);
    mLinks.push_back(ExactPath(path));
    MakeFolders(path);
    const std::wstring target = win32::Wide(PathOf(targetRelative));
    if (MakeJunction(ExactPath(path), target)) return;
    Require(::RemoveDirectoryW(ExactPath(path).c_str()) != FALSE && RunsOnWine(),
            "a junction could not be made");
    Require(MakeLinkBelowWine(target, win32::Wide(path)), "a link could not be made");
  }
  // A read-only file gets it too, for which Wine has to be helped.
  void SetWritten(TextView relative, std::int64_t utcTicks) override {
    const std::wstring path = ExactPath(PathOf(relative));
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    ::SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    const OwnedHandle file(::CreateFileW(
        path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    const ::FILETIME time = win32::ToSystem(FILETIME::FromTicks(utcTicks));
    Require(::SetFileTime(file.Get(), nullptr, nullptr, &time) != FALSE &&
                ::SetFileAttributesW(path.c_str(), attributes) != FALSE,
            "a write time could not be set");
  }
  void SetReadOnly(TextView relative, bool readOnly) override {
    const std::wstring path = ExactPath(PathOf(relative));
    const DWORD others = ::GetFileAttributesW(path.c_str()) & ~DWORD{FILE_ATTRIBUTE_READONLY};
    const DWORD bit = readOnly ? FILE_ATTRIBUTE_READONLY : 0;
    Require(::SetFileAttributesW(path.c_str(), others | bit) != FALSE,
            "a file could not be made read-only");
  }
  void Remove(TextView relative) override { RemoveTree(ExactPath(PathOf(relative))); }
  std::string RecycledBytes(TextView relative) override {
    return BytesInBin(PathOf(relative)).value_or("(none)");
  }

  [[nodiscard]] bool IsWine() const override { return RunsOnWine(); }
  [[nodiscard]] bool CanKeepOut() const override {
    static const bool can = CanKeepOutFrom(ExactPath(mFolder + u"\\probe"));
    return can;
  }
  void KeepOut(TextView relative) override {
    mKeptOut.push_back(ExactPath(PathOf(relative)));
    Require(SetEveryone(mKeptOut.back(), DENY_ACCESS), "nobody could be kept out");
  }

 private:
  [[nodiscard]] ::HANDLE NewFile(TextView relative) const {
    const Text path = PathOf(relative);
    MakeFolders(path.substr(0, path.rfind(u'\\')));
    const ::HANDLE file = ::CreateFileW(ExactPath(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                        CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    Require(win32::FromSystem(file) != INVALID_HANDLE, "a file could not be made");
    return file;
  }

  Text mFolder;
  Win32Machine mMachine;
  std::vector<std::wstring> mKeptOut;
  std::vector<std::wstring> mLinks;
};

}  // namespace

std::unique_ptr<MachineUnderTest> MakeWin32UnderTest() {
  return std::make_unique<Win32UnderTest>();
}

}  // namespace quillmarsh
