// SPDX-License-Identifier: MIT
// Each refusal is a sentence, its reasons, and where help is.
#include "filetypes/CustomFileMask.h"

#include <algorithm>

#include <algorithm>

#include "frame/TextTable.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

constexpr TextView kWildcards = u"*?";

Text Refusal(TextId sentence, const Text& reasons) {
  const Text emptyLine = u"\r\n\r\n";
  return LoadResString(sentence) + emptyLine + reasons + emptyLine + LoadResString(1046);
}

}  // namespace

Text NormalizedFileMask(TextView typed) {
  const Text mask(TrimBlanks(typed));
  return mask.starts_with(u'.') ? u"*" + mask : mask;
}

bool IsCustomFileMaskValid(TextView mask, Text& message) {
  const std::size_t dot = mask.find(u'.');
  if (mask.empty()) {
    message = LoadResString(1044);
  } else if (dot == TextView::npos) {
    message = Refusal(1045, LoadResString(607));
  } else if (dot == mask.size() - 1) {
    message = Refusal(1045, LoadResString(608));
  } else if (dot == 0) {
    message = Refusal(1045, LoadResString(609) + u"\r\n" + LoadResString(610));
  } else if (mask == u"*.*") {
    message = Refusal(1047, LoadResString(1048));
  } else {
    message.clear();
    return true;
  }
  return false;
}

Text FileTypeDescOfMask(TextView mask) {
  const std::size_t dot = mask.rfind(u'.');
  if (dot == TextView::npos || dot == mask.size() - 1) return {};
  if (mask.substr(dot).find_first_of(kWildcards) != TextView::npos) return {};
  // Any name that the mask fits.
  Text name(mask);
  std::ranges::replace_if(
      name, [](char16_t unit) { return kWildcards.find(unit) != TextView::npos; }, u'x');
  return TrimAtNull(TheMachine().Desktop().SHGetFileInfoW(name));
}

}  // namespace quillmarsh
