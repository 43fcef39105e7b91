// SPDX-License-Identifier: MIT
// The three list routines: one frame, and a table of what differs in the words.
#include "base/LocaleFormat.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/Handles.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/clsStringAppend.h"
#include "fsobjects/modFSXFSO_SupportRoutines.h"

namespace quillmarsh {
namespace {

constexpr TextView kLineBreak = u"\r\n";

// The words of a log entry, and how a list is told of.
struct ListWords {
  TextView reportSource;
  TextView verb;
  TextView title;
  TextView label;
  TextView cancelText;
  bool hasDestination;
};
constexpr ListWords kCopying = {
    u"modFSXFSO_SupportRoutines.FSXFSO_CopyFSOs", u"Copying", u"Copy Error", u"Source",
    u"Copy operation was cancelled by user.",     true};
constexpr ListWords kDeleting = {
    u"modFSXFSO_SupportRoutines.FSXFSO_DeleteFSOs", u"Deleting", u"Delete Error", u"File/Folder",
    u"Delete operation was cancelled by user.",     false};
// A cancelled move adds no text of its own, unlike the other two; `cancelled` is all that tells it.
constexpr ListWords kMoving = {
    u"modFSXFSO_SupportRoutines.FSXFSO_MoveFSOs", u"Moving", u"Move Error", u"Source", u"", true};

// A list lies in another one only for a junction, whose list names no further junction. One that
// becomes a junction between listing and use could lead on; it leads no deeper than this.
constexpr int kDeepestNesting = 8;
constexpr std::int32_t kOutOfStackSpace = 28;

class Nesting {
 public:
  Nesting() {
    if (sDepth >= kDeepestNesting) throw RuntimeError(kOutOfStackSpace, {}, u"Out of stack space");
    ++sDepth;
  }
  ~Nesting() { --sDepth; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  static inline int sDepth = 0;
};

Text Shown(TextView path) {
  return TheMachine().Drives().ShownPath(path);
}

struct Failure {
  TextView path;
  TextView destFolder;
  std::int32_t number = 0;
  Text message;
};

Text ErrorEntry(const ListWords& words, const Failure& failure) {
  const Date now = Date::FromTicks(TheMachine().Locale().GetLocalTime().Ticks());
  clsStringAppend entry;
  const auto line = [&entry](TextView text) {
    entry.Append(text);
    entry.Append(kLineBreak);
  };
  line(u"----");
  line(FormatDate(now, GetDateTimeFormat(), GetLocaleFacts()));
  line(u"***" + Text(words.title) + u"***");
  line(u"");
  line(Text(words.label) + u": " + Shown(failure.path));
  if (words.hasDestination) line(u"Destination: " + Shown(failure.destFolder));
  line(u"Error Number: " + DecimalText(failure.number));
  entry.Append(u"Error Description: " + failure.message);
  return entry.CurrentString();
}

struct ListRun {
  const ListWords& words;
  TextView list;
  TextView destFolder;
  bool& cancelled;
  FSOStatusTarget* statusTarget;
};

// `single` is the routine for one object: it takes the path and fills number and message.
template <typename Single>
bool WalkList(const ListRun& run, clsStringAppend& failures, Single&& single) {
  bool isWhole = true;
  TextView rest = run.list;
  if (rest.ends_with(u'\0')) rest.remove_suffix(1);
  for (std::size_t end = 0; end != TextView::npos;) {
    end = rest.find(u'\0');
    const TextView path = rest.substr(0, end);
    if (end != TextView::npos) rest.remove_prefix(end + 1);
    if (run.statusTarget != nullptr)
      run.statusTarget->DisplayStatusMessage(Text(run.words.verb) + u" \"" + Shown(path) +
                                             u"\"...");
    DoEvents_Fast();
    Failure failure{path, run.destFolder, 0, {}};
    if (single(path, failure.number, failure.message)) continue;
    isWhole = false;
    if (run.cancelled || gFSOCancelled) {
      run.cancelled = gFSOCancelled = true;
      failures.Append(run.words.cancelText);
      break;
    }
    failures.Append(ErrorEntry(run.words, failure));
  }
  return isWhole;
}

// Something unexpected makes the answer false: what nobody knows is not told as done.
template <typename Single>
bool RunList(const ListRun& run, Text& log, Single&& single) {
  bool isWhole = false;
  Guarded(run.words.reportSource, [&] {
    const Nesting nesting;
    clsStringAppend failures;
    isWhole = WalkList(run, failures, single);
    if (!isWhole) log += failures.CurrentString();
  });
  return isWhole;
}

}  // namespace

bool FSXFSO_CopyFSOs(TextView list, TextView destFolder, bool& cancelled, Text& log,
                     FSOStatusTarget* statusTarget) {
  return RunList({kCopying, list, destFolder, cancelled, statusTarget}, log,
                 [&](TextView path, std::int32_t& number, Text& message) {
                   return FSXFSO_CopyFSO(path, destFolder, cancelled, number, message, log);
                 });
}

bool FSXFSO_MoveFSOs(TextView list, TextView destFolder, bool& cancelled, Text& log,
                     FSOStatusTarget* statusTarget) {
  return RunList({kMoving, list, destFolder, cancelled, statusTarget}, log,
                 [&](TextView path, std::int32_t& number, Text& message) {
                   return FSXFSO_MoveFSO(path, destFolder, cancelled, number, message, log);
                 });
}

bool FSXFSO_DeleteFSOs(TextView list, bool& cancelled, Text& log, bool permanently,
                       FSOStatusTarget* statusTarget) {
  return RunList({kDeleting, list, {}, cancelled, statusTarget}, log,
                 [&](TextView path, std::int32_t& number, Text& message) {
                   return FSXFSO_DeleteFSO(path, cancelled, number, message, log, permanently);
                 });
}

}  // namespace quillmarsh
