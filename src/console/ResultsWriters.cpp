// SPDX-License-Identifier: MIT
// One writer for each form of output.
#include "console/ResultsWriters.h"

#include <memory>
#include <nlohmann/json.hpp>

#include "base/LocaleFormat.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

using Json = nlohmann::json;

// Of a drive that has gone meanwhile there is only the path as the program knew it.
std::string NativePathOf(const cSearchResults& results, const DupeFileUDT& record) {
  const Text path = results.FullPathOf(record);
  std::string native = TheMachine().Drives().NativePath(path);
  return native.empty() ? ToUtf8(path) : native;
}

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

bool IsUtf8(std::string_view bytes) {
  // Every byte that is no UTF-8 turns into the replacement character, which differs from it.
  return ToUtf8(FromUtf8(bytes)) == bytes;
}

// A JSON text; bytes that are no UTF-8 become the replacement character.
std::string Quoted(const std::string& bytes) {
  return Json(bytes).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string Base64(std::string_view bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t triple = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      triple =
          (triple << 8U) | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      const bool isPadding = i + k > bytes.size();
      text += isPadding ? '=' : kDigits[(triple >> (18U - 6U * k)) & 63U];
    }
  }
  return text;
}

class Writer {
 public:
  Writer(const cSearchResults& results, std::int32_t filesSearched, StandardOutput& output)
      : mResults(results), mFilesSearched(filesSearched), mOutput(output) {}
  virtual ~Writer() = default;
  virtual void Begin() {}
  virtual void WriteGroup(std::int32_t group) = 0;
  virtual void End() {}

 protected:
  const cSearchResults& mResults;
  std::int32_t mFilesSearched;
  StandardOutput& mOutput;
};

class TextWriter final : public Writer {
 public:
  TextWriter(const cSearchResults& results, std::int32_t filesSearched, StandardOutput& output,
             bool withSummary)
      : Writer(results, filesSearched, output), mWithSummary(withSummary) {}

  void WriteGroup(std::int32_t group) override {
    const auto row = static_cast<std::size_t>(group) - 1;
    mOutput.Write(std::to_string(mResults.mGroupFileCount[row]) + " files, " +
                  ToUtf8(FormatByteSize(mResults.mGroupTotalSize[row])) + " in all\n");
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (IsStopped()) return;
      const Text path = mResults.FullPathOf(mResults.Record(member));
      mOutput.Write("  " + ToUtf8(TheMachine().Drives().ShownPath(path)) + "\n");
    }
    mOutput.Write("\n");
  }

  void End() override {
    if (!mWithSummary) return;
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
  }

 private:
  bool mWithSummary;
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
    mOutput.Write("{\"key\":" + Quoted(ToUtf8(mResults.KeyTextOf(group))) + ",\"totalSize\":" +
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
    const std::string path = NativePathOf(mResults, record);
    std::string text = "{\"path\":" + Quoted(path);
    if (!IsUtf8(path)) text += ",\"pathBytes\":\"" + Base64(path) + "\"";
    text += ",\"size\":" + std::to_string(record.Size.ToInteger()) + ",\"created\":\"" +
            IsoTime(record.CreatedDate) + "\",\"modified\":\"" + IsoTime(record.LastModifiedDate) +
            "\",\"attributes\":" + std::to_string(record.Attributes) + ",\"marked\":" +
            (mResults.mFileMarked[static_cast<std::size_t>(member) - 1] ? "true" : "false") + "}";
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
      mOutput.Write(
          std::to_string(group) + "," + std::to_string(record.Size.ToInteger()) + "," +
          IsoTime(record.CreatedDate) + "," + IsoTime(record.LastModifiedDate) + "," +
          std::to_string(record.Attributes) + "," +
          (mResults.mFileMarked[static_cast<std::size_t>(member) - 1] ? "true" : "false") + "," +
          Field(NativePathOf(mResults, record)) + "\r\n");
    }
  }

 private:
  static std::string Field(const std::string& bytes) {
    if (bytes.find_first_of(",\"\r\n") == std::string::npos) return bytes;
    std::string field = "\"";
    for (const char byte : bytes) {
      if (byte == '"') field += '"';
      field += byte;
    }
    return field + "\"";
  }
};

class NullWriter final : public Writer {
 public:
  using Writer::Writer;

  void WriteGroup(std::int32_t group) override {
    for (const std::int32_t member : mResults.MembersOf(group)) {
      if (IsStopped()) return;
      std::string path = NativePathOf(mResults, mResults.Record(member));
      path += '\0';
      mOutput.Write(path);
    }
    mOutput.Write(std::string_view("\0", 1));
  }
};

std::unique_ptr<Writer> MakeWriter(const cSearchResults& results, std::int32_t filesSearched,
                                   const WriteOptions& options, StandardOutput& output) {
  switch (options.format) {
    case OutputFormat::Json:
      return std::make_unique<JsonWriter>(results, filesSearched, output);
    case OutputFormat::Csv:
      return std::make_unique<CsvWriter>(results, filesSearched, output);
    case OutputFormat::Null:
      return std::make_unique<NullWriter>(results, filesSearched, output);
    case OutputFormat::Text:
      break;
  }
  return std::make_unique<TextWriter>(results, filesSearched, output, options.withSummary);
}

}  // namespace

bool WriteResults(const cSearchResults& results, std::int32_t filesSearched,
                  const WriteOptions& options, StandardOutput& output) {
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
