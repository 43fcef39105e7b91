// SPDX-License-Identifier: MIT
// The program's options file: the one place that knows its name, its sections, every key with its
// form and its default, and how lists are stored. It moves values between the file and the objects
// that hold them while the program runs, and keeps no state. What cannot be read takes its default,
// or is reported and ends the reading there; a write that fails is told once and the save goes on.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

// The part of the main form that shows an option which is kept nowhere else.
class ProgramOptionsForm {
 public:
  virtual ~ProgramOptionsForm() = default;
  virtual void CheckMnuOptionsCheckFolderPermission(bool isChecked) = 0;
};

// "quillmarsh.ini", whatever the program's file is called.
[[nodiscard]] Text GetIniFileName();
// The whole path. Makes the folder when it is missing.
[[nodiscard]] Text GetIniFileSpec();

// Fills gDupeSettings, gMarkForRemovalWizardOptions, gCommonFileTypes, mDupesFolderPath and
// mCheckFolderPermission, and makes the DUPES folder.
void ReadProgramOptionsFromIniFile(ProgramOptionsForm& form);
// Of all of the file, only where the DUPES folder lies, for a program that takes its options from
// elsewhere.
void ReadDupesFolderPathFromIniFile();

// Writes them all, key by key; a file that is not UTF-16 is made so first.
void SaveProgramOptionsToIniFile();
void SaveFilterOptionsToIniFile(TextView IncludeFolders, TextView IncludeFiles,
                                TextView ExcludeFolders, TextView ExcludeFiles);

// From a key that only a person can have put into the file. Nothing consults it.
extern bool gShowDupeDebugInfo;

}  // namespace quillmarsh
