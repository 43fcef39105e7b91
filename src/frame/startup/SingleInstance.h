// SPDX-License-Identifier: MIT
// One running program per user. The first one holds a lock for as long as it lives and listens; a
// second one asks it to come to the front. The lock is a sign that other programs can see too.
// After a crash the next start takes both over.
#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QString>
#include <functional>

namespace quillmarsh {

class SingleInstance {
 public:
  static inline const QString kName = QStringLiteral("quillmarsh_mutex");

  // `folder` is where the lock and the socket lie, one of this user alone.
  explicit SingleInstance(const QString& folder);
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  // False when another program is the first, and when that cannot be told.
  [[nodiscard]] bool IsFirst() const { return mIsFirst; }
  // Asks the first one to come to the front, and waits for its word at most two seconds. The token
  // is what the desktop gave this start so that it may take the focus.
  [[nodiscard]] bool ActivatePreviousInstance(const QString& token) const;
  // What the first one does when it is asked.
  void SetActivate(std::function<void(const QString& token)> activate);

  // Of this user, empty where there is none.
  [[nodiscard]] static QString UsualFolder();

 private:
  void Answer();

  const QString mAddress;
  QLockFile mLock;
  QLocalServer mServer;
  bool mIsFirst = false;
  std::function<void(const QString&)> mActivate;
};

}  // namespace quillmarsh
