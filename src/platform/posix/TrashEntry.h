// SPDX-License-Identifier: MIT
// One entry of a trash: its name there and the note that tells a file manager where it came from.
#pragma once

#include <ctime>

#include "platform/posix/ChangePermit.h"
#include "platform/posix/UniqueFd.h"

#include <string>
#include <string_view>

namespace quillmarsh {

// The text of a note: the path's bytes percent-encoded, and the moment in local time.
[[nodiscard]] std::string TrashNoteText(std::string_view path, const std::tm& moment);

// The name for one attempt after another, beginning with 1: the name itself, then with a number
// behind it, and from some point on with a random one, so that a name that is there a thousand
// times does not cost a thousand attempts. Cut so that the note's name has no more than `longest`
// bytes, not within a character.
[[nodiscard]] std::string TrashName(std::string_view name, int attempt, std::size_t longest);
inline constexpr int MostTrashNames = 40;

// A note on the disk, which goes again at the end unless it is kept.
class TrashNote {
 public:
  // `infoFolder` and the permit must outlive it.
  TrashNote(int infoFolder, const std::string& entryName, ChangePermit& permit);
  ~TrashNote();
  TrashNote(const TrashNote&) = delete;
  TrashNote& operator=(const TrashNote&) = delete;

  // Makes the file exclusively and brings it to the disk. Answers an errno; EEXIST when the name is
  // taken.
  [[nodiscard]] int Write(const std::string& text);
  void Keep() { mIsMade = false; }

 private:
  const int mFolder;
  const std::string mName;
  ChangePermit& mPermit;
  bool mIsMade = false;
};

}  // namespace quillmarsh
