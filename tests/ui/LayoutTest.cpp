// SPDX-License-Identifier: MIT
#include "ui/cFFLayout.h"

#include <gtest/gtest.h>

#include <QWidget>

namespace quillmarsh {
namespace {

TEST(LayoutText, CapitalLettersAloneCountInTheirOrder) {
  EXPECT_EQ(LayoutStyleFromText(u"fixTop fixLeft varWidth"), 1 | 4 | 64);
  EXPECT_EQ(LayoutStyleFromText(u"fixBottom varX"), 8 | 16);
  EXPECT_EQ(LayoutStyleFromText(u"top left width"), 0);
  EXPECT_EQ(LayoutStyleFromText(u"F N Y"), 32);
  EXPECT_EQ(LayoutStyleFromText(u"VH"), 15);
  EXPECT_EQ(LayoutStyleFromText(u"varDepth"), 128);
}

struct PlaceCase {
  const char* text;
  QSize form;
  QRect expected;
};

class Layout : public testing::TestWithParam<PlaceCase> {};

// The control stands at 100, 50 with 200 x 100 in a form of 400 x 200.
TEST_P(Layout, PlacesAControlByItsText) {
  QWidget form;
  form.resize(400, 200);
  QWidget control(&form);
  control.setGeometry(100, 50, 200, 100);
  control.setProperty("Tag", QString::fromLatin1(GetParam().text));
  cFFLayout layout;
  layout.SetLayout(form);
  form.resize(GetParam().form);
  layout.RedrawLayout();
  EXPECT_EQ(control.geometry(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Layout,
    testing::Values(
        PlaceCase{"", {800, 400}, {100, 50, 200, 100}},
        PlaceCase{"fixTop fixLeft varWidth", {800, 400}, {100, 50, 400, 100}},
        PlaceCase{"fixBottom varX", {800, 400}, {200, 250, 200, 100}},
        PlaceCase{"fixTop fixRight varWidth", {800, 400}, {300, 50, 400, 100}},
        PlaceCase{"fixLeft fixBottom varWidth varDepth", {800, 400}, {100, 150, 400, 200}},
        PlaceCase{"fixTop fixLeft fixBottom fixRight varWidth", {800, 400}, {100, 50, 600, 300}},
        PlaceCase{"varY varX", {800, 400}, {200, 100, 200, 100}},
        PlaceCase{"F", {300, 100}, {100, 50, 200, 100}},
        PlaceCase{"varX varY varWidth varDepth", {10, 10}, {100, 50, 200, 100}}));

TEST(LayoutOfWideControl, ANegativePlaceBecomesTwo) {
  QWidget form;
  form.resize(400, 200);
  QWidget panel(&form);
  panel.resize(400, 200);
  QWidget control(&panel);
  control.setGeometry(10, 10, 500, 20);
  control.setProperty("Tag", QStringLiteral("fixRight varWidth"));
  cFFLayout layout;
  layout.SetLayout(form);
  // Its right margin is negative; the place follows from it as it is.
  layout.RedrawLayout();
  EXPECT_EQ(control.geometry(), QRect(10, 10, 500, 20));
  control.setProperty("Tag", QStringLiteral("fixRight"));
  layout.SetLayout(form);
  control.resize(600, 20);
  layout.RedrawLayout();
  EXPECT_EQ(control.x(), 2);
}

}  // namespace
}  // namespace quillmarsh
