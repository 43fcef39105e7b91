// SPDX-License-Identifier: MIT
// One family of line icons, drawn as vectors in the palette's text colour at the moment when they
// are painted: crisp at every scale, in light and dark themes, and following a change of theme
// while the program runs. A disabled icon is drawn in the palette's disabled colour.
#pragma once

#include <QIcon>
#include <QString>
#include <QStringList>

namespace quillmarsh {

// By the key of the picture without "_enabled" and "_disabled", in lower case: "find", "stop",
// "filter", "history", "forward", "back", "wizard", "undo", "remove", "options", "view_file",
// "file_properties", "media_info", "select_file", "unselect_file", "files_searched",
// "num_duplicates", "files_selected", "folder", "drive", "home", "application". An unknown key
// gives a null icon.
[[nodiscard]] QIcon IconFor(const QString& key);
// Every key that has a picture.
[[nodiscard]] QStringList IconKeys();

}  // namespace quillmarsh
