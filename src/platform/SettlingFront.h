// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>
#include <functional>

/// Whether this application is in front, on a desktop where for moments nobody is: between two
/// windows of ours the keyboard belongs to none, which must not count as the front being lost.
class SettlingFront : public QObject
{
    Q_OBJECT

public:
    /// How long being in front is believed in after the desktop stopped saying so.
    static constexpr int settlingTimeMs = 300;

    /// How long after the application was brought forward a loss of the front is none: the windows
    /// before it, a splash screen or a box, are just closing.
    static constexpr int comingTimeMs = 2000;

    /// \a inFrontNow tells what the desktop says at this moment.
    explicit SettlingFront(std::function<bool()> inFrontNow);

    /// What the desktop says; yes as well while a loss has still to prove itself. A loss that does
    /// is told by an ApplicationDeactivate event to the application object.
    bool areWeInFront();

    /// The application is being brought forward: what was before counts no longer.
    void expectToComeForward();

    /// The user does something that depends on who is in front: a loss that hasn't settled yet is
    /// told at once.
    void settleNow();

private:
    void settled();
    bool isLost();

    std::function<bool()> m_inFrontNow;
    bool m_wereInFront = false;
    QDeadlineTimer m_coming{0};
    QTimer m_settling{this};
};
