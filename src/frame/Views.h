// SPDX-License-Identifier: MIT
// What the program's logic asks of a person or shows to one: message boxes, the input box, status
// panels, the progress bar and the pump. Three implementations exist: the window, the console and a
// scripted one for tests. The views in use are set by the entry, which owns them; nothing here is
// owned.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

enum class MessageBoxIcon { None, Exclamation, Information, Question, Stop };
enum class MessageBoxButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MessageBoxResult { Ok, Cancel, Yes, No };

struct MessageBoxRequest {
  Text text;
  Text title;
  MessageBoxIcon icon = MessageBoxIcon::None;
  MessageBoxButtons buttons = MessageBoxButtons::Ok;
  MessageBoxResult defaultButton = MessageBoxResult::Ok;
};

class MessageView {
 public:
  virtual ~MessageView() = default;
  // Modal: returns when the person has answered.
  virtual MessageBoxResult Show(const MessageBoxRequest& request) = 0;
};

class InputBoxView {
 public:
  virtual ~InputBoxView() = default;
  // Modal: a box with one line of text, the default in it and selected. Empty when it was
  // cancelled, which nobody can tell from an empty line.
  [[nodiscard]] virtual Text Show(TextView prompt, TextView title, TextView defaultText) = 0;
};

// Keys of the status panels.
inline constexpr TextView PANEL1 = u"PANEL1";
inline constexpr TextView PANEL2 = u"PANEL2";
inline constexpr TextView FILES_SEARCHED = u"FILES_SEARCHED";
inline constexpr TextView DUPLICATES = u"DUPLICATES";
inline constexpr TextView FILES_SELECTED = u"FILES_SELECTED";

class StatusView {
 public:
  virtual ~StatusView() = default;
  virtual void SetPanel(TextView key, TextView text) = 0;
  virtual void SetPanelToolTip(TextView key, TextView text) = 0;
  // The bar `pbProgress`. Hiding it also sets it back to minimum 0, maximum 1, value 0.
  virtual void ShowProgress(int maximum) = 0;
  virtual void SetProgress(int value) = 0;
  virtual void HideProgress() = 0;
};

class PumpView {
 public:
  virtual ~PumpView() = default;
  // Lets waiting events run: Stop, Esc, repaint. May set the program-wide flags.
  virtual void PumpEvents() = 0;
};

struct Views {
  MessageView* messages = nullptr;
  StatusView* status = nullptr;
  PumpView* pump = nullptr;
  InputBoxView* inputBox = nullptr;
};

// The views in use. Without a message view a box gets the careful answer, and without an input box
// the empty one; without a status view nothing is shown; without a pump nothing runs.
extern Views gViews;

// What a box is answered with where nobody can be asked: the button that changes nothing.
[[nodiscard]] MessageBoxResult CarefulAnswer(MessageBoxButtons buttons);

MessageBoxResult ShowMessageBox(const MessageBoxRequest& request);
[[nodiscard]] Text InputBoxText(TextView prompt, TextView title, TextView defaultText);
void SetPanel(TextView key, TextView text);
void SetPanelToolTip(TextView key, TextView text);

}  // namespace quillmarsh
