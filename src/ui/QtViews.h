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
#include <source_location>

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

  // The longest time between two pumps while a command ran, since the last reset, and who pumped
  // before and after it. Line 0 stands for the beginning or the end of the command.
  struct Gap {
    qint64 milliseconds = 0;
    std::source_location before;
    std::source_location after;
  };
  [[nodiscard]] const Gap& LongestGap() const { return mLongestGap; }
  void ResetLongestGap();

 private:
  class BoxWatch;

  [[nodiscard]] QWidget* TopWindow() const;
  void EndGap(std::source_location place);

  QPointer<QWidget> mWindow;
  QElapsedTimer mSinceLastPump;
  std::unique_ptr<BoxWatch> mBoxWatch;
  std::source_location mPlaceBefore;
  Gap mLongestGap;
  bool mIsInCommand = false;
  int mBusyDepth = 0;
};

}  // namespace quillmarsh
