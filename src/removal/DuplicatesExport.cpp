// SPDX-License-Identifier: MIT
// Line by line into a buffer, and from there into a file beside the one that is asked for, which it
// replaces in the end.
#include "removal/DuplicatesExport.h"

#include <bit>
#include <limits>

#include "base/CaseMapping.h"
#include "base/LocaleFormat.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pickers.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/AttributeLetters.h"
#include "fsobjects/Handles.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"
#include "platform/AtomicFiles.h"
#include "search/results/cSearchResults.h"
#include "search/results/modDupe.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

constexpr TextView kSource = u"frmFindDuplicates.SaveDuplicatesListToFile";
constexpr TextView kLineBreak = u"\r\n";
constexpr TextView kMark = u"\uFEFF";
constexpr std::size_t kBufferUnits = std::size_t{1} << 17U;

// The buffer's memory is the file's form.
static_assert(std::endian::native == std::endian::little);

// Of the call that failed just now, and never 0, which would count as success.
std::uint32_t CodeOfFailure() {
  const std::uint32_t code = TheMachine().GetLastError();
  return code != ERROR_SUCCESS ? code : ERROR_IO_DEVICE;
}

// Lines on their way into a file. After a failure everything that comes is dropped.
class LineWriter {
 public:
  explicit LineWriter(FileReplacement& file) : mFile(file) {
    mBuffer.reserve(kBufferUnits);
    mBuffer = kMark;
  }

  LineWriter& operator<<(TextView text) {
    mBuffer += text;
    return *this;
  }
  void EndLine() {
    mBuffer += kLineBreak;
    if (mBuffer.size() >= kBufferUnits / 2) Flush();
  }
  void Line(TextView text) {
    *this << text;
    EndLine();
  }
  void Flush() {
    const std::string_view bytes(reinterpret_cast<const char*>(mBuffer.data()),
                                 mBuffer.size() * sizeof(char16_t));
    if (mError == ERROR_SUCCESS && !mFile.Write(bytes)) mError = CodeOfFailure();
    mBuffer.clear();
  }
  // 0 as long as everything could be written.
  [[nodiscard]] std::uint32_t Error() const { return mError; }

 private:
  FileReplacement& mFile;
  Text mBuffer;
  std::uint32_t mError = ERROR_SUCCESS;
};

Text Shown(TextView path) {
  return TheMachine().Drives().ShownPath(path);
}

// The texts of the table are in English, so that ASCII is all that has capitals.
Text ProperCase(Text text) {
  bool isFirst = true;
  for (char16_t& unit : text) {
    const bool isCapital = unit >= u'A' && unit <= u'Z';
    if (isFirst)
      unit = UpperCase(unit);
    else if (isCapital)
      unit = static_cast<char16_t>(unit - u'A' + u'a');
    isFirst = unit == u' ';
  }
  return text;
}

void WriteRequest(LineWriter& lines, const ExportSource& source) {
  const clsDupeSettings& settings = source.settings;
  lines.Line((settings.IncludeSubFolders() ? LoadResString(337) : LoadResString(338)) + u":");
  for (const Text& folder : source.searchedFolders) lines.Line(EncloseInQuotes(Shown(folder)));
  lines.Line(u"");
  lines.Line(LoadResString(339) + u":");
  if (settings.NamesMatch()) lines.Line(LoadResString(340));
  if (settings.SizesMatch()) lines.Line(LoadResString(341));
  if (settings.CreateTimeStampsMatch()) lines.Line(LoadResString(342));
  if (settings.LastModTimeStampsMatch()) lines.Line(LoadResString(343));
  if (settings.ContentsMatch()) lines.Line(LoadResString(344));
  lines.Line(u"");
}

// Two labels are in proper case and the third as it stands in the table: programs that read such
// files look for these words.
void WriteSummary(LineWriter& lines, const cSearchResults& results) {
  lines.Line(LoadResString(345) + u":");
  lines.Line(ProperCase(LoadResString(306)) + u": " + DecimalText(results.mDupeFileCount));
  lines.Line(ProperCase(LoadResString(307)) + u": " + DecimalText(results.mGroupCount));
  lines.Line(LoadResString(308) + u": " + FormatByteSize(results.mDupeTotalSize));
  lines.Line(u"");
}

void WriteHeadings(LineWriter& lines) {
  lines.Line(LoadResString(346) + u":");
  lines.Line(EncloseInQuotes(LoadResString(347)) + u"," + EncloseInQuotes(LoadResString(348)) +
             u"," + EncloseInQuotes(LoadResString(349)) + u"," +
             EncloseInQuotes(LoadResString(350)) + u"," + EncloseInQuotes(LoadResString(351)) +
             u"," + EncloseInQuotes(LoadResString(352)));
  lines.Line(u"");
}

// Makes the lines of files. What neighbours share is made once.
class FileLines {
 public:
  FileLines(LineWriter& lines, const cSearchResults& results)
      : mLines(lines), mResults(results), mLocale(GetLocaleFacts()) {}

  // Quotation marks in a field are not doubled; readers of these files go by the positions of the
  // `","` between fields.
  void Write(const DupeFileUDT& record) {
    mLines << u"\"" << Shown(mResults.NameOf(record)) << u"\",\"" << FolderOf(record) << u"\",\""
           << SizeOf(record) << u"\",\"" << TextOf(record.CreatedDate, mCreated) << u"\",\""
           << TextOf(record.LastModifiedDate, mLastModified) << u"\",\""
           << AttributeLetters(record.Attributes) << u"\"";
    mLines.EndLine();
  }

 private:
  const Text& FolderOf(const DupeFileUDT& record) {
    if (record.ParentFolderIdx != mFolderIdx) {
      mFolderIdx = record.ParentFolderIdx;
      mFolder = Shown(GetFolderPathByIdx(mFolderIdx));
    }
    return mFolder;
  }
  Text SizeOf(const DupeFileUDT& record) const {
    if (record.Size == Currency::FromInteger(-1)) return u"(" + LoadResString(353) + u")";
    return FormatGrouped(record.Size, mLocale);
  }

  struct DateText {
    double days = std::numeric_limits<double>::quiet_NaN();
    Text text;
  };
  const Text& TextOf(Date date, DateText& last) const {
    if (date.Days() != last.days) last = {date.Days(), FormatGeneralDate(date, mLocale)};
    return last.text;
  }

  LineWriter& mLines;
  const cSearchResults& mResults;
  const LocaleFacts& mLocale;
  std::int32_t mFolderIdx = -1;
  Text mFolder;
  DateText mCreated;
  DateText mLastModified;
};

// By the number of the group, whatever the order of the list on the screen. A group that a removal
// has emptied leaves its blank line.
void WriteGroups(LineWriter& lines, const cSearchResults& results) {
  FileLines files(lines, results);
  for (std::int32_t group = 1; group <= results.mGroupCount && lines.Error() == ERROR_SUCCESS;
       ++group) {
    for (const std::int32_t member : results.MembersOf(group)) {
      if (member >= 1 && member <= results.RecordCount()) files.Write(results.Record(member));
    }
    lines.Line(u"");
  }
}

}  // namespace

std::uint32_t WriteDuplicatesList(TextView path, const ExportSource& source) {
  const RedirectionOff redirection;
  FileReplacement file(TheMachine(), ToLongPath(path));
  if (!file.Begin()) return CodeOfFailure();
  LineWriter lines(file);
  WriteRequest(lines, source);
  WriteSummary(lines, source.results);
  WriteHeadings(lines);
  WriteGroups(lines, source.results);
  lines.Flush();
  if (lines.Error() != ERROR_SUCCESS) return lines.Error();
  return file.PutInPlace() ? ERROR_SUCCESS : CodeOfFailure();
}

void SaveDuplicatesListToFile(TextView path, const ExportSource& source) {
  bool isWritten = false;
  {
    const BusyPointer pointer;
    Guarded(kSource, [&] {
      const std::uint32_t code = WriteDuplicatesList(path, source);
      isWritten = code == ERROR_SUCCESS;
      if (isWritten) return;
      gPendingError = {};
      gPendingError.lastSystemError = code;
      ReportError(kSource, {});
    });
  }
  if (isWritten)
    ShowMessageBox({LoadResString(355), LoadResString(356), MessageBoxIcon::Information});
}

Text GetExportFileName() {
  return SaveFileName(LoadResString(357) + u"...", LoadResString(358) + u" (*.txt)|*.txt");
}

void mnuFileExport_Click(const ExportSource& source) {
  const CommandScope command;
  if (!command.IsEntered()) return;
  if (source.results.ulvwDupeGroups.Count() == 0) {
    ShowMessageBox({LoadResString(335), LoadResString(336), MessageBoxIcon::Exclamation});
    return;
  }
  const Text path = GetExportFileName();
  if (!path.empty()) SaveDuplicatesListToFile(path, source);
}

}  // namespace quillmarsh
