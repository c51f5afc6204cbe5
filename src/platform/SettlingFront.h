// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FrontLoss.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>
#include <functional>

/// Whether this application is in front. A loss counts only when it lasts: dialogs that open and
/// close leave moments with nobody in front, or with a helper's window, and where the keyboard
/// follows the pointer, the pointer crosses other windows on its way.
class SettlingFront : public QObject
{
    Q_OBJECT

public:
    /// How long being in front is believed in after the desktop stopped saying so.
    static constexpr int settlingTimeMs = 300;

    /// How long coming forward may take. Until then a loss is given more time to prove itself: the
    /// window that had the front before, a splash screen or a box, is just closing, or the toolkit
    /// tells late (under X11 by 100 ms) of a loss that came before.
    static constexpr int comingTimeMs = 2000;

    /// \a inFrontNow tells what the desktop says at this moment.
    explicit SettlingFront(std::function<bool()> inFrontNow);

    /// What the desktop says; yes as well while a loss has still to prove itself, and while coming
    /// forward. When that yes turns out to be wrong, notInFront() tells.
    bool areWeInFront();

    /// The application is being brought forward: what was before counts no longer.
    void expectToComeForward();

    /// The desktop says that something has changed.
    void frontChanged();

    /// The user does something that depends on who is in front: a loss that hasn't settled yet is
    /// told at once.
    void settleNow();

signals:
    void notInFront(FrontLoss reason);

protected:
    /// Whether the time that coming forward may take is still running.
    bool isComing() const { return !m_coming.hasExpired(); }

private:
    void settled();

    std::function<bool()> m_inFrontNow;
    bool m_areInFront = false;
    bool m_wereInFront = false; ///< And no loss has settled since.
    QDeadlineTimer m_coming{0};
    QTimer m_settling{this};
};
