// SPDX-License-Identifier: MIT
#include "ui/ScreenPlacement.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace
{
/// Gap between two intervals; 0 when they overlap.
int gap(int firstBegin, int firstEnd, int secondBegin, int secondEnd)
{
    return std::max({0, secondBegin - firstEnd, firstBegin - secondEnd});
}

qint64 squaredDistance(const QRect &a, const QRect &b)
{
    const qint64 dx = gap(a.left(), a.right(), b.left(), b.right());
    const qint64 dy = gap(a.top(), a.bottom(), b.top(), b.bottom());
    return dx * dx + dy * dy;
}

/// The top left or upper edge wins when the window is larger than the area: that is where its title
/// bar is.
int fitted(int begin, int length, int areaBegin, int areaLength)
{
    return std::max(areaBegin, std::min(begin, areaBegin + areaLength - length));
}

const QScreen *nearestScreen(const QRect &frame)
{
    const QScreen *nearest = nullptr;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        if (!nearest
            || squaredDistance(frame, screen->geometry())
                < squaredDistance(frame, nearest->geometry()))
            nearest = screen;
    }
    return nearest;
}
} // namespace

std::optional<QPoint> ScreenPlacement::correctedPosition(const QRect &frame)
{
    const QScreen *nearest = nearestScreen(frame);
    if (!nearest || nearest->geometry().intersects(frame))
        return std::nullopt;
    return fittedPosition(frame);
}

QPoint ScreenPlacement::fittedPosition(const QRect &frame)
{
    const QScreen *nearest = nearestScreen(frame);
    if (!nearest)
        return frame.topLeft();
    const QRect area = nearest->availableGeometry();
    return {fitted(frame.x(), frame.width(), area.x(), area.width()),
            fitted(frame.y(), frame.height(), area.y(), area.height())};
}
