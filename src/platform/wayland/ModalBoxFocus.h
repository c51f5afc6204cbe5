// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTimer>

class QWindow;

/// Gives the keyboard to the open modal box when a window behind it gets it. Compositors don't know
/// that the box blocks the others, and the program would seem frozen.
class ModalBoxFocus : public QObject
{
    Q_OBJECT

public:
    /// How long a compositor is given to do as it is asked.
    static constexpr int patienceMs = 300;

    /// Needs the application object.
    ModalBoxFocus();

private:
    void focusChanged(const QWindow *window);
    void insist();

    QTimer m_patience{this};
};
