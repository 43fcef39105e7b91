// SPDX-License-Identifier: MIT
// Events are looked at where widgets get them; those of windows are passed on to widgets anyway.
#include "ui/InputLock.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QShortcut>

#include "frame/CommandScope.h"

namespace quillmarsh {

namespace {

bool IsInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::Gesture:
      return true;
    default:
      return false;
  }
}

// The widget that an event is for; a shortcut belongs to the nearest one above it.
const QWidget* ReceiverOf(const QObject* watched) {
  if (watched->isWidgetType()) return static_cast<const QWidget*>(watched);
  if (qobject_cast<const QAction*>(watched) == nullptr &&
      qobject_cast<const QShortcut*>(watched) == nullptr)
    return nullptr;
  for (const QObject* owner = watched->parent(); owner != nullptr; owner = owner->parent()) {
    if (owner->isWidgetType()) return static_cast<const QWidget*>(owner);
  }
  return nullptr;
}

// Also of the lists and menus that a control of it opens, which are windows of their own. The list
// of completions of a field has no parent, and leaves the keyboard to its field.
bool BelongsTo(const QWidget& widget, const QWidget& box) {
  const QWidget* owner = &widget;
  while (owner != nullptr && owner != &box) {
    const QWidget* const above = owner->parentWidget();
    const bool isPopup = above == nullptr && owner->windowType() == Qt::Popup;
    owner = isPopup ? owner->focusProxy() : above;
  }
  return owner != nullptr;
}

bool IsKey(const QEvent& event, std::initializer_list<int> keys) {
  const QEvent::Type type = event.type();
  if (type != QEvent::KeyPress && type != QEvent::KeyRelease && type != QEvent::ShortcutOverride)
    return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

bool IsMouse(QEvent::Type type) {
  return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
         type == QEvent::MouseButtonDblClick || type == QEvent::MouseMove;
}

}  // namespace

InputLock::InputLock(QObject* parent, std::function<void()> stop)
    : QObject(parent), mStop(std::move(stop)) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool InputLock::eventFilter(QObject* watched, QEvent* event) {
  if (!CommandScope::IsRunning() || !IsInput(event->type())) return false;
  const QWidget* const receiver = ReceiverOf(watched);
  if (receiver == nullptr || MayPass(*receiver, *event)) return false;
  const bool isStop = event->type() == QEvent::KeyPress && IsKey(*event, {Qt::Key_Escape}) &&
                      QApplication::activeModalWidget() == nullptr;
  event->accept();
  if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove) event->ignore();
  if (isStop) mStop();
  return true;
}

bool InputLock::MayPass(const QWidget& receiver, const QEvent& event) const {
  if (const QWidget* const box = QApplication::activeModalWidget())
    return BelongsTo(receiver, *box);
  if (mStopButton == nullptr || &receiver != mStopButton) return false;
  return IsMouse(event.type()) || IsKey(event, {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter});
}

}  // namespace quillmarsh
