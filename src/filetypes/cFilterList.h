// SPDX-License-Identifier: MIT
// One of the four filter lists while a person edits it: its entries, and beside them the text that
// will be stored. It changes no setting and asks no disk.
#pragma once

#include <vector>

#include "base/Text.h"

namespace quillmarsh {

enum class FilterListKind { Folders, Files };

class cFilterList {
 public:
  enum class AddResult {
    Added,
    Empty,    // there was nothing to add
    Ignored,  // it is there already, in any case of letters; or it is the mask of all files
  };

  // `stored` is joined by "<:>", or by "," where it holds none of those.
  cFilterList(FilterListKind kind, TextView stored);

  [[nodiscard]] const std::vector<Text>& Entries() const { return mEntries; }
  // The text as it was stored until an entry is added or removed. An addition leaves it as it was
  // and goes behind it; a removal joins all entries anew by "<:>".
  [[nodiscard]] const Text& StoredText() const { return mStoredText; }

  [[nodiscard]] AddResult Add(TextView entry);
  // False where there is no such entry (from 0).
  [[nodiscard]] bool Remove(int position);

 private:
  FilterListKind mKind;
  std::vector<Text> mEntries;
  Text mStoredText;
};

}  // namespace quillmarsh
