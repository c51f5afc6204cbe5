// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QSemaphore>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <memory>

class QLocalServer;
class QLocalSocket;
class QMessageBox;
class QThread;

/// Both sides of the conversation between two copies of the program, as tests play them.
namespace InstancePeers
{

/// How \a values travel.
QByteArray numbers(const QList<qint32> &values);

/// A private runtime folder; the environment names it as long as this lives.
class RuntimeFolder
{
public:
    RuntimeFolder();
    ~RuntimeFolder();

    QString path() const { return m_folder.path(); }
    /// Names another folder, which may be missing.
    void moveTo(const QString &path);

private:
    QTemporaryDir m_folder;
    QByteArray m_before;
};

/// What a running copy does with a client; the socket's waiting functions may be used.
using Script = std::function<void(QLocalSocket &)>;

/// Waits for the version request, then gives this version.
Script answersVersion(int major, int minor);

/// A running copy that serves one client, in a thread of its own as the program's client side waits
/// without an event loop.
class ScriptedServer
{
public:
    /// Listens when this returns, or that much later.
    ScriptedServer(const QString &path, Script script, int listenAfterMs = 0);
    ~ScriptedServer();

    /// Waits for the client's end and gives all that it sent.
    QByteArray received();

private:
    void run(const QString &path, const Script &script, int listenAfterMs);

    QByteArray m_received;
    QSemaphore m_listening;
    std::unique_ptr<QThread> m_thread;
};

/// A message box as it came up.
struct SeenBox {
    QString title;
    QString text;
    QStringList buttons;
    QString defaultButton;
    bool hasParent = false;
    bool isModal = false;
};

/// A user who does one thing to each message box: presses the button with that label, or "Escape",
/// "Return", or "Close" for the frame's cross.
class BoxUser
{
public:
    explicit BoxUser(const QString &answer);

    QList<SeenBox> seen;

private:
    void look();
    void answer(QMessageBox *box) const;

    QString m_answer;
    QTimer m_timer;
};

/// Runs the event loop, without pauses, until \a holds gives true.
bool runUntil(const std::function<bool()> &holds, int patienceMs = 10'000);

/// The client of another copy, with the event loop running: what it was answered within a second of
/// asking for the version, or nothing.
QByteArray askVersion(const QString &path);

/// Sends \a bytes, and waits until they have been taken over.
bool send(QLocalSocket &socket, const QByteArray &bytes);

/// Waits for that many bytes and gives what has come by then.
QByteArray receive(QLocalSocket &socket, int size);

} // namespace InstancePeers
