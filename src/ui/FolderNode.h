// SPDX-License-Identifier: MIT
// One row of the tree of folders, and the order of rows. Plain data: a helper thread may make and
// sort rows that no view knows yet.
#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "base/CaseMapping.h"
#include "base/Text.h"

namespace quillmarsh {

enum class FolderKind : std::uint8_t { Home, Special, Drive, Folder, Note };
// Wanted: open in a view, and not begun.
enum class FolderState : std::uint8_t { Unlisted, Wanted, Reading, Listed, Failed };

struct FolderNode {
  Text name;  // of a root its path with a final backslash, of a note its text
  FolderNode* parent = nullptr;
  std::vector<std::unique_ptr<FolderNode>> children;
  int row = 0;
  FolderKind kind = FolderKind::Folder;
  FolderState state = FolderState::Unlisted;

  // What is known of a root besides. Most nodes are none.
  struct RootFacts {
    QString name;
    QString space;
  };
  std::unique_ptr<RootFacts> root;
};

// Below 0, 0, above 0: runs of digits as numbers, letters ignoring case. Only equal texts give 0.
[[nodiscard]] inline int CompareNaturally(TextView a, TextView b) {
  const auto isDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      while (i < a.size() && a[i] == u'0') ++i;
      while (j < b.size() && b[j] == u'0') ++j;
      const std::size_t fromA = i;
      const std::size_t fromB = j;
      while (i < a.size() && isDigit(a[i])) ++i;
      while (j < b.size() && isDigit(b[j])) ++j;
      if (i - fromA != j - fromB) return i - fromA < j - fromB ? -1 : 1;
      const int digits = a.substr(fromA, i - fromA).compare(b.substr(fromB, j - fromB));
      if (digits != 0) return digits;
      continue;
    }
    const char16_t unitA = UpperCase(a[i++]);
    const char16_t unitB = UpperCase(b[j++]);
    if (unitA != unitB) return unitA < unitB ? -1 : 1;
  }
  if (i < a.size() || j < b.size()) return i < a.size() ? 1 : -1;
  return a.compare(b);
}

[[nodiscard]] inline bool ComesBefore(const std::unique_ptr<FolderNode>& a,
                                      const std::unique_ptr<FolderNode>& b) {
  return CompareNaturally(a->name, b->name) < 0;
}

}  // namespace quillmarsh
