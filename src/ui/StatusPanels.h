// SPDX-License-Identifier: MIT
// The status bar of the main window with its panels by key, and the progress bar, which lies
// elsewhere in the window and is not owned. Nothing here asks for room: a panel that is too narrow
// for its text elides it in the middle and has the whole text as its tool tip.
#pragma once

#include <QFrame>
#include <QHash>
#include <QProgressBar>
#include <QStatusBar>

#include "frame/Views.h"

namespace quillmarsh {

// One panel: a picture, where it has one, and a text that it may elide.
class StatusPanel final : public QFrame {
  Q_OBJECT
 public:
  StatusPanel(const char* key, const QString& icon, QWidget* parent);
  void SetText(const QString& text);
  [[nodiscard]] const QString& GetText() const { return mText; }
  // An empty one means the whole text, where that is elided.
  void SetTip(const QString& tip);
  // What the text and the picture want.
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] QRect TextArea() const;
  [[nodiscard]] QRect IconArea() const;

  const QString mIcon;
  QString mText;
  QString mTip;
};

class StatusPanels final : public QStatusBar, public StatusView {
  Q_OBJECT
 public:
  StatusPanels(QProgressBar& progress, QWidget* parent);

  void SetPanel(TextView key, TextView text) override;
  void SetPanelToolTip(TextView key, TextView text) override;
  void ShowProgress(int maximum) override;
  void SetProgress(int value) override;
  void HideProgress() override;

  // Null for a key that is none.
  [[nodiscard]] StatusPanel* Panel(TextView key) const;
  // PANEL1 takes 0.45 of the width; the counters what they want; PANEL2 the rest.
  void PlacePanels();

  [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QProgressBar& mProgress;
  QList<StatusPanel*> mPanels;
  QFrame* mSeparator;
};

}  // namespace quillmarsh
