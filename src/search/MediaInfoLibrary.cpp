// SPDX-License-Identifier: MIT
// Loading, and the border between the library's characters and the program's.
#include "search/MediaInfoLibrary.h"

#include <cwchar>
#include <utility>

#include "platform/Machine.h"

namespace quillmarsh {

namespace {

constexpr TextView kLibrary = u"MediaInfo";
constexpr std::int32_t kLibraryVersion = 0;
constexpr int kGeneralStream = 0;
constexpr int kTextOfParameter = 1;
constexpr int kByName = 0;
constexpr bool kIsUtf16 = sizeof(wchar_t) == sizeof(char16_t);
constexpr char32_t kReplacement = 0xFFFD;

bool IsHighHalf(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowHalf(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

[[maybe_unused]] void Append(char32_t character, Text& text) {
  if (character > 0x10FFFF) character = kReplacement;
  if (character < 0x10000) {
    text += static_cast<char16_t>(character);
    return;
  }
  character -= 0x10000;
  text += static_cast<char16_t>(0xD800 + (character >> 10U));
  text += static_cast<char16_t>(0xDC00 + (character & 0x3FFU));
}

template <typename Function>
bool Take(HANDLE module, const char* name, Function& function) {
  function = reinterpret_cast<Function>(TheMachine().Process().GetProcAddress(module, name));
  return function != nullptr;
}

}  // namespace

Text MediaInfoLibraryName() {
  return TheMachine().Process().LibraryFileName(kLibrary, kLibraryVersion);
}

std::shared_ptr<const MediaInfoFunctions> LoadMediaInfo(TextView fileName) {
  Modules& process = TheMachine().Process();
  HANDLE module = process.GetModuleHandleW(fileName);
  if (module == NULL_HANDLE) module = process.LoadLibraryExW(fileName);
  if (module == NULL_HANDLE) return nullptr;
  const auto all = std::make_shared<MediaInfoFunctions>();
  const bool isWhole =
      Take(module, "MediaInfo_New", all->New) &&
      Take(module, "MediaInfo_Open_Buffer_Init", all->Open_Buffer_Init) &&
      Take(module, "MediaInfo_Open_Buffer_Continue", all->Open_Buffer_Continue) &&
      Take(module, "MediaInfo_Open_Buffer_Continue_GoTo_Get", all->Open_Buffer_Continue_GoTo_Get) &&
      Take(module, "MediaInfo_Open_Buffer_Finalize", all->Open_Buffer_Finalize) &&
      Take(module, "MediaInfo_Get", all->Get) && Take(module, "MediaInfo_Option", all->Option) &&
      Take(module, "MediaInfo_Inform", all->Inform) &&
      Take(module, "MediaInfo_Close", all->Close) && Take(module, "MediaInfo_Delete", all->Delete);
  return isWhole ? all : nullptr;
}

MediaInfoHandle::MediaInfoHandle(std::shared_ptr<const MediaInfoFunctions> functions)
    : mFunctions(std::move(functions)), mHandle(mFunctions->New()) {}

MediaInfoHandle::~MediaInfoHandle() {
  if (mHandle == nullptr) return;
  mFunctions->Close(mHandle);
  mFunctions->Delete(mHandle);
}

Text MediaInfo_GetField(const MediaInfoHandle& handle, TextView parameter) {
  return PointerToString(handle.Functions().Get(
      handle.Get(), kGeneralStream, 0, WideText(parameter).c_str(), kTextOfParameter, kByName));
}

Text MediaInfo_GetSummary(const MediaInfoHandle& handle) {
  handle.Functions().Option(handle.Get(), L"Complete", L"");
  return PointerToString(handle.Functions().Inform(handle.Get(), 0));
}

Text PointerToString(const wchar_t* pointer) {
  Text text;
  const std::size_t length = pointer != nullptr ? std::wcslen(pointer) : 0;
  text.reserve(length);
  for (std::size_t index = 0; index < length; ++index) {
    if constexpr (kIsUtf16)
      text += static_cast<char16_t>(pointer[index]);
    else
      Append(static_cast<char32_t>(pointer[index]), text);
  }
  return text;
}

std::wstring WideText(TextView text) {
  std::wstring wide;
  for (std::size_t index = 0; index < text.size(); ++index) {
    char32_t character = text[index];
    if (!kIsUtf16 && IsHighHalf(character) && index + 1 < text.size() &&
        IsLowHalf(text[index + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10U) + (text[++index] - 0xDC00U);
    } else if (!kIsUtf16 && (IsHighHalf(character) || IsLowHalf(character))) {
      character = kReplacement;
    }
    wide += static_cast<wchar_t>(character);
  }
  return wide;
}

}  // namespace quillmarsh
