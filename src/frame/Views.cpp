// SPDX-License-Identifier: MIT
// The views in use, and what happens where there is none.
#include "frame/Views.h"

namespace quillmarsh {

Views gViews;

MessageBoxResult CarefulAnswer(MessageBoxButtons buttons) {
  switch (buttons) {
    case MessageBoxButtons::Ok:
      return MessageBoxResult::Ok;
    case MessageBoxButtons::YesNo:
      return MessageBoxResult::No;
    case MessageBoxButtons::OkCancel:
    case MessageBoxButtons::YesNoCancel:
      break;
  }
  return MessageBoxResult::Cancel;
}

MessageBoxResult ShowMessageBox(const MessageBoxRequest& request) {
  return gViews.messages != nullptr ? gViews.messages->Show(request)
                                    : CarefulAnswer(request.buttons);
}

Text InputBoxText(TextView prompt, TextView title, TextView defaultText) {
  return gViews.inputBox != nullptr ? gViews.inputBox->Show(prompt, title, defaultText) : Text();
}

void SetPanel(TextView key, TextView text) {
  if (gViews.status != nullptr) gViews.status->SetPanel(key, text);
}

void SetPanelToolTip(TextView key, TextView text) {
  if (gViews.status != nullptr) gViews.status->SetPanelToolTip(key, text);
}

}  // namespace quillmarsh
