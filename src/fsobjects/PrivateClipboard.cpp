// SPDX-License-Identifier: MIT
// Each access opens the clipboard for as short as it takes.
#include "fsobjects/PrivateClipboard.h"

#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"

namespace quillmarsh {

namespace {

constexpr TextView kProgressFormat = u"CRC_PROGRESS_INDICATOR_FOR_QM";
constexpr std::uint32_t kBelowFirstPrivateFormat = 0xC000;

bool isProgressTold = false;

class OpenedClipboard {
 public:
  OpenedClipboard() : mIsOpen(TheMachine().Queue().OpenClipboard()) {}
  ~OpenedClipboard() {
    if (mIsOpen) TheMachine().Queue().CloseClipboard();
  }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;
  [[nodiscard]] bool IsOpen() const { return mIsOpen; }

 private:
  bool mIsOpen;
};

}  // namespace

std::uint32_t RegisterPrivateClipboardFormat(TextView name) {
  const std::string narrow = ToCodePage1252(name) + '\0';
  const std::uint32_t format = TheMachine().Queue().RegisterClipboardFormatA(narrow);
  return format > kBelowFirstPrivateFormat ? format : 0;
}

Text GetPrivateClipboardText(std::uint32_t format) {
  const OpenedClipboard clipboard;
  std::string bytes;
  QueueAndMailbox& mailbox = TheMachine().Queue();
  if (!clipboard.IsOpen() || !mailbox.IsClipboardFormatAvailable(format) ||
      !mailbox.GetClipboardData(format, bytes))
    return {};
  return FromCodePage1252(bytes);
}

Text GetCRCProgressText() {
  const std::uint32_t format = RegisterPrivateClipboardFormat(kProgressFormat);
  return format != 0 ? GetPrivateClipboardText(format) : Text();
}

void PublishCRCProgressText(std::string_view text) {
  const std::uint32_t format = RegisterPrivateClipboardFormat(kProgressFormat);
  const OpenedClipboard clipboard;
  if (format != 0 && clipboard.IsOpen()) TheMachine().Queue().SetClipboardData(format, text);
  isProgressTold = !text.empty();
}

void ClearCRCProgressText() {
  if (isProgressTold) PublishCRCProgressText({});
}

}  // namespace quillmarsh
