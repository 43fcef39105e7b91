// SPDX-License-Identifier: MIT
// The host's side of the border: the callbacks that the library is lent. No exception may cross it,
// so one out of an event that was pumped waits until the library has returned.
#include "fsobjects/ChecksumLibrary.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <optional>
#include <thread>

#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "fsobjects/Handles.h"
#include "fsobjects/OpenFileFacts.h"
#include "fsobjects/PrivateClipboard.h"
#include "fsobjects/modUnicode.h"
#include "pbcrc32/BlockPace.h"
#include "pbcrc32/pbcrc32.h"

namespace quillmarsh {

namespace {

constexpr TextView kModule = u"pbcrc32";
constexpr std::size_t kLongestErrorText = 1024;  // bytes

PB_GetFileCrc32_Function getFileCrc32 = nullptr;
std::exception_ptr pumpFailure;
std::thread::id askingThread;
// A checksum that is on the stack uses the library: whoever frees it from a pump waits for that.
int runningChecksums = 0;
bool isToBeFreed = false;

// The library passes the path through unread, so each character is its low byte, whatever the code
// page says of it.
std::string NarrowPath(TextView path) {
  std::string bytes(path.size(), '\0');
  std::ranges::transform(path, bytes.begin(),
                         [](char16_t unit) { return static_cast<char>(unit); });
  return bytes;
}
Text WidePath(const char* path, std::uint32_t length) {
  Text text(length, u'\0');
  std::transform(path, path + length, text.begin(),
                 [](char byte) { return static_cast<unsigned char>(byte); });
  return text;
}

std::int32_t LastErrorOr(std::uint32_t otherwise) {
  const std::uint32_t code = TheMachine().GetLastError();
  return static_cast<std::int32_t>(code != 0 ? code : otherwise);
}

// An exception out of an event that ran while the disk was waited for is kept. On the second thread
// nothing pumps, and what is raised there is a lack of memory.
std::int32_t Failed() {
  if (std::this_thread::get_id() == askingThread) pumpFailure = std::current_exception();
  return static_cast<std::int32_t>(ERROR_NOT_ENOUGH_MEMORY);
}

// A file that is open for the library. Of one that is read in several goes the facts are kept,
// since it may be written to meanwhile and have its old length in the end.
struct OpenForLibrary {
  explicit OpenForLibrary(HANDLE handle) : file(handle) {}
  FileHandle file;
  std::optional<OpenFileFacts> before;
};
bool isUnchanged = true;

std::int32_t Open(void*, const char* path, std::uint32_t length, PB_OpenedFile* opened) {
  try {
    const RedirectionOff redirection;
    FileInputOutput& files = TheMachine().Files();
    auto file = std::make_unique<OpenForLibrary>(
        files.CreateFileW(ToLongPath(WidePath(path, length)), GENERIC_READ, FILE_SHARE_READ,
                          OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN));
    if (!file->file.IsValid()) return LastErrorOr(ERROR_FILE_NOT_FOUND);
    const auto facts = FactsOfOpenFile(file->file.Get());
    if (!facts) return LastErrorOr(ERROR_IO_DEVICE);
    opened->size = facts->size;
    opened->mayReadOnTwoThreads = files.MayReadOnTwoThreads(file->file.Get()) ? 1 : 0;
    if (facts->size >= pbcrc32::BlockBytes) file->before = facts;
    opened->file = file.release();
    return 0;
  } catch (...) {
    return Failed();
  }
}

std::int32_t Read(void*, void* file, std::int64_t position, void* buffer, std::uint32_t length,
                  std::uint32_t* done) {
  try {
    const HANDLE handle = static_cast<OpenForLibrary*>(file)->file.Get();
    return static_cast<std::int32_t>(TheMachine().Files().ReadFileAt(
        handle, position, {static_cast<std::byte*>(buffer), length}, *done));
  } catch (...) {
    return Failed();
  }
}

void Close(void*, void* file) {
  const std::unique_ptr<OpenForLibrary> closing(static_cast<OpenForLibrary*>(file));
  try {
    // What cannot be told any more is not taken for unchanged.
    if (closing->before) isUnchanged = FactsOfOpenFile(closing->file.Get()) == closing->before;
  } catch (...) {
    static_cast<void>(Failed());
  }
}

void ShowProgress(void*, const char* text, std::uint32_t length) {
  try {
    PublishCRCProgressText({text, length});
  } catch (...) {  // no progress is shown then
  }
}

std::int32_t PumpAndKeepGoing(void*) {
  try {
    DoEvents_Fast();
  } catch (...) {
    pumpFailure = std::current_exception();
    return 0;
  }
  return gStopCRC ? 0 : 1;
}

constexpr PB_Callbacks kLent{sizeof(PB_Callbacks), nullptr,         Open, Read, Close,
                             ShowProgress,         PumpAndKeepGoing};

template <typename Function>
Function ExportOf(HANDLE module, const char* name) {
  return reinterpret_cast<Function>(TheMachine().Process().GetProcAddress(module, name));
}

[[noreturn]] void RaiseNotLoaded(TextView fileName) {
  throw RuntimeError(runtime_error::OwnConditions, u"modQuillmarsh.Main",
                     LoadResString(788) + u" - " + Text(fileName));
}

}  // namespace

void LoadChecksumLibrary() {
  Modules& process = TheMachine().Process();
  const Text fileName = process.ModuleFileName(kModule);
  const HANDLE module = process.LoadLibraryW(gAppPath + fileName);
  if (module == NULL_HANDLE) RaiseNotLoaded(fileName);
  getFileCrc32 = ExportOf<PB_GetFileCrc32_Function>(module, "PB_GetFileCrc32");
  const auto setCallbacks = ExportOf<PB_SetCallbacks_Function>(module, "PB_SetCallbacks");
  const bool isUsable =
      getFileCrc32 != nullptr && setCallbacks != nullptr && setCallbacks(&kLent) == 1;
  if (isUsable) return;
  FreeChecksumLibrary();
  RaiseNotLoaded(fileName);
}

void FreeChecksumLibrary() {
  if (runningChecksums > 0) {
    isToBeFreed = true;
    gStopCRC = true;
    return;
  }
  isToBeFreed = false;
  Modules& process = TheMachine().Process();
  getFileCrc32 = nullptr;
  const Text fileName = process.ModuleFileName(kModule);
  for (HANDLE module = process.GetModuleHandleW(fileName); module != NULL_HANDLE;
       module = process.GetModuleHandleW(fileName)) {
    const auto setCallbacks = ExportOf<PB_SetCallbacks_Function>(module, "PB_SetCallbacks");
    if (setCallbacks != nullptr) setCallbacks(nullptr);
    if (!process.FreeLibrary(module)) return;
  }
}

namespace {

class RunningChecksum {
 public:
  RunningChecksum() { ++runningChecksums; }
  ~RunningChecksum() {
    --runningChecksums;
    if (isToBeFreed) FreeChecksumLibrary();
  }
  RunningChecksum(const RunningChecksum&) = delete;
  RunningChecksum& operator=(const RunningChecksum&) = delete;
};

}  // namespace

LibraryChecksum AskLibraryForCRC32(TextView path) {
  if (getFileCrc32 == nullptr || isToBeFreed) throw RuntimeError(runtime_error::FileNotFound);
  std::string narrow = NarrowPath(path);
  PB_NarrowText pathText{narrow.data(), static_cast<std::uint32_t>(narrow.size()),
                         static_cast<std::uint32_t>(narrow.size())};
  std::array<char, kLongestErrorText> words;
  PB_NarrowText errorText{words.data(), 0, static_cast<std::uint32_t>(words.size())};
  LibraryChecksum answer;
  const RunningChecksum running;
  pumpFailure = nullptr;
  isUnchanged = true;
  askingThread = std::this_thread::get_id();
  answer.value = getFileCrc32(pathText, answer.errorNumber, errorText);
  if (pumpFailure) std::rethrow_exception(std::exchange(pumpFailure, nullptr));
  if (answer.errorNumber == 0 && !isUnchanged) answer.errorNumber = PB_ERROR_FILE_CHANGED;
  if (answer.errorNumber == 0) return answer;
  answer.errorText = errorText.length == 0
                         ? GetSystemErrorText(static_cast<std::uint32_t>(answer.errorNumber))
                         : FromCodePage1252({words.data(), errorText.length});
  return answer;
}

}  // namespace quillmarsh
