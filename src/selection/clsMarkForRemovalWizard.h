// SPDX-License-Identifier: MIT
// The chosen selection rule and the parameters of all rules, as the Selection Assistant, the menus
// and the options file leave them. Exactly one lives while the program runs. It outlives the
// dialog, so that this comes back as it was left. It validates nothing and marks nothing.
#pragma once

#include <cstdint>
#include <memory>

#include "base/Currency.h"
#include "base/Date.h"
#include "base/Text.h"

namespace quillmarsh {

class clsMarkForRemovalWizard {
 public:
  std::int32_t mRule = 0;           // 0 to 15 have a meaning
  Text mFolderSpec;                 // of rules 6 and 7, as typed
  bool mIncludeSubFolders = false;  // rules 6 and 7 find the folder's text anywhere in the path
  Date mLastModifiedDate;           // of rule 9
  Text mFileMask;                   // of rules 10 and 11
  bool mCancelled = false;          // the dialog was left without applying
  // Rules 4 to 11 may mark every file of a group, and marking the last by hand gives no warning.
  bool mAllowRemovalOfAllFilesInGroup = false;

  // The drive of rules 4 and 5: "C:" for all that begins like a drive, a share without its final
  // backslash, a lone letter as it is.
  [[nodiscard]] const Text& DriveSpec() const { return mDriveSpec; }
  // An empty value changes nothing.
  void SetDriveSpec(TextView value);

  // The number of rule 8 as typed, in the unit SizeIncrement.
  [[nodiscard]] Currency FileSize() const { return mFileSize; }
  // Error 6 where the number of bytes is beyond the currency's range: the size is stored, the bytes
  // stay those of before.
  void SetFileSize(Currency value);
  // 0 bytes, 1 KB, 2 MB, 3 GB. Any number is taken; any other leaves FileSizeInBytes as it was.
  [[nodiscard]] std::int32_t SizeIncrement() const { return mSizeIncrement; }
  // Error 6 as in SetFileSize.
  void SetSizeIncrement(std::int32_t value);
  // May have a fraction.
  [[nodiscard]] Currency FileSizeInBytes() const { return mFileSizeInBytes; }

 private:
  void UpdateFileSizeInBytes();

  Text mDriveSpec;
  Currency mFileSize;
  std::int32_t mSizeIncrement = 0;
  Currency mFileSizeInBytes;
};

// The one instance; made and released with the other program-wide objects.
extern std::unique_ptr<clsMarkForRemovalWizard> gMarkForRemovalWizardOptions;

}  // namespace quillmarsh
