// SPDX-License-Identifier: MIT
// What the program is, and what the computer is: the system's own program tells that, or a box.
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QSysInfo>

#include "frame/Views.h"
#include "ui/DialogFrame.h"
#include "ui/Dialogs.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

// Programs of desktops that show what the computer is, with their arguments.
const QList<QStringList> kSystemPrograms = {
    {QStringLiteral("kinfocenter")},
    {QStringLiteral("hardinfo2")},
    {QStringLiteral("hardinfo")},
    {QStringLiteral("gnome-control-center"), QStringLiteral("info-overview")},
    {QStringLiteral("mate-system-monitor"), QStringLiteral("--show-system-tab")},
};

#ifdef Q_OS_WIN
// A text of the local machine's registry, empty where there is none.
QString GetKeyValue(const QString& key, const QString& name) {
  const QSettings registry(QStringLiteral("HKEY_LOCAL_MACHINE\\") + key, QSettings::NativeFormat);
  return registry.value(name).toString();
}
#endif

bool StartSysInfo() {
#ifdef Q_OS_WIN
  const QString tools = QStringLiteral("SOFTWARE\\Microsoft\\Shared Tools");
  QString program = GetKeyValue(tools + QStringLiteral("\\MSINFO"), QStringLiteral("PATH"));
  if (program.isEmpty()) {
    program = GetKeyValue(tools + QStringLiteral(" Location"), QStringLiteral("MSINFO"));
    if (!program.isEmpty()) program += QStringLiteral("\\MSInfo32.exe");
  }
  if (!program.isEmpty() && QProcess::startDetached(program, {})) return true;
#endif
  for (const QStringList& candidate : kSystemPrograms) {
    const QString found = QStandardPaths::findExecutable(candidate.constFirst());
    if (!found.isEmpty() && QProcess::startDetached(found, candidate.mid(1))) return true;
  }
  return false;
}

void ShowSystemFacts() {
  const QList<std::pair<QString, QString>> facts = {
      {QStringLiteral("Computer"), QSysInfo::machineHostName()},
      {QStringLiteral("System"), QSysInfo::prettyProductName()},
      {QStringLiteral("Kernel"),
       QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion()},
      {QStringLiteral("Processor"), QSysInfo::currentCpuArchitecture()},
      {QStringLiteral("Language"), QLocale::system().name()},
      {QStringLiteral("Display"), QGuiApplication::platformName()},
      {QStringLiteral("Toolkit"), QStringLiteral("Qt ") + QString::fromLatin1(qVersion())},
      {TableText(688), QStringLiteral(QUILLMARSH_VERSION)},
  };
  QStringList lines;
  for (const auto& [name, value] : facts) lines << name + QStringLiteral(": ") + value;
  ShowMessageBox({FromQString(lines.join(QLatin1Char('\n'))), LoadResString(110),
                  MessageBoxIcon::Information});
}

class frmAbout final : public DialogFrame {
 public:
  explicit frmAbout(QWidget* parent)
      : DialogFrame(QStringLiteral("frmAbout"), TableText(101) + QLatin1Char(' ') + TableText(688),
                    QStringLiteral("application"), parent) {
    AddHeading(QStringLiteral("lblTitle"), TableText(688));
    AddText(QStringLiteral("lblVersion"), QStringLiteral(" v" QUILLMARSH_VERSION));
    AddText(QStringLiteral("lblCompany"), TableText(113) + QLatin1Char(' ') + TableText(114));
    AddLine();
    AddText(QStringLiteral("lblWarning"),
            QStringLiteral("Free under the MIT licence. It comes without warranty of any kind; the "
                           "text that came with the program says more."));
    QPushButton* const info =
        AddButton(QStringLiteral("mb_cmdSysInfo"), TableText(110) + QStringLiteral("..."),
                  QDialogButtonBox::ActionRole);
    connect(info, &QPushButton::clicked, this, [] {
      if (!StartSysInfo()) ShowSystemFacts();
    });
    SetDefaultButton(
        AddButton(QStringLiteral("mb_cmdOK"), TableText(992), QDialogButtonBox::AcceptRole));
  }
};

}  // namespace

void ShowAboutDialog(QWidget* parent) {
  frmAbout(parent).exec();
}

}  // namespace quillmarsh
