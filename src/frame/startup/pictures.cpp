// SPDX-License-Identifier: MIT
// Draws the program's windows into files, without a display: a search of the folders that are
// named, then both views and each dialog. For the documents, for people without a display, and for
// whoever looks whether everything still looks right.
//   quillmarsh-pictures OUTPUT-FOLDER [--dark] FOLDER...
// The scale is the toolkit's own affair (QT_SCALE_FACTOR).
#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTimer>
#include <QTreeView>
#include <cstdio>

#include "frame/startup/GlobalObjects.h"
#include "platform/posix/PosixMachine.h"
#include "selection/RuleTexts.h"
#include "selection/clsMarkForRemovalWizard.h"
#include "settings/clsDupeSettings.h"
#include "ui/Dialogs.h"
#include "ui/Help.h"
#include "ui/MainWindowParts.h"
#include "ui/QtText.h"
#include "ui/QtViews.h"
#include "ui/frmGetFSObjectProperties.h"
#include "ui/frmMediaInfo.h"

namespace {

using namespace quillmarsh;

QPalette DarkPalette() {
  QPalette palette(QColor(0x2b, 0x2d, 0x30));
  palette.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
  palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2b));
  palette.setColor(QPalette::Highlight, QColor(0x2f, 0x65, 0xca));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(0x7d, 0x80, 0x86));
  return palette;
}

class Painter {
 public:
  explicit Painter(QString folder) : mFolder(std::move(folder)) { QDir().mkpath(mFolder); }
  void Take(QWidget& widget, const QString& name) {
    const QString file = mFolder + u'/' + name + QStringLiteral(".png");
    mIsWell = widget.grab().save(file) && mIsWell;
    std::printf("%s\n", qUtf8Printable(file));
  }
  // Runs what shows a modal dialog, takes its picture and closes it.
  template <typename Body>
  void TakeDialog(const QString& name, Body&& body) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
      QWidget* const dialog = QApplication::activeModalWidget();
      if (dialog == nullptr) return;
      timer.stop();
      Take(*dialog, name);
      dialog->close();
    });
    timer.start(100);
    body();
  }
  [[nodiscard]] bool IsWell() const { return mIsWell; }

 private:
  const QString mFolder;
  bool mIsWell = true;
};

void Settle() {
  for (int i = 0; i < 20; ++i) QApplication::processEvents(QEventLoop::AllEvents, 20);
}

// Of the first folder to search, with all that lies below it.
void TakeAnalysis(frmFindDuplicates& window, Painter& painter) {
  frmGetFSObjectProperties form(&window);
  const std::vector<Text>& folders = window.GetParts().folders.Folders();
  auto* const path = form.findChild<QLineEdit*>(QStringLiteral("txtUPath"));
  path->setText(
      ToQString(TheMachine().Drives().ShownPath(folders.empty() ? u"C:\\" : folders.front())));
  form.findChild<QRadioButton*>(QStringLiteral("optObjectType(1)"))->setChecked(true);
  form.show();
  painter.TakeDialog(QStringLiteral("analyze-question"), [&form] {
    form.findChild<QPushButton*>(QStringLiteral("cmdShowProperties"))->click();
  });
  Settle();
  painter.Take(form, QStringLiteral("analyze"));
}

void TakeHelp(frmFindDuplicates& window, Painter& painter) {
  for (const auto& [topic, name] :
       {std::pair(help_topic::Contents, QStringLiteral("help-contents")),
        std::pair(help_topic::Troubleshooting, QStringLiteral("help-troubleshooting")),
        std::pair(help_topic::Filters, QStringLiteral("help-filters"))}) {
    ShowHelpTopic(&window, topic);
    Settle();
    if (auto* const help = window.findChild<QWidget*>(QStringLiteral("HelpWindow")))
      painter.Take(*help, name);
  }
}

void TakeAll(frmFindDuplicates& window, Painter& painter) {
  window.resize(1100, 720);
  window.show();
  Settle();
  painter.Take(window, QStringLiteral("search-view"));
  painter.TakeDialog(QStringLiteral("search-summary"), [&window] {
    if (auto* const find = window.findChild<QAction*>(QStringLiteral("mnuFileFindDupes")))
      find->trigger();
  });
  Settle();
  if (auto* const groups = window.findChild<QTreeView*>(QStringLiteral("ulvwDupeGroups")))
    groups->setCurrentIndex(groups->model()->index(0, 0));
  Settle();
  painter.Take(window, QStringLiteral("results-view"));
  painter.TakeDialog(QStringLiteral("selection-summary"), [&window] {
    ShowSelectSummaryDialog(&window, {1204, Currency::FromInteger(3'500'000'000)});
  });
  painter.TakeDialog(QStringLiteral("removal-guidelines"),
                     [&window] { static_cast<void>(ShowRemovalWarningDialog(&window)); });
  painter.TakeDialog(QStringLiteral("selection-assistant"), [&window] {
    gMarkForRemovalWizardOptions->mRule = selection_rule::InFolder;
    ShowMarkForRemovalWizardDialog(&window);
  });
  painter.TakeDialog(QStringLiteral("inclusions-exclusions"),
                     [&window] { ShowIncludeExcludeDialog(&window); });
  painter.TakeDialog(QStringLiteral("edit-file-types"),
                     [&window] { ShowEditCFTListDialog(&window); });
  painter.TakeDialog(QStringLiteral("getting-started"),
                     [&window] { ShowGettingStartedDialog(&window); });
  painter.TakeDialog(QStringLiteral("about"), [&window] { ShowAboutDialog(&window); });
  TakeAnalysis(window, painter);
  painter.TakeDialog(QStringLiteral("media-properties"), [&window] {
    frmMediaInfo form(&window);
    form.SetMediaInfoSummary(
        u"General\nComplete name                            : /home/you/Music/song.wav\n"
        u"Format                                   : Wave\n"
        u"File size                                : 1.61 KiB\n"
        u"Duration                                 : 100 ms\n\n"
        u"Audio\nFormat                                   : PCM\n"
        u"Bit depth                                : 16 bits\n");
    form.exec();
  });
  painter.TakeDialog(QStringLiteral("input-box"), [] {
    static_cast<void>(InputBoxText(u"Enter new file name here", u"Rename File", u"beach.jpg"));
  });
  TakeHelp(window, painter);
}

}  // namespace

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QStringList arguments = QApplication::arguments().mid(1);
  if (arguments.removeAll(QStringLiteral("--dark")) > 0) QApplication::setPalette(DarkPalette());
  if (arguments.size() < 2) {
    std::fprintf(stderr, "usage: quillmarsh-pictures OUTPUT-FOLDER [--dark] FOLDER...\n");
    return 2;
  }
  Painter painter(arguments.takeFirst());
  QtViews views;
  PosixOptions options;
  options.queueStatus = [](std::uint32_t kinds) { return kinds; };
  PosixMachine machine(options);
  GlobalObjects objects(machine);
  if (!objects.LoadModule()) return 1;
  {
    frmFindDuplicates window(views);
    views.SetWindow(&window);
    // Those of an earlier run stand there already, and adding them again would be told in a box.
    const bool isFirstRun = window.GetParts().folders.Folders().empty();
    for (const QString& folder : arguments)
      if (isFirstRun) window.GetParts().folders.AddDroppedFolder(folder.toStdString());
    TakeAll(window, painter);
    views.SetWindow(nullptr);
  }
  return painter.IsWell() ? 0 : 1;
}
