// SPDX-License-Identifier: MIT
// The mapping of generic rights, which no machine does differently.
#include "platform/Access.h"

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t GenericExecuteRight = 0x20000000;
constexpr std::uint32_t GenericAllRight = 0x10000000;
constexpr std::uint32_t AllGenericRights =
    GENERIC_READ | GENERIC_WRITE | GenericExecuteRight | GenericAllRight;

}  // namespace

std::uint32_t MapGenericMask(std::uint32_t mask, const GENERIC_MAPPING& mapping) {
  std::uint32_t mapped = mask & ~AllGenericRights;
  if ((mask & GENERIC_READ) != 0) mapped |= mapping.GenericRead;
  if ((mask & GENERIC_WRITE) != 0) mapped |= mapping.GenericWrite;
  if ((mask & GenericExecuteRight) != 0) mapped |= mapping.GenericExecute;
  if ((mask & GenericAllRight) != 0) mapped |= mapping.GenericAll;
  return mapped;
}

}  // namespace quillmarsh
