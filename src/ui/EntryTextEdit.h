// SPDX-License-Identifier: MIT
#pragma once

#include "ui/HierarchyWindow.h"

#include <QPlainTextEdit>

/// The editor of the current entry's text. It leaves to its window every key that is a command, and
/// gives back the text it was given character by character.
class HierarchyWindow::EntryTextEdit : public QPlainTextEdit
{
public:
    explicit EntryTextEdit(HierarchyWindow *window);

    /// The whole text, lines separated by line feeds; no character is replaced by a similar one.
    QString text() const;
    /// Shows \a body and puts the cursor at its end; leaves text and cursor alone when it is shown
    /// already.
    void showBody(const QString &body);
    /// Whether \a body was shown last and the user hasn't changed it since, although text() may
    /// differ from it (an editor knows one kind of line end only).
    bool holdsUnchanged(const QString &body) const;
    /// Takes over what the input method is still composing.
    void commitPreedit();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    bool belongsToWindow(const QKeyEvent &event) const;

    HierarchyWindow *m_window;
    QString m_shownBody;
    QString m_textAfterShowing;
};
