// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>

/// How the program says no to the user: a beep, which many desktops keep silent, and beside it a
/// RefusalEvent to the window the user works in, which shows it.
namespace Refusal
{

/// Type of the event sent to the active window.
QEvent::Type eventType();

/// Beeps and sends the event to the application's active window, if there is one.
void refuse();

} // namespace Refusal
