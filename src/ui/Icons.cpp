// SPDX-License-Identifier: MIT
// Strokes of round pens in the palette of the moment; nothing is kept between two paintings.
#include "ui/Icons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace quillmarsh {

namespace {

struct Picture {
  std::string_view key;
  std::string_view strokes;
};

constexpr Picture kPictures[] = {
#include "ui/IconPaths.inc"
};

constexpr double kGrid = 24.0;
constexpr double kStroke = 1.75;       // of the grid
constexpr double kThinnestLine = 1.3;  // of the device; a thinner one is a shade and no line

const Picture* FindPicture(std::string_view key) {
  const auto* const found = std::ranges::find(kPictures, key, &Picture::key);
  return found != std::end(kPictures) ? found : nullptr;
}

// Reads the strokes of the table, word by word.
class Strokes {
 public:
  explicit Strokes(std::string_view text) : mRest(text) {}

  QPainterPath Read() {
    QPainterPath path;
    while (!mRest.empty()) Add(path, Word());
    return path;
  }

 private:
  std::string_view Word() {
    const std::size_t end = std::min(mRest.find(' '), mRest.size());
    const std::string_view word = mRest.substr(0, end);
    mRest.remove_prefix(std::min(end + 1, mRest.size()));
    return word;
  }
  template <std::size_t Count>
  std::array<double, Count> Numbers() {
    std::array<double, Count> numbers{};
    for (double& number : numbers) {
      const std::string_view word = Word();
      std::from_chars(word.data(), word.data() + word.size(), number);
    }
    return numbers;
  }

  void Add(QPainterPath& path, std::string_view command) {
    switch (command.empty() ? ' ' : command.front()) {
      case 'M': {
        const auto [x, y] = Numbers<2>();
        return path.moveTo(x, y);
      }
      case 'L': {
        const auto [x, y] = Numbers<2>();
        return path.lineTo(x, y);
      }
      case 'C': {
        const auto [ax, ay, bx, by, x, y] = Numbers<6>();
        return path.cubicTo(ax, ay, bx, by, x, y);
      }
      case 'O': {
        const auto [x, y, radius] = Numbers<3>();
        return path.addEllipse(QPointF(x, y), radius, radius);
      }
      case 'R': {
        const auto [x, y, width, height, radius] = Numbers<5>();
        return path.addRoundedRect(x, y, width, height, radius, radius);
      }
      case 'A': {
        const auto [x, y, radius, from, sweep] = Numbers<5>();
        const QRectF box(x - radius, y - radius, 2 * radius, 2 * radius);
        path.arcMoveTo(box, from);
        return path.arcTo(box, from, sweep);
      }
      case 'Z':
        return path.closeSubpath();
      default:
        return;
    }
  }

  std::string_view mRest;
};

QColor StrokeColor(QIcon::Mode mode) {
  const QPalette palette = QApplication::palette();
  switch (mode) {
    case QIcon::Disabled:
      return palette.color(QPalette::Disabled, QPalette::WindowText);
    case QIcon::Selected:
      return palette.color(QPalette::Active, QPalette::HighlightedText);
    default:
      return palette.color(QPalette::Active, QPalette::WindowText);
  }
}

class StrokedIcon final : public QIconEngine {
 public:
  explicit StrokedIcon(const Picture& picture)
      : mPicture(&picture), mPath(Strokes(picture.strokes).Read()) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const double side = std::min(rect.width(), rect.height());
    if (side <= 0) return;
    const double scale = side / kGrid;
    // The painter may itself be scaled, as on a screen of twice the density.
    const double device = std::hypot(painter->transform().m11(), painter->transform().m12()) *
                          painter->device()->devicePixelRatioF();
    const double width = std::max(kStroke, kThinnestLine / (scale * device));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
    painter->scale(scale, scale);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(StrokeColor(mode), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPath(mPath);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return scaledPixmap(size, mode, state, 1.0);
  }

  // `size` is in the pixels of the device already; who asks sets the density.
  QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect({}, size), mode, state);
    return pixmap;
  }

  // Desktops ask which sizes a window's icon has.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    QList<QSize> sizes;
    for (const int side : {16, 24, 32, 48, 64, 128}) sizes.append({side, side});
    return sizes;
  }

  [[nodiscard]] QIconEngine* clone() const override { return new StrokedIcon(*mPicture); }
  [[nodiscard]] QString key() const override { return QStringLiteral("quillmarsh"); }

 private:
  const Picture* mPicture;
  QPainterPath mPath;
};

}  // namespace

QIcon IconFor(const QString& key) {
  const Picture* const picture = FindPicture(key.toStdString());
  return picture != nullptr ? QIcon(new StrokedIcon(*picture)) : QIcon();
}

QStringList IconKeys() {
  QStringList keys;
  for (const Picture& picture : kPictures)
    keys.append(QString::fromUtf8(picture.key.data(), static_cast<qsizetype>(picture.key.size())));
  return keys;
}

}  // namespace quillmarsh
