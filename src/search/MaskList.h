// SPDX-License-Identifier: MIT
// A list of file masks, compiled once and asked for each file. It answers exactly what asking
// PathMatchSpecW for one mask after another would, at a cost that hardly grows with the list.
#pragma once

#include <bitset>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

class MaskList {
 public:
  MaskList() = default;
  // Each mask may itself be a list that ';' separates.
  explicit MaskList(const std::vector<Text>& masks);

  [[nodiscard]] bool IsEmpty() const { return mIsEmpty; }
  // Whether the name matches any of the masks, ignoring case.
  [[nodiscard]] bool DoesFileMatchAnyMask(TextView name) const;

 private:
  static constexpr std::size_t kGramBits = 1U << 14U;

  void Add(TextView mask);
  void AddByGram(const Text& mask);
  [[nodiscard]] bool HasListedExtension(TextView upperName) const;
  [[nodiscard]] bool MatchesByGrams(TextView upperName) const;

  bool mIsEmpty = true;
  bool mMatchesAll = false;
  std::unordered_set<Text> mExtensions;  // of masks such as "*.dll", in upper case, without the dot
  std::size_t mLongestExtension = 0;
  // Any other mask is filed under three neighbouring letters that a matching name must hold.
  std::unordered_map<std::uint64_t, std::vector<Text>> mByGram;
  std::bitset<kGramBits> mGrams;  // a coarse set of those in use
  std::vector<Text> mOthers;      // masks without three plain letters in a row
};

}  // namespace quillmarsh
