// SPDX-License-Identifier: MIT
// What moves while a search runs: drawn by the program in the palette's colours. Hidden while it
// does not play. It moves on the pump's own time, so a program that hangs is seen to hang.
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace quillmarsh {

class ProgressAnimation final : public QWidget {
  Q_OBJECT
 public:
  explicit ProgressAnimation(QWidget* parent = nullptr);
  void Start();
  void Stop();
  [[nodiscard]] bool IsPlaying() const { return mTimer.isActive(); }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  QBasicTimer mTimer;
  QElapsedTimer mClock;
};

}  // namespace quillmarsh
