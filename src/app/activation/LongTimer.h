// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <limits>

/// A single-shot timer for any period: a QTimer ends at 24.8 days, so longer periods run as slices.
class LongTimer : public QObject
{
    Q_OBJECT

public:
    static constexpr int longestSliceMs = std::numeric_limits<int>::max();

    explicit LongTimer(QObject *parent, int sliceMs = longestSliceMs);

    /// (Re)starts the timer; a \a period (milliseconds) of 0 or less ends at once.
    void start(qint64 period);
    void stop();
    bool isActive() const { return m_slice.isActive(); }

    /// The whole period of the last start.
    qint64 interval() const { return m_interval; }

signals:
    void timeout();

private:
    void startSlice();
    void sliceEnded();

    QTimer m_slice;
    int m_longestSlice;
    qint64 m_interval = 0;
    qint64 m_afterSlice = 0;
};
