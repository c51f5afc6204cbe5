// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class FrontWindow;

/// Gives a window the keyboard that it got while a modal box was open. The toolkit passes it on to
/// the box then, and notes nothing; when the box is answered before it has arrived there, the
/// window keeps a keyboard that the toolkit doesn't know of, and the X server, for which nothing
/// changes any more, is silent.
class MissedFocus : public QObject
{
    Q_OBJECT

public:
    /// \a front must outlive it.
    explicit MissedFocus(FrontWindow &front);

private:
    bool eventFilter(QObject *watched, QEvent *event) override;

    FrontWindow &m_front;
};
