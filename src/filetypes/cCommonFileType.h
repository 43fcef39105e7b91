// SPDX-License-Identifier: MIT
// One file type: a name and its list of file masks, such as "Audio Files" with "*.mp3", "*.wav".
// Owns the masks in their order, repeats included. It validates nothing: a mask may be any text,
// the empty one too. Masks are compared without regard to case.
#pragma once

#include "filetypes/KeyedCollection.h"

namespace quillmarsh {

class cCommonFileType {
 public:
  [[nodiscard]] const Text& Name() const { return mName; }
  void SetName(TextView value) { mName = value; }

  // The masks joined by the separator of the text that was last assigned: "<:>" where that held
  // one, else ",". So what was assigned as a single mask comes back with "," whatever was added.
  [[nodiscard]] Text FileMasksList() const;
  // Takes the place of all masks. None of the new ones bears a key.
  void SetFileMasksList(TextView list);
  [[nodiscard]] const KeyedCollection<Text>& FileMasks() const { return mFileMasks; }

  // The number of the common file type of this name, 0 to 9; -1 where there is none.
  [[nodiscard]] std::int32_t EnumType() const;

  // False where the mask was added in this way before and is still there. A mask that came with an
  // assigned list does not count, so the editor asks DoesThisFileMaskExist first.
  [[nodiscard]] bool AddFileMask(TextView mask);
  // The first such mask. False where there is none.
  bool RemoveFileMask(TextView mask);
  // The new mask goes to the end of the list. False where there is no old one, and where the new
  // one is refused; the old one is gone all the same.
  [[nodiscard]] bool RenameFileMask(TextView oldMask, TextView newMask);
  [[nodiscard]] bool DoesThisFileMaskExist(TextView mask) const;
  // The index from 1 of the first such mask, -1 for none.
  [[nodiscard]] std::int32_t GetFileMaskIndexBasedOnKey(TextView mask) const;

 private:
  void CreateFileMasksFromList(TextView separator);
  [[nodiscard]] Text CreateListFromFileMasks(TextView separator) const;

  Text mName;
  Text mFileMasksList;  // as last assigned; its separator is that of the list
  KeyedCollection<Text> mFileMasks;
};

}  // namespace quillmarsh
