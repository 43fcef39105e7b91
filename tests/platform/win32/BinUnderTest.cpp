// SPDX-License-Identifier: MIT
// The bin is a folder of the shell, whose entries have their former name as their name and their
// former folder as a detail. Where they lie now, the name for parsing says. Wine gives no path
// there: its bin is the trash of the desktop below it, each file of which has a note beside it.
#include "platform/win32/BinUnderTest.h"

#include <vector>

#include "platform/win32/Win32Calls.h"
#include "platform/win32/WineUnderTest.h"

#include <objbase.h>
#include <shlobj.h>
#include <shlwapi.h>

namespace quillmarsh {

namespace {

constexpr UINT kFormerFolder = 1;  // the column of it
constexpr SHCONTF kAllItems = SHCONTF_FOLDERS | SHCONTF_NONFOLDERS | SHCONTF_INCLUDEHIDDEN;

struct BinEntry {
  std::wstring formerFolder;
  std::wstring formerName;
  std::wstring path;  // where the file lies now
  std::wstring note;  // what the shell keeps beside it
};

template <typename Interface>
class Owned {
 public:
  Owned() = default;
  ~Owned() {
    if (mPointer != nullptr) mPointer->Release();
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Interface** Place() { return &mPointer; }
  Interface& operator*() { return *mPointer; }
  Interface* operator->() { return mPointer; }

 private:
  Interface* mPointer = nullptr;
};

std::string BytesOf(const std::wstring& path) {
  const win32::OwnedHandle file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                              OPEN_EXISTING, 0, nullptr));
  std::string bytes(10'000, '\0');
  DWORD done = 0;
  if (::ReadFile(file.Get(), bytes.data(), 10'000, &done, nullptr) == FALSE) return "(unreadable)";
  return bytes.substr(0, done);
}

std::wstring TextOf(STRRET& text, PCUITEMID_CHILD item) {
  wchar_t buffer[MAX_PATH] = {};
  return SUCCEEDED(::StrRetToBufW(&text, item, buffer, MAX_PATH)) ? buffer : L"";
}

std::wstring NameOf(IShellFolder2& bin, PCUITEMID_CHILD item, SHGDNF form) {
  STRRET text{};
  return SUCCEEDED(bin.GetDisplayNameOf(item, form, &text)) ? TextOf(text, item) : L"";
}

std::wstring Variable(const wchar_t* name) {
  wchar_t value[MAX_PATH] = {};
  return ::GetEnvironmentVariableW(name, value, MAX_PATH) < MAX_PATH ? value : L"";
}

// By the public rules for the desktop's trash; names that need no encoding only.
void FindBelowWine(BinEntry& entry) {
  const std::wstring data = Variable(L"XDG_DATA_HOME");
  const std::wstring home = Variable(L"WINEHOMEDIR").substr(4);  // behind "\\??\\"
  const std::wstring trash = data.empty() ? L"\\\\?\\" + home + L"\\.local\\share\\Trash"
                                          : L"\\\\?\\unix" + data + L"/Trash";
  const std::string wanted =
      "\nPath=" + PathBelowWine(entry.formerFolder + L"\\" + entry.formerName) + "\n";
  ::WIN32_FIND_DATAW found;
  const ::HANDLE search = ::FindFirstFileW((trash + L"\\info\\*").c_str(), &found);
  if (win32::FromSystem(search) == INVALID_HANDLE) return;
  do {
    const std::wstring note = trash + L"\\info\\" + found.cFileName;
    if (BytesOf(note).find(wanted) == std::string::npos) continue;
    const std::wstring name = found.cFileName;
    entry.note = note;
    entry.path = trash + L"\\files\\" + name.substr(0, name.rfind(L'.'));
  } while (::FindNextFileW(search, &found) != FALSE);
  ::FindClose(search);
}

// "$R..." has its note in "$I...".
void FindBeside(BinEntry& entry, const std::wstring& nameForParsing) {
  entry.path = nameForParsing;
  entry.note = nameForParsing;
  const std::size_t name = entry.note.rfind(L"\\$R");
  if (name == std::wstring::npos) return entry.note.clear();
  entry.note[name + 2] = L'I';
}

std::vector<BinEntry> EntriesOfBin() {
  std::vector<BinEntry> entries;
  Owned<IShellFolder> desktop;
  Owned<IShellFolder2> bin;
  Owned<IEnumIDList> items;
  PIDLIST_ABSOLUTE place = nullptr;
  if (FAILED(::SHGetDesktopFolder(desktop.Place())) ||
      FAILED(::SHGetSpecialFolderLocation(nullptr, CSIDL_BITBUCKET, &place)))
    return entries;
  const bool isOpen = SUCCEEDED(desktop->BindToObject(place, nullptr, IID_IShellFolder2,
                                                      reinterpret_cast<void**>(bin.Place())));
  ::CoTaskMemFree(place);
  if (!isOpen || bin->EnumObjects(nullptr, kAllItems, items.Place()) != S_OK) return entries;
  PITEMID_CHILD item = nullptr;
  for (; items->Next(1, &item, nullptr) == S_OK; ::CoTaskMemFree(item)) {
    SHELLDETAILS folder{};
    if (FAILED(bin->GetDetailsOf(item, kFormerFolder, &folder))) continue;
    BinEntry entry{TextOf(folder.str, item), NameOf(*bin, item, SHGDN_INFOLDER), {}, {}};
    if (RunsOnWine())
      FindBelowWine(entry);
    else
      FindBeside(entry, NameOf(*bin, item, SHGDN_FORPARSING));
    entries.push_back(std::move(entry));
  }
  return entries;
}

}  // namespace

std::optional<std::string> BytesInBin(const Text& path) {
  for (const BinEntry& entry : EntriesOfBin())
    if (entry.formerFolder + L"\\" + entry.formerName == win32::Wide(path))
      return BytesOf(entry.path);
  return {};
}

void EmptyBinOf(const Text& folder) {
  for (const BinEntry& entry : EntriesOfBin()) {
    if (entry.formerFolder != win32::Wide(folder)) continue;
    ::SetFileAttributesW(entry.path.c_str(), FILE_ATTRIBUTE_NORMAL);
    ::DeleteFileW(entry.path.c_str());
    ::DeleteFileW(entry.note.c_str());
  }
}

}  // namespace quillmarsh
