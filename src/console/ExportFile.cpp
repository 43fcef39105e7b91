// SPDX-License-Identifier: MIT
// Where the export goes, and which writer fills it.
#include "console/ExportFile.h"

#include "console/ResultsWriters.h"
#include "console/SearchRequest.h"
#include "console/StandardStreams.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"
#include "platform/AtomicFiles.h"
#include "platform/Machine.h"
#include "removal/DuplicatesExport.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

bool Refuse(const Text& path, std::uint32_t code) {
  PrintError("cannot write \"" + ToUtf8(TheMachine().Drives().ShownPath(path)) +
             "\": " + ReasonOf(code));
  return false;
}

// The code of the first failure is kept: what comes after it says less.
class FileOutput final : public ByteOutput {
 public:
  explicit FileOutput(const Text& path) : mFile(TheMachine(), ToLongPath(path)) {
    Check(mFile.Begin());
  }
  void Write(std::string_view bytes) override {
    mWaiting.append(bytes);
    constexpr std::size_t bufferBytes = std::size_t{1} << 16U;
    if (mWaiting.size() >= bufferBytes) Flush();
  }
  [[nodiscard]] bool HasFailed() const override { return mCode != 0; }
  // A code.
  [[nodiscard]] std::uint32_t PutInPlace() {
    Flush();
    if (mCode == 0) Check(mFile.PutInPlace());
    return mCode;
  }

 private:
  void Flush() {
    if (mCode == 0) Check(mFile.Write(mWaiting));
    mWaiting.clear();
  }
  void Check(bool isDone) {
    if (isDone) return;
    const std::uint32_t code = TheMachine().GetLastError();
    mCode = code != ERROR_SUCCESS ? code : ERROR_IO_DEVICE;
  }

  FileReplacement mFile;
  std::string mWaiting;
  std::uint32_t mCode = 0;
};

}  // namespace

bool ExportFile::Take(const std::string& native) {
  Machine& machine = TheMachine();
  const CanonicalLocation location = machine.Drives().NewLocationFromNative(native);
  if (location.error != 0) {
    PrintError("cannot write \"" + ShownArgument(native) + "\": " + ReasonOf(location.error));
    return false;
  }
  mPath = location.path;
  const std::uint32_t attributes = machine.Files().GetFileAttributesW(ToLongPath(mPath));
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    // A missing file is what is expected; a missing folder shows now and not after the search.
    const std::uint32_t code = machine.GetLastError();
    return code == ERROR_FILE_NOT_FOUND || Refuse(mPath, code);
  }
  const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return !isFolder || Refuse(mPath, ERROR_ACCESS_DENIED);
}

bool ExportFile::IsOneOf(const cSearchResults& results) const {
  const Text name = GetFileNameOf(mPath);
  for (std::int32_t record = 1; record <= results.RecordCount(); ++record) {
    const DupeFileUDT& file = results.Record(record);
    if (results.NameOf(file) == name && results.FullPathOf(file) == mPath) return true;
  }
  return false;
}

ExitCode ExportFile::Write(ConsoleSearch& search, OutputFormat format) const {
  if (IsOneOf(search.Results())) {
    PrintError("cannot write \"" + ToUtf8(TheMachine().Drives().ShownPath(mPath)) +
               "\": it is one of the files that were searched");
    return ExitCode::Refused;
  }
  if (format == OutputFormat::Plain) {
    const std::uint32_t code =
        WriteDuplicatesList(mPath, {search.Results(), *gDupeSettings, search.Locations()});
    if (code == 0 || Refuse(mPath, code)) return ExitCode::Done;
    return ExitCode::Refused;
  }
  FileOutput output(mPath);
  if (!WriteResults(search.Results(), search.FilesSearched(), {format}, output)) {
    PrintError("stopped; nothing was written");
    return ExitCode::Stopped;
  }
  const std::uint32_t code = output.PutInPlace();
  if (code == 0) return ExitCode::Done;
  static_cast<void>(Refuse(mPath, code));
  return ExitCode::Refused;
}

}  // namespace quillmarsh
