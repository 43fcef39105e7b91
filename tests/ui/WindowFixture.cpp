// SPDX-License-Identifier: MIT
// What the program's entry does, around a temporary folder.
#include "WindowFixture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTest>
#include <utility>

#include "frame/ProgramFlags.h"
#include "fsobjects/modPaths.h"
#include "settings/OptionsFolder.h"
#include "ui/QtText.h"

namespace quillmarsh {

ExpectedBoxes::~ExpectedBoxes() {
  for (const auto& [text, answer] : mBoxes) ADD_FAILURE() << "not shown: " << ToUtf8(text);
  for (const auto& [text, answer] : mInputs) ADD_FAILURE() << "not asked: " << ToUtf8(text);
}

void ExpectedBoxes::Expect(const Text& text, MessageBoxResult answer) {
  mBoxes.emplace_back(text, answer);
}

void ExpectedBoxes::ExpectInput(const Text& defaultText, const Text& answer) {
  mInputs.emplace_back(defaultText, answer);
}

MessageBoxResult ExpectedBoxes::Show(const MessageBoxRequest& request) {
  if (mBoxes.empty() || request.text.find(mBoxes.front().first) == Text::npos) {
    ADD_FAILURE() << "unexpected box: " << ToUtf8(request.text);
    return CarefulAnswer(request.buttons);
  }
  const MessageBoxResult answer = mBoxes.front().second;
  mBoxes.pop_front();
  return answer;
}

Text ExpectedBoxes::Show(TextView prompt, TextView /*title*/, TextView defaultText) {
  if (mInputs.empty()) {
    ADD_FAILURE() << "unexpected question: " << ToUtf8(prompt);
    return {};
  }
  EXPECT_EQ(mInputs.front().first, defaultText);
  const Text answer = mInputs.front().second;
  mInputs.pop_front();
  return answer;
}

WindowFixture::WindowFixture() {
  const QString data = mFolder.path() + QStringLiteral("/data");
  QDir().mkpath(data);
  QDir().mkpath(FilesFolder());
  qputenv("XDG_DATA_HOME", data.toUtf8());
  PosixOptions options;
  options.dataHome = data.toStdString();
  options.queueStatus = [](std::uint32_t kinds) { return kinds; };
  mMachine.emplace(options);
  mObjects.emplace(*mMachine);
  // Every look at the clock is long after the one before it.
  SetPumpClock([this] { return mClock += std::chrono::seconds(1); });
  mDupesFolderPath.clear();
  gUserAbort = false;
  EXPECT_TRUE(mObjects->LoadModule());
  mViews.emplace();
  gViews.pump = this;
  QObject::connect(&mCloser, &QTimer::timeout, [this] {
    if (QWidget* const popup = QApplication::activePopupWidget()) {
      ++popupsShown;
      popup->close();
    }
    auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr) return;
    ++dialogsShown;
    if (const auto inside = std::exchange(inNextDialog, {})) inside(*dialog);
    if (dialog->isVisible()) dialog->reject();
  });
  mCloser.start(0);
}

WindowFixture::~WindowFixture() {
  mWindow.reset();
  mViews.reset();
  gViews = {};
  SetPumpClock({});
}

frmFindDuplicates& WindowFixture::MakeWindow() {
  gViews.messages = &boxes;
  gViews.inputBox = &boxes;
  mWindow = std::make_unique<frmFindDuplicates>(*mViews);
  mWindow->show();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(mWindow.get()));
  return *mWindow;
}

QString WindowFixture::MakeFile(const QString& path, const QByteArray& contents) {
  const QString native = FilesFolder() + QLatin1Char('/') + path;
  QDir().mkpath(QFileInfo(native).path());
  QFile file(native);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(contents);
  return native;
}

Text WindowFixture::DriveForm(const QString& native) {
  return AddBackslash(TheMachine().Drives().LocationFromNative(native.toStdString()).path);
}

void WindowFixture::AddFolder(const QString& native) {
  emit Parts().ucBrowseForFolder->PathEvent(ToQString(DriveForm(native)));
  QTest::mouseClick(Parts().mb_cmdAddFolder, Qt::LeftButton);
}

void WindowFixture::MakePairs(int pairs) {
  for (int pair = 0; pair < pairs; ++pair) {
    const QString name = QStringLiteral("pair%1.txt").arg(pair);
    MakeFile(QStringLiteral("one/") + name, "the same");
    MakeFile(QStringLiteral("two/") + name, "the same");
  }
}

void WindowFixture::Search(std::function<void(int)> event) {
  During(std::move(event));
  Press(*Parts().smtSearchToolbar, "START_SEARCH_KEY");
}

void WindowFixture::During(std::function<void(int)> event) {
  mPumps = 0;
  mEvent = std::move(event);
}

void WindowFixture::Press(ToolBar& bar, const char* key) {
  QToolButton* const button = bar.Button(QString::fromLatin1(key));
  ASSERT_NE(button, nullptr) << key;
  QTest::mouseClick(button, Qt::LeftButton);
  mEvent = {};
}

QString WindowFixture::Panel(TextView key) {
  return Parts().suStatusBar->Panel(key)->GetText();
}

bool WindowFixture::IsChecked(const char* menuEntry) {
  return Parts().menus->Entry(QString::fromLatin1(menuEntry))->isChecked();
}

void WindowFixture::PumpEvents() {
  ++mPumps;
  if (mEvent) mEvent(mPumps);
  mViews->PumpEvents();
}

}  // namespace quillmarsh
