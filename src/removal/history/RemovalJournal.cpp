// SPDX-License-Identifier: MIT
// Lines from fields and back. A line that does not read to its end in the way of its kind is none.
#include "removal/history/RemovalJournal.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>
#include <random>

#include "base/TextEquality.h"
#include "frame/Pump.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/Handles.h"
#include "fsobjects/RecordDates.h"
#include "fsobjects/WholeFileReading.h"
#include "fsobjects/modAPIReadWriteFile.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"
#include "settings/OptionsFolder.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::int64_t kLongestEndLine = 256;  // bytes, and even
constexpr char16_t kLineBreak = u'\n';
constexpr char16_t kTab = u'\t';
// By the number of the kind.
constexpr TextView kKinds[] = {u"begin", u"plan", u"done", u"end"};

// FNV-1a.
std::uint32_t CheckSum(TextView text) {
  std::uint32_t sum = 2166136261U;
  for (const char16_t unit : text) sum = (sum ^ unit) * 16777619U;
  return sum;
}

class LineWriter {
 public:
  LineWriter(JournalLine::Kind kind, TextView run) {
    mLine += kKinds[static_cast<std::size_t>(kind)];
    Add(run);
  }
  LineWriter& Add(TextView text) {
    mLine += kTab;
    if (text.find_first_of(u"%\t\n") == TextView::npos)
      mLine += text;
    else
      mLine += ReplaceAll(ReplaceAll(ReplaceAll(text, u"%", u"%25"), u"\t", u"%09"), u"\n", u"%0A");
    return *this;
  }
  LineWriter& Add(std::int64_t number) { return Add(DecimalText(number)); }
  // The bits as they are.
  LineWriter& Add(std::uint64_t number) { return Add(static_cast<std::int64_t>(number)); }
  template <typename Enum>
  LineWriter& AddEnum(Enum value) {
    return Add(static_cast<std::int64_t>(value));
  }
  [[nodiscard]] Text Finish() {
    Add(std::int64_t{CheckSum(mLine)});
    return kLineBreak + mLine;
  }

 private:
  Text mLine;
};

class LineReader {
 public:
  explicit LineReader(TextView line) : mRest(line) {
    const std::size_t lastTab = line.rfind(kTab);
    if (lastTab == TextView::npos) return;
    std::int64_t sum = 0;
    mRest = line.substr(lastTab + 1);
    mIsWhole = true;
    Read(sum);
    mRest = line.substr(0, lastTab);
    mIsWhole = mIsWhole && sum == CheckSum(mRest);
    mHasMore = true;
  }
  void Read(Text& text) {
    text = ReplaceAll(ReplaceAll(ReplaceAll(Next(), u"%09", u"\t"), u"%0A", u"\n"), u"%25", u"%");
  }
  void Read(std::int64_t& number) {
    std::string digits;
    for (const char16_t unit : Next()) digits += unit < 0x80 ? static_cast<char>(unit) : '?';
    const char* const end = digits.data() + digits.size();
    if (std::from_chars(digits.data(), end, number).ptr != end || digits.empty()) mIsWhole = false;
  }
  void Read(std::uint64_t& number) {
    std::int64_t bits = 0;
    Read(bits);
    number = static_cast<std::uint64_t>(bits);
  }
  // Of an enumeration whose numbers run from 0 to `last`.
  template <typename Enum>
  void ReadEnum(Enum& value, Enum last) {
    std::int64_t number = 0;
    Read(number);
    if (number < 0 || number > static_cast<std::int64_t>(last)) mIsWhole = false;
    value = static_cast<Enum>(number);
  }
  void ReadKind(JournalLine::Kind& kind) {
    const TextView word = Next();
    for (std::size_t number = 0; number < std::size(kKinds); ++number) {
      if (word != kKinds[number]) continue;
      kind = static_cast<JournalLine::Kind>(number);
      return;
    }
    mIsWhole = false;
  }
  [[nodiscard]] bool IsWhole() const { return mIsWhole; }
  [[nodiscard]] bool IsWholeAndAtEnd() const { return mIsWhole && !mHasMore; }

 private:
  TextView Next() {
    if (!mHasMore) mIsWhole = false;
    const std::size_t tab = mRest.find(kTab);
    const TextView field = mRest.substr(0, tab);
    mHasMore = tab != TextView::npos;
    mRest.remove_prefix(mHasMore ? tab + 1 : mRest.size());
    return field;
  }

  TextView mRest;
  bool mHasMore = true;
  bool mIsWhole = false;
};

void ReadRecord(LineReader& reader, JournalRecord& record) {
  reader.Read(record.path);
  reader.Read(record.asideName);
  reader.Read(record.target);
  for (std::int64_t* const number :
       {&record.size, &record.created, &record.written, &record.changed})
    reader.Read(*number);
  reader.Read(record.volume);
  reader.Read(record.file);
}

// None for a line that is torn.
std::optional<JournalLine> Parsed(TextView text) {
  LineReader reader(text);
  if (!reader.IsWhole()) return std::nullopt;
  JournalLine line;
  reader.ReadKind(line.kind);
  reader.Read(line.run);
  switch (line.kind) {
    case JournalLine::Kind::Begin:
      reader.ReadEnum(line.method, RemoveMethod::MoveToOtherFolder);
      reader.Read(line.moment);
      break;
    case JournalLine::Kind::Plan:
      reader.Read(line.record.sequence);
      reader.ReadEnum(line.method, RemoveMethod::MoveToOtherFolder);
      ReadRecord(reader, line.record);
      break;
    case JournalLine::Kind::Done:
      reader.Read(line.record.sequence);
      reader.ReadEnum(line.outcome, JournalOutcome::Kept);
      reader.Read(line.record.target);
      break;
    case JournalLine::Kind::End:
      break;
  }
  if (!reader.IsWholeAndAtEnd()) return std::nullopt;
  return line;
}

// Cuts blocks of a file into lines. Before the first line break there is the mark.
class LineCutter {
 public:
  template <typename Take>
  void Add(std::span<const std::byte> block, Take&& take) {
    mBytes.insert(mBytes.end(), block.begin(), block.end());
    const std::size_t before = mText.size();
    const std::size_t units = mBytes.size() / sizeof(char16_t);
    mText.resize(before + units);
    std::memcpy(mText.data() + before, mBytes.data(), units * sizeof(char16_t));
    mBytes.erase(mBytes.begin(),
                 mBytes.begin() + static_cast<std::ptrdiff_t>(units * sizeof(char16_t)));
    std::size_t begin = 0;
    for (std::size_t end = mText.find(kLineBreak, before); end != Text::npos;
         end = mText.find(kLineBreak, begin)) {
      take(TextView(mText).substr(begin, end - begin));
      begin = end + 1;
    }
    mText.erase(0, begin);
  }
  // What follows the last line break.
  [[nodiscard]] const Text& Rest() const { return mText; }

 private:
  std::vector<std::byte> mBytes;  // one at most between two blocks
  Text mText;
};

}  // namespace

Text JournalFileSpec() {
  const Text folder = GetIniFileFolder();
  return folder.empty() ? folder : folder + u"removal.journal";
}

bool cRemovalJournal::Begin() {
  mFileSpec = JournalFileSpec();
  const std::int64_t now = UtcTicksNow();
  mRun = DecimalText(now) + u"-" + DecimalText(std::random_device()());
  return Append(LineWriter(JournalLine::Kind::Begin, mRun).AddEnum(mMethod).Add(now).Finish());
}

bool cRemovalJournal::Plan(std::span<const JournalRecord> records) {
  Text lines;
  for (const JournalRecord& record : records) {
    lines += LineWriter(JournalLine::Kind::Plan, mRun)
                 .Add(record.sequence)
                 .AddEnum(mMethod)
                 .Add(record.path)
                 .Add(record.asideName)
                 .Add(record.target)
                 .Add(record.size)
                 .Add(record.created)
                 .Add(record.written)
                 .Add(record.changed)
                 .Add(record.volume)
                 .Add(record.file)
                 .Finish();
  }
  return Append(lines);
}

void cRemovalJournal::Done(std::int64_t sequence, JournalOutcome outcome, TextView target) {
  mDone +=
      LineWriter(JournalLine::Kind::Done, mRun).Add(sequence).AddEnum(outcome).Add(target).Finish();
}

bool IsJournalEnded() {
  FileInputOutput& files = TheMachine().Files();
  const Text fileSpec = JournalFileSpec();
  if (fileSpec.empty()) return true;
  const FileHandle file(files.CreateFileW(ToLongPath(fileSpec), GENERIC_READ, kShareAll,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
  if (!file.IsValid()) return SaysAbsent(TheMachine().GetLastError());
  std::int64_t size = 0;
  if (!files.SetFilePointerEx(file.Get(), 0, size, FILE_END)) return false;
  const std::int64_t start = std::max<std::int64_t>(0, size - kLongestEndLine);
  std::vector<std::byte> bytes(static_cast<std::size_t>(size - start));
  std::uint32_t done = 0;
  if (files.ReadFileAt(file.Get(), start, bytes, done) != ERROR_SUCCESS || done != bytes.size())
    return false;
  Text text(bytes.size() / sizeof(char16_t), u'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
  const auto line = Parsed(TextView(text).substr(text.rfind(kLineBreak) + 1));
  return line && line->kind == JournalLine::Kind::End;
}

bool EndJournalRun(TextView run) {
  return AppendStringToFile(JournalFileSpec(), LineWriter(JournalLine::Kind::End, run).Finish(),
                            TextEncoding::Utf16LittleEndian);
}

bool cRemovalJournal::End() {
  return Append(LineWriter(JournalLine::Kind::End, mRun).Finish());
}

// Lines that could not be written are tried again with the next ones: twice is no harm.
bool cRemovalJournal::Append(TextView lines) {
  if (!AppendStringToFile(mFileSpec, mDone + Text(lines), TextEncoding::Utf16LittleEndian))
    return false;
  mDone.clear();
  return true;
}

bool ForEachJournalLine(const std::function<void(const JournalLine&)>& take) {
  const Text fileSpec = JournalFileSpec();
  if (fileSpec.empty()) return true;
  const auto takeLine = [&take](TextView text) {
    if (const auto line = Parsed(text)) take(*line);
  };
  LineCutter cutter;
  const bool isRead = ReadInBlocks(fileSpec, [&](std::span<const std::byte> block) {
    DoEvents_Fast();
    cutter.Add(block, takeLine);
  });
  if (isRead) takeLine(cutter.Rest());
  const std::uint32_t code = TheMachine().GetLastError();
  return isRead || code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

std::optional<std::vector<UnfinishedRemoval>> ReadUnfinished() {
  std::map<Text, std::map<std::int64_t, UnfinishedRemoval>> runs;
  const bool isRead = ForEachJournalLine([&runs](const JournalLine& line) {
    const std::int64_t sequence = line.record.sequence;
    if (line.kind == JournalLine::Kind::Plan)
      runs[line.run].insert_or_assign(sequence,
                                      UnfinishedRemoval{line.run, line.method, line.record});
    else if (line.kind == JournalLine::Kind::Done && runs.contains(line.run))
      runs[line.run].erase(sequence);
    else if (line.kind == JournalLine::Kind::End)
      runs.erase(line.run);
  });
  if (!isRead) return std::nullopt;
  std::vector<UnfinishedRemoval> unfinished;
  for (auto& [run, records] : runs)
    for (auto& [sequence, removal] : records) unfinished.push_back(std::move(removal));
  return unfinished;
}

}  // namespace quillmarsh
