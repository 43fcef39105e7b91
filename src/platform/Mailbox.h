// SPDX-License-Identifier: MIT
// The mailbox of machines whose clipboard is no place for private formats: kept in the program's
// own memory, under the rules of the clipboard calls.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/QueueAndMailbox.h"

namespace quillmarsh {

class QueueWithOwnMailbox : public QueueAndMailbox {
 public:
  using QueueAndMailbox::QueueAndMailbox;

 private:
  std::uint32_t DoRegisterFormat(std::string_view name) final;
  bool DoOpen() final;
  bool DoIsAvailable(std::uint32_t format) final;
  bool DoGetData(std::uint32_t format, std::string& bytes) final;
  bool DoSetData(std::uint32_t format, std::string_view bytes) final;
  bool DoClose() final;

  std::vector<std::string> mFormats;
  std::map<std::uint32_t, std::string> mKept;
  bool mIsOpen = false;
};

}  // namespace quillmarsh
