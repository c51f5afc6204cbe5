// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "shared/Version.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

using namespace Qt::StringLiterals;

namespace
{
Q_LOGGING_CATEGORY(lcInstance, "brindle.activation.instance")

constexpr int waitMs = 1000;
/// A copy that holds the lock may still be on its way to listening.
constexpr int serverStartMs = 5000;
constexpr unsigned long retryPauseMs = 50;
constexpr int pendingConnections = 5;
/// Clients are copies of this program, one or two at a time; each holds a file descriptor here.
constexpr qsizetype mostClients = 32;
constexpr qint64 numberSize = sizeof(qint32);

enum Message : qint32 { VersionRequest = 1, ActivationCommand = 2, TerminationCommand = 3 };
enum Choice { ActivateExisting = 0, TerminateExisting = 1, LeaveAlone = 2 };

void sendCommand(QLocalSocket &socket, Message command)
{
    QDataStream(&socket) << qint32(command);
    socket.waitForBytesWritten(waitMs);
}

/// Waits for the two numbers of the version; they may come in pieces.
void waitForVersion(QLocalSocket &socket)
{
    const QDeadlineTimer deadline(waitMs);
    while (socket.bytesAvailable() < 2 * numberSize) {
        if (!socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
            qCDebug(lcInstance) << "readyread failed waiting for response from existing instance"
                                << socket.error();
            throw "failed waiting for server response";
        }
    }
}

/// Beyond the most, the one that came first goes: refusing the newest would let clients that just
/// sit there keep every real copy out.
void keepFewClients(QLocalServer &server)
{
    QList<QLocalSocket *> clients
        = server.findChildren<QLocalSocket *>(QString(), Qt::FindDirectChildrenOnly);
    clients.removeIf(
        [](const QLocalSocket *client) { return client->state() != QLocalSocket::ConnectedState; });
    if (clients.size() > mostClients)
        clients.first()->abort();
}

bool isOlder(int major, int minor)
{
    return major < Version::major || (major == Version::major && minor < Version::minor);
}
} // namespace

bool AppActivationSupport::checkForOtherInstances()
{
    bool mayServe = m_endpoint.claim();
    QLocalSocket socket;
    const QDeadlineTimer deadline(serverStartMs);
    while (true) {
        socket.connectToServer(m_endpoint.socketPath(), QIODevice::ReadWrite);
        if (socket.waitForConnected(waitMs))
            return askRunningInstance(socket);
        if (mayServe || deadline.hasExpired())
            break;
        QThread::msleep(retryPauseMs); // the other copy is still starting, or just ending
        mayServe = m_endpoint.claim();
    }
    if (!mayServe || socket.error() == QLocalSocket::UnknownSocketError) {
        QMessageBox::critical(nullptr, tr("Error"),
                              tr("There was an error while looking for running instances of "
                                 "Brindle. Please quit any copies of Brindle and try again."),
                              QMessageBox::Ok);
        return true;
    }
    if (socket.error() == QLocalSocket::ServerNotFoundError) {
        qCDebug(lcInstance) << "no existing instance found";
    } else {
        qCDebug(lcInstance).noquote() << u"couldn't connect to existing instance ("_s
                + socket.errorString() + u"); removing it"_s;
        if (!QLocalServer::removeServer(m_endpoint.socketPath())) {
            qCDebug(lcInstance) << "couldn't remove bad server. giving up";
            throw "couldn't remove bad server. giving up";
        }
    }
    return startInstanceServer();
}

bool AppActivationSupport::askRunningInstance(QLocalSocket &socket)
{
    QDataStream stream(&socket);
    stream << qint32(VersionRequest);
    waitForVersion(socket);
    qint32 major = 0;
    qint32 minor = 0;
    stream >> major >> minor;
    switch (promptUserForExistingInstanceAction(major, minor)) {
    case ActivateExisting:
        qCDebug(lcInstance) << "sending activation command to the other instance";
        sendCommand(socket, ActivationCommand);
        return true;
    case TerminateExisting:
        qCDebug(lcInstance) << "sending termination command to the other instance";
        sendCommand(socket, TerminationCommand);
        return true;
    case LeaveAlone:
        return true;
    default:
        throw "huh?";
    }
}

bool AppActivationSupport::startInstanceServer()
{
    m_instanceServer = std::make_unique<QLocalServer>();
    connect(m_instanceServer.get(), &QLocalServer::newConnection, this,
            &AppActivationSupport::instanceServerConnection);
    m_instanceServer->setMaxPendingConnections(pendingConnections);
    qCDebug(lcInstance) << "starting server for this instance";
    // No socket options: with them listening would take over a living server's name.
    if (!m_instanceServer->listen(m_endpoint.socketPath())) {
        qWarning("brindle: other copies won't find this one: %s",
                 qPrintable(m_instanceServer->errorString()));
    }
    return false;
}

int AppActivationSupport::promptUserForExistingInstanceAction(int major, int minor)
{
    const QString question = tr("What would you like to do?");
    if (major == Version::major && minor == Version::minor) {
        return promptUserForExistingInstanceActionInner(
            tr("Brindle is already running. ") + question, QString(),
            tr("Activate existing instance"));
    }
    const QString running = QString::number(major) + u'.' + QString::number(minor);
    const QString intro = tr("This is Brindle ") + Version::text();
    if (isOlder(major, minor)) {
        return promptUserForExistingInstanceActionInner(
            intro + tr(". An older version (%1) is already running. ").arg(running) + question,
            tr("Terminate older instance"), tr("Activate older instance"));
    }
    return promptUserForExistingInstanceActionInner(
        intro + tr(". A newer version (%1) is already running. ").arg(running) + question,
        QString(), tr("Activate newer instance"));
}

int AppActivationSupport::promptUserForExistingInstanceActionInner(const QString &text,
                                                                   const QString &secondLabel,
                                                                   const QString &firstLabel)
{
    QMessageBox box;
    box.setWindowTitle(tr("Brindle is already running"));
    box.setText(text);
    QPushButton *first = box.addButton(firstLabel, QMessageBox::YesRole);
    QPushButton *second
        = secondLabel.isNull() ? nullptr : box.addButton(secondLabel, QMessageBox::YesRole);
    box.setDefaultButton(second ? second : first);
    box.addButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() == first)
        return ActivateExisting;
    return second && box.clickedButton() == second ? TerminateExisting : LeaveAlone;
}

void AppActivationSupport::instanceServerConnection()
{
    QLocalSocket *client = m_instanceServer->nextPendingConnection();
    if (!client)
        return;
    keepFewClients(*m_instanceServer);
    // A message is four bytes; whoever sends more waits in its own buffers.
    client->setReadBufferSize(numberSize);
    connect(client, &QLocalSocket::readyRead, this, &AppActivationSupport::bytesReceived);
    connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
}

void AppActivationSupport::bytesReceived()
{
    auto *client = qobject_cast<QLocalSocket *>(sender());
    if (!client || client->bytesAvailable() < numberSize)
        return;
    qint32 message = 0;
    QDataStream stream(client);
    stream >> message;
    switch (message) {
    case VersionRequest:
        qCDebug(lcInstance) << "sending version information to another instance";
        stream << qint32(Version::major) << qint32(Version::minor);
        break;
    case ActivationCommand:
        qCDebug(lcInstance) << "received activation command from another instance";
        handleRequestLater(Request::Activate);
        break;
    case TerminationCommand:
        qCDebug(lcInstance) << "received termination command from another instance";
        handleRequestLater(Request::Terminate);
        break;
    default:
        break;
    }
}

// A request can end in a prompt. Were that run from inside the socket's own signal, the client
// could leave, and its socket be deleted, under the signal's feet.
void AppActivationSupport::handleRequestLater(Request request)
{
    QMetaObject::invokeMethod(
        this, [this, request] { handleRequest(request); }, Qt::QueuedConnection);
}

void AppActivationSupport::handleRequest(Request request)
{
    if (!m_acceptingRequests) {
        m_earlyRequests.append(request);
        return;
    }
    activateApp(true);
    if (request == Request::Terminate)
        emit requestTermination();
}

void AppActivationSupport::acceptRequests()
{
    m_acceptingRequests = true;
    const QList<Request> requests = std::exchange(m_earlyRequests, {});
    for (const Request request : requests)
        handleRequest(request);
}
