// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppLifecycle.h"

#include <QSplashScreen>

/// The picture shown while the program starts; a click or a key ends it.
class AppLifecycle::SplashScreen : public QSplashScreen
{
    Q_OBJECT

public:
    /// \a lifecycle is borrowed and must outlive the splash screen.
    SplashScreen(const QPixmap &picture, AppLifecycle *lifecycle);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    AppLifecycle *m_lifecycle;
};
