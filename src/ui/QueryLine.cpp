// SPDX-License-Identifier: MIT
#include "ui/QueryLine.h"

#include "ui/KeyPress.h"

#include <QApplication>
#include <QKeyEvent>

FindWindow::QueryLine::QueryLine(FindWindow *window)
    : QLineEdit(window)
    , m_window(window)
{
    setObjectName(QStringLiteral("queryLine"));
    setAccessibleName(tr("Query"));
}

bool FindWindow::QueryLine::event(QEvent *event)
{
    // What the key map binds must not be taken by the line's own bindings (Ctrl+K, Ctrl+E, …).
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (KeyPress::command(*key, key->modifiers()) != Command::NoCommand) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void FindWindow::QueryLine::keyPressEvent(QKeyEvent *event)
{
    const Qt::KeyboardModifiers held
        = KeyPress::withoutKeypadAndGroup(QApplication::keyboardModifiers());
    if (held != Qt::NoModifier) {
        if (KeyPress::command(*event, held) != Command::NoCommand)
            event->ignore();
        else
            QLineEdit::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Up:
        m_window->moveSelection(-1);
        break;
    case Qt::Key_Down:
        m_window->moveSelection(+1);
        break;
    case Qt::Key_Enter:
    case Qt::Key_Return:
        m_window->jumpToCurrent();
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
}
