// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

class FrontWindow;

/// Knows whether this application is in front, and tells the application object (by an
/// ApplicationDeactivate event) when another one has taken its place. The toolkit's own such event
/// doesn't come when a window manager passes the front on without telling our windows.
class FrontWatch : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// How long another window must have been in front: dialogs that open and close leave moments
    /// with none, or with a helper's window, and where the keyboard follows the pointer, the
    /// pointer crosses other windows on its way.
    static constexpr int settlingTimeMs = 300;

    /// \a front is borrowed and must outlive this object.
    explicit FrontWatch(FrontWindow &front);

    /// Still true within the settling time after another window took the front; when it has passed
    /// and the front is lost, the application object is told.
    bool areWeInFront();

    /// Whether \a window is one of this process, or a dialog that belongs to one. \a front asks.
    static bool isOurs(FrontWindow &front, quint32 window);

    /// Our windows are about to come forward: who is in front until then says nothing.
    void expectToComeForward();

    /// The user does something that depends on who is in front: a loss that hasn't settled yet is
    /// told at once.
    void settleNow();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void listen();
    void frontChanged();
    void frontSettled();
    bool isLost();

    FrontWindow &m_front;
    bool m_wereInFront = false;
    QTimer m_settling;
};
