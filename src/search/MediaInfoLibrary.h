// SPDX-License-Identifier: MIT
// The open-source library MediaInfo, loaded at its first use and never needed before: its
// functions, and one file that it is being told of. Its wide characters are of two bytes on Windows
// and of four elsewhere; what it hands out is its own and is copied at once. It is handed the bytes
// of a file and never a path, so that it opens nothing by itself: on Linux it would go by the C
// locale, which cannot name every file, and it would wait for whoever writes to a FIFO.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/Text.h"

namespace quillmarsh {

// The exports, under the library's names without "MediaInfo_".
struct MediaInfoFunctions {
  void* (*New)() = nullptr;
  std::size_t (*Open_Buffer_Init)(void*, std::uint64_t size, std::uint64_t position) = nullptr;
  std::size_t (*Open_Buffer_Continue)(void*, const std::uint8_t* bytes,
                                      std::size_t count) = nullptr;
  std::uint64_t (*Open_Buffer_Continue_GoTo_Get)(void*) = nullptr;
  std::size_t (*Open_Buffer_Finalize)(void*) = nullptr;
  const wchar_t* (*Get)(void*, int streamKind, std::size_t streamNumber, const wchar_t* parameter,
                        int kindOfInfo, int kindOfSearch) = nullptr;
  const wchar_t* (*Option)(void*, const wchar_t* option, const wchar_t* value) = nullptr;
  const wchar_t* (*Inform)(void*, std::size_t reserved) = nullptr;
  void (*Close)(void*) = nullptr;
  void (*Delete)(void*) = nullptr;
};

// The library's file name on this machine.
[[nodiscard]] Text MediaInfoLibraryName();

// None where the library is not there or lacks one of the functions. It stays loaded.
[[nodiscard]] std::shared_ptr<const MediaInfoFunctions> LoadMediaInfo(TextView fileName);

// One file inside the library, from MediaInfo_New to MediaInfo_Delete. One thread at a time.
class MediaInfoHandle {
 public:
  explicit MediaInfoHandle(std::shared_ptr<const MediaInfoFunctions> functions);
  ~MediaInfoHandle();
  MediaInfoHandle(const MediaInfoHandle&) = delete;
  MediaInfoHandle& operator=(const MediaInfoHandle&) = delete;

  [[nodiscard]] const MediaInfoFunctions& Functions() const { return *mFunctions; }
  // Null where the library could not make one.
  [[nodiscard]] void* Get() const { return mHandle; }

 private:
  const std::shared_ptr<const MediaInfoFunctions> mFunctions;
  void* const mHandle;
};

// A text parameter of the general stream; empty for one that is not known.
[[nodiscard]] Text MediaInfo_GetField(const MediaInfoHandle& handle, TextView parameter);
// The report as the library words it.
[[nodiscard]] Text MediaInfo_GetSummary(const MediaInfoHandle& handle);

// A copy of wide characters up to their NUL; empty for a null pointer.
[[nodiscard]] Text PointerToString(const wchar_t* pointer);
// The contrary way.
[[nodiscard]] std::wstring WideText(TextView text);

}  // namespace quillmarsh
