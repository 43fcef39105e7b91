// SPDX-License-Identifier: MIT
// The real main window over real files in a folder of its own, where its data lie too. A box that
// no test expects fails the test. The pump runs at every step of a search, and a test may do
// something in it.
#pragma once

#include <gtest/gtest.h>

#include <QDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <deque>
#include <functional>
#include <optional>

#include "frame/startup/GlobalObjects.h"
#include "platform/posix/PosixMachine.h"
#include "ui/MainWindowParts.h"

namespace quillmarsh {

// Answers boxes that were announced and fails on others.
class ExpectedBoxes final : public MessageView, public InputBoxView {
 public:
  ~ExpectedBoxes() override;
  void Expect(const Text& text, MessageBoxResult answer = MessageBoxResult::Ok);
  void ExpectInput(const Text& defaultText, const Text& answer);
  MessageBoxResult Show(const MessageBoxRequest& request) override;
  Text Show(TextView prompt, TextView title, TextView defaultText) override;

 private:
  std::deque<std::pair<Text, MessageBoxResult>> mBoxes;
  std::deque<std::pair<Text, Text>> mInputs;
};

class WindowFixture : public testing::Test, private PumpView {
 protected:
  WindowFixture();
  ~WindowFixture() override;

  frmFindDuplicates& MakeWindow();
  [[nodiscard]] frmFindDuplicates::Parts& Parts() { return mWindow->GetParts(); }
  void ReleaseWindow() { mWindow.reset(); }

  // Below the folder "files" of the fixture; gives the native path.
  QString MakeFile(const QString& path, const QByteArray& contents);
  [[nodiscard]] QString FilesFolder() const { return mFolder.path() + QStringLiteral("/files"); }
  // In drive form with a final backslash.
  [[nodiscard]] static Text DriveForm(const QString& native);
  void AddFolder(const QString& native);
  // Names that are twice there; then `pairs` groups are found.
  void MakePairs(int pairs);

  // By the button, with a closer for the summary. In each pump of the search `event` is called with
  // its number from 1.
  void Search(std::function<void(int pump)> event = {});
  // The same for what the next Press begins.
  void During(std::function<void(int pump)> event);
  void Press(ToolBar& bar, const char* key);
  [[nodiscard]] QString Panel(TextView key);
  [[nodiscard]] bool IsChecked(const char* menuEntry);

  ExpectedBoxes boxes;
  // From now on a test closes them by itself.
  void LeaveDialogsOpen() { mCloser.stop(); }
  int dialogsShown = 0;  // modal dialogs, each closed at once
  // What is done in the next one instead; it must close it.
  std::function<void(QDialog&)> inNextDialog;
  int popupsShown = 0;  // menus and lists, likewise

 private:
  void PumpEvents() override;

  QTemporaryDir mFolder;
  std::optional<PosixMachine> mMachine;
  std::optional<GlobalObjects> mObjects;
  std::optional<QtViews> mViews;
  QTimer mCloser;
  std::chrono::steady_clock::time_point mClock;
  std::function<void(int)> mEvent;
  int mPumps = 0;
  std::unique_ptr<frmFindDuplicates> mWindow;
};

}  // namespace quillmarsh
