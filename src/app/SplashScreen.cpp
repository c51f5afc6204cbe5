// SPDX-License-Identifier: MIT
#include "app/SplashScreen.h"

#include "platform/KeyLookup.h"

#include <QKeyEvent>

AppLifecycle::SplashScreen::SplashScreen(const QPixmap &picture, AppLifecycle *lifecycle)
    : QSplashScreen(picture)
    , m_lifecycle(lifecycle)
{
    // Desktops that arrange the windows themselves would stretch it to a tile.
    setFixedSize(picture.deviceIndependentSize().toSize());
}

void AppLifecycle::SplashScreen::mousePressEvent(QMouseEvent *event)
{
    QSplashScreen::mousePressEvent(event);
    m_lifecycle->stopSplashScreen();
}

void AppLifecycle::SplashScreen::keyPressEvent(QKeyEvent *event)
{
    // The picture takes the keyboard under some window managers; a key means "go on". A modifier
    // doesn't: it may be the first of the keys that bring the program forward.
    event->accept();
    if (event->isAutoRepeat() || KeyLookup::isModifierOrLockKey(event->key()))
        return;
    hide();
    m_lifecycle->stopSplashScreen();
}
