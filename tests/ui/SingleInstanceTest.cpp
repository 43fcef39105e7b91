// SPDX-License-Identifier: MIT
#include "frame/startup/SingleInstance.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <thread>

namespace quillmarsh {
namespace {

TEST(SingleInstance, ASecondStartBringsTheFirstToTheFrontAndTheNextOneIsFirstAgain) {
  const QTemporaryDir folder;
  {
    SingleInstance first(folder.path());
    ASSERT_TRUE(first.IsFirst());
    QString token;
    first.SetActivate([&](const QString& given) { token = given; });
    std::atomic<bool> isDone = false;
    bool isSecondFirst = true;
    bool isAnswered = false;
    // As another program would, it waits without events of its own.
    std::thread second([&] {
      const SingleInstance instance(folder.path());
      isSecondFirst = instance.IsFirst();
      isAnswered = instance.ActivatePreviousInstance(QStringLiteral("of\nthe desktop"));
      isDone = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDone.load(); }, 10000));
    second.join();
    EXPECT_FALSE(isSecondFirst);
    EXPECT_TRUE(isAnswered);
    EXPECT_EQ(token, QStringLiteral("of the desktop"));
  }
  EXPECT_TRUE(SingleInstance(folder.path()).IsFirst());
}

}  // namespace
}  // namespace quillmarsh
