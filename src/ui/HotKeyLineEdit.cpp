// SPDX-License-Identifier: MIT
#include "ui/HotKeyLineEdit.h"

#include "platform/KeyLookup.h"
#include "shared/Refusal.h"

#include <QKeyEvent>

Settings::HotKeyLineEdit::HotKeyLineEdit(Settings *settings)
    : QLineEdit(settings)
    , m_settings(settings)
{
    setFocusPolicy(Qt::ClickFocus);
    // Neither the mouse nor an input method may put in a text that names no key.
    setReadOnly(true);
    setContextMenuPolicy(Qt::NoContextMenu);
}

// Tab would move the focus.
bool Settings::HotKeyLineEdit::event(QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *keyEvent = static_cast<QKeyEvent *>(event);
        if (keyEvent->key() == Qt::Key_Tab) {
            keyPressEvent(keyEvent);
            return true;
        }
    }
    return QLineEdit::event(event);
}

void Settings::HotKeyLineEdit::keyPressEvent(QKeyEvent *event)
{
    // Shift on the way to Shift+A is no answer yet, Caps Lock or a change of the layout never is.
    if (KeyLookup::isModifierOrLockKey(event->key())) {
        event->accept();
        return;
    }
    if (event->modifiers() != Qt::NoModifier) {
        event->ignore();
        Refusal::refuse();
        return;
    }
    event->accept();
    m_settings->setHotkey(event->key(), event->nativeVirtualKey());
}
