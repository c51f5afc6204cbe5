// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <optional>

/// Keeps windows within reach when the screen they were on has gone.
namespace ScreenPlacement
{

/// Where a window whose frame is \a frame has to go to be seen: nothing when it meets a screen
/// already, else a place inside the available area of the nearest screen.
std::optional<QPoint> correctedPosition(const QRect &frame);

/// The place inside the available area of the nearest screen that is closest to that of \a frame.
QPoint fittedPosition(const QRect &frame);

} // namespace ScreenPlacement
