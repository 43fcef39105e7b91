// SPDX-License-Identifier: MIT
// The list between its two forms, and the changes that the editor makes to it.
#include "filetypes/cCommonFileType.h"

#include "base/TextEquality.h"
#include "filetypes/ListText.h"
#include "filetypes/modCommonFileTypes.h"
#include "frame/ErrorReporting.h"

namespace quillmarsh {

Text cCommonFileType::FileMasksList() const {
  return CreateListFromFileMasks(SeparatorOfList(mFileMasksList));
}

void cCommonFileType::SetFileMasksList(TextView list) {
  mFileMasksList = list;
  CreateFileMasksFromList(SeparatorOfList(mFileMasksList));
}

void cCommonFileType::CreateFileMasksFromList(TextView separator) {
  mFileMasks = {};
  for (Text& mask : SplitText(mFileMasksList, separator)) mFileMasks.Add(std::move(mask));
}

Text cCommonFileType::CreateListFromFileMasks(TextView separator) const {
  return JoinTexts(mFileMasks, separator);
}

std::int32_t cCommonFileType::EnumType() const {
  return mName.empty() ? -1 : CFTEnumFromName(mName);
}

bool cCommonFileType::AddFileMask(TextView mask) {
  // Any failure is a refusal here, and none is told.
  try {
    return mFileMasks.Add(Text(mask), mask);
  } catch (...) {
    return false;
  }
}

bool cCommonFileType::RemoveFileMask(TextView mask) {
  bool removed = false;
  Guarded(u"cCommonFileType.RemoveFileMask", [&] {
    const std::int32_t index = GetFileMaskIndexBasedOnKey(mask);
    if (index == -1) return;
    mFileMasks.Remove(index);
    removed = true;
  });
  return removed;
}

bool cCommonFileType::RenameFileMask(TextView oldMask, TextView newMask) {
  bool renamed = false;
  Guarded(u"cCommonFileType.RenameFileMask", [&] {
    const Text added(newMask);  // the caller may look at a mask that moves
    renamed = RemoveFileMask(oldMask) && AddFileMask(added);
  });
  return renamed;
}

bool cCommonFileType::DoesThisFileMaskExist(TextView mask) const {
  return GetFileMaskIndexBasedOnKey(mask) != -1;
}

std::int32_t cCommonFileType::GetFileMaskIndexBasedOnKey(TextView mask) const {
  std::int32_t found = -1;
  Guarded(u"cCommonFileType.GetFileMaskIndexBasedOnKey", [&] {
    std::int32_t index = 0;
    for (const Text& item : mFileMasks) {
      index += 1;
      if (!AreStringsEqual(item, mask, true)) continue;
      found = index;
      return;
    }
  });
  return found;
}

}  // namespace quillmarsh
