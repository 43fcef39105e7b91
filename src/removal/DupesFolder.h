// SPDX-License-Identifier: MIT
// The DUPES folder, which takes removed files and rebuilds below itself the paths they came from:
// where a file goes, how a person moves the folder, and how the method of removal is chosen. What
// the old folder holds stays there when the folder is moved. The commands show message boxes and
// raise nothing.
#pragma once

#include <cstdint>

#include "base/Text.h"

namespace quillmarsh {

// The path below the DUPES folder for a file of a drive ("[D DRIVE]\Music\a.mp3") or of a share
// ("[nas_public SHARE]\docs\b.txt"), the case of its folders kept. Empty for a path without a root.
[[nodiscard]] Text PathInDupesFolder(TextView fileSpec, TextView dupesFolder);

// Makes the folder the DUPES folder, and the folder itself if it is missing; when that fails the
// old one stays. A box tells which.
void ChangeDupesFolderPath(TextView newPath);

// Asks for the folder in which a new DUPES folder is to lie, until one is confirmed or the person
// gives up.
void mnuOptionsDupesFolderLocation_Click();

// The check marks of the four menu items mnuRemovalOptions, by removal method.
class RemovalOptionsView {
 public:
  virtual ~RemovalOptionsView() = default;
  virtual void CheckRemovalOption(std::int32_t index, bool isChecked) = 0;
};

// Chooses the removal method 0 to 3; any other index does nothing. The method that moves files to
// one other folder asks for it each time.
void mnuRemovalOptions_Click(std::int32_t index, RemovalOptionsView& view);

}  // namespace quillmarsh
