// SPDX-License-Identifier: MIT
// Keeps the controls of a form in place when the form is resized. A control says in its property
// "Tag" what it keeps: each of the capital letters below has its effect, in the order in which they
// stand; all other characters are for the reader ("fixTop fixLeft varWidth" means T, L and W).
// Controls without a letter are left alone.
#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

namespace quillmarsh {

namespace layout_style {
inline constexpr std::int16_t KeepLeft = 1;       // L, also of H and F
inline constexpr std::int16_t KeepRight = 2;      // R, also of H and F
inline constexpr std::int16_t KeepTop = 4;        // T, also of V and F
inline constexpr std::int16_t KeepBottom = 8;     // B, also of V and F
inline constexpr std::int16_t ScaleLeft = 16;     // X
inline constexpr std::int16_t ScaleTop = 32;      // Y
inline constexpr std::int16_t ScaleWidth = 64;    // W
inline constexpr std::int16_t ScaleHeight = 128;  // D
}  // namespace layout_style

// The flags of a layout text; N takes back all that stand before it.
[[nodiscard]] std::int16_t LayoutStyleFromText(QStringView text);

// One control with its margins at design size, in logical pixels of its parent.
struct cFFControl {
  std::int32_t LeftIndent = 0;
  std::int32_t RightIndent = 0;
  std::int32_t TopIndent = 0;
  std::int32_t BottomIndent = 0;
  std::int32_t Width = 0;
  std::int32_t Height = 0;
  std::int16_t style = 0;
  QPointer<QWidget> ctrl;
};

class cFFLayout {
 public:
  // The form as it is now is the design: its size, and where its controls stand.
  void SetLayout(const QWidget& form);
  // Places the controls for the present sizes of their parents. A parent smaller than the design
  // counts as of the design's size, so that no control shrinks below its place there.
  void RedrawLayout() const;

 private:
  void Place(const cFFControl& control) const;

  std::vector<cFFControl> mControls;
  std::int32_t mDesignWidth = 0;
  std::int32_t mDesignHeight = 0;
};

}  // namespace quillmarsh
