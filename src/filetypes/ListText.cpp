// SPDX-License-Identifier: MIT
// One walk from separator to separator.
#include "filetypes/ListText.h"

#include "settings/clsDupeSettings.h"

namespace quillmarsh {

TextView SeparatorOfList(TextView list) {
  return list.find(kListSeparator) != TextView::npos ? kListSeparator : TextView(u",");
}

std::vector<Text> SplitText(TextView text, TextView separator) {
  std::vector<Text> pieces;
  if (text.empty()) return pieces;
  std::size_t begin = 0;
  for (std::size_t end = text.find(separator); end != TextView::npos;
       end = text.find(separator, begin)) {
    pieces.emplace_back(text.substr(begin, end - begin));
    begin = end + separator.size();
  }
  pieces.emplace_back(text.substr(begin));
  return pieces;
}

std::vector<Text> SplitListText(TextView list) {
  return SplitText(list, SeparatorOfList(list));
}

}  // namespace quillmarsh
