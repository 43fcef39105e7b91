// SPDX-License-Identifier: MIT
// A lens that travels to and fro over a row of pages; what lies below it stands out.
#include "ui/ProgressAnimation.h"

#include <QPainter>
#include <QPainterPath>
#include <QTimerEvent>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillmarsh {

namespace {

constexpr int kFrameMilliseconds = 40;
constexpr double kRoundMilliseconds = 4200.0;  // there and back
constexpr int kPages = 6;
constexpr double kPageShare = 0.62;    // of the height; the rest is room for the lens
constexpr double kPageRatio = 0.74;    // width to height
constexpr double kPageSpacing = 1.35;  // of a page's width
constexpr double kLensRadius = 0.27;   // of the height
constexpr double kFaintness = 0.45;    // of pages that the lens is not over

void DrawPage(QPainter& painter, const QRectF& page) {
  const double fold = page.width() * 0.3;
  QPainterPath outline(page.topLeft());
  outline.lineTo(page.right() - fold, page.top());
  outline.lineTo(page.right(), page.top() + fold);
  outline.lineTo(page.bottomRight());
  outline.lineTo(page.bottomLeft());
  outline.closeSubpath();
  painter.drawPath(outline);
  for (const double height : {0.45, 0.62, 0.79}) {
    const double y = page.top() + height * page.height();
    painter.drawLine(QPointF(page.left() + page.width() * 0.22, y),
                     QPointF(page.right() - page.width() * 0.22, y));
  }
}

}  // namespace

ProgressAnimation::ProgressAnimation(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  hide();
}

void ProgressAnimation::Start() {
  if (IsPlaying()) return;
  mClock.start();
  mTimer.start(kFrameMilliseconds, this);
  show();
}

void ProgressAnimation::Stop() {
  mTimer.stop();
  hide();
}

QSize ProgressAnimation::sizeHint() const {
  const int height = fontMetrics().height() * 5 / 2;
  return {height * 9 / 2, height};
}

void ProgressAnimation::timerEvent(QTimerEvent* event) {
  if (event->timerId() == mTimer.timerId())
    update();
  else
    QWidget::timerEvent(event);
}

void ProgressAnimation::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double pageHeight = height() * kPageShare;
  const double pageWidth = pageHeight * kPageRatio;
  const double step = pageWidth * kPageSpacing;
  const double row = step * (kPages - 1) + pageWidth;
  const double left = (width() - row) / 2;
  const double top = (height() - pageHeight) / 2;

  const double elapsed = mClock.isValid() ? static_cast<double>(mClock.elapsed()) : 0.0;
  const double phase = std::fmod(elapsed, kRoundMilliseconds) / kRoundMilliseconds;
  const double way = (1.0 - std::cos(2.0 * std::numbers::pi * phase)) / 2.0;
  const QPointF lens(left + pageWidth / 2 + way * (row - pageWidth), height() * 0.46);

  const double line = std::max(1.2, height() / 26.0);
  const QColor text = palette().color(QPalette::WindowText);
  const QColor accent = palette().color(QPalette::Highlight);
  for (int index = 0; index < kPages; ++index) {
    const QRectF page(left + index * step, top, pageWidth, pageHeight);
    const double distance = std::abs(page.center().x() - lens.x()) / step;
    painter.setOpacity(kFaintness + (1.0 - kFaintness) * std::max(0.0, 1.0 - distance));
    painter.setPen(QPen(text, line, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    DrawPage(painter, page);
  }
  painter.setOpacity(1.0);
  const double radius = height() * kLensRadius;
  painter.setPen(QPen(accent, line * 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawEllipse(lens, radius, radius);
  const QPointF rim = lens + QPointF(radius, radius) * std::numbers::sqrt2 / 2.0;
  painter.drawLine(rim, rim + QPointF(radius, radius) * 0.6);
}

}  // namespace quillmarsh
