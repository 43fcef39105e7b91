// SPDX-License-Identifier: MIT
// While a command runs, a person's input reaches only the Stop button, the Esc key and the topmost
// modal box with what belongs to it. Everything else is dropped, wherever it was aimed: keys,
// clicks, the wheel, shortcuts, drops. Closing a window is no input and always goes through, as
// does painting.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>

namespace quillmarsh {

class InputLock final : public QObject {
  Q_OBJECT
 public:
  // Watches the whole application. `stop` is what Esc does while a command runs and no box is open.
  InputLock(QObject* parent, std::function<void()> stop);

  // May be pressed while a command runs, by mouse and by keyboard.
  void SetStopButton(QWidget* button) { mStopButton = button; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] bool MayPass(const QWidget& receiver, const QEvent& event) const;

  std::function<void()> mStop;
  QPointer<QWidget> mStopButton;
};

}  // namespace quillmarsh
