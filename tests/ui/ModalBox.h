// SPDX-License-Identifier: MIT
// Drives modal boxes from a test: what is to be done in the next box is queued before it is shown.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>
#include <functional>

namespace quillmarsh {

// Runs `inside` when a box of this kind has come up, which `inside` must close. One that stays open
// is a failure and is closed then.
template <typename Box>
void InNextBox(std::function<void(Box&)> inside) {
  QTimer::singleShot(0, qApp, [inside = std::move(inside)] {
    auto* const box = qobject_cast<Box*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr) << "no such box came up";
    static_cast<void>(QTest::qWaitForWindowExposed(box));
    inside(*box);
    if (!box->isVisible()) return;
    ADD_FAILURE() << "the box stayed open: " << box->windowTitle().toStdString();
    box->close();
  });
}

// The text of a label; a label that is not there is a failure.
[[nodiscard]] inline std::string LabelText(const QWidget& box, const char* name) {
  const auto* const label = box.findChild<QLabel*>(QString::fromLatin1(name));
  EXPECT_NE(label, nullptr) << name;
  return label != nullptr ? label->text().toStdString() : std::string();
}

// Every text lies wholly inside its label, and every label inside the dialog.
inline void ExpectNothingIsCut(const QWidget& box) {
  for (const QLabel* const label : box.findChildren<QLabel*>()) {
    if (!label->isVisible()) continue;
    const int needed =
        label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
    EXPECT_GE(label->height(), needed) << label->text().toStdString();
    if (!label->wordWrap()) {
      EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    }
    EXPECT_TRUE(box.rect().contains(QRect(label->mapTo(&box, QPoint(0, 0)), label->size())))
        << label->text().toStdString();
  }
}

// Presses the button of this object name.
inline void Press(const QWidget& box, const char* name) {
  auto* const button = box.findChild<QAbstractButton*>(QString::fromLatin1(name));
  ASSERT_NE(button, nullptr) << name;
  QTest::mouseClick(button, Qt::LeftButton);
}

}  // namespace quillmarsh
