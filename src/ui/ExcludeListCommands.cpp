// SPDX-License-Identifier: MIT
// Both commands are one, with other texts.
#include "ui/ExcludeListCommands.h"

#include <algorithm>

#include "base/TextEquality.h"
#include "filetypes/ListText.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {

namespace {

void Tell(const Text& text, TextId title) {
  ShowMessageBox({text, LoadResString(title), MessageBoxIcon::Information});
}

void AddToExcludeList(const Text& mask, clsDupeSettings& settings, TextId title, TextId alreadyIn,
                      TextId added) {
  Text list = settings.ExcludeFiles();
  const std::vector<Text> entries = SplitText(list, kListSeparator);
  if (std::ranges::any_of(
          entries, [&](const Text& entry) { return CompareIgnoringCase(entry, mask) == 0; })) {
    Tell(LoadResString(alreadyIn), title);
  } else {
    list = mask + Text(kListSeparator) + list;
    Tell(LoadResString(added) + u"\r\n" + LoadResString(330), title);
  }
  settings.SetExcludeFiles(list);
}

// A semicolon parts the masks of one entry; in a name it is one letter of any kind.
Text AsMask(TextView name) {
  Text mask(name);
  std::ranges::replace(mask, u';', u'?');
  return mask;
}

}  // namespace

void mnuFileAddFileToExcludeList_Click(TextView fileName, clsDupeSettings& settings) {
  if (fileName.empty()) return Tell(LoadResString(326), 331);
  AddToExcludeList(AsMask(fileName), settings, 333, 334, 332);
}

void mnuFileAddFileExtensionToExcludeList_Click(TextView fileName, clsDupeSettings& settings) {
  if (fileName.empty()) return Tell(LoadResString(326), 327);
  const Text extension = SplitNameAndExtension(fileName).extension;
  if (extension.empty()) return Tell(LoadResString(328), 327);
  AddToExcludeList(u"*." + AsMask(extension), settings, 327, 496, 329);
}

}  // namespace quillmarsh
