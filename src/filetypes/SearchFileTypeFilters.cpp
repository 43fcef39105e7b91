// SPDX-License-Identifier: MIT
// The masks are taken by the type's position, so they are found under any name.
#include "filetypes/SearchFileTypeFilters.h"

#include "filetypes/SFT_CFT_Interface.h"
#include "filetypes/cCommonFileTypes.h"
#include "frame/ErrorReporting.h"
#include "frame/Views.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

constexpr std::int32_t kObjectNotSet = 91;

}  // namespace

Text MasksOfSearchFileType(std::int32_t number) {
  if (number == 0) return {};
  const std::int32_t commonFileType = CFTEnumFromSFTEnum(number);
  if (commonFileType == -1) {
    ShowMessageBox(
        {u"Ooops.  Uncoded option is Select Case "
         u"PopulateIncludeExcludeFiltersBasedOnSearchFileType",
         {}});
    return {};
  }
  if (gCommonFileTypes == nullptr) throw RuntimeError(kObjectNotSet);
  return gCommonFileTypes->CommonFileTypes().Item(commonFileType + 1)->FileMasksList();
}

void PopulateIncludeExcludeFiltersBasedOnSearchFileType(std::int32_t number) {
  Guarded(u"frmFindDuplicates.PopulateIncludeExcludeFiltersBasedOnSearchFileType", [&] {
    const Text masks = MasksOfSearchFileType(number);
    gDupeSettings->SetIncludeFolders({});
    gDupeSettings->SetIncludeFiles(masks);
    gDupeSettings->SetExcludeFolders({});
    gDupeSettings->SetExcludeFiles({});
  });
}

}  // namespace quillmarsh
