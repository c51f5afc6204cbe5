// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "app/activation/DesktopApplication.h"
#include "app/activation/InstanceClient.h"
#include "app/activation/InstanceLog.h"
#include "app/activation/RunningInstance.h"
#include "platform/NativeSupport.h"
#include "shared/Version.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

using namespace Qt::StringLiterals;

namespace
{
using Message = RunningInstance::Message;

/// A copy that holds the lock may still be on its way to listening.
constexpr int serverStartMs = 5000;
constexpr unsigned long retryPauseMs = 50;
constexpr int pendingConnections = 5;
/// Clients are copies of this program, one or two at a time; each holds a file descriptor here.
constexpr qsizetype mostClients = 32;
constexpr qint64 numberSize = sizeof(qint32);

enum Choice { ActivateExisting = 0, TerminateExisting = 1, LeaveAlone = 2 };

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

void AppActivationSupport::askNoQuestions(const InstanceRequest &request)
{
    m_unaskedRequest = request;
}

bool AppActivationSupport::checkForOtherInstances()
{
    const int patienceMs = m_unaskedRequest ? InstanceClient::patienceMs : RunningInstance::waitMs;
    const QDeadlineTimer deadline(serverStartMs);
    while (true) {
        const bool mayServe = m_endpoint.claim();
        RunningInstance running(m_endpoint.socketPaths(), patienceMs);
        if (running.connect())
            return talkToRunningInstance(running);
        if (!m_endpoint.problem().isEmpty())
            endWithoutLock();
        if (mayServe)
            return takeOver(running);
        if (deadline.hasExpired()) {
            reportFailedLook();
            return true;
        }
        QThread::msleep(retryPauseMs); // the other copy is still starting, or just ending
    }
}

bool AppActivationSupport::takeOver(const RunningInstance &gone)
{
    if (gone.error() == QLocalSocket::UnknownSocketError) {
        reportFailedLook();
        return true;
    }
    if (gone.error() == QLocalSocket::ServerNotFoundError) {
        qCDebug(instanceLog) << "no existing instance found";
    } else {
        qCDebug(instanceLog).noquote() << u"couldn't connect to existing instance ("_s
                + gone.errorText() + u"); removing it"_s;
        if (!QLocalServer::removeServer(m_endpoint.socketPath())) {
            qCDebug(instanceLog) << "couldn't remove bad server. giving up";
            throw "couldn't remove bad server. giving up";
        }
    }
    return startInstanceServer();
}

void AppActivationSupport::endWithoutLock()
{
    qWarning().noquote() << m_endpoint.problem();
    if (!m_unaskedRequest)
        QMessageBox::critical(nullptr, tr("Error"), m_endpoint.problem(), QMessageBox::Ok);
    throw "there is no lock against other copies to be had";
}

void AppActivationSupport::reportFailedLook()
{
    if (m_unaskedRequest)
        throw "there was an error while looking for running instances";
    QMessageBox::critical(nullptr, tr("Error"),
                          tr("There was an error while looking for running instances of "
                             "Brindle. Please quit any copies of Brindle and try again."),
                          QMessageBox::Ok);
}

bool AppActivationSupport::talkToRunningInstance(RunningInstance &running)
{
    if (!m_unaskedRequest) {
        askRunningInstance(running);
        return true;
    }
    const InstanceClient::Answer answer = InstanceClient::handOver(running, *m_unaskedRequest);
    if (answer.outcome == InstanceClient::Outcome::Failed)
        throw answer.text;
    return true;
}

void AppActivationSupport::askRunningInstance(RunningInstance &running)
{
    const RunningInstance::VersionNumbers version = running.askVersion();
    switch (promptUserForExistingInstanceAction(version.major, version.minor)) {
    case ActivateExisting:
        qCDebug(instanceLog) << "sending activation command to the other instance";
        running.send(Message::Activation);
        break;
    case TerminateExisting:
        qCDebug(instanceLog) << "sending termination command to the other instance";
        running.send(Message::Termination);
        break;
    case LeaveAlone:
        break;
    default:
        throw "huh?";
    }
}

bool AppActivationSupport::startInstanceServer()
{
    // Whoever finds the socket may count on the name, so the name comes first.
    m_desktopApplication = std::make_unique<DesktopApplication>();
    connect(m_desktopApplication.get(), &DesktopApplication::requested, this,
            &AppActivationSupport::handleRequestLater);
    m_desktopApplication->serve();
    m_instanceServer = std::make_unique<QLocalServer>();
    connect(m_instanceServer.get(), &QLocalServer::newConnection, this,
            &AppActivationSupport::instanceServerConnection);
    m_instanceServer->setMaxPendingConnections(pendingConnections);
    qCDebug(instanceLog) << "starting server for this instance";
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
    switch (static_cast<Message>(message)) {
    case Message::VersionRequest:
        qCDebug(instanceLog) << "sending version information to another instance";
        stream << qint32(Version::major) << qint32(Version::minor);
        break;
    case Message::Activation:
        qCDebug(instanceLog) << "received activation command from another instance";
        handleRequestLater({InstanceRequest::Kind::Activate, {}, {}});
        break;
    case Message::Termination:
        qCDebug(instanceLog) << "received termination command from another instance";
        handleRequestLater({InstanceRequest::Kind::Terminate, {}, {}});
        break;
    default:
        break;
    }
}

// A request can end in a prompt. Were that run from inside the socket's own signal, the client
// could leave, and its socket be deleted, under the signal's feet; and whoever asks over the bus
// would wait for the prompt's end.
void AppActivationSupport::handleRequestLater(const InstanceRequest &request)
{
    QMetaObject::invokeMethod(
        this, [this, request] { handleRequest(request); }, Qt::QueuedConnection);
}

void AppActivationSupport::handleRequest(const InstanceRequest &request)
{
    if (!m_acceptingRequests) {
        m_earlyRequests.append(request);
        return;
    }
    m_nativeSupport->settleFront();
    if (request.kind == InstanceRequest::Kind::Toggle && m_active) {
        toggleActivationWithProcessHandling();
        return;
    }
    comeForward(request.token);
    if (request.kind == InstanceRequest::Kind::Open)
        emit requestOpenFiles(request.files);
    else if (request.kind == InstanceRequest::Kind::Terminate)
        emit requestTermination();
}

void AppActivationSupport::comeForward(const QByteArray &token)
{
    m_nativeSupport->setActivationToken(token);
    if (!m_active) {
        activateApp(true);
        return;
    }
    // It may have lost the front a moment ago, or not have got it yet.
    if (!m_nativeSupport->areWeFrontProcess()) {
        m_nativeSupport->captureFrontProcessForRestore();
        m_confirmTimer.start();
    }
    emit activeAgain();
}

void AppActivationSupport::acceptRequests()
{
    m_acceptingRequests = true;
    const QList<InstanceRequest> requests = std::exchange(m_earlyRequests, {});
    for (const InstanceRequest &request : requests)
        handleRequest(request);
}
