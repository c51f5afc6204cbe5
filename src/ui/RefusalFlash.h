// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>

/// A coloured frame that lies over a part of a window for a moment, to show that an action was
/// refused. It takes neither the focus nor the mouse, and belongs to no layout.
class RefusalFlash : public QWidget
{
    Q_OBJECT

public:
    static constexpr int durationMs = 150;

    explicit RefusalFlash(QWidget *window);

    /// Lies over \a target, which is inside the same window, for durationMs.
    void flashOver(const QWidget *target);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QTimer *m_timer;
};
