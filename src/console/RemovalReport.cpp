// SPDX-License-Identifier: MIT
// One line, row or object a file, and a last one that sums up.
#include "console/RemovalReport.h"

#include "base/LocaleFormat.h"
#include "console/OutputTexts.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/modShlWAPI.h"
#include "platform/Machine.h"
#include "removal/history/cLog.h"

namespace quillmarsh {
namespace {

constexpr const char* kLeft = "left";
constexpr auto kFlushInterval = std::chrono::seconds(1);

// What became of the file, none for a failure.
const char* OutcomeOf(const RemovalEntry& entry) {
  switch (entry.kind) {
    case log_kind::FileDeleted:
      return "deleted";
    case log_kind::FileSentToRecycleBin:
      return entry.isDeletedForGood ? "deleted" : "trashed";
    case log_kind::FileMovedToDupesFolder:
    case log_kind::FileMovedToOtherFolder:
      return "moved";
    default:
      return nullptr;
  }
}

std::string Counted(std::int64_t count) {
  return ToUtf8(FormatGrouped(count, GetLocaleFacts())) + (count == 1 ? " file" : " files");
}

Text ReasonOf(const RemovalEntry& entry) {
  if (!entry.reason.empty()) return entry.reason;
  Text reason = SystemErrorReason(entry.code);
  if (entry.kind == log_kind::CreateFolderError)
    reason = u"the folder \"" + TheMachine().Drives().ShownPath(entry.target) +
             u"\" cannot be made: " + reason;
  return reason + u" (" + DecimalText(std::int64_t{entry.code}) + u")";
}

const char* PlannedOutcome(RemoveMethod method, bool isForGood) {
  if (IsMove(method)) return "move";
  return method == RemoveMethod::Recycle && !isForGood ? "trash" : "delete";
}

}  // namespace

bool RemovalReport::Start() {
  if (mFormat == OutputFormat::Json) mOutput.Write("{\"files\":[");
  if (mFormat == OutputFormat::Csv) mOutput.Write("outcome,path,target,reason\r\n");
  mOutput.Flush();
  return mOutput.CanBeWritten();
}

bool RemovalReport::WritePlan(const RemovalPlan& plan, bool deletesWithoutBin) {
  if (!Start()) return true;
  for (const PlannedRemoval& file : plan.Files()) {
    DoEvents_Fast();
    if (gUserAbort) return false;
    const bool isForGood = file.obstacle == Obstacle::NoRecycleBin && deletesWithoutBin;
    if (file.obstacle == Obstacle::None || isForGood)
      Write(PlannedOutcome(plan.Method(), isForGood), plan.FileSpecOf(file), plan.TargetOf(file),
            {});
    else
      Write(kLeft, plan.FileSpecOf(file), {}, quillmarsh::ReasonOf(file.obstacle));
  }
  if (gUserAbort) return false;  // the plan may have been cut short
  if (mFormat == OutputFormat::Json) mOutput.Write("]}\n");
  return true;
}

void RemovalReport::Add(const RemovalEntry& entry) {
  if (const char* const outcome = OutcomeOf(entry))
    Write(outcome, entry.fileSpec, entry.target, {});
  else
    Write(kLeft, entry.fileSpec, {}, ReasonOf(entry));
}

void RemovalReport::Write(const char* outcome, TextView fileSpec, TextView target,
                          TextView reason) {
  const auto now = std::chrono::steady_clock::now();
  if (now >= mNextFlush) {
    mNextFlush = now + kFlushInterval;
    mOutput.Flush();
  }
  // The reader has gone, or the disk is full: nothing is removed without a report.
  if (mOutput.HasFailed()) gUserAbort = true;
  const Volumes& volumes = TheMachine().Drives();
  const bool isLeft = outcome == kLeft;
  const bool hasRoomForReasons = mFormat == OutputFormat::Json || mFormat == OutputFormat::Csv;
  const std::string shown = ToUtf8(volumes.ShownPath(fileSpec));
  if (isLeft && !hasRoomForReasons) return PrintError("left \"" + shown + "\": " + ToUtf8(reason));
  if (mFormat == OutputFormat::Plain) {
    mOutput.Write(std::string(outcome) + "  " + shown);
    if (!target.empty()) mOutput.Write(" --> " + ToUtf8(volumes.ShownPath(target)));
    return mOutput.Write("\n");
  }
  const std::string path = NativeOrShownPath(fileSpec);
  const std::string newPath = target.empty() ? std::string() : NativeOrShownPath(target);
  if (mFormat == OutputFormat::Json) return WriteJson(outcome, path, newPath, ToUtf8(reason));
  if (mFormat == OutputFormat::Csv)
    return mOutput.Write(std::string(outcome) + "," + CsvField(path) + "," + CsvField(newPath) +
                         "," + CsvField(ToUtf8(reason)) + "\r\n");
  mOutput.Write(path + '\0');
}

void RemovalReport::WriteJson(const char* outcome, const std::string& path,
                              const std::string& target, const std::string& reason) {
  mOutput.Write(mIsFirst ? "\n" : ",\n");
  mIsFirst = false;
  std::string object = "{\"outcome\":\"" + std::string(outcome) + "\"," + JsonPath("path", path);
  if (!target.empty()) object += "," + JsonPath("target", target);
  if (!reason.empty()) object += ",\"reason\":" + JsonText(reason);
  mOutput.Write(object + "}");
}

void RemovalReport::End(const cRemovalRun::Outcome& outcome) {
  if (mFormat == OutputFormat::Json)
    mOutput.Write("],\"removed\":" + std::to_string(outcome.removedCount) +
                  ",\"removedSize\":" + std::to_string(outcome.removedSize.ToInteger()) +
                  ",\"left\":" + std::to_string(outcome.failedCount) +
                  ",\"stopped\":" + (outcome.isStopped ? "true" : "false") + "}\n");
  if (mFormat != OutputFormat::Plain || mIsQuiet || outcome.isRefused) return;
  mOutput.Write("Removed: " + Counted(outcome.removedCount) + ", " +
                ToUtf8(FormatByteSize(outcome.removedSize)) +
                ". Left: " + Counted(outcome.failedCount) + ".\n");
}

}  // namespace quillmarsh
