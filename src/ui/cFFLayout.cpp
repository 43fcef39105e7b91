// SPDX-License-Identifier: MIT
// Each direction by itself: the place, then the size.
#include "ui/cFFLayout.h"

#include <QVariant>
#include <algorithm>

namespace quillmarsh {

namespace {

constexpr std::int32_t kInsteadOfNegative = 2;

std::int32_t Guarded(std::int32_t value) {
  return value < 0 ? kInsteadOfNegative : value;
}

// To the nearest whole; a form without a size scales nothing.
std::int32_t Scaled(std::int32_t value, std::int32_t size, std::int32_t designSize) {
  if (designSize <= 0) return value;
  return static_cast<std::int32_t>((qint64{value} * size + designSize / 2) / designSize);
}

struct Range {
  std::int32_t start;
  std::int32_t size;
};

// What holds for one direction.
struct Direction {
  bool keepsNear;
  bool keepsFar;
  bool scalesPlace;
  bool scalesSize;
  std::int32_t nearIndent;
  std::int32_t farIndent;
  std::int32_t designSize;  // of the control
};

Range Placed(Range present, const Direction& direction, std::int32_t parentSize,
             std::int32_t designParentSize) {
  if (direction.keepsNear) {
    present.start = direction.nearIndent;
  } else if (direction.scalesPlace) {
    present.start = Scaled(direction.nearIndent, parentSize, designParentSize);
  }
  if (direction.keepsNear && direction.keepsFar) {
    present.size = Guarded(parentSize - direction.nearIndent - direction.farIndent);
    return present;
  }
  if (direction.scalesSize)
    present.size = Scaled(direction.designSize, parentSize, designParentSize);
  if (direction.keepsFar) present.start = Guarded(parentSize - direction.farIndent - present.size);
  return present;
}

}  // namespace

std::int16_t LayoutStyleFromText(QStringView text) {
  using namespace layout_style;
  constexpr struct {
    char16_t letter;
    int flags;
  } kLetters[] = {
      {u'L', KeepLeft},
      {u'R', KeepRight},
      {u'T', KeepTop},
      {u'B', KeepBottom},
      {u'V', KeepTop | KeepBottom},
      {u'H', KeepLeft | KeepRight},
      {u'F', KeepLeft | KeepRight | KeepTop | KeepBottom},
      {u'X', ScaleLeft},
      {u'Y', ScaleTop},
      {u'W', ScaleWidth},
      {u'D', ScaleHeight},
  };
  int style = 0;
  for (const QChar character : text) {
    if (character == u'N') style = 0;
    for (const auto& letter : kLetters) {
      if (character == letter.letter) style |= letter.flags;
    }
  }
  return static_cast<std::int16_t>(style);
}

void cFFLayout::SetLayout(const QWidget& form) {
  mDesignWidth = form.width();
  mDesignHeight = form.height();
  mControls.clear();
  for (QWidget* const control : form.findChildren<QWidget*>()) {
    const std::int16_t style = LayoutStyleFromText(control->property("Tag").toString());
    const QWidget* const parent = control->parentWidget();
    if (style == 0 || parent == nullptr) continue;
    const QRect place = control->geometry();
    mControls.push_back({place.left(), parent->width() - place.left() - place.width(), place.top(),
                         parent->height() - place.top() - place.height(), place.width(),
                         place.height(), style, control});
  }
}

void cFFLayout::RedrawLayout() const {
  for (const cFFControl& control : mControls) {
    if (control.ctrl != nullptr) Place(control);
  }
}

void cFFLayout::Place(const cFFControl& control) const {
  using namespace layout_style;
  const auto has = [&control](int flag) { return (control.style & flag) != 0; };
  const QRect present = control.ctrl->geometry();
  const QWidget& parent = *control.ctrl->parentWidget();
  const Range across = Placed({present.left(), present.width()},
                              {has(KeepLeft), has(KeepRight), has(ScaleLeft), has(ScaleWidth),
                               control.LeftIndent, control.RightIndent, control.Width},
                              std::max(parent.width(), mDesignWidth), mDesignWidth);
  const Range down = Placed({present.top(), present.height()},
                            {has(KeepTop), has(KeepBottom), has(ScaleTop), has(ScaleHeight),
                             control.TopIndent, control.BottomIndent, control.Height},
                            std::max(parent.height(), mDesignHeight), mDesignHeight);
  control.ctrl->setGeometry(across.start, down.start, across.size, down.size);
}

}  // namespace quillmarsh
