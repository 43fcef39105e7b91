// SPDX-License-Identifier: MIT
// The report on one file or folder: all that the file-system objects know of it, as lines of text
// that end in CR LF. Nothing on the disk is changed and nobody is asked. A count that was stopped,
// or that did not come to its end, never passes for a whole one: the first says so in its lines,
// the second names the folder where it ended.
#pragma once

#include <functional>
#include <string_view>

#include "base/Text.h"
#include "frame/Pump.h"
#include "platform/Volumes.h"

namespace quillmarsh {

// Around an analysis: clears the user's stop, and lets it end what waits for a disk.
class AnalysisScope {
 public:
  AnalysisScope();

 private:
  StoppablePart mStoppable;
};

struct FSObjectReport {
  Text text;  // where there is no object, a line that says so
  bool isThere = false;
  bool isStopped = false;  // by the user; the text tells of it
  Text failedPath;         // of a count: the first folder that could not be read wholly; else empty
};

// A path as a person named it on this machine, in drive form without a final backslash. Links on
// the way are resolved; a link to a folder at the end of the path is what is asked about, not the
// folder behind it. What is not there has a path all the same.
[[nodiscard]] CanonicalLocation LocateForReport(std::string_view native);

// The path is taken as it is, blanks included. An empty one gives an empty report.
[[nodiscard]] FSObjectReport ReportOnFile(TextView path);
// `recurses` is asked once, when the folder is seen to be there.
[[nodiscard]] FSObjectReport ReportOnFolder(TextView path, const std::function<bool()>& recurses);

// The line that stands for a report which the user stopped before it began.
[[nodiscard]] Text StoppedReportText();

}  // namespace quillmarsh
