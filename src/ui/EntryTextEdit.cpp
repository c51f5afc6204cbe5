// SPDX-License-Identifier: MIT
#include "ui/EntryTextEdit.h"

#include "ui/KeyPress.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QTextBlock>
#include <QTextLayout>

HierarchyWindow::EntryTextEdit::EntryTextEdit(HierarchyWindow *window)
    : QPlainTextEdit(window)
    , m_window(window)
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    moveCursor(QTextCursor::End);
}

// The plain text that Qt gives would turn a no-break space into a blank and a line separator into a
// line feed.
QString HierarchyWindow::EntryTextEdit::text() const
{
    return document()->toRawText().replace(QChar::ParagraphSeparator, QChar::LineFeed);
}

void HierarchyWindow::EntryTextEdit::showBody(const QString &body)
{
    if (holdsUnchanged(body))
        return;
    if (text() != body) {
        setPlainText(body);
        moveCursor(QTextCursor::End);
    }
    m_shownBody = body;
    m_textAfterShowing = text();
}

bool HierarchyWindow::EntryTextEdit::holdsUnchanged(const QString &body) const
{
    return body == m_shownBody && text() == m_textAfterShowing;
}

void HierarchyWindow::EntryTextEdit::commitPreedit()
{
    if (!hasFocus())
        return;
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    inputMethod->commit();
    // Not every input method carries out the request.
    const QString composing = textCursor().block().layout()->preeditAreaText();
    if (composing.isEmpty())
        return;
    QInputMethodEvent commit;
    commit.setCommitString(composing);
    QCoreApplication::sendEvent(this, &commit);
    inputMethod->reset();
}

// A key that goes to the window must not be taken before by a button's mnemonic.
bool HierarchyWindow::EntryTextEdit::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride
        && belongsToWindow(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return QPlainTextEdit::event(event);
}

void HierarchyWindow::EntryTextEdit::keyPressEvent(QKeyEvent *event)
{
    if (belongsToWindow(*event)) {
        event->ignore();
    } else if (event->matches(QKeySequence::InsertLineSeparator)) {
        // Return saves, so this is how people start a second line; Qt would put in a character
        // that only Qt takes for a line break.
        textCursor().insertBlock();
        ensureCursorVisible();
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void HierarchyWindow::EntryTextEdit::insertFromMimeData(const QMimeData *source)
{
    // Qt 6.4 crashes on an empty clipboard.
    if (source && canInsertFromMimeData(source))
        QPlainTextEdit::insertFromMimeData(source);
}

// What the key map binds wins over the editor's own bindings: Qt gives it Ctrl+K, Ctrl+D and Ctrl+E
// on X11.
bool HierarchyWindow::EntryTextEdit::belongsToWindow(const QKeyEvent &event) const
{
    return m_window->isRegisteringShortcut() || m_window->isJump(event, event.modifiers())
        || KeyPress::command(event, event.modifiers()) != Command::NoCommand;
}
