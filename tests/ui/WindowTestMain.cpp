// SPDX-License-Identifier: MIT
// Entry of the tests that need the toolkit: on its platform without a display, without animations.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  application.setEffectEnabled(Qt::UI_AnimateMenu, false);
  application.setEffectEnabled(Qt::UI_AnimateCombo, false);
  return RUN_ALL_TESTS();
}
