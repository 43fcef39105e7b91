// SPDX-License-Identifier: MIT
// A name's place in the table below is its number.
#include "filetypes/modCommonFileTypes.h"

#include <iterator>

#include "filetypes/DefaultFileMasks.h"
#include "filetypes/cCommonFileTypes.h"
#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "fsobjects/clsStringAppend.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

constexpr TextId kNames[] = {960, 961, 962, 963, 964, 965, 966, 967, 780, 968};
constexpr std::int32_t kCount = std::ssize(kNames);

}  // namespace

Text GetDefaultCFTList() {
  clsStringAppend list;
  for (std::int32_t number = 0; number < kCount; ++number) {
    if (number > 0) list.Append(u";");
    list.Append(CFTNameFromEnum(number));
  }
  return list.CurrentString();
}

std::int32_t CFTEnumFromName(TextView name) {
  for (std::int32_t number = 0; number < kCount; ++number) {
    if (CFTNameFromEnum(number) == name) return number;
  }
  return -1;
}

Text CFTNameFromEnum(std::int32_t number) {
  return number < 0 || number >= kCount ? Text() : LoadResString(kNames[number]);
}

Text GetDefaultFileMasksFromCFTName(TextView name, TextView separator) {
  return DefaultFileMasksOf(CFTEnumFromName(name), separator);
}

void CopyCFTsObject(const cCommonFileTypes& source, cCommonFileTypes* target) {
  // Copied onto itself, a set would lose its masks at the first step.
  if (target == nullptr || target == &source) return;
  Guarded(u"modCommonFileTypes.CopyCFTsObject", [&] {
    target->SetCommonFileTypesList(source.CommonFileTypesList());
    for (const auto& type : source.CommonFileTypes()) {
      const std::int32_t index = target->GetCommonFileTypeIndexBasedOnKey(type->Name());
      target->CommonFileTypes().Item(index)->SetFileMasksList(type->FileMasksList());
    }
  });
}

bool RestoreDefaultFileTypeMasks() {
  if (gCommonFileTypes == nullptr) return false;
  return Guarded(u"modCommonFileTypes.RestoreDefaultFileTypeMasks", [] {
    for (const auto& type : gCommonFileTypes->CommonFileTypes()) {
      type->SetFileMasksList(GetDefaultFileMasksFromCFTName(type->Name(), kListSeparator));
    }
  });
}

}  // namespace quillmarsh
