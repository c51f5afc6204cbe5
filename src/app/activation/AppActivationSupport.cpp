// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "app/activation/DesktopApplication.h"
#include "platform/NativeSupport.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLocalServer>
#include <QLoggingCategory>
#include <QSettings>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

Q_LOGGING_CATEGORY(activationLog, "brindle.activation")

const auto automaticActivationKey = "automaticactivation"_L1;
const auto automaticActivationDelayKey = "automaticactivationdelay"_L1;
const auto hotkeyKey = "activationhotkey"_L1;
const auto hotkeyNativeKey = "activationhotkeynative"_L1;

constexpr int defaultPeriodMinutes = 30;
constexpr int acceleratedPeriodMinutes = 2;
constexpr qint64 msPerMinute = 60'000;

} // namespace

/// Steps back when the desktop tells the application that it has lost the front.
class AppActivationSupport::ActivationEventFilter : public QObject
{
public:
    explicit ActivationEventFilter(AppActivationSupport *owner)
        : QObject(owner)
        , m_owner(owner)
    {
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        Q_UNUSED(watched)
        if (event->type() == QEvent::ApplicationDeactivate
            && !m_owner->m_nativeSupport->areWeFrontProcess())
            m_owner->deactivateApp(false, false);
        return false;
    }

private:
    AppActivationSupport *m_owner;
};

AppActivationSupport::AppActivationSupport(NativeSupport *nativeSupport)
    : m_nativeSupport(nativeSupport)
{
    connect(&m_activationTimer, &LongTimer::timeout, this,
            qOverload<>(&AppActivationSupport::activateApp));
    m_confirmTimer.setSingleShot(true);
    m_confirmTimer.setInterval(confirmationDelayMs);
    connect(&m_confirmTimer, &QTimer::timeout, this, &AppActivationSupport::confirmAppActivation);
    connect(nativeSupport, &NativeSupport::notInFront, this, &AppActivationSupport::frontNotOurs);
    // A child of this object: nothing may ask it after its owner is gone.
    QCoreApplication::instance()->installEventFilter(new ActivationEventFilter(this));
}

AppActivationSupport::~AppActivationSupport() = default;

bool AppActivationSupport::isAppActive() const
{
    return m_active;
}

bool AppActivationSupport::isAutomaticActivationEnabled() const
{
    return QSettings().value(automaticActivationKey, true).toBool();
}

void AppActivationSupport::setAutomaticActivationEnabled(bool enabled)
{
    QSettings settings;
    settings.setValue(automaticActivationKey, enabled);
    settings.sync();
}

int AppActivationSupport::getAutomaticActivationPeriod() const
{
    return QSettings().value(automaticActivationDelayKey, defaultPeriodMinutes).toInt();
}

void AppActivationSupport::setAutomaticActivationPeriod(int minutes)
{
    QSettings settings;
    settings.setValue(automaticActivationDelayKey, minutes);
    settings.sync();
}

int AppActivationSupport::getHotkeyKey() const
{
    return QSettings().value(hotkeyKey, int(Qt::Key_Space)).toInt();
}

unsigned int AppActivationSupport::getHotkeyNativeVirtualKey() const
{
    return QSettings().value(hotkeyNativeKey, m_nativeSupport->getSpaceVirtualKey()).toUInt();
}

void AppActivationSupport::setHotkeyKey(int key, unsigned int nativeVirtualKey)
{
    QSettings settings;
    settings.setValue(hotkeyKey, key);
    settings.setValue(hotkeyNativeKey, nativeVirtualKey);
    settings.sync();
    m_nativeSupport->setActivationHotkey(nativeVirtualKey);
}

void AppActivationSupport::installHotkey()
{
    m_nativeSupport->setActivationHotkey(getHotkeyNativeVirtualKey());
}

QString AppActivationSupport::getActivationHotkeyPrefix() const
{
    return m_nativeSupport->getActivationHotkeyPrefix();
}

QString AppActivationSupport::getActivationHotkeyNotice() const
{
    return m_nativeSupport->getActivationHotkeyNotice();
}

void AppActivationSupport::requestFront(QWindow *window)
{
    m_nativeSupport->requestFront(window);
}

void AppActivationSupport::confirmAppActivation()
{
    if (!m_active || m_nativeSupport->areWeFrontProcess())
        return;
    qCDebug(activationLog) << "the desktop did not bring the application to the front";
    deactivateApp(false, true);
}

void AppActivationSupport::frontNotOurs(FrontLoss reason)
{
    if (reason == FrontLoss::Lost)
        deactivateApp(false, false);
    else if (!m_confirmTimer.isActive()) // which judges it when its time has come
        deactivateApp(false, true);
}

void AppActivationSupport::activateApp(bool captureOrRestoreFrontProcess)
{
    if (m_active)
        return;
    if (captureOrRestoreFrontProcess)
        m_nativeSupport->captureFrontProcessForRestore();
    m_active = true;
    m_activationTimer.stop();
    m_confirmTimer.start();
    emit activationChanged(true);
}

void AppActivationSupport::activateApp()
{
    activateApp(true);
}

void AppActivationSupport::toggleActivationWithProcessHandling()
{
    if (m_active)
        deactivateApp(true, false);
    else
        activateApp(true);
}

void AppActivationSupport::deactivateApp(bool restorePrevProcess, bool accelerateReactivation)
{
    m_confirmTimer.stop();
    if (!m_active)
        return;
    m_active = false;
    emit activationChanged(false);
    if (restorePrevProcess)
        m_nativeSupport->restoreCapturedProcess();
    if (isAutomaticActivationEnabled())
        startActivationTimer(accelerateReactivation);
}

void AppActivationSupport::deactivateApp(bool restorePrevProcess)
{
    deactivateApp(restorePrevProcess, false);
}

void AppActivationSupport::deactivateApp()
{
    deactivateApp(true, false);
}

void AppActivationSupport::startActivationTimer(bool accelerateReactivation)
{
    int minutes = getAutomaticActivationPeriod();
    if (accelerateReactivation)
        minutes = std::min(minutes, acceleratedPeriodMinutes);
    qCDebug(activationLog) << "coming forward by itself in" << minutes << "minutes";
    m_activationTimer.start(minutes * msPerMinute);
}
