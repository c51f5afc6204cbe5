// SPDX-License-Identifier: MIT
#pragma once

#include "InstancePeers.h"
#include "app/activation/AppActivationSupport.h"
#include "fakes/RecordingNativeSupport.h"
#include "fakes/TestSettings.h"

#include <QLocalSocket>
#include <QSignalSpy>

/// The program's own side of the conversation.
namespace InstancePeers
{

/// The answer to a version request.
inline const QByteArray ownVersion = numbers({0, 3});

/// A new copy on a desktop, with settings and a runtime folder of the test's own.
struct Copy {
    TestSettings settings;
    RuntimeFolder runtime;
    RecordingNativeSupport desktop;
    std::unique_ptr<AppActivationSupport> activation
        = std::make_unique<AppActivationSupport>(&desktop);
    QString path = InstanceEndpoint().socketPath();

    bool mustQuit() const { return activation->checkForOtherInstances(); }
};

/// A copy that has become the server, after start-up, with the event loop running.
struct Serving : Copy {
    QSignalSpy changes{activation.get(), &AppActivationSupport::activationChanged};
    QSignalSpy terminations{activation.get(), &AppActivationSupport::requestTermination};
    bool quits = mustQuit();

    Serving() { activation->acceptRequests(); }
};

/// Connected to the serving copy, and taken over by it.
inline std::unique_ptr<QLocalSocket> clientOf(const Copy &copy)
{
    auto socket = std::make_unique<QLocalSocket>();
    socket->connectToServer(copy.path);
    if (!socket->waitForConnected(1000))
        qWarning("not connected: %s", qPrintable(socket->errorString()));
    return socket;
}

} // namespace InstancePeers
