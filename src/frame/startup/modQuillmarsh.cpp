// SPDX-License-Identifier: MIT
// Start and end in their order.
#include "frame/startup/modQuillmarsh.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <cstdio>

#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/startup/GlobalObjects.h"
#include "frame/startup/SingleInstance.h"
#include "platform/posix/PosixMachine.h"
#include "ui/Icons.h"
#include "ui/QtText.h"
#include "ui/QtViews.h"
#include "ui/frmFindDuplicates.h"

namespace quillmarsh {
namespace {

constexpr int kProductName = 688;
constexpr int kAlreadyRunning = 176;
constexpr std::chrono::milliseconds kLookForSignals{250};

std::atomic<bool> isAskedToEnd = false;

PosixOptions OptionsOfWindow() {
  PosixOptions options;
  // Whether anything waits is known to the toolkit alone, and asking it costs as much as a pump.
  options.queueStatus = [](std::uint32_t kinds) { return kinds; };
  return options;
}

// What the desktop gave this start, so that the window which it asks for may take the focus.
QString ActivationToken() {
  const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
  return token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token;
}

void BringToFront(QWidget& window, const QString& token) {
  if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
  window.setWindowState((window.windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
  window.show();
  window.raise();
  window.activateWindow();
}

// A session that ends tells its programs first, and may still go on; so the options are saved and
// the window stays. A signal closes it.
void FollowTheSession(QApplication& application, frmFindDuplicates& window, QTimer& signalTimer) {
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &window,
                   [&window](QSessionManager&) { window.SaveForEndOfSession(); });
  TheMachine().Process().SetConsoleCtrlHandler([] { isAskedToEnd = true; });
  QObject::connect(&signalTimer, &QTimer::timeout, &window, [&window] {
    if (isAskedToEnd.exchange(false)) window.close();
  });
  signalTimer.start(kLookForSignals);
}

int RunWindow(QApplication& application, SingleInstance& instance, QtViews& views) {
  frmFindDuplicates window(views);
  views.SetWindow(&window);
  instance.SetActivate([&window](const QString& token) { BringToFront(window, token); });
  QTimer signalTimer;
  FollowTheSession(application, window, signalTimer);
  window.show();
  const int code = QApplication::exec();
  TheMachine().Process().SetConsoleCtrlHandler(nullptr);
  instance.SetActivate({});
  views.SetWindow(nullptr);
  return code;
}

}  // namespace

int Main(int argc, char** argv) {
  // The toolkit would end the program by a crash.
  if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY") &&
      !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    std::fputs("quillmarsh: there is no display; quillmarsh-cli does without one\n", stderr);
    return 1;
  }
  QApplication application(argc, argv);
  QApplication::setApplicationName(ToQString(LoadResString(kProductName)));
  QGuiApplication::setDesktopFileName(QStringLiteral("quillmarsh"));
  QApplication::setWindowIcon(IconFor(QStringLiteral("application")));
  QtViews views;
  SingleInstance instance(SingleInstance::UsualFolder());
  if (!instance.IsFirst()) {
    if (!instance.ActivatePreviousInstance(ActivationToken()))
      ShowMessageBox({LoadResString(kAlreadyRunning), LoadResString(kProductName),
                      MessageBoxIcon::Information});
    return 0;
  }
  int code = 1;
  Guarded(u"modQuillmarsh.Main", [&] {
    PosixMachine machine(OptionsOfWindow());
    GlobalObjects objects(machine);
    if (objects.LoadModule()) code = RunWindow(application, instance, views);
  });
  return code;
}

}  // namespace quillmarsh
