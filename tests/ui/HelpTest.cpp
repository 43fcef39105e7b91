// SPDX-License-Identifier: MIT
// The pages of the help hang together, and its window finds, leads on and steps aside.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>

#include "ui/Help.h"
#include "ui/HelpWindow.h"
#include "ui/ModalBox.h"
#include "ui/QtViews.h"

namespace quillmarsh {
namespace {

const QString kFolder = QStringLiteral(":/help/");

QString PageText(const QString& page) {
  QFile file(kFolder + page);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << page.toStdString();
  return QString::fromUtf8(file.readAll());
}

QStringList AllOf(const QString& text, const QString& pattern) {
  QStringList found;
  for (auto match = QRegularExpression(pattern).globalMatch(text); match.hasNext();)
    found << match.next().captured(1);
  return found;
}

class Browser final : public QObject {
  Q_OBJECT
 public:
  QUrl opened;
 public slots:
  void Open(const QUrl& url) { opened = url; }
};

class HelpTest : public testing::Test {
 protected:
  HelpTest() { mOwner.resize(200, 100); }

  HelpWindow& Open(int topic = help_topic::Contents) {
    mOwner.show();
    ShowHelpTopic(&mOwner, topic);
    auto* const help = mOwner.findChild<HelpWindow*>();
    EXPECT_TRUE(QTest::qWaitForWindowActive(help));
    return *help;
  }
  static QTextBrowser& Pages(HelpWindow& help) { return *help.findChild<QTextBrowser*>(); }
  static std::string PageOf(HelpWindow& help) {
    return Pages(help).source().fileName().toStdString();
  }

  QtViews mViews;
  QWidget mOwner;
};

TEST_F(HelpTest, EveryLinkLeadsToAPageAndAPlaceInItAndEveryPictureIsThere) {
  QStringList reached = {QStringLiteral("index.html")};
  for (qsizetype next = 0; next < reached.size(); ++next) {
    const QString page = reached[next];
    const QString text = PageText(page);
    const std::string name = page.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("$_"))) << name;
    for (const QString& link : AllOf(text, QStringLiteral("href=\"([^\"]*)\""))) {
      if (link.startsWith(QStringLiteral("https://quillmarsh.example/"))) continue;
      const QUrl url(link);
      ASSERT_TRUE(url.isRelative()) << name << ": " << link.toStdString();
      const QString target = url.path().isEmpty() ? page : url.path();
      EXPECT_TRUE(QFile::exists(kFolder + target)) << name << ": " << link.toStdString();
      if (!reached.contains(target)) reached << target;
      if (url.hasFragment()) {
        EXPECT_TRUE(PageText(target).contains(QStringLiteral("name=\"%1\"").arg(url.fragment())))
            << name << ": " << link.toStdString();
      }
    }
    for (const QString& picture : AllOf(text, QStringLiteral("<img [^>]*src=\"([^\"]*)\"")))
      EXPECT_FALSE(QImage(kFolder + picture).isNull()) << name << ": " << picture.toStdString();
  }
  for (const QString& page : QDir(kFolder).entryList({QStringLiteral("*.html")}))
    EXPECT_TRUE(reached.contains(page)) << "no link leads to " << page.toStdString();
}

TEST_F(HelpTest, EachTopicOpensItsPageInOneWindow) {
  HelpWindow& help = Open();
  EXPECT_EQ(help.windowTitle(), "Quillmarsh - Help");
  constexpr std::pair<int, const char*> kTopics[] = {
      {1, "index.html"},   {2, "troubleshooting.html"},
      {4, "filters.html"}, {3, "index.html"},  // without a page of its own
      {-1, "index.html"},
  };
  for (const auto& [topic, page] : kTopics) {
    EXPECT_EQ(&Open(topic), &help);
    EXPECT_EQ(PageOf(help), page) << topic;
  }
  EXPECT_EQ(mOwner.findChildren<HelpWindow*>().size(), 1);
  help.showMinimized();
  Open();
  EXPECT_FALSE(help.isMinimized());
}

TEST_F(HelpTest, FindsOnTheWholePageFromWhereItIsAndSaysWhenThereIsNothing) {
  HelpWindow& help = Open(help_topic::Filters);
  QTextBrowser& pages = Pages(help);
  const auto* const note = help.findChild<QLabel*>(QStringLiteral("findNote"));
  QTest::keyClick(&help, Qt::Key_F, Qt::ControlModifier);
  ASSERT_EQ(QApplication::focusWidget(), help.findChild<QLineEdit*>(QStringLiteral("find")));
  QTest::keyClicks(QApplication::focusWidget(), "capitals");
  EXPECT_EQ(pages.textCursor().selectedText(), "Capitals");
  EXPECT_EQ(note->text(), "");

  QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "semicolon");
  const int place = pages.textCursor().position();
  EXPECT_EQ(pages.extraSelections().size(), 1);
  // The only one is found again, over either end of the page.
  QTest::keyClick(&help, Qt::Key_F3);
  EXPECT_EQ(pages.textCursor().position(), place);
  EXPECT_EQ(note->text(), "Went on from the top of the page");
  QTest::keyClick(&help, Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(pages.textCursor().position(), place);
  EXPECT_EQ(note->text(), "Went on from the end of the page");

  QTest::keyClicks(QApplication::focusWidget(), "s nowhere");
  EXPECT_EQ(note->text(), "Not found on this page");
  EXPECT_TRUE(pages.extraSelections().isEmpty());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "folder");
  const auto all = pages.extraSelections();
  EXPECT_EQ(all.size(), pages.toPlainText().count(QStringLiteral("folder"), Qt::CaseInsensitive));
  const int first = pages.textCursor().position();
  Press(help, "findNext");
  EXPECT_GT(pages.textCursor().position(), first);
  Press(help, "findPrevious");
  EXPECT_EQ(pages.textCursor().position(), first);
}

TEST_F(HelpTest, LinksLeadOnInsideAndToTheDesktopOutside) {
  HelpWindow& help = Open();
  QTextBrowser& pages = Pages(help);
  emit pages.anchorClicked(QUrl(QStringLiteral("qrc:/help/removing.html#back")));
  EXPECT_EQ(PageOf(help), "removing.html");
  QTest::keyClick(&help, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(PageOf(help), "index.html");
  QTest::keyClick(&help, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(PageOf(help), "removing.html");
  QTest::keyClick(&help, Qt::Key_F1);
  EXPECT_EQ(PageOf(help), "index.html");
  Browser browser;
  QDesktopServices::setUrlHandler(QStringLiteral("https"), &browser, "Open");
  const QUrl address(QStringLiteral("https://quillmarsh.example/"));
  emit pages.anchorClicked(address);
  QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
  EXPECT_EQ(browser.opened, address);
  EXPECT_EQ(PageOf(help), "index.html");
  // Neither a file of the disk nor the network is ever read for a page.
  for (const char* const outside : {"file:///etc/passwd", "http://localhost/picture.png"}) {
    const QUrl url(QString::fromLatin1(outside));
    EXPECT_FALSE(pages.loadResource(QTextDocument::HtmlResource, url).isValid()) << outside;
    EXPECT_FALSE(pages.loadResource(QTextDocument::ImageResource, url).isValid()) << outside;
  }
  QTest::keyClick(&help, Qt::Key_Escape);
  EXPECT_FALSE(help.isVisible());
}

TEST_F(HelpTest, LettersGrowAndShrinkWithinBoundsAndComeBack) {
  HelpWindow& help = Open();
  QTextBrowser& pages = Pages(help);
  const double usual = pages.font().pointSizeF();
  for (const auto& [key, isLarger] : {std::pair(Qt::Key_Plus, true), {Qt::Key_Minus, false}}) {
    for (int step = 0; step < 40; ++step) QTest::keyClick(&help, key, Qt::ControlModifier);
    EXPECT_EQ(pages.font().pointSizeF() > usual, isLarger);
    EXPECT_GT(pages.font().pointSizeF(), 3);
    EXPECT_LT(pages.font().pointSizeF(), 40);
  }
  QTest::keyClick(&help, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(pages.font().pointSizeF(), usual);
}

TEST_F(HelpTest, LinksStayReadableWhenTheThemeTurnsDark) {
  HelpWindow& help = Open();
  const auto linkColour = [&help] {
    for (QTextBlock block = Pages(help).document()->begin(); block.isValid();
         block = block.next()) {
      for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextCharFormat format = part.fragment().charFormat();
        if (format.isAnchor() && !format.anchorHref().isEmpty()) return format.foreground().color();
      }
    }
    ADD_FAILURE() << "no link";
    return QColor();
  };
  QPalette light(Qt::white);
  light.setColor(QPalette::Link, Qt::blue);
  help.setPalette(light);
  EXPECT_LT(linkColour().lightness(), 130);
  QPalette dark(QColor(0x2b, 0x2d, 0x30));
  dark.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
  dark.setColor(QPalette::Link, Qt::blue);
  help.setPalette(dark);
  EXPECT_GT(linkColour().lightness(), 160);
  EXPECT_EQ(PageOf(help), "index.html");
}

TEST_F(HelpTest, BelongsToADialogWhileThatIsOpenAndToTheWindowBehindItAfterwards) {
  HelpWindow& help = Open();
  QDialog dialog(&mOwner);
  InNextBox<QDialog>([&](QDialog& box) {
    ShowHelpTopic(&box, help_topic::Filters);
    EXPECT_EQ(PageOf(help), "filters.html");
    EXPECT_TRUE(QTest::qWaitForWindowActive(&help));
    // A window that the dialog blocks would get none of this.
    QTest::keyClick(help.windowHandle(), Qt::Key_F1);
    EXPECT_EQ(PageOf(help), "index.html");
    box.reject();
  });
  dialog.exec();
  EXPECT_TRUE(help.isVisible());
  EXPECT_EQ(help.parentWidget(), &mOwner);
  mOwner.close();
  EXPECT_FALSE(help.isVisible());
}

}  // namespace
}  // namespace quillmarsh

#include "HelpTest.moc"
