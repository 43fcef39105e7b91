// SPDX-License-Identifier: MIT
// What the roles of the POSIX machine share: the letters, the way to an entry, and the rule that a
// file system which may not answer is only touched by a helper thread. Owns the helper.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/PatientWorker.h"
#include "platform/SystemConstants.h"
#include "platform/posix/ChangePermit.h"
#include "platform/posix/OpenFolders.h"
#include "platform/posix/StatxFacts.h"

namespace quillmarsh {

struct EntryFacts {
  struct statx facts {};
  EntryKind kind = EntryKind::Other;
};

class PosixContext {
 public:
  PosixContext(std::shared_ptr<DriveLetters> driveLetters,
               std::shared_ptr<const PathResolver> pathResolver,
               const std::function<Patience*()>& patience)
      : letters(std::move(driveLetters)),
        resolver(std::move(pathResolver)),
        folders(std::make_shared<OpenFolders>(resolver)),
        worker(patience) {}

  const std::shared_ptr<DriveLetters> letters;
  const std::shared_ptr<const PathResolver> resolver;
  const std::shared_ptr<OpenFolders> folders;
  PatientWorker worker;

  // The codes of ParseDrivePath, 3 for a letter that no drive has, 21 for one whose file system is
  // not here.
  [[nodiscard]] std::uint32_t Locate(TextView path, Located& located) const;

  // Runs a job that fills a result and answers a code: directly where `answers`, else on the
  // helper, where it gives 995 when the patience is lost. The job must own what it touches.
  template <typename Result, typename Job>
  [[nodiscard]] std::uint32_t Run(bool answers, Result& result, Job job) {
    if (answers) return job(result);
    struct Outcome {
      Result result;
      std::uint32_t code = 0;
    };
    const auto outcome = std::make_shared<Outcome>();
    if (!worker.Run([outcome, job = std::move(job)] { outcome->code = job(outcome->result); }))
      return ERROR_OPERATION_ABORTED;
    result = std::move(outcome->result);
    return outcome->code;
  }

  // The same for what takes its time even if the file system answers: always on the helper, so that
  // the program stays alive meanwhile. There it is never given up; when the user asks to stop, the
  // permit tells the job so, and its end is waited for.
  template <typename Result, typename Job>
  [[nodiscard]] std::uint32_t RunLong(bool answers, Result& result,
                                      const std::shared_ptr<ChangePermit>& permit, Job job) {
    if (!answers) return Run(false, result, std::move(job));
    std::uint32_t code = 0;
    const auto work = [&] { code = job(result); };
    if (!worker.RunToItsEnd(work, [permit] { permit->AskToStop(); })) work();
    return code;
  }

  // The facts of the entry itself (a link to a folder is told as such). Devices, FIFOs and sockets
  // answer 5.
  [[nodiscard]] std::uint32_t LookAt(const Located& located, EntryFacts& entry);
};

}  // namespace quillmarsh
