// SPDX-License-Identifier: MIT
// One writer for each form of output.
#include "console/ResultsWriters.h"

#include <memory>

#include "base/LocaleFormat.h"
#include "console/OutputTexts.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "platform/Machine.h"
#include "selection/MarkedFiles.h"

namespace quillmarsh {

namespace {

// A group may have a million members, and a stop is not to wait for them.
bool IsStopped() {
  DoEvents_Fast();
  return gUserAbort;
}

std::string IsoTime(Date date) {
  static const LocaleFacts plain;
  if (!date.IsValid()) return {};
  Text text = FormatDate(date, u"yyyy-mm-dd", plain) + u"T" + FormatDate(date, u"hh:nn:ss", plain);
  return ToUtf8(text);
}

class Writer {
 public:
  Writer(const cSearchResults& results, std::int32_t filesSearched, ByteOutput& output)
      : mResults(results), mFilesSearched(filesSearched), mOutput(output) {}
  virtual ~Writer() = default;
  virtual void Begin() {}
  virtual void WriteGroup(std::int32_t group) = 0;
  virtual void End() {}

 protected:
  const cSearchResults& mResults;
  std::int32_t mFilesSearched;
  ByteOutput& mOutput;
};

class TextWriter final : public Writer {
 public:
  TextWriter(const cSearchResults& results, std::int32_t filesSearched, ByteOutput& output,
             const WriteOptions& options)
      : Writer(results, filesSearched, output), mOptions(options) {}

  void WriteGroup(std::int32_t group) override {
    const auto row = static_cast<std::size_t>(group) - 1;
    mOutput.Write(std::to_string(mResults.mGroupFileCount[row]) + " files, " +
                  ToUtf8(FormatByteSize(mResults.mGroupTotalSize[row])) + " in all" +
                  (mOptions.showsMarks && IsWhollyMarked(mResults, group)
                       ? " - every file is selected, no copy would stay\n"
                       : "\n"));
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (IsStopped()) return;
      const Text path = mResults.FullPathOf(mResults.Record(member));
      const char* const box =
          !mOptions.showsMarks ? "  " : (IsMarked(mResults, member) ? "  [x] " : "  [ ] ");
      mOutput.Write(box + ToUtf8(TheMachine().Drives().ShownPath(path)) + "\n");
    }
    mOutput.Write("\n");
  }

  void End() override {
    if (!mOptions.withSummary) return;
    const LocaleFacts& locale = GetLocaleFacts();
    const auto number = [&locale](std::int64_t count) {
      return ToUtf8(FormatGrouped(count, locale));
    };
    if (mResults.mGroupCount == 0) {
      mOutput.Write("No duplicates found. Files searched: " + number(mFilesSearched) + "\n");
      return;
    }
    mOutput.Write("Files searched: " + number(mFilesSearched) + "; duplicates: " +
                  number(mResults.mDupeFileCount) + " in " + number(mResults.mGroupCount) +
                  (mResults.mGroupCount == 1 ? " group, " : " groups, ") +
                  ToUtf8(FormatByteSize(mResults.mDupeTotalSize)) + "\n");
    if (!mOptions.showsMarks) return;
    const MarkedTotal marked = GetTotalMarkedCountAndSize(mResults);
    mOutput.Write("Selected: " + number(marked.count) + ", " + ToUtf8(FormatByteSize(marked.size)) +
                  "\n");
  }

 private:
  const WriteOptions mOptions;
};

class JsonWriter final : public Writer {
 public:
  using Writer::Writer;

  void Begin() override {
    mOutput.Write("{\"filesSearched\":" + std::to_string(mFilesSearched) +
                  ",\"duplicates\":" + std::to_string(mResults.mDupeFileCount) +
                  ",\"groups\":" + std::to_string(mResults.mGroupCount) + ",\"totalSize\":" +
                  std::to_string(mResults.mDupeTotalSize.ToInteger()) + ",\"groupList\":[");
  }

  void WriteGroup(std::int32_t group) override {
    const auto row = static_cast<std::size_t>(group) - 1;
    mOutput.Write(group == 1 ? "\n" : ",\n");
    mOutput.Write("{\"key\":" + JsonText(ToUtf8(mResults.KeyTextOf(group))) + ",\"totalSize\":" +
                  std::to_string(mResults.mGroupTotalSize[row].ToInteger()) + ",\"files\":[");
    bool isFirst = true;
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (IsStopped()) return;
      mOutput.Write(isFirst ? "\n " : ",\n ");
      isFirst = false;
      WriteFile(member);
    }
    mOutput.Write("]}");
  }

  void End() override { mOutput.Write("]}\n"); }

 private:
  void WriteFile(std::int32_t member) {
    const DupeFileUDT& record = mResults.Record(member);
    const std::string path = NativeOrShownPath(mResults.FullPathOf(record));
    std::string text = "{" + JsonPath("path", path);
    text += ",\"size\":" + std::to_string(record.Size.ToInteger()) + ",\"created\":\"" +
            IsoTime(record.CreatedDate) + "\",\"modified\":\"" + IsoTime(record.LastModifiedDate) +
            "\",\"attributes\":" + std::to_string(record.Attributes) +
            ",\"marked\":" + (IsMarked(mResults, member) ? "true" : "false") + "}";
    mOutput.Write(text);
  }
};

class CsvWriter final : public Writer {
 public:
  using Writer::Writer;

  void Begin() override { mOutput.Write("group,size,created,modified,attributes,marked,path\r\n"); }

  void WriteGroup(std::int32_t group) override {
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (IsStopped()) return;
      const DupeFileUDT& record = mResults.Record(member);
      mOutput.Write(std::to_string(group) + "," + std::to_string(record.Size.ToInteger()) + "," +
                    IsoTime(record.CreatedDate) + "," + IsoTime(record.LastModifiedDate) + "," +
                    std::to_string(record.Attributes) + "," +
                    (IsMarked(mResults, member) ? "true" : "false") + "," +
                    CsvField(NativeOrShownPath(mResults.FullPathOf(record))) + "\r\n");
    }
  }
};

class NullWriter final : public Writer {
 public:
  NullWriter(const cSearchResults& results, std::int32_t filesSearched, ByteOutput& output,
             const WriteOptions& options)
      : Writer(results, filesSearched, output), mOptions(options) {}

  void WriteGroup(std::int32_t group) override {
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (IsStopped()) return;
      if (mOptions.showsMarks && !IsMarked(mResults, member)) continue;
      std::string path = NativeOrShownPath(mResults.FullPathOf(mResults.Record(member)));
      path += '\0';
      mOutput.Write(path);
    }
    mOutput.Write(std::string_view("\0", 1));
  }

 private:
  const WriteOptions mOptions;
};

std::unique_ptr<Writer> MakeWriter(const cSearchResults& results, std::int32_t filesSearched,
                                   const WriteOptions& options, ByteOutput& output) {
  switch (options.format) {
    case OutputFormat::Json:
      return std::make_unique<JsonWriter>(results, filesSearched, output);
    case OutputFormat::Csv:
      return std::make_unique<CsvWriter>(results, filesSearched, output);
    case OutputFormat::Null:
      return std::make_unique<NullWriter>(results, filesSearched, output, options);
    case OutputFormat::Plain:
      break;
  }
  return std::make_unique<TextWriter>(results, filesSearched, output, options);
}

}  // namespace

bool WriteResults(const cSearchResults& results, std::int32_t filesSearched,
                  const WriteOptions& options, ByteOutput& output) {
  const std::unique_ptr<Writer> writer = MakeWriter(results, filesSearched, options, output);
  writer->Begin();
  for (std::int32_t group = 1; group <= results.mGroupCount && !output.HasFailed(); ++group) {
    if (IsStopped()) return false;
    writer->WriteGroup(group);
  }
  if (gUserAbort) return false;
  writer->End();
  return true;
}

}  // namespace quillmarsh
