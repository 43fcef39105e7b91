// SPDX-License-Identifier: MIT
// The order of the letters is the order of the table.
#include "fsobjects/AttributeLetters.h"

#include "platform/SystemConstants.h"

namespace quillmarsh {

Text AttributeLetters(std::uint32_t attributes) {
  struct Letter {
    std::uint32_t bit;
    char16_t letter;
  };
  static constexpr Letter kLetters[] = {
      {FILE_ATTRIBUTE_READONLY, u'R'},      {FILE_ATTRIBUTE_HIDDEN, u'H'},
      {FILE_ATTRIBUTE_SYSTEM, u'S'},        {FILE_ATTRIBUTE_ARCHIVE, u'A'},
      {FILE_ATTRIBUTE_DIRECTORY, u'D'},     {FILE_ATTRIBUTE_TEMPORARY, u'T'},
      {FILE_ATTRIBUTE_COMPRESSED, u'C'},    {FILE_ATTRIBUTE_ENCRYPTED, u'E'},
      {FILE_ATTRIBUTE_OFFLINE, u'O'},       {FILE_ATTRIBUTE_SPARSE_FILE, u'P'},
      {FILE_ATTRIBUTE_REPARSE_POINT, u'L'}, {FILE_ATTRIBUTE_NOT_CONTENT_INDEXED, u'I'},
  };
  Text text;
  for (const auto& [bit, letter] : kLetters) {
    if ((attributes & bit) != 0) text += letter;
  }
  return text;
}

}  // namespace quillmarsh
