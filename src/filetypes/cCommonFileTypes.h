// SPDX-License-Identifier: MIT
// A set of file types, keyed by their names without regard to case. The whole program's set,
// gCommonFileTypes, holds the ten common types in fixed positions from 1 once the options have been
// read; the file type editor works on a set of its own. A type lives as long as a set holds it.
#pragma once

#include <memory>

#include "filetypes/cCommonFileType.h"

namespace quillmarsh {

class cCommonFileTypes {
 public:
  using Types = KeyedCollection<std::shared_ptr<cCommonFileType>>;

  // The names joined by ";".
  [[nodiscard]] Text CommonFileTypesList() const;
  // New members without masks take the place of all. An empty text changes nothing; of equal names
  // the first is taken.
  void SetCommonFileTypesList(TextView list);
  [[nodiscard]] const Types& CommonFileTypes() const { return mCommonFileTypes; }

  // False where the name is taken.
  [[nodiscard]] bool AddByName(TextView name);
  // The same for a type that the caller made; false for none too.
  [[nodiscard]] bool Add(std::shared_ptr<cCommonFileType> item);
  // False where there is no such name.
  bool Remove(TextView name);
  // The type goes to the end, with its masks. False where there is no old one, and where the new
  // name is taken; the old one is gone all the same.
  [[nodiscard]] bool Rename(TextView oldName, TextView newName);
  [[nodiscard]] std::int32_t Count() const { return mCommonFileTypes.Count(); }
  [[nodiscard]] bool DoesThisCFTExist(TextView name) const;
  // Puts the names, ascending without regard to case, in the place of what the array held. With no
  // members the array is left alone.
  void GetSortedCFTListArray(std::vector<Text>& names) const;
  // The index from 1 of the first member of that name, -1 for none.
  [[nodiscard]] std::int32_t GetCommonFileTypeIndexBasedOnKey(TextView name) const;

 private:
  [[nodiscard]] Text CreateListFromCFTs() const;
  void CreateCFTsFromList(TextView list);

  Types mCommonFileTypes;
};

// The one instance; made and released with the other program-wide objects.
extern std::unique_ptr<cCommonFileTypes> gCommonFileTypes;

}  // namespace quillmarsh
