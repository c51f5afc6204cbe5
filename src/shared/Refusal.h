// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>

class QWidget;

/// How the program says no to the user: a beep, which many desktops keep silent, and beside it a
/// RefusalEvent to the window the user works in, which shows it.
namespace Refusal
{

/// Type of the event sent to the windows.
QEvent::Type eventType();

/// Beeps and sends the event to the application's active window, if there is one, and to
/// \a concerned, the window that holds the reason, when that is another one.
void refuse(QWidget *concerned = nullptr);

} // namespace Refusal
