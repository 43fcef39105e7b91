// SPDX-License-Identifier: MIT
// Every icon draws something, no two draw the same, and all follow the palette.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QTest>
#include <set>

#include "ui/Icons.h"
#include "ui/ProgressAnimation.h"

namespace quillmarsh {
namespace {

QImage Drawn(const QString& key, int side, QIcon::Mode mode = QIcon::Normal) {
  return IconFor(key)
      .pixmap(QSize(side, side), mode)
      .toImage()
      .convertToFormat(QImage::Format_ARGB32);
}

int Painted(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) count += qAlpha(image.pixel(x, y)) > 96 ? 1 : 0;
  return count;
}

// The color of the most solid pixel.
QColor InkOf(const QImage& image) {
  QRgb ink = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (qAlpha(image.pixel(x, y)) > qAlpha(ink)) ink = image.pixel(x, y);
  return QColor(ink);
}

// Puts a palette in use for as long as it lives.
class PaletteInUse {
 public:
  explicit PaletteInUse(QColor text) : mBefore(QApplication::palette()) {
    QPalette palette = mBefore;
    palette.setColor(QPalette::Active, QPalette::WindowText, text);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, Qt::gray);
    QApplication::setPalette(palette);
  }
  ~PaletteInUse() { QApplication::setPalette(mBefore); }
  PaletteInUse(const PaletteInUse&) = delete;
  PaletteInUse& operator=(const PaletteInUse&) = delete;

 private:
  const QPalette mBefore;
};

TEST(Icons, EachHasStrokesOfItsOwnAtBothSizes) {
  for (const int side : {16, 24, 48}) {
    std::set<QByteArray> drawn;
    for (const QString& key : IconKeys()) {
      const QImage image = Drawn(key, side);
      ASSERT_EQ(image.size(), QSize(side, side)) << key.toStdString();
      const int painted = Painted(image);
      EXPECT_GT(painted, side) << key.toStdString() << " at " << side;
      EXPECT_LT(painted, side * side * 2 / 3) << key.toStdString() << " at " << side;
      // Nothing reaches over the edge, where it would be cut.
      EXPECT_LT(qAlpha(image.pixel(0, 0)), 32) << key.toStdString();
      drawn.insert(
          QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(static_cast<qsizetype>(drawn.size()), IconKeys().size());
  }
  EXPECT_TRUE(IconFor(QStringLiteral("no such picture")).isNull());
}

TEST(Icons, EveryKeyOfTheToolBarsHasOne) {
  for (const char* const key :
       {"find",           "stop",           "filter",        "history",
        "forward",        "back",           "wizard",        "undo",
        "remove",         "options",        "view_file",     "file_properties",
        "media_info",     "select_file",    "unselect_file", "files_searched",
        "num_duplicates", "files_selected", "folder",        "drive",
        "home",           "application"})
    EXPECT_FALSE(IconFor(QString::fromLatin1(key)).isNull()) << key;
}

TEST(Icons, TheInkIsThePalettesAtTheMomentOfPainting) {
  const QIcon icon = IconFor(QStringLiteral("find"));
  for (const QColor text : {QColor(Qt::black), QColor(Qt::white), QColor(20, 90, 160)}) {
    const PaletteInUse palette(text);
    EXPECT_EQ(InkOf(icon.pixmap(32).toImage()).rgb(), text.rgb());
    EXPECT_EQ(InkOf(icon.pixmap(QSize(32, 32), QIcon::Disabled).toImage()).rgb(),
              QColor(Qt::gray).rgb());
  }
}

TEST(ProgressAnimation, MovesWhileItPlaysAndIsHiddenElse) {
  QWidget window;
  ProgressAnimation animation(&window);
  window.resize(animation.sizeHint());
  animation.resize(animation.sizeHint());
  window.show();
  EXPECT_FALSE(animation.isVisible());
  animation.Start();
  EXPECT_TRUE(animation.isVisible());
  const QImage first = animation.grab().toImage();
  EXPECT_TRUE(QTest::qWaitFor([&] { return animation.grab().toImage() != first; }, 5000));
  animation.Stop();
  EXPECT_FALSE(animation.isVisible());
  EXPECT_FALSE(animation.IsPlaying());
}

}  // namespace
}  // namespace quillmarsh
