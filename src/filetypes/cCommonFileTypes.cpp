// SPDX-License-Identifier: MIT
// Members are found by walking the set, which is short.
#include "filetypes/cCommonFileTypes.h"

#include "base/TextEquality.h"
#include "filetypes/ListText.h"
#include "filetypes/modQuickSortStringArray.h"
#include "frame/ErrorReporting.h"

namespace quillmarsh {

std::unique_ptr<cCommonFileTypes> gCommonFileTypes;

namespace {

constexpr TextView kNameSeparator = u";";

std::vector<Text> NamesOf(const cCommonFileTypes::Types& types) {
  std::vector<Text> names;
  for (const auto& type : types) names.push_back(type->Name());
  return names;
}

}  // namespace

Text cCommonFileTypes::CommonFileTypesList() const {
  return CreateListFromCFTs();
}

void cCommonFileTypes::SetCommonFileTypesList(TextView list) {
  if (!list.empty()) CreateCFTsFromList(list);
}

Text cCommonFileTypes::CreateListFromCFTs() const {
  return JoinTexts(NamesOf(mCommonFileTypes), kNameSeparator);
}

void cCommonFileTypes::CreateCFTsFromList(TextView list) {
  const std::vector<Text> names = SplitText(list, kNameSeparator);
  mCommonFileTypes = {};
  // A name that comes again is refused and so left out.
  for (const Text& name : names) static_cast<void>(AddByName(name));
}

bool cCommonFileTypes::AddByName(TextView name) {
  // Any failure is a refusal here, as in Add, and none is told.
  try {
    auto type = std::make_shared<cCommonFileType>();
    type->SetName(name);
    return Add(std::move(type));
  } catch (...) {
    return false;
  }
}

bool cCommonFileTypes::Add(std::shared_ptr<cCommonFileType> item) {
  if (item == nullptr) return false;
  try {
    const TextView key = item->Name();
    return mCommonFileTypes.Add(std::move(item), key);
  } catch (...) {
    return false;
  }
}

bool cCommonFileTypes::Remove(TextView name) {
  bool removed = false;
  Guarded(u"cCommonFileTypes.Remove", [&] {
    const std::int32_t index = GetCommonFileTypeIndexBasedOnKey(name);
    if (index == -1) return;
    mCommonFileTypes.Remove(index);
    removed = true;
  });
  return removed;
}

bool cCommonFileTypes::Rename(TextView oldName, TextView newName) {
  bool renamed = false;
  Guarded(u"cCommonFileTypes.Rename", [&] {
    const std::int32_t index = GetCommonFileTypeIndexBasedOnKey(oldName);
    if (index == -1) return;
    const Text masks = mCommonFileTypes.Item(index)->FileMasksList();
    const Text added(newName);  // the caller may look at the name of the member that goes
    mCommonFileTypes.Remove(index);
    if (!AddByName(added)) return;
    mCommonFileTypes.Item(Count())->SetFileMasksList(masks);
    renamed = true;
  });
  return renamed;
}

bool cCommonFileTypes::DoesThisCFTExist(TextView name) const {
  return GetCommonFileTypeIndexBasedOnKey(name) != -1;
}

void cCommonFileTypes::GetSortedCFTListArray(std::vector<Text>& names) const {
  Guarded(u"cCommonFileTypes.GetSortedCFTListArray", [&] {
    if (Count() == 0) return;
    names = NamesOf(mCommonFileTypes);
    QuickSortStringArray(names);
  });
}

std::int32_t cCommonFileTypes::GetCommonFileTypeIndexBasedOnKey(TextView name) const {
  std::int32_t found = -1;
  Guarded(u"cCommonFileTypes.GetCommonFileTypeIndexBasedOnKey", [&] {
    std::int32_t index = 0;
    for (const auto& type : mCommonFileTypes) {
      index += 1;
      if (!AreStringsEqual(type->Name(), name, true)) continue;
      found = index;
      return;
    }
  });
  return found;
}

}  // namespace quillmarsh
