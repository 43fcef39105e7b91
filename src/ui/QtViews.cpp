// SPDX-License-Identifier: MIT
// Boxes, dialogs and the pump. All boxes show plain text: a file may be called "<b>".
#include "ui/QtViews.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "ui/BreakableText.h"
#include "ui/Impatience.h"
#include "ui/PlaceProblem.h"
#include "ui/QtText.h"
#include "ui/frmInputBox.h"

namespace quillmarsh {

namespace {

constexpr int kLongestPump = 12;  // milliseconds for one pump, unless an event takes longer

QtViews* viewsInUse = nullptr;

struct ButtonRow {
  MessageBoxResult result;
  QMessageBox::StandardButton button;
};
constexpr ButtonRow kButtons[] = {
    {MessageBoxResult::Ok, QMessageBox::Ok},
    {MessageBoxResult::Cancel, QMessageBox::Cancel},
    {MessageBoxResult::Yes, QMessageBox::Yes},
    {MessageBoxResult::No, QMessageBox::No},
};

QMessageBox::StandardButton ButtonOf(MessageBoxResult result) {
  return std::ranges::find(kButtons, result, &ButtonRow::result)->button;
}

QMessageBox::StandardButtons ButtonsOf(MessageBoxButtons buttons) {
  switch (buttons) {
    case MessageBoxButtons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case MessageBoxButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case MessageBoxButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MessageBoxButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon IconOf(MessageBoxIcon icon) {
  switch (icon) {
    case MessageBoxIcon::Exclamation:
      return QMessageBox::Warning;
    case MessageBoxIcon::Information:
      return QMessageBox::Information;
    case MessageBoxIcon::Question:
      return QMessageBox::Question;
    case MessageBoxIcon::Stop:
      return QMessageBox::Critical;
    case MessageBoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

// While a person is asked the pointer is an arrow, also amid a command that shows the hourglass.
class ArrowPointer {
 public:
  ArrowPointer() : mIsSet(QApplication::overrideCursor() != nullptr) {
    if (mIsSet) QApplication::setOverrideCursor(Qt::ArrowCursor);
  }
  ~ArrowPointer() {
    if (mIsSet) QApplication::restoreOverrideCursor();
  }
  ArrowPointer(const ArrowPointer&) = delete;
  ArrowPointer& operator=(const ArrowPointer&) = delete;

 private:
  const bool mIsSet;
};

// "Text Files (*.txt)|*.txt;*.log" as the toolkit writes it.
QString NameFilters(const QString& filter) {
  const QStringList parts = filter.split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype index = 0; index + 1 < parts.size(); index += 2) {
    QString name = parts[index];
    const qsizetype masks = name.lastIndexOf(QLatin1Char('('));
    if (masks > 0) name.truncate(masks);
    filters << name.trimmed() + QStringLiteral(" (") +
                   QString(parts[index + 1]).replace(QLatin1Char(';'), QLatin1Char(' ')) +
                   QLatin1Char(')');
  }
  return filters.join(QStringLiteral(";;"));
}

// A native path that exists as a folder and answers at once; else empty.
QString FolderThatAnswers(const Text& path) {
  if (path.empty()) return {};
  const Impatience impatience;
  const std::uint32_t attributes = TheMachine().Files().GetFileAttributesW(path);
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    return {};
  return QString::fromStdString(TheMachine().Drives().NativePath(path));
}

// The bytes of what a dialog answers. A name whose bytes are no text cannot be told by one.
std::string NativeBytes(const QString& answer) {
  return QDir::toNativeSeparators(answer).toStdString();
}

Text ReasonOf(const CanonicalLocation& location) {
  const bool hasNoLetter = location.error == ERROR_INVALID_DRIVE;
  return ReasonOfPlace(location.error) + (hasNoLetter ? u" Please choose another place." : u"");
}

// Shows the dialog until a place is chosen that the program has a name for, or the person gives up.
Text AskForPlace(QFileDialog& dialog, const Text& title,
                 const std::function<CanonicalLocation(const std::string&)>& locate) {
  const ArrowPointer arrow;
  Text place;
  static_cast<void>(Guarded(u"QtViews.AskForPlace", [&] {
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
      const QString chosen = dialog.selectedFiles().constFirst();
      const CanonicalLocation location = locate(NativeBytes(chosen));
      if (location.error == 0) {
        place = location.path;
        return;
      }
      ShowMessageBox({FromQString(QDir::toNativeSeparators(chosen)) + u"\n\n" + ReasonOf(location),
                      title, MessageBoxIcon::Exclamation});
    }
  }));
  return place;
}

}  // namespace

// Time that a person spends in a box is no gap: each event of a box begins a new one.
class QtViews::BoxWatch final : public QObject {
 public:
  explicit BoxWatch(QElapsedTimer& clock) : mClock(clock) {}
  bool eventFilter(QObject*, QEvent*) override {
    if (QApplication::activeModalWidget() != nullptr) mClock.restart();
    return false;
  }

 private:
  QElapsedTimer& mClock;
};

QtViews::QtViews() : mBoxWatch(std::make_unique<BoxWatch>(mSinceLastPump)) {
  mSinceLastPump.start();
  viewsInUse = this;
  CommandScope::SetListener([](bool isRunning) {
    viewsInUse->EndGap({});
    viewsInUse->mIsInCommand = isRunning;
    viewsInUse->mPlaceBefore = {};
    viewsInUse->mSinceLastPump.restart();
  });
  qApp->installEventFilter(mBoxWatch.get());
  gViews.messages = this;
  gViews.inputBox = this;
  gViews.pump = this;
  gPickers = {this, this, this};
}

QtViews::~QtViews() {
  while (mBusyDepth > 0) ShowBusyPointer(false);
  CommandScope::SetListener(nullptr);
  viewsInUse = nullptr;
  gViews.messages = nullptr;
  gViews.inputBox = nullptr;
  gViews.pump = nullptr;
  gPickers = {};
}

QWidget* QtViews::TopWindow() const {
  QWidget* const box = QApplication::activeModalWidget();
  return box != nullptr ? box : mWindow.data();
}

MessageBoxResult QtViews::Show(const MessageBoxRequest& request) {
  const ArrowPointer arrow;
  const MessageBoxResult careful = CarefulAnswer(request.buttons);
  const Text title = request.title.empty() ? LoadResString(688) : request.title;  // the program's
  QMessageBox box(IconOf(request.icon), ToQString(title), {}, ButtonsOf(request.buttons),
                  TopWindow());
  box.setTextFormat(Qt::PlainText);
  box.setText(
      BreakableText(ToQString(request.text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"))));
  // What is no button of the box leaves the careful one.
  QAbstractButton* const preferred = box.button(ButtonOf(request.defaultButton));
  box.setDefaultButton(preferred != nullptr ? ButtonOf(request.defaultButton) : ButtonOf(careful));
  box.setEscapeButton(ButtonOf(careful));
  const int answer = box.exec();
  for (const ButtonRow& row : kButtons)
    if (row.button == answer) return row.result;
  return careful;
}

Text QtViews::Show(TextView prompt, TextView title, TextView defaultText) {
  const ArrowPointer arrow;
  frmInputBox box(prompt, title, defaultText, TopWindow());
  box.exec();
  return box.Answer();
}

void QtViews::PumpEvents() {
  EndGap(LastPumpPlace());
  QCoreApplication::processEvents(QEventLoop::AllEvents, kLongestPump);
  mPlaceBefore = LastPumpPlace();
  mSinceLastPump.restart();
}

void QtViews::EndGap(std::source_location place) {
  const qint64 gap = mSinceLastPump.elapsed();
  if (mIsInCommand && gap > mLongestGap.milliseconds) mLongestGap = {gap, mPlaceBefore, place};
}

void QtViews::ResetLongestGap() {
  mLongestGap = {};
  mSinceLastPump.restart();
}

Text QtViews::SaveFileName(const Text& title, const Text& filter) {
  QFileDialog dialog(TopWindow(), ToQString(title), {}, NameFilters(ToQString(filter)));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  return AskForPlace(dialog, title, [](const std::string& native) {
    return TheMachine().Drives().NewLocationFromNative(native);
  });
}

Text QtViews::OpenFileName(const Text& title, const Text& start) {
  QFileDialog dialog(TopWindow(), ToQString(title), FolderThatAnswers(start));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return AskForPlace(dialog, title, [](const std::string& native) {
    return TheMachine().Drives().LocationFromNative(native);
  });
}

Text QtViews::BrowseForFolder(const Text& prompt, const Text& start) {
  QFileDialog dialog(TopWindow(), ToQString(prompt).simplified(), FolderThatAnswers(start));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  return AskForPlace(dialog, prompt, [](const std::string& native) {
    return TheMachine().Drives().LocationFromNative(native);
  });
}

void QtViews::ShowBusyPointer(bool isBusy) {
  if (isBusy) {
    if (mBusyDepth++ == 0) QApplication::setOverrideCursor(Qt::WaitCursor);
  } else if (mBusyDepth > 0 && --mBusyDepth == 0) {
    QApplication::restoreOverrideCursor();
  }
}

}  // namespace quillmarsh
