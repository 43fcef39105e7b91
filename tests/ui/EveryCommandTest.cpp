// SPDX-License-Identifier: MIT
// Each entry of the menus and each key of the tool bars has an effect: something is asked, shown,
// opened or changed.
#include <QApplication>
#include <QDesktopServices>
#include <QTest>
#include <QTextBrowser>

#include "WindowFixture.h"
#include "frame/Pickers.h"
#include "support/FaultHook.h"
#include "ui/QtText.h"

namespace quillmarsh {
namespace {

// Counts what a person is asked and answers as somebody who has changed their mind.
class CountingPerson final : public QObject,
                             public MessageView,
                             public InputBoxView,
                             public FilePicker,
                             public FolderPicker {
  Q_OBJECT
 public:
  MessageBoxResult Show(const MessageBoxRequest& request) override {
    ++asked;
    return CarefulAnswer(request.buttons);
  }
  Text Show(TextView, TextView, TextView) override { return Nothing(); }
  Text SaveFileName(const Text&, const Text&) override { return Nothing(); }
  Text OpenFileName(const Text&, const Text&) override { return Nothing(); }
  Text BrowseForFolder(const Text&, const Text&) override { return Nothing(); }
  int asked = 0;

 public slots:
  void Open(const QUrl&) { ++asked; }

 private:
  Text Nothing() {
    ++asked;
    return {};
  }
};

class EveryCommand : public WindowFixture {
 protected:
  void SetUp() override {
    TheMachine().SetHook(&hook);
    // No program of whoever runs the tests is opened.
    hook.Fail({Operation::ShellExecuteW, 0}, ERROR_FILE_NOT_FOUND);
    hook.Fail({Operation::ShellExecuteExW, 0}, ERROR_FILE_NOT_FOUND);
    for (const char* scheme : {"https", "mailto"})
      QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &person, "Open");
    MakeWindow();
    gViews.messages = &person;
    gViews.inputBox = &person;
    gPickers.files = &person;
    gPickers.folders = &person;
    gDupeSettings->SetRemoveWarningShown(true);
    Entry("mnuOptionsFileType(0)").trigger();
    MakePairs(2);
    AddFolder(FilesFolder());
  }
  void TearDown() override {
    for (const char* scheme : {"https", "mailto"})
      QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
    ReleaseWindow();
    TheMachine().SetHook(nullptr);
  }
  QAction& Entry(const QString& name) { return *Parts().menus->Entry(name); }
  QAction& Entry(const char* name) { return Entry(QString::fromLatin1(name)); }

  // Everything that a command may change, as a text.
  std::string State() {
    const auto opened =
        hook.CountOf(Operation::ShellExecuteW) + hook.CountOf(Operation::ShellExecuteExW);
    QString state = QStringLiteral("%1 %2 %3 %4 %5")
                        .arg(person.asked)
                        .arg(opened)
                        .arg(dialogsShown)
                        .arg(popupsShown)
                        .arg(Parts().pctResultsContainer->isVisible());
    for (const QAction* action : Parts().window.findChildren<QAction*>())
      state += action->isChecked() ? u'x' : u'-';
    if (const auto* help = Parts().window.findChild<QTextBrowser*>())
      state += help->source().toString();
    for (const TextView key : {FILES_SEARCHED, DUPLICATES, FILES_SELECTED}) state += Panel(key);
    return (state + ToQString(gDupeSettings->ExcludeFiles())).toStdString();
  }
  // Results are shown, and the second row, which is not marked for what marks it.
  void Prepare(const QString& name) {
    Search();
    Parts().ulvwDupeDetails->setCurrentIndex(Parts().ulvwDupeDetails->model()->index(1, 0));
    const bool unmarks = name.contains(QStringLiteral("Unmark")) || name == u"UNSELECT_KEY";
    Entry(unmarks ? "mnuFileMark" : "mnuFileUnmark").trigger();
    if (name.contains(QStringLiteral("Results")) || name == u"RESULTSVIEW_KEY")
      Parts().views.ShowSearchView();
  }
  template <typename Run>
  void ExpectEffect(const QString& name, Run&& run) {
    SCOPED_TRACE(name.toStdString());
    Prepare(name);
    const std::string before = State();
    const bool isUndoneByItself = Entries().contains(name) && Entry(name).isCheckable();
    run();
    QApplication::processEvents();  // a menu that drops down
    EXPECT_NE(State(), before);
    gDupeSettings->SetExcludeFiles({});
    if (isUndoneByItself && !IsChoice(name)) run();
  }
  [[nodiscard]] static bool IsChoice(const QString& name) {
    return name.startsWith(QStringLiteral("mnuOptionsFileType(")) ||
           name.startsWith(QStringLiteral("mnuRemovalOptions("));
  }
  [[nodiscard]] static QStringList Entries() {
    QStringList names;
    for (const auto rows : {MenuBarRows(), PopupRows()})
      for (const MenuRow& row : rows)
        if (row.kind != MenuEntryKind::Menu && row.kind != MenuEntryKind::Separator)
          names << QString::fromLatin1(row.name);
    return names;
  }

  CountingPerson person;
  FaultHook hook;
};

TEST_F(EveryCommand, OfTheMenusHasAnEffect) {
  int count = 0;
  for (const QString& name : Entries()) {
    // What lies in the Recycle Bin is always left out.
    if (name == u"mnuFileExit" || name == u"mnuOptionsIgnoreFilesInRecycleBin") continue;
    ASSERT_TRUE(Entry(name).isEnabled()) << name.toStdString();
    // Another one is chosen before.
    if (IsChoice(name)) {
      const QString array = name.section(QLatin1Char('('), 0, 0);
      const bool isFirst = name.endsWith(QStringLiteral("(0)"));
      Entry(array + (isFirst ? QStringLiteral("(1)") : QStringLiteral("(0)"))).trigger();
    }
    ExpectEffect(name, [&] { Entry(name).trigger(); });
    if (name.startsWith(QStringLiteral("mnuOptionsFileType(")))
      Entry("mnuOptionsFileType(0)").trigger();
    ++count;
  }
  EXPECT_GT(count, 60);
  Entry("mnuFileExit").trigger();
  EXPECT_FALSE(Parts().window.isVisible());
}

// Stop has one while there is something to stop.
TEST_F(EveryCommand, OfTheToolBarsHasAnEffect) {
  for (ToolBar* const bar :
       {Parts().smtSearchToolbar, Parts().smtSearchResultsToolbar, Parts().suRemovalToolbar}) {
    for (const ToolBarItem& item : ToolBarItems(bar->objectName().toStdString())) {
      const QString key = QString::fromLatin1(item.key);
      if (item.kind != ToolBarItemKind::Button || key == u"STOP_KEY") continue;
      ASSERT_TRUE(bar->Button(key)->isEnabled()) << item.key;
      ExpectEffect(key, [&] { bar->Button(key)->click(); });
    }
  }
}

}  // namespace
}  // namespace quillmarsh

#include "EveryCommandTest.moc"
