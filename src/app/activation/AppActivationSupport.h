// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/LongTimer.h"

#include <QObject>
#include <QTimer>

class NativeSupport;
class QWindow;

/// Whether the application is in front (active) or in the background, and what changes that: the
/// global hotkey, the automatic activation timer, and the desktop saying that the front is lost.
/// Windows follow activationChanged().
class AppActivationSupport : public QObject
{
    Q_OBJECT

public:
    class ActivationEventFilter;

    /// How long after an activation the desktop must have brought the application to the front.
    static constexpr int confirmationDelayMs = 7000;

    /// \a nativeSupport is borrowed and must outlive this object.
    explicit AppActivationSupport(NativeSupport *nativeSupport);
    ~AppActivationSupport() override;

    bool isAppActive() const;

    /// \name Settings; read and written through at once
    /// @{
    bool isAutomaticActivationEnabled() const;
    void setAutomaticActivationEnabled(bool enabled);
    /// Minutes from a deactivation to the automatic activation.
    int getAutomaticActivationPeriod() const;
    void setAutomaticActivationPeriod(int minutes);
    /// The activation key as Qt knows it, for display.
    int getHotkeyKey() const;
    /// The activation key as the platform knows it; the one registered.
    unsigned int getHotkeyNativeVirtualKey() const;
    /// Stores both keys and registers the hotkey at once.
    void setHotkeyKey(int key, unsigned int nativeVirtualKey);
    /// @}

    void installHotkey();
    QString getActivationHotkeyPrefix() const;

    /// Asks the desktop to bring \a window to the front; see NativeSupport::requestFront().
    void requestFront(QWindow *window);

    /// Whether the automatic activation timer runs, and for how long in all (milliseconds).
    bool isActivationTimerActive() const { return m_activationTimer.isActive(); }
    qint64 activationTimerInterval() const { return m_activationTimer.interval(); }

public slots:
    void confirmAppActivation();
    void activateApp(bool captureOrRestoreFrontProcess);
    void activateApp();
    void toggleActivationWithProcessHandling();
    void deactivateApp(bool restorePrevProcess, bool accelerateReactivation);
    void deactivateApp(bool restorePrevProcess);
    void deactivateApp();

signals:
    void activationChanged(bool isNowActive);
    /// Another instance asks this one to quit.
    void requestTermination();

private:
    void startActivationTimer(bool accelerateReactivation);

    bool m_active = false;
    LongTimer m_activationTimer{this};
    QTimer m_confirmTimer{this};
    NativeSupport *m_nativeSupport;
};
