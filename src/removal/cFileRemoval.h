// SPDX-License-Identifier: MIT
// Removes one file by the removal method of the options and writes its entry to the history: one
// entry a file, whatever happens. It keeps nothing of a file, and of the disk only which target
// folder it saw last.
#pragma once

#include <unordered_map>

#include "removal/RemovalEntry.h"
#include "removal/RemovalGuard.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {

class cFileRemoval {
 public:
  // The method and its folder are those of this moment: what somebody chooses while files are being
  // removed is for the next time. Guard and listener may be null; the guard is not owned.
  cFileRemoval(const clsDupeSettings& settings, RemovalGuard* guard, RemovalListener listener)
      : mMethod(settings.RemoveMethod()),
        mOtherFolder(settings.UserDefinedMoveFolderPath()),
        mGuard(guard),
        mListener(std::move(listener)) {}

  // `result` true: the file is gone from its place. False: it is where it was. Also true, with
  // nothing done, for a method number that has no meaning. `dupesFolder` with a final backslash.
  void RemoveFile(TextView fileSpec, TextView dupesFolder, bool& result);
  // Of those that were to go to the Recycle Bin, how many it refused and so are nowhere.
  [[nodiscard]] std::int32_t DeletedForGoodCount() const { return mDeletedForGoodCount; }

 private:
  [[nodiscard]] bool Delete(TextView fileSpec);
  [[nodiscard]] bool Recycle(TextView fileSpec);
  [[nodiscard]] bool MoveToDupesFolder(TextView fileSpec, TextView dupesFolder);
  [[nodiscard]] bool MoveToOtherFolder(TextView fileSpec);

  void AddEntry(const RemovalEntry& entry) const;
  // False, with the entry of the failure.
  [[nodiscard]] bool Fail(std::int32_t kind, TextView fileSpec, TextView target,
                          std::uint32_t code) const;
  // A code; makes the folder when it is missing.
  [[nodiscard]] std::uint32_t ProvideFolder(TextView folder);

  const quillmarsh::RemoveMethod mMethod;
  const Text mOtherFolder;
  RemovalGuard* const mGuard;
  const RemovalListener mListener;
  std::int32_t mDeletedForGoodCount = 0;
  Text mProvidedFolder;  // was there when it was looked at last
  // By file name, the last name that a file of it was given in the other folder.
  std::unordered_map<Text, Text> mLastNames;
};

}  // namespace quillmarsh
