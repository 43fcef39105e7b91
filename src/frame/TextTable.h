// SPDX-License-Identifier: MIT
// The numbered text table: every text that a person sees, by its number. The table is fixed at
// build time and read-only; a text is fetched anew at each use. An id that is written in the code
// is held against the table by the compiler.
#pragma once

#include <array>
#include <span>

#include "base/Text.h"

namespace quillmarsh {

struct TextTableRow {
  int id;
  TextView text;
};

inline constexpr TextTableRow kTextTable[] = {
#include "frame/TextTableRows.inc"
};

// An id that has a row. Made from a literal, it does not compile without one.
class TextId {
 public:
  consteval TextId(int id) : mId(id) {  // NOLINT: a number is how an id is written
    for (const TextTableRow& row : kTextTable) {
      if (row.id == id) return;
    }
    throw "no row with this id";
  }
  [[nodiscard]] constexpr int Number() const { return mId; }

 private:
  int mId;
};

// The text of an id.
[[nodiscard]] Text LoadResString(TextId id);
// The same for an id that is worked out at run time; an id without a row raises run-time error 326.
[[nodiscard]] Text LoadResStringAt(int id);

// "True" or "False", the words in which option lists keep a Boolean.
[[nodiscard]] Text BoolToText(bool value);
// True for the word "True" in any case, false for all else.
[[nodiscard]] bool TextToBool(TextView text);

}  // namespace quillmarsh
