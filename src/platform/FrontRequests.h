// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <functional>

class QWindow;

/// Brings windows of ours to the front once they are on the screen: the desktop doesn't know them
/// before.
class FrontRequests : public QObject
{
    Q_OBJECT

public:
    /// \a bringForward asks the desktop to put a window that is on the screen in front.
    explicit FrontRequests(std::function<void(QWindow *)> bringForward);

    /// Un-minimises \a window and brings it to the front, and after it the modal box that is open;
    /// once that has been answered, \a window comes to the front again.
    void request(QWindow *window);

private:
    /// For a window to appear on the screen.
    struct Wait {
        QPointer<QWindow> window;
        int turn; ///< Tells it from an earlier one for the same window.

        bool operator==(const Wait &other) const = default;
    };

    bool eventFilter(QObject *watched, QEvent *event) override;
    void waitFor(QWindow *window);
    void send(QWindow *window);
    void comeForwardAfter(QWindow *box, QWindow *window);
    void boxHidden(QWindow *box, QWindow *window);

    std::function<void(QWindow *)> m_bringForward;
    int m_turns = 0;
    QList<Wait> m_waits;
    QList<QPointer<QWindow>> m_boxes; ///< After which a window comes forward again.
};
