// SPDX-License-Identifier: MIT
// Formats are numbered in the order in which their names came.
#include "platform/Mailbox.h"

#include <algorithm>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t kBelowFirstFormat = 0xC000;

}  // namespace

std::uint32_t QueueWithOwnMailbox::DoRegisterFormat(std::string_view name) {
  name = name.substr(0, name.find('\0'));
  if (name.empty()) return Fail(ERROR_INVALID_NAME, std::uint32_t{0});
  auto found = std::find(mFormats.begin(), mFormats.end(), name);
  if (found == mFormats.end()) found = mFormats.emplace(found, name);
  return kBelowFirstFormat + 1 + static_cast<std::uint32_t>(found - mFormats.begin());
}

bool QueueWithOwnMailbox::DoOpen() {
  if (mIsOpen) return Fail(ERROR_ACCESS_DENIED, false);
  mIsOpen = true;
  return true;
}

bool QueueWithOwnMailbox::DoIsAvailable(std::uint32_t format) {
  return mKept.contains(format);
}

bool QueueWithOwnMailbox::DoGetData(std::uint32_t format, std::string& bytes) {
  if (!mIsOpen) return Fail(ERROR_CLIPBOARD_NOT_OPEN, false);
  const auto found = mKept.find(format);
  if (found == mKept.end()) return false;
  bytes = found->second;
  return true;
}

bool QueueWithOwnMailbox::DoSetData(std::uint32_t format, std::string_view bytes) {
  if (!mIsOpen) return Fail(ERROR_CLIPBOARD_NOT_OPEN, false);
  mKept[format] = bytes;
  return true;
}

bool QueueWithOwnMailbox::DoClose() {
  if (!mIsOpen) return Fail(ERROR_CLIPBOARD_NOT_OPEN, false);
  mIsOpen = false;
  return true;
}

}  // namespace quillmarsh
