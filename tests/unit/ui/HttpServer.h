// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

/// An HTTP server on the loopback interface, in the test's own event loop. It gives every request
/// the same answer.
class HttpServer : public QTcpServer
{
    Q_OBJECT

public:
    enum class Then {
        Close, ///< The end of the connection ends the body.
        Stall, ///< Nothing more comes, and the connection stays.
        Flood, ///< The body goes on without end.
        Trickle ///< So it does, a byte at a time.
    };

    HttpServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &HttpServer::takeConnection);
    }

    /// "127.0.0.1:port"
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(serverPort()); }

    /// Answers with this status line and \a body from now on.
    void answer(const QByteArray &status, const QByteArray &body, Then end = Then::Close)
    {
        answerWithHeaders(status, "Content-Type: text/html\r\n", body, end);
    }
    void answerWithHeaders(const QByteArray &status, const QByteArray &headers,
                           const QByteArray &body, Then end = Then::Close)
    {
        m_answer = status.isEmpty()
            ? QByteArray()
            : "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n" + body;
        m_end = end;
    }

    QByteArrayList requests; ///< Each whole, from the request line to the empty one.
    int bytesSent = 0;
    int connectionsEnded = 0;

private:
    void takeConnection()
    {
        QTcpSocket *socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::bytesWritten, this, [this, socket](qint64 count) {
            bytesSent += static_cast<int>(count);
            goOn(socket);
        });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            ++connectionsEnded;
            socket->deleteLater();
        });
    }

    void read(QTcpSocket *socket)
    {
        m_text += socket->readAll();
        if (!m_text.endsWith("\r\n\r\n"))
            return;
        requests << std::exchange(m_text, QByteArray());
        socket->write(m_answer);
        if (m_end == Then::Close)
            socket->disconnectFromHost();
    }

    void goOn(QTcpSocket *socket)
    {
        if (m_end == Then::Flood && socket->bytesToWrite() == 0)
            socket->write(QByteArray(0x10000, 'x'));
        else if (m_end == Then::Trickle)
            QTimer::singleShot(20, socket, [socket] { socket->write("x"); });
    }

    QByteArray m_answer;
    QByteArray m_text;
    Then m_end = Then::Close;
};
