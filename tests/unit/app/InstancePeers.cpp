// SPDX-License-Identifier: MIT
#include "InstancePeers.h"

#include <QApplication>
#include <QDataStream>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace
{
constexpr int scriptPatienceMs = 10'000;
constexpr int numberSize = sizeof(qint32);
constexpr int versionSize = 2 * numberSize;
} // namespace

QByteArray InstancePeers::numbers(const QList<qint32> &values)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const qint32 value : values)
        stream << value;
    return bytes;
}

InstancePeers::RuntimeFolder::RuntimeFolder()
    : m_before(qgetenv("XDG_RUNTIME_DIR"))
{
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
}

InstancePeers::RuntimeFolder::~RuntimeFolder()
{
    qputenv("XDG_RUNTIME_DIR", m_before);
}

void InstancePeers::RuntimeFolder::moveTo(const QString &path)
{
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(path));
}

InstancePeers::Script InstancePeers::answersVersion(int major, int minor)
{
    return [major, minor](QLocalSocket &client) {
        while (client.bytesAvailable() < numberSize && client.waitForReadyRead(scriptPatienceMs)) {
        }
        client.write(numbers({major, minor}));
        client.waitForBytesWritten(scriptPatienceMs);
    };
}

InstancePeers::ScriptedServer::ScriptedServer(const QString &path, Script script, int listenAfterMs)
    : m_thread(QThread::create([this, path, script = std::move(script), listenAfterMs] {
        run(path, script, listenAfterMs);
    }))
{
    m_thread->start();
    if (listenAfterMs == 0)
        m_listening.acquire();
}

InstancePeers::ScriptedServer::~ScriptedServer()
{
    m_thread->wait();
}

void InstancePeers::ScriptedServer::run(const QString &path, const Script &script,
                                        int listenAfterMs)
{
    QThread::msleep(static_cast<unsigned long>(listenAfterMs));
    QLocalServer server;
    const bool listens = server.listen(path);
    m_listening.release();
    if (!listens || !server.waitForNewConnection(scriptPatienceMs))
        return;
    QLocalSocket *client = server.nextPendingConnection();
    // Nothing is taken out of the socket before the client has ended, so that all of it counts.
    script(*client);
    while (client->state() == QLocalSocket::ConnectedState
           && client->waitForReadyRead(scriptPatienceMs)) { }
    m_received = client->readAll();
}

QByteArray InstancePeers::ScriptedServer::received()
{
    m_thread->wait();
    return m_received;
}

InstancePeers::BoxUser::BoxUser(const QString &answer)
    : m_answer(answer)
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
    m_timer.start(10);
}

void InstancePeers::BoxUser::look()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
        return;
    SeenBox look{box->windowTitle(), box->text(), {}, {}, box->parent() != nullptr, box->isModal()};
    const QList<QAbstractButton *> buttons = box->buttons();
    for (const QAbstractButton *button : buttons) {
        look.buttons << button->text().remove(u'&');
        const auto *push = qobject_cast<const QPushButton *>(button);
        if (push && push->isDefault())
            look.defaultButton = look.buttons.last();
    }
    look.buttons.sort(); // their places are the desktop's affair
    seen << look;
    answer(box);
}

void InstancePeers::BoxUser::answer(QMessageBox *box) const
{
    if (m_answer == u"Close"_s) {
        box->close();
    } else if (m_answer == u"Escape"_s) {
        QTest::keyClick(box->windowHandle(), Qt::Key_Escape);
    } else if (m_answer == u"Return"_s) {
        QTest::keyClick(box->windowHandle(), Qt::Key_Return);
    } else {
        const QList<QAbstractButton *> buttons = box->buttons();
        for (QAbstractButton *button : buttons) {
            if (button->text().remove(u'&') == m_answer)
                button->click();
        }
    }
}

bool InstancePeers::runUntil(const std::function<bool()> &holds, int patienceMs)
{
    const QDeadlineTimer deadline(patienceMs);
    QTimer alarm; // the loop sleeps until something happens
    alarm.start(10);
    while (!holds()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

QByteArray InstancePeers::askVersion(const QString &path)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(1000) || !send(socket, numbers({1})))
        return QByteArray();
    runUntil([&] { return socket.bytesAvailable() >= versionSize; }, 1000);
    return socket.readAll();
}

bool InstancePeers::send(QLocalSocket &socket, const QByteArray &bytes)
{
    socket.write(bytes);
    return runUntil([&] { return socket.bytesToWrite() == 0; });
}

QByteArray InstancePeers::receive(QLocalSocket &socket, int size)
{
    runUntil([&] { return socket.bytesAvailable() >= size; });
    return socket.readAll();
}
