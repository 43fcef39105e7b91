// SPDX-License-Identifier: MIT
// The two properties that are worked out when they are set.
#include "selection/clsMarkForRemovalWizard.h"

#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"

namespace quillmarsh {

std::unique_ptr<clsMarkForRemovalWizard> gMarkForRemovalWizardOptions;

void clsMarkForRemovalWizard::SetDriveSpec(TextView value) {
  if (!value.empty()) mDriveSpec = RemoveBackslash(value);
  // A list entry has the volume's label behind the drive.
  if (MatchesSpec(mDriveSpec, u"?:*")) mDriveSpec.resize(2);
}

void clsMarkForRemovalWizard::SetFileSize(Currency value) {
  mFileSize = value;
  UpdateFileSizeInBytes();
}

void clsMarkForRemovalWizard::SetSizeIncrement(std::int32_t value) {
  mSizeIncrement = value;
  UpdateFileSizeInBytes();
}

void clsMarkForRemovalWizard::UpdateFileSizeInBytes() {
  constexpr std::int32_t kGigabytes = 3;
  constexpr std::int64_t kStep = 1024;
  if (mSizeIncrement < 0 || mSizeIncrement > kGigabytes) return;
  Currency bytes = mFileSize;
  for (std::int32_t step = 0; step < mSizeIncrement; ++step) bytes = bytes * kStep;
  mFileSizeInBytes = bytes;
}

}  // namespace quillmarsh
