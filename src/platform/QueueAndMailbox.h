// SPDX-License-Identifier: MIT
// The event queue, as far as a long loop asks it: whether anything waits that is worth a pump. And
// the clipboard under private formats, which serves as a mailbox inside the program and does not
// touch what a person has copied.
#pragma once

#include <string>
#include <string_view>

#include "platform/CallHook.h"

namespace quillmarsh {

class QueueAndMailbox : public Role {
 public:
  using Role::Role;

  // Not 0 when an event of one of the kinds (QS_...) waits.
  [[nodiscard]] std::uint32_t GetQueueStatus(std::uint32_t kinds) {
    return Run(Operation::GetQueueStatus, {}, std::uint32_t{0}, [&] { return DoGetStatus(kinds); });
  }

  // The number of a private format, the same for the same name; above 0xC000, 0 on failure.
  [[nodiscard]] std::uint32_t RegisterClipboardFormatA(std::string_view name) {
    return Run(Operation::RegisterClipboardFormatA, {}, std::uint32_t{0},
               [&] { return DoRegisterFormat(name); });
  }
  // The three below want an open clipboard, and a close behind them.
  [[nodiscard]] bool OpenClipboard() {
    return Run(Operation::OpenClipboard, {}, false, [&] { return DoOpen(); });
  }
  [[nodiscard]] bool IsClipboardFormatAvailable(std::uint32_t format) {
    return Run(Operation::IsClipboardFormatAvailable, {}, false,
               [&] { return DoIsAvailable(format); });
  }
  // The bytes kept under a format; false when there are none.
  [[nodiscard]] bool GetClipboardData(std::uint32_t format, std::string& bytes) {
    return Run(Operation::GetClipboardData, {}, false, [&] { return DoGetData(format, bytes); });
  }
  // Replaces what is kept under the format, and nothing else.
  bool SetClipboardData(std::uint32_t format, std::string_view bytes) {
    return Run(Operation::SetClipboardData, {}, false, [&] { return DoSetData(format, bytes); });
  }
  bool CloseClipboard() {
    return Run(Operation::CloseClipboard, {}, false, [&] { return DoClose(); });
  }

 private:
  virtual std::uint32_t DoGetStatus(std::uint32_t kinds) = 0;
  virtual std::uint32_t DoRegisterFormat(std::string_view name) = 0;
  virtual bool DoOpen() = 0;
  virtual bool DoIsAvailable(std::uint32_t format) = 0;
  virtual bool DoGetData(std::uint32_t format, std::string& bytes) = 0;
  virtual bool DoSetData(std::uint32_t format, std::string_view bytes) = 0;
  virtual bool DoClose() = 0;
};

}  // namespace quillmarsh
