// SPDX-License-Identifier: MIT
// The flat file record of a search. It owns nothing: the name is a handle into the search's name
// arena, the folder a key of the folder path list, and the full path is always the folder's path
// followed by the name. The layout is fixed, since records live in flat arrays of millions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "base/Currency.h"
#include "base/Date.h"
#include "base/NameArena.h"

namespace quillmarsh {

struct DupeFileUDT {
  Currency Size;                     // bytes as a number
  Date CreatedDate;                  // local time
  Date LastModifiedDate;             // local time
  std::uint32_t Attributes = 0;      // the attribute word
  std::int32_t CRC32 = 0;            // 0 until computed
  NameHandle Name = 0;               // file name without folder
  std::int32_t ParentFolderIdx = 0;  // key of the folder
};

static_assert(sizeof(DupeFileUDT) == 40);
static_assert(offsetof(DupeFileUDT, Size) == 0);
static_assert(offsetof(DupeFileUDT, CreatedDate) == 8);
static_assert(offsetof(DupeFileUDT, LastModifiedDate) == 16);
static_assert(offsetof(DupeFileUDT, Attributes) == 24);
static_assert(offsetof(DupeFileUDT, CRC32) == 28);
static_assert(offsetof(DupeFileUDT, Name) == 32);
static_assert(offsetof(DupeFileUDT, ParentFolderIdx) == 36);
static_assert(std::is_trivially_copyable_v<DupeFileUDT>);

}  // namespace quillmarsh
