// SPDX-License-Identifier: MIT
// The window's answers to what the program's logic asks of a person: message boxes, the input box,
// file and folder dialogs, the busy pointer and the pump. While one lives it is what gViews and
// gPickers name, apart from the status panels, which belong to the window. The pump records its
// longest gap, and where that was.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "frame/Pickers.h"
#include "frame/Views.h"

namespace quillmarsh {

class QtViews final : public MessageView,
                      public InputBoxView,
                      public PumpView,
                      public FilePicker,
                      public FolderPicker,
                      public PointerView {
 public:
  QtViews();
  ~QtViews() override;
  QtViews(const QtViews&) = delete;
  QtViews& operator=(const QtViews&) = delete;

  // Over which window boxes are shown; none before it is there and after it has gone.
  void SetWindow(QWidget* window) { mWindow = window; }

  MessageBoxResult Show(const MessageBoxRequest& request) override;
  Text Show(TextView prompt, TextView title, TextView defaultText) override;
  void PumpEvents() override;
  Text SaveFileName(const Text& title, const Text& filter) override;
  Text OpenFileName(const Text& title, const Text& start) override;
  Text BrowseForFolder(const Text& prompt, const Text& start) override;
  void ShowBusyPointer(bool isBusy) override;

  // Milliseconds between the ends and beginnings of two pumps while a command ran, since the last
  // reset. A gap ends with a pump or with the command.
  [[nodiscard]] qint64 LongestGap() const { return mLongestGap; }
  void ResetLongestGap();

 private:
  class BoxWatch;

  [[nodiscard]] QWidget* TopWindow() const;
  void EndGap();

  QPointer<QWidget> mWindow;
  QElapsedTimer mSinceLastPump;
  std::unique_ptr<BoxWatch> mBoxWatch;
  qint64 mLongestGap = 0;
  bool mIsInCommand = false;
  int mBusyDepth = 0;
};

}  // namespace quillmarsh
