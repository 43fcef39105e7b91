// SPDX-License-Identifier: MIT
// The face of the checksum library, a loadable module of its own. Plain C types only, so that no
// memory, exception or class crosses the border. The module opens no file by itself: the program
// lends it callbacks, once, before the first checksum. One checksum runs at a time.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#define PB_EXPORT extern "C" __declspec(dllexport)
#else
#define PB_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// A narrow text, not ended by a zero. The bytes belong to the caller; whoever fills it writes at
// most `capacity` of them.
struct PB_NarrowText {
  char* bytes;
  std::uint32_t length;
  std::uint32_t capacity;
};

// A file as the program opened it.
struct PB_OpenedFile {
  void* file;                        // the program's own
  std::int64_t size;                 // bytes
  std::int32_t mayReadOnTwoThreads;  // whether Read may be called by two threads at once
};

// What the program lends. Codes are system error numbers, 0 for success.
struct PB_Callbacks {
  std::uint32_t structSize;  // of this structure, so that a stranger's is refused
  void* context;             // handed to each of them
  std::int32_t (*Open)(void* context, const char* path, std::uint32_t pathLength,
                       PB_OpenedFile* opened);
  // `done` below `length` is the end of the file.
  std::int32_t (*Read)(void* context, void* file, std::int64_t position, void* buffer,
                       std::uint32_t length, std::uint32_t* done);
  void (*Close)(void* context, void* file);
  // Only on the thread that asked for the checksum: what a person may read of its progress.
  void (*ShowProgress)(void* context, const char* text, std::uint32_t length);
  // Only on that thread, at least every 50 milliseconds: lets events run. 0 asks to give up.
  std::int32_t (*PumpAndKeepGoing)(void* context);
};

// Codes of the module's own, beside those of the callbacks.
constexpr std::int32_t PB_ERROR_NO_CALLBACKS = 50;    // not supported
constexpr std::int32_t PB_ERROR_OUT_OF_MEMORY = 8;    // not enough memory
constexpr std::int32_t PB_ERROR_FILE_CHANGED = 1006;  // the opened file is no longer valid
constexpr std::int32_t PB_ERROR_GIVEN_UP = 995;       // PumpAndKeepGoing asked for it

// The standard CRC-32 of a file's contents as a signed number. `errorCode` is 0 if and only if that
// value is good; every value, -1 among them, may be one. `errorText` is filled where the module
// knows better than the code what happened, and left as it was otherwise.
PB_EXPORT std::int32_t PB_GetFileCrc32(PB_NarrowText& path, std::int32_t& errorCode,
                                       PB_NarrowText& errorText);

// Takes a copy; null takes the callbacks back. Answers 1, or 0 when the structure is not the one
// that this module was built for.
PB_EXPORT std::int32_t PB_SetCallbacks(const PB_Callbacks* callbacks);

// The same as types, for whoever looks the two up by name.
using PB_GetFileCrc32_Function = std::int32_t (*)(PB_NarrowText&, std::int32_t&, PB_NarrowText&);
using PB_SetCallbacks_Function = std::int32_t (*)(const PB_Callbacks*);
