// SPDX-License-Identifier: MIT
// The panels are placed by hand, since no layout may widen the window for a text.
#include "ui/StatusPanels.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

#include "frame/TextTable.h"
#include "ui/Icons.h"
#include "ui/PlainToolTip.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr double kShareOfPanel1 = 0.45;
constexpr int kGap = 4;

}  // namespace

StatusPanel::StatusPanel(const char* key, const QString& icon, QWidget* parent)
    : QFrame(parent), mIcon(icon) {
  setObjectName(QString::fromLatin1(key));
  setAccessibleName(objectName());
}

void StatusPanel::SetText(const QString& text) {
  // A line break would spoil the line.
  QString line = text;
  line.replace(u'\r', u' ').replace(u'\n', u' ');
  if (line == mText) return;
  mText = line;
  setAccessibleName(line.isEmpty() ? objectName() : line);
  update();
}

void StatusPanel::SetTip(const QString& tip) {
  mTip = tip;
  setAccessibleDescription(tip);
}

QRect StatusPanel::IconArea() const {
  const int extent =
      mIcon.isEmpty() ? 0 : style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  return {kGap, (height() - extent) / 2, extent, extent};
}

QRect StatusPanel::TextArea() const {
  const QRect icon = IconArea();
  return {icon.x() + icon.width() + (icon.width() > 0 ? kGap : 0), 0,
          std::max(0, width() - icon.x() - icon.width() - 2 * kGap), height()};
}

QSize StatusPanel::sizeHint() const {
  const int icon = IconArea().width() > 0 ? IconArea().width() + kGap : 0;
  const int line = std::max(fontMetrics().height(), IconArea().height());
  return {fontMetrics().horizontalAdvance(mText) + icon + 3 * kGap, line + kGap};
}

void StatusPanel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (!mIcon.isEmpty()) IconFor(mIcon).paint(&painter, IconArea());
  const QRect area = TextArea();
  const QString shown = fontMetrics().elidedText(mText, Qt::ElideMiddle, area.width());
  style()->drawItemText(&painter, area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                        palette(), isEnabled(), shown, QPalette::WindowText);
}

bool StatusPanel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QFrame::event(event);
  const bool isElided = fontMetrics().horizontalAdvance(mText) > TextArea().width();
  const QString tip = !mTip.isEmpty() ? mTip : (isElided ? mText : QString());
  const auto* const help = static_cast<QHelpEvent*>(event);
  if (tip.isEmpty()) {
    QToolTip::hideText();
    event->ignore();
  } else {
    QToolTip::showText(help->globalPos(), PlainToolTip(tip), this);
  }
  return true;
}

StatusPanels::StatusPanels(QProgressBar& progress, QWidget* parent)
    : QStatusBar(parent), mProgress(progress) {
  setObjectName(QStringLiteral("suStatusBar"));
  setSizeGripEnabled(false);
  const auto add = [this](const char* key, const char* icon) {
    mPanels.append(new StatusPanel(key, QString::fromLatin1(icon), this));
    return mPanels.back();
  };
  add("PANEL1", "");
  add("PANEL2", "");
  mSeparator = new QFrame(this);
  mSeparator->setObjectName(QStringLiteral("SEPARATOR"));
  mSeparator->setFrameStyle(static_cast<int>(QFrame::VLine) | static_cast<int>(QFrame::Sunken));
  const struct {
    const char* key;
    const char* icon;
    TextId label;
    TextId tip;
  } kCounters[] = {{"FILES_SEARCHED", "files_searched", 1120, 312},
                   {"DUPLICATES", "num_duplicates", 1121, 306},
                   {"FILES_SELECTED", "files_selected", 1123, 320}};
  for (const auto& counter : kCounters) {
    StatusPanel* const panel = add(counter.key, counter.icon);
    panel->SetText(ToQString(LoadResString(counter.label) + u":0"));
    panel->SetTip(ToQString(LoadResString(counter.tip)));
  }
  HideProgress();
}

StatusPanel* StatusPanels::Panel(TextView key) const {
  const QString name = ToQString(key);
  const auto found =
      std::ranges::find(mPanels, name, [](StatusPanel* panel) { return panel->objectName(); });
  return found == mPanels.end() ? nullptr : *found;
}

void StatusPanels::SetPanel(TextView key, TextView text) {
  StatusPanel* const panel = Panel(key);
  if (panel == nullptr) return;
  panel->SetText(ToQString(text));
  if (key != PANEL1 && key != PANEL2) PlacePanels();
}

void StatusPanels::SetPanelToolTip(TextView key, TextView text) {
  if (StatusPanel* const panel = Panel(key)) panel->SetTip(ToQString(text));
}

void StatusPanels::ShowProgress(int maximum) {
  // A bar without a length would show that it is busy.
  mProgress.setRange(0, std::max(1, maximum));
  mProgress.setValue(0);
  mProgress.show();
}

void StatusPanels::SetProgress(int value) {
  mProgress.setValue(std::min(value, mProgress.maximum()));
}

void StatusPanels::HideProgress() {
  mProgress.setRange(0, 1);
  mProgress.setValue(0);
  mProgress.hide();
}

// Where the counters leave less, PANEL1 gives way first of the two.
void StatusPanels::PlacePanels() {
  int counters = 0;
  for (const StatusPanel* panel : mPanels.mid(2)) counters += panel->sizeHint().width();
  const int separator = mSeparator->sizeHint().width() + 2 * kGap;
  const int free = std::max(0, width() - counters - separator);
  const int panel1 = std::min(free, static_cast<int>(kShareOfPanel1 * width()));
  mPanels[0]->setGeometry(0, 0, panel1, height());
  mPanels[1]->setGeometry(panel1, 0, free - panel1, height());
  mSeparator->setGeometry(free + kGap, kGap, mSeparator->sizeHint().width(), height() - 2 * kGap);
  int left = free + separator;
  for (StatusPanel* panel : mPanels.mid(2)) {
    panel->setGeometry(left, 0, panel->sizeHint().width(), height());
    left += panel->width();
  }
}

QSize StatusPanels::sizeHint() const {
  return {0, mPanels.isEmpty() ? 0 : mPanels.back()->sizeHint().height() + kGap};
}

void StatusPanels::resizeEvent(QResizeEvent* event) {
  QStatusBar::resizeEvent(event);
  PlacePanels();
}

}  // namespace quillmarsh
