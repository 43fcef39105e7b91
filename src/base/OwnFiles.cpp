// SPDX-License-Identifier: MIT
// A beginning, decimal digits, and the ending of the kind.
#include "base/OwnFiles.h"

namespace quillmarsh {
namespace {

constexpr TextView kBeginning = u".quillmarsh-";

constexpr TextView EndingOf(OwnFile kind) {
  return kind == OwnFile::Part ? u".part" : u".aside";
}

}  // namespace

Text OwnFileName(OwnFile kind, std::uint64_t number) {
  const std::string digits = std::to_string(number);
  return Text(kBeginning).append(digits.begin(), digits.end()).append(EndingOf(kind));
}

bool IsOwnFileName(TextView name, OwnFile kind) {
  const TextView ending = EndingOf(kind);
  if (!name.starts_with(kBeginning) || !name.ends_with(ending)) return false;
  if (name.size() <= kBeginning.size() + ending.size()) return false;
  name.remove_prefix(kBeginning.size());
  name.remove_suffix(ending.size());
  return name.find_first_not_of(u"0123456789") == TextView::npos;
}

}  // namespace quillmarsh
