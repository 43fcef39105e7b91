// SPDX-License-Identifier: MIT
// Piece by piece, from where the library asks for the next one.
#include "search/MediaProperties.h"

#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/Handles.h"
#include "fsobjects/OpenFileFacts.h"
#include "fsobjects/modUnicode.h"
#include "platform/PatientWorker.h"
#include "search/MediaInfoLibrary.h"

namespace quillmarsh {

namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20U;
constexpr std::size_t kFinished = 8;  // the bit of the library's answer
constexpr std::uint64_t kGoOnHere = std::numeric_limits<std::uint64_t>::max();

// All that the helper touches; whoever is last to use it ends it.
struct MediaFile {
  explicit MediaFile(std::shared_ptr<const MediaInfoFunctions> functions)
      : handle(std::move(functions)) {}
  MediaInfoHandle handle;
  std::array<std::byte, kPieceBytes> piece;
  std::size_t answer = 0;
  std::uint64_t next = kGoOnHere;
  Text format;
  Text summary;
};

class MediaReading {
 public:
  MediaReading(std::shared_ptr<const MediaInfoFunctions> functions, TextView fileSpec)
      : mFunctions(std::move(functions)),
        mFileSpec(fileSpec),
        mHelper([] { return TheMachine().CurrentPatience(); }) {}

  MediaProperties Read() {
    MediaProperties properties;
    properties.outcome = Begin();
    if (properties.outcome == MediaOutcome::Read) properties.outcome = ReadFile();
    if (properties.outcome == MediaOutcome::Read) properties.outcome = Ask(properties.summary);
    // The library may take its time to let go, too.
    if (mFile != nullptr) static_cast<void>(mHelper.Run([file = std::exchange(mFile, nullptr)] {}));
    return properties;
  }

 private:
  // False when the wait for the library was given up.
  template <typename Job>
  bool Run(Job&& job) {
    return mHelper.Run([file = mFile, job = std::forward<Job>(job)] { job(*file); });
  }

  MediaOutcome Begin() {
    const auto made = std::make_shared<std::shared_ptr<MediaFile>>();
    if (!mHelper.Run(
            [made, functions = mFunctions] { *made = std::make_shared<MediaFile>(functions); }))
      return MediaOutcome::Stopped;
    mFile = *made;
    return mFile->handle.Get() != nullptr ? MediaOutcome::Read : MediaOutcome::NotOpened;
  }

  MediaOutcome ReadFile() {
    const RedirectionOff redirection;
    // What is no ordinary file is not opened, and one that others write to may be read.
    const FileHandle file(TheMachine().Files().CreateFileW(
        ToLongPath(mFileSpec), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN));
    const auto facts = file.IsValid() ? FactsOfOpenFile(file.Get()) : std::nullopt;
    if (!facts) return WhyNot();
    const auto size = static_cast<std::uint64_t>(facts->size);
    const std::wstring name = WideText(TheMachine().Drives().ShownPath(mFileSpec));
    const bool isBegun = Run([size, name](MediaFile& media) {
      const MediaInfoFunctions& functions = media.handle.Functions();
      functions.Option(media.handle.Get(), L"File_FileName", name.c_str());
      functions.Open_Buffer_Init(media.handle.Get(), size, 0);
    });
    if (!isBegun) return MediaOutcome::Stopped;
    const MediaOutcome outcome = ReadPieces(file.Get(), size);
    if (outcome != MediaOutcome::Read) return outcome;
    const bool isEnded = Run([](MediaFile& media) {
      media.handle.Functions().Open_Buffer_Finalize(media.handle.Get());
    });
    return isEnded ? MediaOutcome::Read : MediaOutcome::Stopped;
  }

  MediaOutcome ReadPieces(HANDLE file, std::uint64_t size) {
    for (std::uint64_t position = 0; position < size;) {
      DoEvents_Fast();
      if (gUserAbort) return MediaOutcome::Stopped;
      std::uint32_t done = 0;
      const std::uint32_t code = TheMachine().Files().ReadFileAt(
          file, static_cast<std::int64_t>(position), mFile->piece, done);
      if (code != ERROR_SUCCESS)
        return gUserAbort ? MediaOutcome::Stopped : MediaOutcome::NotOpened;
      if (done == 0) break;
      position += done;
      if (!Hand(done, size)) return MediaOutcome::Stopped;
      if ((mFile->answer & kFinished) != 0) break;
      if (mFile->next != kGoOnHere) position = mFile->next;
    }
    return MediaOutcome::Read;
  }

  // Hands the library the bytes that were read, and hears from where it wants more.
  bool Hand(std::size_t bytes, std::uint64_t size) {
    return Run([bytes, size](MediaFile& media) {
      const MediaInfoFunctions& functions = media.handle.Functions();
      void* const handle = media.handle.Get();
      media.answer = functions.Open_Buffer_Continue(
          handle, reinterpret_cast<const std::uint8_t*>(media.piece.data()), bytes);
      media.next = functions.Open_Buffer_Continue_GoTo_Get(handle);
      if ((media.answer & kFinished) == 0 && media.next < size)
        functions.Open_Buffer_Init(handle, size, media.next);
    });
  }

  MediaOutcome Ask(Text& summary) {
    const bool isAnswered = Run([](MediaFile& media) {
      media.format = MediaInfo_GetField(media.handle, u"Format");
      if (!media.format.empty()) media.summary = MediaInfo_GetSummary(media.handle);
    });
    if (!isAnswered) return MediaOutcome::Stopped;
    if (mFile->format.empty()) return MediaOutcome::NotMedia;
    summary = std::move(mFile->summary);
    return MediaOutcome::Read;
  }

  static MediaOutcome WhyNot() {
    const bool isGivenUp = TheMachine().GetLastError() == ERROR_OPERATION_ABORTED && gUserAbort;
    return isGivenUp ? MediaOutcome::Stopped : MediaOutcome::NotOpened;
  }

  const std::shared_ptr<const MediaInfoFunctions> mFunctions;
  const Text mFileSpec;
  PatientWorker mHelper;
  std::shared_ptr<MediaFile> mFile;
};

}  // namespace

MediaProperties ReadMediaProperties(TextView fileSpec, TextView libraryName) {
  std::shared_ptr<const MediaInfoFunctions> functions = LoadMediaInfo(libraryName);
  if (functions == nullptr) return {MediaOutcome::NoLibrary, {}};
  const StoppablePart stoppable;
  return MediaReading(std::move(functions), fileSpec).Read();
}

}  // namespace quillmarsh
