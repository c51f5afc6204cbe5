// SPDX-License-Identifier: MIT
#include "app/activation/LongTimer.h"

#include <algorithm>

LongTimer::LongTimer(QObject *parent, int sliceMs)
    : QObject(parent)
    , m_longestSlice(sliceMs)
{
    m_slice.setSingleShot(true);
    connect(&m_slice, &QTimer::timeout, this, &LongTimer::sliceEnded);
}

void LongTimer::start(qint64 period)
{
    m_interval = period;
    m_afterSlice = std::max<qint64>(period, 0);
    startSlice();
}

void LongTimer::stop()
{
    m_slice.stop();
}

void LongTimer::startSlice()
{
    const qint64 slice = std::min<qint64>(m_afterSlice, m_longestSlice);
    m_afterSlice -= slice;
    m_slice.start(static_cast<int>(slice));
}

void LongTimer::sliceEnded()
{
    if (m_afterSlice > 0)
        startSlice();
    else
        emit timeout();
}
