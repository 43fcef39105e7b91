// SPDX-License-Identifier: MIT
// The journal of removals, "removal.journal" beside the history. The history tells what became of
// each file; the journal tells before, so that after a kill at any moment the next run knows which
// files were not finished. It loses nothing of a path, and it only grows.
//
// UTF-16 with its mark. Each line has a line break before it and fields parted by tabs; the last is
// a check sum of the others, so that a line that is torn, as by a full disk, is known and skipped.
//   begin  run  method  moment
//   plan   run  sequence  method  path  aside name  target  size  created written changed  volume
//          file
//   done   run  sequence  outcome  target
//   end    run
// Times are UTC ticks. In paths "%25", "%09" and "%0A" stand for a percent sign, a tab and a line
// break.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "base/Text.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

// Empty where the user has no folder for it.
[[nodiscard]] Text JournalFileSpec();

// A file that is about to go. Everything but `target` and `asideName` is as it was seen last.
struct JournalRecord {
  std::int64_t sequence = 0;  // its number in the run
  Text path;
  Text asideName = {};  // by which it is taken aside in its folder; empty where it is not
  Text target = {};     // empty where it is not moved
  std::int64_t size = 0;
  std::int64_t created = 0;
  std::int64_t written = 0;
  std::int64_t changed = 0;
  std::uint64_t volume = 0;
  std::uint64_t file = 0;
  friend bool operator==(const JournalRecord&, const JournalRecord&) = default;
};

enum class JournalOutcome : std::int32_t { Removed, Kept };

// The lines of one run. Where a member returns false the lines are not on the disk, and the last
// error says why.
class cRemovalJournal {
 public:
  explicit cRemovalJournal(RemoveMethod method) : mMethod(method) {}

  [[nodiscard]] bool Begin();
  // The records are on the disk when it returns true, together with what is done so far.
  [[nodiscard]] bool Plan(std::span<const JournalRecord> records);
  // Goes to the file with the next Plan or End. `target` only where it differs from the plan.
  void Done(std::int64_t sequence, JournalOutcome outcome, TextView target = {});
  [[nodiscard]] bool End();

 private:
  [[nodiscard]] bool Append(TextView lines);

  const RemoveMethod mMethod;
  Text mFileSpec;
  Text mRun;   // moment and random number
  Text mDone;  // lines that are not yet in the file
};

// One whole line. Of a plan `record` is filled; of what is done its sequence and, where it differs,
// its target.
struct JournalLine {
  enum class Kind : std::uint8_t { Begin, Plan, Done, End };
  Kind kind = Kind::Begin;
  Text run;
  RemoveMethod method = RemoveMethod::Delete;        // of begin and plan
  std::int64_t moment = 0;                           // of begin
  JournalOutcome outcome = JournalOutcome::Removed;  // of done
  JournalRecord record;
};

// Hands over the lines in their order, reading the file in blocks. False, with the last error, when
// it cannot be read to its end. A journal that is not there has no lines.
[[nodiscard]] bool ForEachJournalLine(const std::function<void(const JournalLine&)>& take);

struct UnfinishedRemoval {
  Text run;
  RemoveMethod method = RemoveMethod::Delete;
  JournalRecord record;
};

// What was planned, is not known to be done, and belongs to a run that did not end: of a run that
// was killed, and of one that is running. A file of the last batch may have gone all the same;
// the disk knows. None when the journal cannot be read.
[[nodiscard]] std::optional<std::vector<UnfinishedRemoval>> ReadUnfinished();

// Whether the last line of the journal ends a run, or there is no journal: then nothing is
// unfinished. Costs one short read, however long the journal is.
[[nodiscard]] bool IsJournalEnded();
// Ends a run whose program did not. False, with the last error, when that cannot be written.
[[nodiscard]] bool EndJournalRun(TextView run);

}  // namespace quillmarsh
