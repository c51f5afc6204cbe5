// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <functional>

/// Source of the current local date and time. Components that act on the time take one, so that a
/// test can move it.
using Clock = std::function<QDateTime()>;

/// The computer's own clock.
inline Clock systemClock()
{
    return [] { return QDateTime::currentDateTime(); };
}
