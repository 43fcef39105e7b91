// SPDX-License-Identifier: MIT
// Pages have no colours of their own: those of links, tables and tips come from the palette.
#include "ui/HelpWindow.h"

#include <QDesktopServices>
#include <QDialog>
#include <QEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QTextDocument>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "frame/TextTable.h"
#include "ui/DialogFrame.h"
#include "ui/Icons.h"

namespace quillmarsh {

namespace {

constexpr QSize kFirstSize(740, 720);
constexpr int kSmallest = -4;  // steps of the text's size
constexpr int kLargest = 12;
constexpr double kReadable = 4.5;  // the contrast that small letters need
constexpr int kPageMargin = 14;
constexpr int kWidestPicture = 680;  // in the points of the screen

// The share of `strength` of one colour over another.
QColor Mixed(const QColor& over, const QColor& under, double strength) {
  const auto mix = [strength](int a, int b) {
    return static_cast<int>(std::lround(a * strength + b * (1 - strength)));
  };
  return {mix(over.red(), under.red()), mix(over.green(), under.green()),
          mix(over.blue(), under.blue())};
}

double LuminanceOf(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

double ContrastOf(const QColor& a, const QColor& b) {
  const std::pair<double, double> both = std::minmax({LuminanceOf(a), LuminanceOf(b)});
  return (both.second + 0.05) / (both.first + 0.05);
}

// Dark themes often leave links as blue as light ones have them.
QColor LinkColour(const QPalette& palette) {
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  const QColor link = palette.color(QPalette::Link);
  for (const double strength : {1.0, 0.8, 0.6, 0.4}) {
    if (const QColor mixed = Mixed(link, text, strength); ContrastOf(mixed, base) >= kReadable)
      return mixed;
  }
  return text;
}

QString StyleSheetFor(const QPalette& palette) {
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  return QStringLiteral(
             "a[href] { color: %1; }"
             "p, li { line-height: 120%; }"
             ".picture { line-height: 100%; }"
             "table { border-collapse: collapse; border-color: %3; margin: 8px 0; }"
             "td, th { border: 1px solid %3; }"
             "th, .tip { background-color: %2; }")
      .arg(LinkColour(palette).name(), Mixed(text, base, 0.09).name(),
           Mixed(text, base, 0.3).name());
}

// A document would shrink pictures without smoothing.
QImage FittingPicture(QImage picture, qreal pixelsPerPoint) {
  const int most = static_cast<int>(std::lround(kWidestPicture * pixelsPerPoint));
  if (picture.width() <= kWidestPicture) return picture;
  if (picture.width() > most) picture = picture.scaledToWidth(most, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(static_cast<qreal>(picture.width()) / kWidestPicture);
  return picture;
}

// Opens what is part of the program, and nothing else.
class PageView final : public QTextBrowser {
 public:
  using QTextBrowser::QTextBrowser;

 private:
  QVariant loadResource(int type, const QUrl& name) override {
    const QUrl url = source().resolved(name);
    if (url.scheme() != QLatin1String("qrc")) return {};
    if (type == QTextDocument::ImageResource)
      return FittingPicture(QImage(QLatin1Char(':') + url.path()), devicePixelRatioF());
    return QTextBrowser::loadResource(type, name);
  }
};

}  // namespace

HelpWindow::HelpWindow() : QWidget(nullptr, Qt::Window), mPages(new PageView) {
  setObjectName(QStringLiteral("HelpWindow"));
  setWindowTitle(TitleWith(427));
  mPages->setObjectName(QStringLiteral("pages"));
  mPages->setAccessibleName(windowTitle());
  mPages->setOpenLinks(false);
  mPages->document()->setDocumentMargin(kPageMargin);
  connect(mPages, &QTextBrowser::anchorClicked, this, &HelpWindow::FollowLink);
  connect(mPages, &QTextBrowser::sourceChanged, this, &HelpWindow::HighlightMatches);

  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(0);
  layout->addWidget(MakeNavigation());
  layout->addWidget(mPages, 1);
  layout->addWidget(MakeFindBar());
  MakeKeys();
  TakeColours();
  resize(kFirstSize.boundedTo(screen()->availableSize() * 0.95));
}

QWidget* HelpWindow::MakeNavigation() {
  auto* const bar = new QToolBar;
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const auto add = [this, bar](const char* name, const char* icon, const QString& text,
                               const QKeySequence& key) {
    QAction* const action = bar->addAction(IconFor(QString::fromLatin1(icon)), text);
    action->setObjectName(QString::fromLatin1(name));
    action->setShortcut(key);
    action->setToolTip(QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
    QWidget* const button = bar->widgetForAction(action);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(text);
    return action;
  };
  QAction* const contents = add("contents", "home", TableText(428), Qt::Key_F1);
  QAction* const back =
      add("back", "back", QStringLiteral("Back"), QKeySequence(Qt::ALT | Qt::Key_Left));
  QAction* const forward =
      add("forward", "forward", QStringLiteral("Forward"), QKeySequence(Qt::ALT | Qt::Key_Right));
  back->setEnabled(false);
  forward->setEnabled(false);
  connect(contents, &QAction::triggered, this, [this] { ShowPage(QStringLiteral("index.html")); });
  connect(back, &QAction::triggered, mPages, &QTextBrowser::backward);
  connect(forward, &QAction::triggered, mPages, &QTextBrowser::forward);
  connect(mPages, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
  connect(mPages, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
  return bar;
}

QWidget* HelpWindow::MakeFindBar() {
  auto* const bar = new QWidget;
  auto* const label = new QLabel(QStringLiteral("Find on this page:"));
  mFindField = new QLineEdit;
  mFindField->setObjectName(QStringLiteral("find"));
  mFindField->setAccessibleName(QStringLiteral("Find on this page"));
  mFindField->setClearButtonEnabled(true);
  mFindField->setMaximumWidth(fontMetrics().averageCharWidth() * 32);
  mFindNote = new QLabel;
  mFindNote->setObjectName(QStringLiteral("findNote"));
  mFindNote->setTextFormat(Qt::PlainText);
  // A long text that is not found must not widen the window.
  mFindNote->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  const auto addButton = [this](const char* name, const QString& text, const QString& tip,
                                Direction direction) {
    auto* const button = new QPushButton(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setAccessibleName(text);
    button->setToolTip(tip);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, direction] { Find(direction); });
    return button;
  };
  auto* const row = new QHBoxLayout(bar);
  row->addWidget(label);
  row->addWidget(mFindField, 1);
  row->addWidget(addButton("findPrevious", QStringLiteral("Previous"),
                           QStringLiteral("Find previous (Shift+F3)"), Direction::Backward));
  row->addWidget(addButton("findNext", QStringLiteral("Next"), QStringLiteral("Find next (F3)"),
                           Direction::Forward));
  row->addWidget(mFindNote, 2);
  connect(mFindField, &QLineEdit::textChanged, this, &HelpWindow::FindAsTyped);
  connect(mFindField, &QLineEdit::returnPressed, this, [this] { Find(Direction::Forward); });
  return bar;
}

void HelpWindow::MakeKeys() {
  const auto add = [this](const QKeySequence& key, auto&& action) {
    connect(new QShortcut(key, this), &QShortcut::activated, this, action);
  };
  add(Qt::Key_Escape, [this] { close(); });
  add(Qt::CTRL | Qt::Key_F, [this] {
    mFindField->setFocus();
    mFindField->selectAll();
  });
  add(Qt::Key_F3, [this] { Find(Direction::Forward); });
  add(Qt::SHIFT | Qt::Key_F3, [this] { Find(Direction::Backward); });
  // On most keyboards the plus stands above the equals sign.
  for (const auto key : {Qt::Key_Plus, Qt::Key_Equal}) add(Qt::CTRL | key, [this] { Zoom(1); });
  add(Qt::CTRL | Qt::Key_Minus, [this] { Zoom(-1); });
  add(Qt::CTRL | Qt::Key_0, [this] { Zoom(-mZoom); });
}

void HelpWindow::ShowPage(const QString& page) {
  mPages->setSource(QUrl(QStringLiteral("qrc:/help/") + page));
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
  mPages->setFocus();
}

void HelpWindow::StayWith(QWidget* owner) {
  if (mOwner == owner && parentWidget() == owner) return;
  const bool wasShown = isVisible();
  const QRect place = geometry();
  if (mOwner != nullptr) {
    mOwner->removeEventFilter(this);
    mOwner->disconnect(this);
  }
  mOwner = owner;
  // A modal window blocks every other, but not those that belong to it.
  setParent(owner, windowFlags());
  if (place.topLeft() != QPoint()) setGeometry(place);
  if (auto* const dialog = qobject_cast<QDialog*>(owner)) {
    connect(dialog, &QDialog::finished, this, [this, dialog] {
      if (QWidget* const behind = dialog->parentWidget()) StayWith(behind->window());
    });
  } else if (owner != nullptr) {
    owner->installEventFilter(this);
  }
  if (wasShown) show();
}

bool HelpWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == mOwner && event->type() == QEvent::Close) close();
  return QWidget::eventFilter(watched, event);
}

void HelpWindow::FollowLink(const QUrl& link) {
  if (link.scheme() == QLatin1String("qrc"))
    mPages->setSource(link);
  else
    QDesktopServices::openUrl(link);
}

void HelpWindow::Find(Direction direction) {
  if (mFindField->text().isEmpty()) {
    mFindField->setFocus();
    return;
  }
  ShowMatch(mPages->textCursor(), direction);
}

void HelpWindow::FindAsTyped() {
  HighlightMatches();
  QTextCursor cursor = mPages->textCursor();
  cursor.setPosition(cursor.selectionStart());
  if (!mFindField->text().isEmpty()) return ShowMatch(cursor, Direction::Forward);
  mPages->setTextCursor(cursor);
  mFindNote->clear();
}

// From the cursor to the end of the page, and then from its other end.
void HelpWindow::ShowMatch(const QTextCursor& from, Direction direction) {
  const bool isForward = direction == Direction::Forward;
  const QTextDocument& page = *mPages->document();
  const QTextDocument::FindFlags flags =
      isForward ? QTextDocument::FindFlags() : QTextDocument::FindBackward;
  const QString text = mFindField->text();
  QTextCursor match = page.find(text, from, flags);
  const bool isWrapped = match.isNull();
  if (isWrapped) {
    QTextCursor otherEnd(mPages->document());
    if (!isForward) otherEnd.movePosition(QTextCursor::End);
    match = page.find(text, otherEnd, flags);
  }
  if (match.isNull()) {
    mFindNote->setText(QStringLiteral("Not found on this page"));
    return;
  }
  mPages->setTextCursor(match);
  mPages->ensureCursorVisible();
  if (!isWrapped)
    mFindNote->clear();
  else
    mFindNote->setText(isForward ? QStringLiteral("Went on from the top of the page")
                                 : QStringLiteral("Went on from the end of the page"));
}

void HelpWindow::HighlightMatches() {
  QList<QTextEdit::ExtraSelection> matches;
  const QString text = mFindField == nullptr ? QString() : mFindField->text();
  QTextEdit::ExtraSelection match;
  match.format.setBackground(
      Mixed(palette().color(QPalette::Highlight), palette().color(QPalette::Base), 0.35));
  match.format.setForeground(palette().color(QPalette::Text));
  QTextDocument* const page = mPages->document();
  match.cursor = text.isEmpty() ? QTextCursor() : page->find(text, QTextCursor(page));
  while (!match.cursor.isNull()) {
    matches.append(match);
    match.cursor = page->find(text, match.cursor);
  }
  mPages->setExtraSelections(matches);
}

void HelpWindow::Zoom(int steps) {
  const int zoom = std::clamp(mZoom + steps, kSmallest, kLargest);
  mPages->zoomIn(zoom - mZoom);
  mZoom = zoom;
}

// Links and tables take their colours when a page is read, so it is read again.
void HelpWindow::TakeColours() {
  const QString sheet = StyleSheetFor(palette());
  if (mPages->document()->defaultStyleSheet() == sheet) return;
  mPages->document()->setDefaultStyleSheet(sheet);
  if (mPages->source().isEmpty()) return;
  const int place = mPages->verticalScrollBar()->value();
  mPages->reload();
  mPages->verticalScrollBar()->setValue(place);
  HighlightMatches();
}

void HelpWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) TakeColours();
}

}  // namespace quillmarsh
