// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/InstanceEndpoint.h"
#include "app/activation/InstanceRequest.h"
#include "app/activation/LongTimer.h"
#include "platform/FrontLoss.h"

#include <QList>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>

class DesktopApplication;
class NativeSupport;
class QLocalServer;
class QWindow;
class RunningInstance;

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

    /// \name Single instance
    /// @{
    /// Asks a running copy, if there is one, what the user wants of it. \return true when this
    /// process must quit now, false when it is the one copy from now on.
    /// \throws const char* when a running copy doesn't answer.
    bool checkForOtherInstances();
    /// A running copy gets \a request, then, and the user no question and no message box; what
    /// goes wrong is thrown instead, as a const char*.
    void askNoQuestions(const InstanceRequest &request);
    /// \return 0 activate, 1 terminate, 2 leave the running copy of version \a major.\a minor
    /// alone.
    int promptUserForExistingInstanceAction(int major, int minor);
    int promptUserForExistingInstanceActionInner(const QString &text, const QString &secondLabel,
                                                 const QString &firstLabel);
    /// From now on requests of other copies take effect at once; what came before is carried out.
    void acceptRequests();
    /// @}

    void installHotkey();
    QString getActivationHotkeyPrefix() const;
    /// What the user should know about the hotkey; see NativeSupport.
    QString getActivationHotkeyNotice() const;

    /// Asks the desktop to bring \a window to the front; see NativeSupport::requestFront().
    void requestFront(QWindow *window);

    /// Whether the automatic activation timer runs, and for how long in all (milliseconds).
    bool isActivationTimerActive() const { return m_activationTimer.isActive(); }
    qint64 activationTimerInterval() const { return m_activationTimer.interval(); }

public slots:
    void confirmAppActivation();
    void instanceServerConnection();
    void bytesReceived();
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
    /// Another instance or the desktop asks to open these files (full paths).
    void requestOpenFiles(const QStringList &files);
    /// The application was asked to come forward and counts as active already.
    void activeAgain();

private:
    void frontNotOurs(FrontLoss reason);
    void startActivationTimer(bool accelerateReactivation);
    bool startInstanceServer();
    bool talkToRunningInstance(RunningInstance &running);
    void askRunningInstance(RunningInstance &running);
    bool takeOver(const RunningInstance &gone);
    [[noreturn]] void endWithoutLock();
    void reportFailedLook();
    void handleRequestLater(const InstanceRequest &request);
    void handleRequest(const InstanceRequest &request);
    void comeForward(const QByteArray &token);

    bool m_active = false;
    LongTimer m_activationTimer{this};
    QTimer m_confirmTimer{this};
    NativeSupport *m_nativeSupport;
    InstanceEndpoint m_endpoint;
    std::unique_ptr<QLocalServer> m_instanceServer;
    std::unique_ptr<DesktopApplication> m_desktopApplication;
    std::optional<InstanceRequest> m_unaskedRequest;
    bool m_acceptingRequests = false;
    QList<InstanceRequest> m_earlyRequests; ///< Came while start-up was still busy.
};
