// SPDX-License-Identifier: MIT
// What a new object holds.
#include "settings/clsDupeSettings.h"

#include "fsobjects/modBitManipulation.h"

namespace quillmarsh {

std::unique_ptr<clsDupeSettings> gDupeSettings;

namespace {

constexpr TextView kNamesLeftOutAtFirst =
    u"autoexec.bat<:>command.com<:>drvspace.bin<:>system.dat<:>user.dat<:>system.ini<:>win.ini<:>"
    u"protocol.ini<:>mscreate.dir<:>anti-vir.dat<:>*.drv<:>*.sys<:>*.ocx<:>*.dll";

constexpr std::int32_t kFlagsSetAtFirst[] = {
    3, 4,                          // names and sizes match
    8, 9, 10, 11, 12, 13, 14, 15,  // everything that can be ignored is
};

}  // namespace

clsDupeSettings::clsDupeSettings() : mExcludeFiles(kNamesLeftOutAtFirst) {
  for (const std::int32_t bit : kFlagsSetAtFirst) SetFlag(bit, true);
}

bool clsDupeSettings::GetFlag(std::int32_t bit) const {
  return IsBitSetInLong(bit, mFlags);
}

void clsDupeSettings::SetFlag(std::int32_t bit, bool value) {
  mFlags = value ? SetBitInLong(bit, mFlags) : ClearBitInLong(bit, mFlags);
}

}  // namespace quillmarsh
