// SPDX-License-Identifier: MIT
// A lock file and a local socket beside it.
#include "frame/startup/SingleInstance.h"

#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

namespace quillmarsh {
namespace {

constexpr int kPatienceMilliseconds = 2000;
const QByteArray kAnswer = "ok\n";

}  // namespace

SingleInstance::SingleInstance(const QString& folder)
    : mAddress(folder + u'/' + kName + QStringLiteral(".socket")),
      mLock(folder + u'/' + kName + QStringLiteral(".lock")) {
  // The lock is as old as the program; only that its process has gone makes it void.
  mLock.setStaleLockTime(0);
  if (folder.isEmpty()) {
    mIsFirst = true;  // no place of one's own: better two windows than none
    return;
  }
  if (!mLock.tryLock(0)) {
    // Only a lock that somebody holds tells of another; one that cannot be written does not.
    mIsFirst = mLock.error() != QLockFile::LockFailedError;
    return;
  }
  mIsFirst = true;
  QLocalServer::removeServer(mAddress);
  mServer.setSocketOptions(QLocalServer::UserAccessOption);
  QObject::connect(&mServer, &QLocalServer::newConnection, &mServer, [this] { Answer(); });
  mServer.listen(mAddress);
}

void SingleInstance::SetActivate(std::function<void(const QString&)> activate) {
  mActivate = std::move(activate);
}

void SingleInstance::Answer() {
  while (QLocalSocket* const socket = mServer.nextPendingConnection()) {
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QLocalSocket::readyRead, &mServer, [this, socket] {
      if (!socket->canReadLine()) return;
      const QString token = QString::fromUtf8(socket->readLine()).trimmed();
      if (!mActivate) return;
      mActivate(token);
      socket->write(kAnswer);
      socket->flush();
    });
  }
}

bool SingleInstance::ActivatePreviousInstance(const QString& token) const {
  QLocalSocket socket;
  socket.connectToServer(mAddress);
  if (!socket.waitForConnected(kPatienceMilliseconds)) return false;
  QByteArray line = token.toUtf8();
  line.replace('\n', ' ');
  socket.write(line + '\n');
  QByteArray answer;
  while (answer.size() < kAnswer.size() && socket.waitForReadyRead(kPatienceMilliseconds))
    answer += socket.readAll();
  return answer == kAnswer;
}

QString SingleInstance::UsualFolder() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  return folder.isEmpty() || QDir(folder).exists() ? folder : QString();
}

}  // namespace quillmarsh
