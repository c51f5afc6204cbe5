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
    // Left to the dialog, a refused Enter of the keypad would press OK.
    event->accept();
    if (event->modifiers() != Qt::NoModifier) {
        Refusal::refuse();
        return;
    }
    m_settings->setHotkey(event->key(), event->nativeVirtualKey());
}
